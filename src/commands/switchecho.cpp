#include "commands/switchecho.h"

#include "fieldbus/modbusmaster.h"

namespace telvane {

namespace {

constexpr int WriteSingleCoil = 5;
constexpr int WriteSingleRegister = 6;
constexpr qint32 CoilOnSigned = -256;

} // namespace

qint32 switchWriteValue(int functionCode, qint32 value)
{
    return functionCode == WriteSingleCoil && value == 1 ? CoilOnValue : value;
}

bool switchEchoConfirms(int functionCode, qint32 written, qint32 echo)
{
    if (echo == ModbusMaster::InvalidValue)
        return false;
    if (functionCode == WriteSingleRegister)
        return echo == written;
    if (echo == CoilOnValue || echo == CoilOnSigned)
        return written == CoilOnValue;
    if (echo == 0)
        return written == 0;
    return false;
}

} // namespace telvane
