#include "commands/switchcommand.h"

#include "alarms/alarmbook.h"
#include "base/prompts.h"
#include "commands/commandrights.h"
#include "commands/commandslog.h"
#include "commands/switchecho.h"
#include "supervisor/itemexchange.h"

#include <optional>

namespace telvane {

namespace {

struct SwitchWrite
{
    int slave;
    int functionCode;
    int registerNumber;
    qint32 value;
};

// Nothing when either write of the switch is not configured.
std::optional<SwitchWrite> switchWrite(const SwitchTable &table, int sw, bool on)
{
    const qint16 onFunction = table.at(sw, SwitchSlot::OnFunction);
    const qint16 onRegister = table.at(sw, SwitchSlot::OnRegister);
    const qint16 offFunction = table.at(sw, SwitchSlot::OffFunction);
    const qint16 offRegister = table.at(sw, SwitchSlot::OffRegister);
    if (onFunction == UnusedSlot || onRegister == UnusedSlot || offFunction == UnusedSlot
        || offRegister == UnusedSlot)
        return std::nullopt;
    const int functionCode = on ? onFunction : offFunction;
    // Registers above 32767 sit in the 16-bit table as negative numbers.
    const int registerNumber = quint16(on ? onRegister : offRegister);
    const qint16 value = table.at(sw, on ? SwitchSlot::ValOn : SwitchSlot::ValOff);
    return SwitchWrite{table.at(sw, SwitchSlot::Address), functionCode, registerNumber,
                       switchWriteValue(functionCode, value)};
}

// An exchange that is not configured, or was refused because the line was busy, is no
// request to the instrument and counts for nothing.
void countExchange(Runtime &rt, int sw, const BusOutcome &outcome)
{
    if (countFailure(rt, AlarmItemKind::Switch, sw, outcome))
        rt.services.alarms.clearFailCount(AlarmItemKind::Switch, sw);
}

} // namespace

CommandOutcome SwitchCommand(Runtime &rt, Prompts &prompts, int sw, bool on)
{
    if (!checkCommandRights(rt))
        return CommandOutcome::Refused;
    if (!itemIndexValid("switch", sw, MaxSwitches))
        return CommandOutcome::NotConfigured;

    rt.display.statusBar.setPanel(StatusBar::MessagePanel,
                          on ? QStringLiteral("Accensione...") : QStringLiteral("Spegnimento..."));
    const std::optional<SwitchWrite> write = switchWrite(rt.model.editor.tables.SwitchWriteTable, sw, on);
    if (!write) {
        qCInfo(lcCommands, "Switch %d has no On_w or Off_w: nothing sent", sw + 1);
        rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
        return CommandOutcome::NotConfigured;
    }

    countExchange(rt, sw, remoteRead(rt, rt.model.editor.tables.SwitchReadTable, sw, rt.services.items.switchRemote[sw]));
    const BusOutcome written = rt.services.master.write(write->functionCode, write->registerNumber, write->value, write->slave);
    countExchange(rt, sw, localWrite(rt, rt.model.editor.tables.SwitchWriteTable, sw, 0));

    const qint32 echo = written.value;
    const bool confirmed = switchEchoConfirms(write->functionCode, write->value, echo);
    if (confirmed)
        rt.services.alarms.clearFailCount(AlarmItemKind::Switch, sw);
    else if (written.answered())
        rt.services.alarms.ReportSwitchFailure(sw, QStringLiteral("Eco non valida: %1 per %2").arg(echo).arg(write->value));
    else if (written.instrumentFailed())
        rt.services.alarms.ReportSwitchFailure(sw, written.reason());
    rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());

    if (!confirmed) {
        qCWarning(lcCommands, "Switch %d %s: the instrument echoed %d for %d", sw + 1, on ? "on" : "off", echo,
                  write->value);
        prompts.warning(QStringLiteral("Gestione Interruttore"),
                        on ? QStringLiteral("Attenzione: L'interruttore potrebbe non essere stato acceso a causa di "
                                            "un errore di comunicazione.")
                           : QStringLiteral("Attenzione: L'interruttore potrebbe non essere stato spento a causa di "
                                            "un errore di comunicazione."));
        return CommandOutcome::Doubtful;
    }
    rt.services.items.switches[sw] = on ? SwitchState::On : SwitchState::Off;
    emit rt.display.synoptic.switchStatesChanged();
    return CommandOutcome::Confirmed;
}

} // namespace telvane
