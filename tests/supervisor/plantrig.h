#pragma once

#include "support/runtimefixture.h"

namespace telvane {

// The window tests' name for the shared runtime fixture.
using PlantRig = RuntimeFixture;

// Fills a zone's read row: its slave, its decimals and {function code, register} of each
// quantity read.
inline void configureZone(Runtime &rt, int zone, int slave, int decimals, const QList<std::pair<int, int>> &quantities)
{
    ZoneTable &table = rt.editor.tables.ZoneReadTable;
    table.clearRow(zone);
    setRow(table, zone, {slave, decimals});
    for (int k = 0; k < quantities.size(); ++k) {
        table.set(zone, zoneQuantityFunctionSlot(k), qint16(quantities[k].first));
        table.set(zone, zoneQuantityRegisterSlot(k), qint16(quantities[k].second));
    }
}

} // namespace telvane
