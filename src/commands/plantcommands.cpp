#include "commands/plantcommands.h"

#include "base/prompts.h"
#include "commands/commandslog.h"
#include "commands/dooropencommand.h"
#include "commands/setvaluecommand.h"
#include "commands/switchcommand.h"
#include "storage/numbertext.h"
#include "supervisor/runtime.h"
#include "supervisor/acquisitionstate.h"

#include <QRegularExpression>

#include <utility>

namespace telvane {

namespace {

// What a zone's label shows without a valid reading.
const QString NoReading = QStringLiteral("--.-");

template <typename Item>
QString itemName(const QList<Item> &items, int index, const QString &kind)
{
    const QString name = index >= 0 && index < items.size() ? items[index].name.trimmed() : QString();
    return name.isEmpty() ? kind + QLatin1Char(' ') + QString::number(index + 1) : name;
}

QString switchCommandText(const Runtime &rt, int sw, bool on)
{
    return (on ? QStringLiteral("Accensione ") : QStringLiteral("Spegnimento "))
           + itemName(rt.model.plant.switches, sw, QStringLiteral("interruttore"));
}

const QString DoorCommandText = QStringLiteral("Apertura porta");

// The operator's text with the user's decimal separator, as the day file writes
// numbers, so that the journal opens in a spreadsheet with the value as a number.
QString setValueCommandText(const Runtime &rt, int zone, const QString &valueText)
{
    QString value = valueText.trimmed();
    if (const std::optional<double> number = parseNumber(value)) {
        const qsizetype point = value.lastIndexOf(QRegularExpression(QStringLiteral("[.,]")));
        value = formatFixedForUser(*number, point < 0 ? 0 : int(value.size() - point - 1));
    }
    return QStringLiteral("Valore ") + itemName(rt.model.plant.zones, zone, QStringLiteral("zona")) + QStringLiteral(": ")
           + value;
}

} // namespace

PlantCommands::PlantCommands(Runtime &rt, Prompts &prompts, const AcquisitionState &acquisition)
    : m_rt(rt)
    , m_prompts(prompts)
    , m_acquisition(acquisition)
{
}

bool PlantCommands::acquiring() const
{
    return m_acquisition.AcquisitionRunning();
}

void PlantCommands::switchOnImageClicked(int sw)
{
    if (m_rt.model.plant.SwitchControlMode != 1 || !acquiring())
        return;
    m_queue.PendingSwitchOff = sw;
    runNow(switchCommandText(m_rt, sw, false), [&] { return SwitchCommand(m_rt, m_prompts, sw, false); });
}

void PlantCommands::switchOffImageClicked(int sw)
{
    if (m_rt.model.plant.SwitchControlMode != 1)
        return;
    if (acquiring()
        || !runNow(switchCommandText(m_rt, sw, true), [&] { return SwitchCommand(m_rt, m_prompts, sw, true); }))
        m_queue.PendingSwitchOn = sw;
}

void PlantCommands::doorOpenerClicked()
{
    if (acquiring() || !runNow(DoorCommandText, [&] { return DoorOpenCommand(m_rt, m_prompts); }))
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

bool PlantCommands::runNow(const QString &what, const std::function<CommandOutcome()> &command)
{
    if (m_rt.services.lineHolds.held() || m_rt.services.master.busy()) {
        qCInfo(lcCommands, "The line is in use: the command waits for the next tick");
        return false;
    }
    const LineHold hold(m_rt.services.lineHolds);
    told(what, command());
    return true;
}

bool PlantCommands::runTick()
{
    bool busy = false;
    if (std::exchange(m_queue.PendingDoorOpen, false)) {
        told(DoorCommandText, DoorOpenCommand(m_rt, m_prompts));
        busy = true;
    }
    if (const int sw = std::exchange(m_queue.PendingSwitchOff, CommandQueue::NoSwitch); sw >= 0) {
        told(switchCommandText(m_rt, sw, false), SwitchCommand(m_rt, m_prompts, sw, false));
        busy = true;
    }
    if (const int sw = std::exchange(m_queue.PendingSwitchOn, CommandQueue::NoSwitch); sw >= 0) {
        told(switchCommandText(m_rt, sw, true), SwitchCommand(m_rt, m_prompts, sw, true));
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
        told(QStringLiteral("Valore"), CommandOutcome::Refused);
        return;
    }
    told(setValueCommandText(m_rt, zone, text), SetValueCommand(m_rt, m_prompts, zone, text));
}

CommandOutcome PlantCommands::told(const QString &what, CommandOutcome outcome) const
{
    m_rt.services.journal.record(m_rt.services.user.levelName(), QStringLiteral("Comando"), what, commandOutcomeText(outcome));
    if (m_outcomeListener)
        m_outcomeListener(outcome);
    return outcome;
}

} // namespace telvane
