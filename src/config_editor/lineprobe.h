#pragma once

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

} // namespace telvane
