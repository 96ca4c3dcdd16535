#include "session/headlesscommand.h"

#include "storage/plantlimits.h"

#include <QStringList>

namespace telvane {

namespace {

// The item number N (1..`count`) as an index from 0.
std::optional<int> itemIndex(const QString &word, int count, const char *what, QString &error)
{
    bool ok = false;
    const int number = word.toInt(&ok);
    if (!ok || number < 1 || number > count) {
        error = QStringLiteral("%1 \"%2\": serve un numero da 1 a %3").arg(QLatin1String(what), word).arg(count);
        return std::nullopt;
    }
    return number - 1;
}

} // namespace

std::optional<HeadlessCommand> parseHeadlessCommand(const QString &text, QString &error)
{
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    HeadlessCommand command;
    command.text = words.join(QLatin1Char(' '));
    const QString verb = words.value(0).toLower();

    if (verb == QLatin1String("door") && words.size() == 1) {
        command.kind = HeadlessCommand::Kind::DoorOpen;
        return command;
    }
    if (verb == QLatin1String("switch") && words.size() == 3) {
        const QString state = words[2].toLower();
        if (state != QLatin1String("on") && state != QLatin1String("off")) {
            error = QStringLiteral("interruttore: \"%1\" non è on né off").arg(words[2]);
            return std::nullopt;
        }
        const std::optional<int> sw = itemIndex(words[1], MaxSwitches, "interruttore", error);
        if (!sw)
            return std::nullopt;
        command.kind = HeadlessCommand::Kind::Switch;
        command.item = *sw;
        command.on = state == QLatin1String("on");
        return command;
    }
    if (verb == QLatin1String("set") && words.size() == 3) {
        const std::optional<int> zone = itemIndex(words[1], MaxZones, "zona", error);
        if (!zone)
            return std::nullopt;
        command.kind = HeadlessCommand::Kind::SetValue;
        command.item = *zone;
        command.value = words[2];
        return command;
    }
    error = QStringLiteral("comando \"%1\" sconosciuto: usa \"switch N on|off\", \"door\" o \"set N VALORE\"")
                .arg(text.trimmed());
    return std::nullopt;
}

} // namespace telvane
