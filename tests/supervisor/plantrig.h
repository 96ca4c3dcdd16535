#pragma once

#include "support/runtimefixture.h"

namespace telvane {

// The window tests' name for the shared runtime fixture.
using PlantRig = RuntimeFixture;

// Fills a zone's read row: its slave, its decimals and {function code, register} of each
// quantity read.
inline void configureZone(Runtime &rt, int zone, int slave, int decimals, const QList<std::pair<int, int>> &quantities)
{
    QList<int> row{slave, decimals, UnusedSlot, UnusedSlot};
    for (auto [functionCode, address] : quantities)
        row << functionCode << address;
    rt.model.editor.tables.ZoneReadTable.clearRow(zone);
    setRow(rt.model.editor.tables.ZoneReadTable, zone, row);
}

} // namespace telvane
