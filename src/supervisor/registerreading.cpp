#include "supervisor/registerreading.h"

#include "fieldbus/modbusframe.h"
#include "fieldbus/modbusmaster.h"
#include "storage/valueconversion.h"
#include "storage/valuetables.h"

#include <QtGlobal>

namespace telvane {

float scaledReading(int functionCode, int raw, int decimals)
{
    if (raw == ModbusMaster::InvalidValue)
        return InvalidValue;
    if (functionCode == 3 || functionCode == 4)
        return float(registerToValue(raw, decimals));
    return float(raw);
}

ScaledReading readScaledRegister(ModbusMaster &master, int slave, int functionCode, int registerSlot, int decimals)
{
    if (slave < 1 || slave > 255 || !isReadFunction(functionCode))
        return {BusOutcome(), InvalidValue};
    // Registers above 32767 sit in the 16-bit tables as negative numbers.
    const BusOutcome outcome = master.read(functionCode, quint16(registerSlot), slave);
    return {outcome, scaledReading(functionCode, outcome.value, decimals)};
}

} // namespace telvane
