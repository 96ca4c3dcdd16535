#include "storage/dailylog.h"

#include "base/clock.h"
#include "base/datetimetext.h"
#include "storage/lineappend.h"
#include "storage/numbertext.h"
#include "storage/storagelog.h"
#include "storage/textlinereader.h"
#include "storage/valueconversion.h"

#include <QFile>

#include <algorithm>

namespace telvane {

namespace {

// A line of thirty zones is a few hundred characters; a line much longer than that was
// not written by us.
constexpr qsizetype MaxLineLength = 4096;

QString dailyLogPath(const ProgramFolder &folder, const QString &fileName)
{
    return folder.filePath(QLatin1String(DailyLogFolderName) + QLatin1Char('/') + fileName);
}

// The local time's offset from UTC, found once per minute of the file: turning a local
// time into an instant asks the system's time-zone rules, dear at thousands of lines a
// day, while the offset changes only on a whole minute. The times carry that offset, so
// they are the same instants and show the same wall-clock time as local times.
class LocalOffsets
{
public:
    QDateTime at(const QDate &date, const QTime &time)
    {
        const qint64 minute = date.toJulianDay() * 1440 + time.hour() * 60 + time.minute();
        if (minute != m_minute) {
            const QDateTime local(date, QTime(time.hour(), time.minute()));
            // A minute that the clock skips when it goes forward: left to the local rules.
            if (local.time() != QTime(time.hour(), time.minute()))
                return QDateTime(date, time);
            m_minute = minute;
            m_offset = local.offsetFromUtc();
        }
        return QDateTime(date, time, Qt::OffsetFromUTC, m_offset);
    }

private:
    qint64 m_minute = -1;
    int m_offset = 0;
};

// "dd/MM/yyyy HH:mm:ss" read digit by digit: a day holds thousands of lines and the
// general parser is slow. Anything else goes to the general parser.
QDateTime parseLineTime(QStringView text, LocalOffsets &offsets)
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
            return date.isValid() && time.isValid() ? offsets.at(date, time) : QDateTime();
        }
    }
    return QDateTime::fromString(text.toString(), QLatin1String(DateTimeTextFormat));
}

// A field's value. The fields we write are a sign, up to fifteen digits and one
// separator: such a number is an exact integer divided by an exact power of ten, which
// the division rounds just as the general parser would, for a fraction of its cost (a
// week of thirty zones is millions of values). Anything else goes to the general parser.
std::optional<float> fieldValue(QStringView field)
{
    static constexpr double PowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    qsizetype i = 0;
    const bool negative = !field.isEmpty() && field[0] == QLatin1Char('-');
    if (negative || (!field.isEmpty() && field[0] == QLatin1Char('+')))
        ++i;
    qint64 mantissa = 0;
    int digits = 0;
    int decimals = -1;
    for (; i < field.size(); ++i) {
        const char16_t c = field[i].unicode();
        if (c >= u'0' && c <= u'9') {
            // Past fifteen digits the general parser takes over; stop before overflowing.
            if (++digits <= 15)
                mantissa = mantissa * 10 + (c - u'0');
            if (decimals >= 0)
                ++decimals;
        } else if ((c == u'.' || c == u',') && decimals < 0) {
            decimals = 0;
        } else {
            break;
        }
    }
    if (i != field.size() || digits == 0 || digits > 15)
        return parseSingle(field.toString());
    const double value = double(mantissa) / PowersOfTen[std::max(decimals, 0)];
    return float(negative ? -value : value);
}

// Hands the points of one line to the sink; false when the line is damaged.
bool readLine(QStringView line, DailyLogSink &sink, LocalOffsets &offsets)
{
    const qsizetype dateEnd = line.indexOf(QChar(u';'));
    if (dateEnd < 0)
        return false;
    const QDateTime time = parseLineTime(line.left(dateEnd).trimmed(), offsets);
    if (!time.isValid())
        return false;
    QStringView rest = line.mid(dateEnd + 1);
    int trace = 0;
    // At least one value per line; the last one ends with ";" like the others.
    do {
        const qsizetype fieldEnd = rest.indexOf(QChar(u';'));
        if (fieldEnd < 0)
            return false;
        const std::optional<float> value = fieldValue(rest.left(fieldEnd));
        if (!value)
            return false;
        sink.addPoint(++trace, time, *value);
        rest = rest.mid(fieldEnd + 1);
    } while (!rest.isEmpty());
    return true;
}

} // namespace

QString dailyLogFileName(const QDate &date)
{
    return date.toString(QStringLiteral("yyyy_MM_dd")) + QStringLiteral(".csv");
}

// The values in the user's locale ("21,5" on an Italian machine, formatDecimal), so that
// a spreadsheet in that language opens the ";"-separated file as numbers; the reader
// takes either separator.
QString dailyLogLine(const QDateTime &time, std::span<const LoggedValue> values)
{
    QString line = time.toString(QLatin1String(DateTimeTextFormat)).trimmed() + QLatin1Char(';');
    for (const LoggedValue &logged : values)
        line += formatDecimal(logged.value, logged.decimals) + QLatin1Char(';');
    return line;
}

DailyLog::DailyLog(ProgramFolder folder, const Clock &clock)
    : m_folder(std::move(folder))
    , m_clock(clock)
{
}

bool DailyLog::AppendDailyLogLine(const QString &text)
{
    const QString path = dailyLogPath(m_folder, dailyLogFileName(m_clock.now().date()));
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
    LocalOffsets offsets;
    for (;;) {
        const TextLineReader::Result result = reader.readLine(line);
        if (result == TextLineReader::Result::End)
            break;
        ++lineNumber;
        if (result == TextLineReader::Result::TooLong || !readLine(QString::fromLatin1(line), sink, offsets)) {
            qCWarning(lcStorage).noquote() << path << ": line" << lineNumber << "is damaged; reading stops there";
            return false;
        }
    }
    sink.redraw();
    return true;
}

} // namespace telvane
