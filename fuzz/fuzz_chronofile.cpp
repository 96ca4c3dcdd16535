// Any bytes as the schedule and holiday files: loading never crashes and always leaves
// every set point a finite number.
#include "storage/chronofiles.h"
#include "storage/holidaylist.h"

#include "fuzzfolder.h"

#include <cmath>
#include <cstdlib>

using namespace telvane;

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    quietStorageWarnings();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const ProgramFolder &folder = fuzzFolder(QStringLiteral("Crono"));
    writeFuzzInput(folder.filePath(QLatin1String(ChronoScheduleFileName)), data, size);
    writeFuzzInput(folder.filePath(QLatin1String(HolidayFileName)), data, size);

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
