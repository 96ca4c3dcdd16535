#include "journal/operatorjournal.h"

#include "base/clock.h"
#include "storage/dailylog.h"
#include "storage/lineappend.h"
#include "storage/storagelog.h"
#include "storage/textlinereader.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace telvane {

namespace {

// An entry is a few hundred characters; much more was not written by us.
constexpr qsizetype MaxLineLength = 4096;

QString journalPath(const ProgramFolder &folder, const QString &fileName)
{
    return folder.filePath(QLatin1String(DailyLogFolderName) + QLatin1Char('/') + fileName);
}

} // namespace

QString JournalFileName(const QDate &date)
{
    return date.toString(QStringLiteral("'Giornale_'yyyy_MM'.csv'"));
}

OperatorJournal::OperatorJournal(ProgramFolder folder, const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_folder(std::move(folder))
    , m_clock(clock)
{
}

bool OperatorJournal::record(const QString &level, const QString &event, const QString &detail, const QString &outcome)
{
    const JournalEntry entry{m_clock.now(), level, event, detail, outcome};
    const bool written = AppendTextLine(journalPath(m_folder, JournalFileName(entry.time.date())),
                                        journalLine(entry).toUtf8(), journalHeader().toUtf8());
    emit recorded(entry);
    return written;
}

QStringList OperatorJournal::journalFiles() const
{
    QStringList names = QDir(m_folder.filePath(QLatin1String(DailyLogFolderName)))
                            .entryList({QStringLiteral("Giornale_????_??.csv")}, QDir::Files);
    // The names sort by month.
    std::sort(names.begin(), names.end(), std::greater<>());
    return names;
}

QList<JournalEntry> OperatorJournal::readJournal(const QString &fileName) const
{
    const QString path = journalPath(m_folder, fileName);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcStorage).noquote() << "Cannot read" << path << ":" << file.errorString();
        return {};
    }
    QList<JournalEntry> entries;
    TextLineReader reader(file, MaxLineLength);
    QByteArray line;
    int lineNumber = 0;
    const QString header = journalHeader();
    for (TextLineReader::Result result; (result = reader.readLine(line)) != TextLineReader::Result::End;) {
        ++lineNumber;
        const QString text = QString::fromUtf8(line);
        std::optional<JournalEntry> entry;
        if (result != TextLineReader::Result::TooLong)
            entry = parseJournalLine(text);
        if (entry)
            entries.append(*entry);
        else if (text != header)
            qCWarning(lcStorage).noquote() << path << ": line" << lineNumber << "is damaged and was skipped";
    }
    return entries;
}

} // namespace telvane
