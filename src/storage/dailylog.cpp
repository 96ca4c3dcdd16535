#include "storage/dailylog.h"

#include "base/clock.h"
#include "base/datetimetext.h"
#include "storage/numbertext.h"
#include "storage/storagelog.h"
#include "storage/textlinereader.h"
#include "storage/valueconversion.h"

#include <QDir>
#include <QFile>

namespace telvane {

namespace {

// A line of thirty zones is a few hundred characters; a line much longer than that was
// not written by us.
constexpr qsizetype MaxLineLength = 4096;

QString dailyLogPath(const ProgramFolder &folder, const QString &fileName)
{
    return folder.filePath(QLatin1String(DailyLogFolderName) + QLatin1Char('/') + fileName);
}

// Hands the points of one line to the sink; false when the line is damaged.
bool readLine(QStringView line, DailyLogSink &sink)
{
    const qsizetype dateEnd = line.indexOf(QLatin1Char(';'));
    if (dateEnd < 0)
        return false;
    const QDateTime time = QDateTime::fromString(line.left(dateEnd).trimmed().toString(),
                                                 QLatin1String(DateTimeTextFormat));
    if (!time.isValid())
        return false;
    QStringView rest = line.mid(dateEnd + 1);
    int trace = 0;
    // At least one value per line; the last one ends with ";" like the others.
    do {
        const qsizetype fieldEnd = rest.indexOf(QLatin1Char(';'));
        if (fieldEnd < 0)
            return false;
        const std::optional<float> value = parseSingle(rest.left(fieldEnd).toString());
        if (!value)
            return false;
        sink.addPoint(++trace, time, *value);
        rest = rest.mid(fieldEnd + 1);
    } while (!rest.isEmpty());
    return true;
}

} // namespace

QString DailyLogFileName(const QDate &date)
{
    return date.toString(QStringLiteral("yyyy_MM_dd")) + QStringLiteral(".csv");
}

// The values in the user's locale ("21,5" on an Italian machine, FormatDecimal), so that
// a spreadsheet in that language opens the ";"-separated file as numbers; the reader
// takes either separator.
QString dailyLogLine(const QDateTime &time, std::span<const LoggedValue> values)
{
    QString line = time.toString(QLatin1String(DateTimeTextFormat)).trimmed() + QLatin1Char(';');
    for (const LoggedValue &logged : values)
        line += FormatDecimal(logged.value, logged.decimals) + QLatin1Char(';');
    return line;
}

DailyLog::DailyLog(ProgramFolder folder, const Clock &clock)
    : m_folder(std::move(folder))
    , m_clock(clock)
{
}

bool DailyLog::AppendDailyLogLine(const QString &text)
{
    const QString path = dailyLogPath(m_folder, DailyLogFileName(m_clock.now().date()));
    // The folder is made at start-up; should someone remove it while we run, make it again
    // rather than lose every line until the next start.
    if (!QDir().mkpath(m_folder.filePath(QLatin1String(DailyLogFolderName)))) {
        qCWarning(lcStorage).noquote() << "Cannot create the folder of" << path << "; a log line is lost";
        return false;
    }
    QFile file(path);
    // Unbuffered: what a failed write did not take must not be tried again on close.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered)) {
        qCWarning(lcStorage).noquote() << "Cannot open" << path << ":" << file.errorString() << "; a log line is lost";
        return false;
    }
    const qint64 sizeBefore = file.size();
    QByteArray bytes = text.toUtf8() + QByteArrayLiteral("\r\n");
    // A fragment left by a crash in the middle of a line must not swallow this one.
    if (sizeBefore > 0 && file.seek(sizeBefore - 1) && file.peek(1) != QByteArrayLiteral("\n"))
        bytes.prepend(QByteArrayLiteral("\r\n"));
    const bool written = file.write(bytes) == bytes.size() && file.flush();
    if (!written) {
        qCWarning(lcStorage).noquote() << "Cannot write to" << path << ":" << file.errorString() << "; a log line is lost";
        // A full disk takes part of a line: cut it off again, so that the next line
        // does not continue it and the day reads back whole.
        if (file.size() != sizeBefore && !file.resize(sizeBefore))
            qCWarning(lcStorage).noquote() << "Cannot remove the part of the lost line from" << path << ":"
                                           << file.errorString();
    }
    file.close();
    return written;
}

bool DailyLog::ReadDailyLog(const QString &fileName, DailyLogSink &sink) const
{
    const QString path = dailyLogPath(m_folder, fileName);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcStorage).noquote() << "Cannot read" << path << ":" << file.errorString();
        return false;
    }
    TextLineReader reader(file, MaxLineLength);
    QByteArray line;
    int lineNumber = 0;
    for (;;) {
        const TextLineReader::Result result = reader.readLine(line);
        if (result == TextLineReader::Result::End)
            break;
        ++lineNumber;
        if (result == TextLineReader::Result::TooLong || !readLine(QString::fromLatin1(line), sink)) {
            qCWarning(lcStorage).noquote() << path << ": line" << lineNumber << "is damaged; reading stops there";
            return false;
        }
    }
    sink.redraw();
    return true;
}

} // namespace telvane
