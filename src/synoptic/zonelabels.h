#pragma once

#include "config_editor/registertables.h"
#include "storage/valuetables.h"

#include <QString>

namespace telvane {

// The two value labels under a zone's marker: `Lab_Temp` shows the quantity the plant
// chose as the zone's text (`Zone Testo`), which is also the one a double-click sets;
// `Lab_Temp_1` shows the measured value beside it, or the set point when the text
// quantity already is the measured value.
struct ZoneLabelQuantities
{
    ZoneQuantity labTemp;
    ZoneQuantity labTemp1;
};

ZoneLabelQuantities zoneLabelQuantities(int textQuantity);

// The text of one label: the value with the zone's decimals and the unit, "--.-"
// without a valid reading.
QString zoneLabelText(const ValueTables &values, const ZoneTable &readTable, int zone, ZoneQuantity quantity,
                      const QString &unit);

} // namespace telvane
