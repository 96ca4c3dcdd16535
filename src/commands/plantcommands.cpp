#include "commands/plantcommands.h"

#include "base/prompts.h"
#include "commands/commandslog.h"
#include "commands/dooropencommand.h"
#include "commands/setvaluecommand.h"
#include "commands/switchcommand.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"

#include <utility>

namespace telvane {

namespace {

// What a zone's label shows without a valid reading.
const QString NoReading = QStringLiteral("--.-");

} // namespace

PlantCommands::PlantCommands(Runtime &rt, Prompts &prompts, const Supervisor &supervisor)
    : m_rt(rt)
    , m_prompts(prompts)
    , m_supervisor(supervisor)
{
}

bool PlantCommands::acquiring() const
{
    return m_supervisor.AcquisitionRunning();
}

void PlantCommands::switchOnImageClicked(int sw)
{
    if (m_rt.model.plant.SwitchControlMode != 1 || !acquiring())
        return;
    m_queue.PendingSwitchOff = sw;
    runNow([&] { return SwitchCommand(m_rt, m_prompts, sw, false); });
}

void PlantCommands::switchOffImageClicked(int sw)
{
    if (m_rt.model.plant.SwitchControlMode != 1)
        return;
    if (acquiring() || !runNow([&] { return SwitchCommand(m_rt, m_prompts, sw, true); }))
        m_queue.PendingSwitchOn = sw;
}

void PlantCommands::doorOpenerClicked()
{
    if (acquiring() || !runNow([&] { return DoorOpenCommand(m_rt, m_prompts); }))
        m_queue.PendingDoorOpen = true;
}

void PlantCommands::zoneValueDoubleClicked(int zone, const QString &shownText)
{
    m_queue.PendingSetValue = false;
    if (!acquiring() || !m_rt.services.user.hasCommandRights())
        return;
    if (shownText.trimmed() == NoReading)
        return;
    const std::optional<QString> answer = m_prompts.textInput(
        QStringLiteral("Modifica parametro..."), QStringLiteral("Inserire il valore da impostare:"), QString());
    const QString value = answer.value_or(QString()).trimmed();
    if (value.isEmpty())
        return;
    queueSetValue(zone, value);
}

void PlantCommands::queueSwitch(int sw, bool on)
{
    (on ? m_queue.PendingSwitchOn : m_queue.PendingSwitchOff) = sw;
}

void PlantCommands::queueDoorOpen()
{
    m_queue.PendingDoorOpen = true;
}

void PlantCommands::queueSetValue(int zone, const QString &valueText)
{
    m_queue.PendingSetValue = true;
    m_queue.PendingSetValueZone = zone;
    m_queue.PendingSetValueText = valueText;
}

bool PlantCommands::runNow(const std::function<CommandOutcome()> &command)
{
    if (m_rt.services.lineHolds.held() || m_rt.services.master.busy()) {
        qCInfo(lcCommands, "The line is in use: the command waits for the next tick");
        return false;
    }
    const LineHold hold(m_rt.services.lineHolds);
    told(command());
    return true;
}

bool PlantCommands::runTick()
{
    bool busy = false;
    if (std::exchange(m_queue.PendingDoorOpen, false)) {
        told(DoorOpenCommand(m_rt, m_prompts));
        busy = true;
    }
    if (const int sw = std::exchange(m_queue.PendingSwitchOff, CommandQueue::NoSwitch); sw >= 0) {
        told(SwitchCommand(m_rt, m_prompts, sw, false));
        busy = true;
    }
    if (const int sw = std::exchange(m_queue.PendingSwitchOn, CommandQueue::NoSwitch); sw >= 0) {
        told(SwitchCommand(m_rt, m_prompts, sw, true));
        busy = true;
    }
    if (std::exchange(m_queue.PendingSetValue, false))
        runPendingSetValue();
    return busy;
}

void PlantCommands::acquisitionStarting()
{
    m_queue.PendingDoorOpen = false;
    m_queue.PendingSwitchOff = CommandQueue::NoSwitch;
    m_queue.PendingSwitchOn = CommandQueue::NoSwitch;
}

void PlantCommands::runPendingSetValue()
{
    const int zone = std::exchange(m_queue.PendingSetValueZone, -1);
    const QString text = std::exchange(m_queue.PendingSetValueText, QString());
    if (zone < 0) {
        qCWarning(lcCommands, "A set value was pending without a zone: nothing sent");
        told(CommandOutcome::Refused);
        return;
    }
    told(SetValueCommand(m_rt, m_prompts, zone, text));
}

CommandOutcome PlantCommands::told(CommandOutcome outcome) const
{
    if (m_outcomeListener)
        m_outcomeListener(outcome);
    return outcome;
}

} // namespace telvane
