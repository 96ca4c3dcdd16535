#include "commands/plantcommands.h"

#include "commands/commandslog.h"
#include "commands/dooropencommand.h"
#include "commands/setvaluecommand.h"
#include "commands/switchcommand.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"

#include <utility>

namespace telvane {

PlantCommands::PlantCommands(Runtime &rt, Prompts &prompts, const Supervisor &supervisor)
    : m_rt(rt)
    , m_prompts(prompts)
    , m_supervisor(supervisor)
{
}

std::optional<CommandOutcome> PlantCommands::requestSwitch(int sw, bool on)
{
    if (!m_supervisor.AcquisitionRunning())
        return told(telvane::SwitchCommand(m_rt, m_prompts, sw, on));
    (on ? m_rt.commands.PendingSwitchOn : m_rt.commands.PendingSwitchOff) = sw;
    return std::nullopt;
}

std::optional<CommandOutcome> PlantCommands::requestDoorOpen()
{
    if (!m_supervisor.AcquisitionRunning())
        return told(telvane::DoorOpenCommand(m_rt, m_prompts));
    m_rt.commands.PendingDoorOpen = true;
    return std::nullopt;
}

std::optional<CommandOutcome> PlantCommands::requestSetValue(int zone, const QString &valueText)
{
    if (!m_supervisor.AcquisitionRunning())
        return told(telvane::SetValueCommand(m_rt, m_prompts, zone, valueText));
    m_rt.commands.PendingSetValue = true;
    m_rt.commands.PendingSetValueZone = zone;
    m_rt.commands.PendingSetValueText = valueText;
    return std::nullopt;
}

void PlantCommands::DoorOpenCommand()
{
    told(telvane::DoorOpenCommand(m_rt, m_prompts));
}

void PlantCommands::SwitchCommand(int sw, bool on)
{
    told(telvane::SwitchCommand(m_rt, m_prompts, sw, on));
}

void PlantCommands::runPendingSetValue()
{
    CommandQueue &queue = m_rt.commands;
    const int zone = std::exchange(queue.PendingSetValueZone, -1);
    const QString text = std::exchange(queue.PendingSetValueText, QString());
    if (zone < 0) {
        qCWarning(lcCommands, "A set value was pending without a zone: nothing sent");
        told(CommandOutcome::Refused);
        return;
    }
    told(telvane::SetValueCommand(m_rt, m_prompts, zone, text));
}

CommandOutcome PlantCommands::told(CommandOutcome outcome) const
{
    if (m_outcomeListener)
        m_outcomeListener(outcome);
    return outcome;
}

} // namespace telvane
