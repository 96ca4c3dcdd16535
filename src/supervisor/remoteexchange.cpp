#include "supervisor/remoteexchange.h"

#include "fieldbus/modbusmaster.h"

namespace telvane {

namespace {

constexpr qint32 CoilOn = 65280;

bool addressInUse(int slave)
{
    return slave >= 1 && slave <= 255;
}

} // namespace

RemoteReading readRemoteRegister(ModbusMaster &master, const RemoteRegister &reg)
{
    if (!addressInUse(reg.slave) || reg.functionCode < 1 || reg.functionCode > 4)
        return {};
    const qint32 value = master.ReadRegister(reg.functionCode, reg.address, reg.slave);
    if (value == ModbusMaster::InvalidValue)
        return {ExchangeOutcome::Failed, value};
    return {ExchangeOutcome::Done, value};
}

ExchangeOutcome writeRemoteRegister(ModbusMaster &master, const RemoteRegister &reg, int state)
{
    const bool writeCode = reg.functionCode == 5 || reg.functionCode == 6 || reg.functionCode == 8;
    if (!addressInUse(reg.slave) || !writeCode)
        return ExchangeOutcome::NotConfigured;
    const qint32 value = reg.functionCode == 5 && state != 0 ? CoilOn : state;
    const qint32 echo = master.WriteRegister(reg.functionCode, reg.address, value, reg.slave);
    return echo == ModbusMaster::InvalidValue ? ExchangeOutcome::Failed : ExchangeOutcome::Done;
}

RemoteState remoteStateFrom(qint32 value)
{
    return value == 0 ? RemoteState::Local : RemoteState::Remote;
}

} // namespace telvane
