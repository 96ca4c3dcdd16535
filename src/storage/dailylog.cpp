#include "storage/dailylog.h"

#include "base/clock.h"
#include "base/datetimetext.h"
#include "storage/lineappend.h"
#include "storage/numbertext.h"
#include "storage/storagelog.h"
#include "storage/textlinereader.h"
#include "storage/valueconversion.h"

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

// "dd/MM/yyyy HH:mm:ss" read digit by digit: a day holds thousands of lines and the
// general parser is slow. Anything else goes to the general parser.
QDateTime parseLineTime(QStringView text)
{
    static constexpr char Shape[] = "99/99/9999 99:99:99";
    if (text.size() == qsizetype(sizeof(Shape) - 1)) {
        int digits[14];
        int n = 0;
        bool fits = true;
        for (qsizetype i = 0; i < text.size() && fits; ++i) {
            const char16_t c = text[i].unicode();
            if (Shape[i] == '9') {
                fits = c >= u'0' && c <= u'9';
                digits[n++] = c - u'0';
            } else {
                fits = c == char16_t(Shape[i]);
            }
        }
        if (fits) {
            const QDate date(digits[4] * 1000 + digits[5] * 100 + digits[6] * 10 + digits[7],
                             digits[2] * 10 + digits[3], digits[0] * 10 + digits[1]);
            const QTime time(digits[8] * 10 + digits[9], digits[10] * 10 + digits[11], digits[12] * 10 + digits[13]);
            return date.isValid() && time.isValid() ? QDateTime(date, time) : QDateTime();
        }
    }
    return QDateTime::fromString(text.toString(), QLatin1String(DateTimeTextFormat));
}

// Hands the points of one line to the sink; false when the line is damaged.
bool readLine(QStringView line, DailyLogSink &sink)
{
    const qsizetype dateEnd = line.indexOf(QLatin1Char(';'));
    if (dateEnd < 0)
        return false;
    const QDateTime time = parseLineTime(line.left(dateEnd).trimmed());
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
    return AppendTextLine(path, text.toUtf8());
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
