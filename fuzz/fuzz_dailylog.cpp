// Any bytes as a day's log file: the reader returns without crashing and hands the chart
// only finite values on traces counted from 1.
#include "base/clock.h"
#include "storage/dailylog.h"

#include "fuzzfolder.h"

#include <cmath>
#include <cstdlib>

using namespace telvane;

namespace {

class CheckingSink final : public DailyLogSink
{
public:
    void addPoint(int trace, const QDateTime &time, float value) override
    {
        if (trace < 1 || !time.isValid() || !std::isfinite(value) || redrawn)
            std::abort();
    }
    void redraw() override
    {
        if (redrawn)
            std::abort();
        redrawn = true;
    }
    bool redrawn = false;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    quietStorageWarnings();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const ProgramFolder &folder = fuzzFolder(QLatin1String(DailyLogFolderName));
    writeFuzzInput(folder.filePath(QStringLiteral("Dati/fuzz.csv")), data, size);
    static const ManualClock clock;
    const DailyLog log(folder, clock);
    CheckingSink sink;
    const bool complete = log.ReadDailyLog(QStringLiteral("fuzz.csv"), sink);
    if (complete != sink.redrawn)
        std::abort();
    return 0;
}
