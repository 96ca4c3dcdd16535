#include "journal/journalentry.h"

#include "base/datetimetext.h"

#include <QStringList>

namespace telvane {

namespace {

constexpr QChar Separator = u';';
constexpr QChar Quote = u'"';
constexpr int FieldCount = 5;

QString field(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    if (!text.contains(Separator) && !text.contains(Quote))
        return text;
    text.replace(Quote, QLatin1String("\"\""));
    return Quote + text + Quote;
}

// The fields of one line, quotes undone; nothing when a quoted field never ends.
std::optional<QStringList> splitFields(QStringView line)
{
    QStringList fields;
    QString current;
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (quoted) {
            if (c != Quote)
                current += c;
            else if (i + 1 < line.size() && line[i + 1] == Quote)
                current += line[++i];
            else
                quoted = false;
        } else if (c == Quote && current.isEmpty()) {
            quoted = true;
        } else if (c == Separator) {
            fields.append(std::exchange(current, QString()));
        } else {
            current += c;
        }
    }
    if (quoted)
        return std::nullopt;
    fields.append(current);
    return fields;
}

} // namespace

QString journalHeader()
{
    return QStringLiteral("Data e ora;Livello utente;Evento;Dettaglio;Esito");
}

QString journalLine(const JournalEntry &entry)
{
    return QStringList{entry.time.toString(QLatin1String(DateTimeTextFormat)), field(entry.level),
                       field(entry.event), field(entry.detail), field(entry.outcome)}
        .join(Separator);
}

std::optional<JournalEntry> parseJournalLine(QStringView line)
{
    const std::optional<QStringList> fields = splitFields(line);
    if (!fields || fields->size() != FieldCount)
        return std::nullopt;
    const QDateTime time = QDateTime::fromString(fields->at(0), QLatin1String(DateTimeTextFormat));
    if (!time.isValid())
        return std::nullopt;
    return JournalEntry{time, fields->at(1), fields->at(2), fields->at(3), fields->at(4)};
}

} // namespace telvane
