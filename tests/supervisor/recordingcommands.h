#pragma once

#include "fieldbus/modbusmaster.h"
#include "supervisor/operatorcommands.h"

#include <QStringList>

namespace telvane {

// Records the commands the cycle runs; each also writes to slave 99 so that its place
// among the polls shows on the wire.
class RecordingCommands final : public OperatorCommands
{
public:
    explicit RecordingCommands(ModbusMaster &master) : m_master(master) {}

    void DoorOpenCommand() override
    {
        calls.append(QStringLiteral("door"));
        m_master.WriteRegister(6, 900, 1, 99);
    }
    void SwitchCommand(int sw, bool on) override
    {
        calls.append(QStringLiteral("switch %1 %2").arg(sw).arg(on ? "on" : "off"));
        m_master.WriteRegister(6, 910 + sw, on ? 1 : 0, 99);
    }
    void runPendingSetValue() override
    {
        calls.append(QStringLiteral("set value"));
        m_master.WriteRegister(6, 920, 215, 99);
    }

    QStringList calls;

private:
    ModbusMaster &m_master;
};

} // namespace telvane
