#pragma once

#include <QStringList>
#include <QtGlobal>

namespace telvane {

// The one read the monitoring cycle makes on an idle tick to keep an eye on the line:
// the first line of the reading list. All -1 when the line-activity check is off.
struct LineProbe
{
    qint32 address = -1;
    qint32 functionCode = -1;
    qint32 registerNumber = -1;
};

// The probe from the first line of `readingList` (Lst_Letture), for example
// "100>5:3,40001 [1]" or "300>7:3,40010 @ >=25 [0]". With the check off the probe is
// all -1; with nothing to read the check is switched off (`lineActivity` false). A line
// that does not parse gives an all -1 probe and a warning.
LineProbe ParseLineProbe(bool &lineActivity, const QStringList &readingList);

} // namespace telvane
