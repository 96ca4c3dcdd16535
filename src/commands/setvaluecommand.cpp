#include "commands/setvaluecommand.h"

#include "base/prompts.h"
#include "commands/commandrights.h"
#include "commands/commandslog.h"
#include "commands/zonewriteregister.h"
#include "storage/valueconversion.h"
#include "supervisor/itemexchange.h"

#include <optional>

namespace telvane {

namespace {

const QString BoxTitle = QStringLiteral("Modifica parametro...");

} // namespace

CommandOutcome SetValueCommand(Runtime &rt, Prompts &prompts, int zone, const QString &valueText)
{
    if (!checkCommandRights(rt))
        return CommandOutcome::Refused;
    if (!itemIndexValid("zone", zone, MaxZones))
        return CommandOutcome::NotConfigured;

    const int quantity = rt.model.plant.zoneDisplay.textQuantity;
    const std::optional<ZoneWriteRegister> target = zoneWriteRegister(rt.model.editor.tables.ZoneWriteTable, zone, quantity);
    if (!target) {
        qCWarning(lcCommands, "Zone %d has no write register for quantity %d: value not sent", zone + 1, quantity);
        prompts.warning(BoxTitle, QStringLiteral("La zona non ha un registro di scrittura per questo valore: "
                                                 "nessun valore è stato inviato allo strumento."));
        return CommandOutcome::NotConfigured;
    }

    const QString text = valueText.trimmed();
    const std::optional<qint16> raw = registerFromText(text, target->decimals);
    if (!raw) {
        qCInfo(lcCommands) << "Zone" << zone + 1 << ": value" << text << "is not a number or does not fit a register";
        prompts.warning(BoxTitle, QStringLiteral("Valore non valido: \"%1\". Nessun valore è stato inviato "
                                                 "allo strumento.")
                                      .arg(text));
        return CommandOutcome::Refused;
    }

    rt.display.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Impostazione..."));
    const qint32 echo = rt.services.master.WriteRegister(target->functionCode, target->registerNumber, *raw, target->slave);
    rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
    if (echo != *raw) {
        qCWarning(lcCommands, "Zone %d: the instrument echoed %d for %d", zone + 1, echo, int(*raw));
        prompts.warning(BoxTitle, QStringLiteral("Attenzione: Il valore potrebbe non essere stato impostato a causa "
                                                 "di un errore di comunicazione."));
        return CommandOutcome::Doubtful;
    }
    rt.model.values.ZoneValues[zone][quantity] = float(registerToValue(*raw, target->decimals));
    emit rt.display.synoptic.zoneTextsChanged();
    return CommandOutcome::Confirmed;
}

} // namespace telvane
