#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

#include <optional>

namespace telvane {

// One operator action as the journal keeps it. `level` is the user level the action
// was taken with ("Anonimo", "Tecnico", "Amministratore"); `outcome` is empty for
// actions that have none.
struct JournalEntry
{
    QDateTime time;
    QString level;
    QString event;
    QString detail;
    QString outcome;

    friend bool operator==(const JournalEntry &, const JournalEntry &) = default;
};

// The first line of every journal file, naming the columns for a spreadsheet.
QString journalHeader();

// "14/11/2026 22:20:09;Tecnico;Comando;Accensione Pompa;Confermato". A field holding
// ";" or a quote is quoted as spreadsheets expect ("a;b" -> "\"a;b\""); line breaks
// become blanks, so an entry is always one line.
QString journalLine(const JournalEntry &entry);

// The entry of a line written by journalLine; nothing for the header or a damaged line.
std::optional<JournalEntry> parseJournalLine(QStringView line);

} // namespace telvane

Q_DECLARE_METATYPE(telvane::JournalEntry)
