// Any bytes as the schedule and holiday files: loading never crashes and always leaves
// every set point a finite number.
#include "storage/chronofiles.h"
#include "storage/holidaylist.h"
#include "storage/programfolder.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace telvane;

namespace {

void writeFile(const QString &path, const uint8_t *data, size_t size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        std::abort();
    file.write(reinterpret_cast<const char *>(data), static_cast<qint64>(size));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Damaged files are the point here; their warnings would only slow the run down.
    QLoggingCategory::setFilterRules(QStringLiteral("telvane.storage.warning=false"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryDir dir;
    static const ProgramFolder folder(dir.path());
    static const bool made = QDir().mkpath(folder.filePath(QStringLiteral("Crono")));
    if (!made)
        std::abort();
    writeFile(folder.filePath(QLatin1String(ChronoScheduleFileName)), data, size);
    writeFile(folder.filePath(QLatin1String(HolidayFileName)), data, size);

    ChronoSchedule schedule;
    HolidayList holidays;
    LoadChronoFiles(folder, schedule, holidays);
    if (schedule.entries().size() != ChronoSchedule::EntryCount)
        std::abort();
    for (const float setPoint : schedule.entries()) {
        if (!std::isfinite(setPoint))
            std::abort();
    }
    for (const QString &entry : holidays.stringList()) {
        if (entry.isEmpty() || entry != entry.trimmed())
            std::abort();
    }
    return 0;
}
