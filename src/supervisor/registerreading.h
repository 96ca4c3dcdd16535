#pragma once

#include "fieldbus/busoutcome.h"

namespace telvane {

class ModbusMaster;

// One value of an instrument as the polls store it, with how its read ended.
struct ScaledReading
{
    BusOutcome bus;
    // A register (function code 3 or 4) divided by 10 to the power of the decimals, a
    // bit (1 or 2) as read, or the invalid marker when no valid answer came.
    float value;
};

// Nothing is sent, and the outcome is NotConfigured, when the slave address is not in
// use or the function code is not a read.
ScaledReading readScaledRegister(ModbusMaster &master, int slave, int functionCode, int registerSlot, int decimals);

// The scaling alone, for a raw reading that is already in hand.
float scaledReading(int functionCode, int raw, int decimals);

} // namespace telvane
