#include "storage/chronofiles.h"

#include "storage/atomicfile.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/legacytext.h"
#include "storage/numbertext.h"
#include "storage/programfolder.h"
#include "storage/storagelog.h"
#include "storage/textlinereader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace telvane {

namespace {

// A set point line is a handful of characters; anything longer is not one.
constexpr qsizetype MaxScheduleLineLength = 64;
// Far more than any date text, still small enough to hold safely.
constexpr qsizetype MaxHolidayLineLength = 1024;

const QByteArray LineEnd = QByteArrayLiteral("\r\n");

// The folder "Crono" is made at start-up; make it again if it went missing since.
bool writeWholeFile(const QString &path, const QByteArray &content)
{
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        qCWarning(lcStorage).noquote() << "Cannot create the folder of" << path;
        return false;
    }
    return writeFileAtomically(path, content);
}

bool writeScheduleFile(const ProgramFolder &folder, const ChronoSchedule &schedule)
{
    QByteArray content;
    content.reserve(ChronoSchedule::EntryCount * 6);
    for (const float setPoint : schedule.entries()) {
        content += formatFixedForUser(setPoint, 1, 2).toLatin1();
        content += LineEnd;
    }
    return writeWholeFile(folder.filePath(QLatin1String(ChronoScheduleFileName)), content);
}

bool loadSchedule(const QString &path, ChronoSchedule &schedule)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcStorage).noquote() << "Cannot read" << path << ":" << file.errorString();
        return false;
    }
    TextLineReader reader(file, MaxScheduleLineLength);
    QByteArray line;
    // The value of the last line read. A file that ends early hands it on to every later
    // set point; when that line was no number, they keep their values.
    std::optional<float> lastValue;
    bool ended = false;
    int linesRead = 0;
    int badLines = 0;
    for (float &setPoint : schedule.entries()) {
        if (!ended) {
            switch (reader.readLine(line)) {
            case TextLineReader::Result::Line:
                lastValue = parseSingle(QString::fromLatin1(line));
                break;
            case TextLineReader::Result::TooLong:
                lastValue.reset();
                break;
            case TextLineReader::Result::End:
                ended = true;
                break;
            }
            if (!ended) {
                ++linesRead;
                badLines += lastValue ? 0 : 1;
            }
        }
        if (lastValue)
            setPoint = *lastValue;
    }
    bool complete = true;
    if (linesRead < ChronoSchedule::EntryCount) {
        qCWarning(lcStorage).noquote() << path << "holds" << linesRead << "set points instead of"
                                       << ChronoSchedule::EntryCount << "; the last one fills the rest";
        complete = false;
    }
    if (badLines > 0) {
        qCWarning(lcStorage).noquote() << path << ":" << badLines
                                       << "lines are not numbers; their set points are unchanged";
        complete = false;
    }
    return complete;
}

bool loadHolidays(const QString &path, HolidayList &holidays)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcStorage).noquote() << "Cannot read" << path << ":" << file.errorString();
        holidays.setEntries({});
        return false;
    }
    TextLineReader reader(file, MaxHolidayLineLength);
    QStringList entries;
    QByteArray line;
    bool complete = true;
    for (;;) {
        const TextLineReader::Result result = reader.readLine(line);
        if (result == TextLineReader::Result::End)
            break;
        if (result == TextLineReader::Result::TooLong) {
            qCWarning(lcStorage).noquote() << path << ": a line too long for a holiday is skipped";
            complete = false;
            continue;
        }
        const QString entry = decodeLegacyText(line).trimmed();
        if (!entry.isEmpty())
            entries.append(entry);
    }
    holidays.setEntries(entries);
    return complete;
}

} // namespace

bool EnsureChronoFiles(const ProgramFolder &folder, const ChronoSchedule &schedule)
{
    bool ok = true;
    if (!QFile::exists(folder.filePath(QLatin1String(ChronoScheduleFileName))))
        ok = writeScheduleFile(folder, schedule);
    const QString holidayPath = folder.filePath(QLatin1String(HolidayFileName));
    if (!QFile::exists(holidayPath))
        ok = writeWholeFile(holidayPath, QByteArrayLiteral(" ") + LineEnd) && ok;
    return ok;
}

bool LoadChronoFiles(const ProgramFolder &folder, ChronoSchedule &schedule, HolidayList &holidays)
{
    bool ok = EnsureChronoFiles(folder, schedule);
    ok = loadSchedule(folder.filePath(QLatin1String(ChronoScheduleFileName)), schedule) && ok;
    ok = loadHolidays(folder.filePath(QLatin1String(HolidayFileName)), holidays) && ok;
    return ok;
}

bool SaveHolidays(const ProgramFolder &folder, const HolidayList &holidays)
{
    const QStringList entries = holidays.stringList();
    QByteArray content;
    if (entries.isEmpty()) {
        // The file is never left empty: ten blanks stand for no holidays and read back
        // as an empty list.
        content = QByteArray(10, ' ') + LineEnd;
    }
    for (const QString &entry : entries)
        content += entry.toUtf8() + LineEnd;
    return writeWholeFile(folder.filePath(QLatin1String(HolidayFileName)), content);
}

bool SaveChronoSchedule(IniStore &ini, const ChronoSchedule &schedule, const ChronoZoneEnabled &zoneEnabled,
                        const HolidayList &holidays)
{
    bool ok = writeScheduleFile(ini.folder(), schedule);
    ok = SaveHolidays(ini.folder(), holidays) && ok;
    QList<IniKeyValue> flags;
    for (int zone = 0; zone < ChronoSchedule::Zones; ++zone) {
        const QString section = QStringLiteral("Zona %1").arg(zone + 1, 2, 10, QLatin1Char('0'));
        flags.append({section, QStringLiteral("Cronotermostato"), zoneEnabled[zone] ? QStringLiteral("1")
                                                                                     : QStringLiteral("0")});
    }
    return ini.writeIniKeys(flags) && ok;
}

} // namespace telvane
