#include "supervisor/registerreading.h"

#include "fieldbus/modbusmaster.h"
#include "storage/valuetables.h"

#include <QtGlobal>

#include <cmath>

namespace telvane {

float scaledReading(int functionCode, int raw, int decimals)
{
    if (raw == ModbusMaster::InvalidValue)
        return InvalidValue;
    if (functionCode == 3 || functionCode == 4)
        return float(raw / std::pow(10.0, decimals));
    return float(raw);
}

std::optional<float> readScaledRegister(ModbusMaster &master, int slave, int functionCode, int registerSlot,
                                        int decimals)
{
    if (slave < 1 || slave > 255 || functionCode < 1 || functionCode > 4)
        return std::nullopt;
    // Registers above 32767 sit in the 16-bit tables as negative numbers.
    const qint32 raw = master.ReadRegister(functionCode, quint16(registerSlot), slave);
    return scaledReading(functionCode, raw, decimals);
}

} // namespace telvane
