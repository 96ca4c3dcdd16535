#include "supervisor/remoteexchange.h"

#include "fieldbus/modbusframe.h"
#include "fieldbus/modbusmaster.h"

namespace telvane {

namespace {

constexpr qint32 CoilOn = 65280;

bool addressInUse(int slave)
{
    return slave >= 1 && slave <= 255;
}

} // namespace

BusOutcome readRemoteRegister(ModbusMaster &master, const RemoteRegister &reg)
{
    if (!addressInUse(reg.slave) || !isReadFunction(reg.functionCode))
        return {};
    return master.read(reg.functionCode, reg.address, reg.slave);
}

BusOutcome writeRemoteRegister(ModbusMaster &master, const RemoteRegister &reg, int state)
{
    if (!addressInUse(reg.slave) || !isWriteFunction(reg.functionCode))
        return {};
    const qint32 value = reg.functionCode == 5 && state != 0 ? CoilOn : state;
    return master.write(reg.functionCode, reg.address, value, reg.slave);
}

RemoteState remoteStateFrom(qint32 value)
{
    return value == 0 ? RemoteState::Local : RemoteState::Remote;
}

} // namespace telvane
