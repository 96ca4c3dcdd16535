#pragma once

#include "journal/journalentry.h"
#include "storage/programfolder.h"

#include <QList>
#include <QObject>
#include <QStringList>

namespace telvane {

class Clock;

// "Giornale_2026_11.csv": the journal of that month in the folder "Dati".
QString JournalFileName(const QDate &date);

// The operator journal: one ";"-separated file per month in "Dati" with every action an
// operator took and how it ended. Each entry is appended and handed to the system as
// one line at once, without waiting for the disk, so a crash of the program loses
// nothing written before it and the monitoring cycle never waits on the journal.
class OperatorJournal final : public QObject
{
    Q_OBJECT

public:
    OperatorJournal(ProgramFolder folder, const Clock &clock, QObject *parent = nullptr);

    // Appends an entry stamped with the clock's time to the current month's file and
    // announces it. An entry the file could not take is still announced (the headless
    // output keeps it); false then, with the reason in the log.
    bool record(const QString &level, const QString &event, const QString &detail = QString(),
                const QString &outcome = QString());

    // The names of the journal files in "Dati", newest month first.
    QStringList journalFiles() const;
    // The entries of `fileName` in the order written. A damaged line (a crash in its
    // middle) is skipped with a warning; the lines after it are read.
    QList<JournalEntry> readJournal(const QString &fileName) const;

signals:
    void recorded(const telvane::JournalEntry &entry);

private:
    ProgramFolder m_folder;
    const Clock &m_clock;
};

} // namespace telvane
