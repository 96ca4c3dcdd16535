#include "commands/zonewriteregister.h"

#include <algorithm>

namespace telvane {

std::optional<ZoneWriteRegister> zoneWriteRegister(const ZoneTable &table, int zone, int quantity)
{
    if (zone < 0 || zone >= ZoneTable::rows() || quantity < 0 || quantity > 4)
        return std::nullopt;
    const int slave = table.at(zone, ZoneSlot::Address);
    const int functionCode = table.at(zone, zoneQuantityFunctionSlot(quantity));
    const qint16 registerSlot = table.at(zone, zoneQuantityRegisterSlot(quantity));
    const bool writeCode = functionCode == 5 || functionCode == 6 || functionCode == 8;
    if (slave < 1 || slave > 255 || !writeCode || registerSlot == UnusedSlot)
        return std::nullopt;
    // Registers above 32767 sit in the 16-bit table as negative numbers.
    return ZoneWriteRegister{slave, functionCode, quint16(registerSlot),
                             std::max<int>(table.at(zone, ZoneSlot::Decimals), 0)};
}

} // namespace telvane
