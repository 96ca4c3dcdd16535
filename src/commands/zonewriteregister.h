#pragma once

#include "config_editor/registertables.h"

#include <optional>

namespace telvane {

// Where a value for one quantity of a zone goes: the zone instrument's address, the write
// function code and register of that quantity, and the decimals the value is scaled by.
struct ZoneWriteRegister
{
    int slave = 0;
    int functionCode = 0;
    int registerNumber = 0;
    int decimals = 0;
};

// Nothing when the zone's instrument is not in use or the quantity (0 PV .. 4 AL3) has no
// write register with a write function code (5, 6, 8).
std::optional<ZoneWriteRegister> zoneWriteRegister(const ZoneTable &table, int zone, int quantity);

} // namespace telvane
