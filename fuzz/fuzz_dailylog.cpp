// Any bytes as a day's log file: the reader returns without crashing and hands the chart
// only finite values on traces counted from 1.
#include "base/clock.h"
#include "storage/dailylog.h"
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
    QLoggingCategory::setFilterRules(QStringLiteral("telvane.storage.warning=false"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryDir dir;
    static const ProgramFolder folder(dir.path());
    static const bool made = QDir().mkpath(folder.filePath(QLatin1String(DailyLogFolderName)));
    if (!made)
        std::abort();
    {
        QFile file(folder.filePath(QStringLiteral("Dati/fuzz.csv")));
        if (!file.open(QIODevice::WriteOnly))
            std::abort();
        file.write(reinterpret_cast<const char *>(data), static_cast<qint64>(size));
    }
    static const ManualClock clock;
    const DailyLog log(folder, clock);
    CheckingSink sink;
    const bool complete = log.ReadDailyLog(QStringLiteral("fuzz.csv"), sink);
    if (complete != sink.redrawn)
        std::abort();
    return 0;
}
