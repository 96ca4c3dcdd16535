// Loading and saving the chrono-thermostat schedule, as the editor does when it opens,
// re-reads its data or saves the chrono page.
#include "storage/chronofiles.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/programfolder.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace telvane;

namespace {

ChronoSchedule variedSchedule()
{
    ChronoSchedule schedule;
    int n = 0;
    for (float &setPoint : schedule.entries())
        setPoint = 15.0f + float(n++ % 80) / 10.0f;
    return schedule;
}

void fillHolidays(HolidayList &holidays)
{
    holidays.setEntries({"01/01/2026", "06/01/2026", "06/04/2026", "25/04/2026", "01/05/2026", "02/06/2026",
                         "15/08/2026", "01/11/2026", "08/12/2026", "25/12/2026", "26/12/2026"});
}

void setFileCounters(benchmark::State &state, const ProgramFolder &folder)
{
    state.SetItemsProcessed(state.iterations() * ChronoSchedule::EntryCount);
    state.SetBytesProcessed(state.iterations() * QFileInfo(folder.filePath(QLatin1String(ChronoScheduleFileName))).size());
}

void BM_LoadChronoFiles(benchmark::State &state)
{
    QTemporaryDir dir;
    const ProgramFolder folder(dir.path());
    IniStore ini(folder);
    HolidayList holidays;
    fillHolidays(holidays);
    SaveChronoSchedule(ini, variedSchedule(), ChronoZoneEnabled{}, holidays);
    ChronoSchedule schedule;
    for (auto _ : state) {
        LoadChronoFiles(folder, schedule, holidays);
        benchmark::DoNotOptimize(schedule.entries().data());
    }
    setFileCounters(state, folder);
}
BENCHMARK(BM_LoadChronoFiles)->Unit(benchmark::kMillisecond);

// The schedule file alone: formatting 20,370 set points and replacing the file atomically.
void BM_WriteScheduleFile(benchmark::State &state)
{
    QTemporaryDir dir;
    const ProgramFolder folder(dir.path());
    const ChronoSchedule schedule = variedSchedule();
    EnsureChronoFiles(folder, schedule);
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(folder.filePath(QLatin1String(ChronoScheduleFileName)));
        state.ResumeTiming();
        EnsureChronoFiles(folder, schedule);
    }
    setFileCounters(state, folder);
}
BENCHMARK(BM_WriteScheduleFile)->Unit(benchmark::kMillisecond);

// What the operator waits for on saving the chrono page: schedule, holidays and the
// thirty zone flags in the settings file.
void BM_SaveChronoSchedule(benchmark::State &state)
{
    QTemporaryDir dir;
    const ProgramFolder folder(dir.path());
    IniStore ini(folder);
    const ChronoSchedule schedule = variedSchedule();
    ChronoZoneEnabled enabled{};
    enabled.fill(true);
    HolidayList holidays;
    fillHolidays(holidays);
    for (auto _ : state)
        SaveChronoSchedule(ini, schedule, enabled, holidays);
    setFileCounters(state, folder);
}
BENCHMARK(BM_SaveChronoSchedule)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
