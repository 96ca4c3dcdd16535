// Loading and drawing history, and the live chart's memory over a week. Not a test: run
// build/bench/bench_trends (on the offscreen platform when there is no display).
#include "base/clock.h"
#include "storage/dailylog.h"
#include "storage/plantconfig.h"
#include "storage/inistore.h"
#include "trends/historyrange.h"
#include "trends/livetrend.h"
#include "ui/trends/storico.h"
#include "ui/trends/trendchart.h"
#include "ui/trends/trendpanel.h"

#include "base/prompts.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <vector>

using namespace telvane;

namespace {

constexpr int Zones = 30;
constexpr int BaseMisuraSeconds = 5;
const QDate FirstDay(2026, 11, 1);

void writeDays(const ProgramFolder &folder, int days)
{
    QDir().mkpath(folder.filePath(QStringLiteral("Dati")));
    std::vector<LoggedValue> values(Zones);
    for (int d = 0; d < days; ++d) {
        const QDate date = FirstDay.addDays(d);
        QFile file(folder.filePath(QStringLiteral("Dati/") + dailyLogFileName(date)));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot write the day files");
        QByteArray bytes;
        for (int s = 0; s < 86400; s += BaseMisuraSeconds) {
            for (int z = 0; z < Zones; ++z)
                values[z] = {float(18 + z % 5 + (s % 3600) / 600.0), 1};
            bytes += dailyLogLine(QDateTime(date, QTime(0, 0).addSecs(s)), values).toUtf8() + "\r\n";
        }
        file.write(bytes);
    }
}

long rssKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

// Shows the days in the history window and measures the whole wait and the longest
// time the event loop did not turn meanwhile.
void showInWindow(Storico &history, int days)
{
    QElapsedTimer total;
    QElapsedTimer sinceTick;
    qint64 longestStall = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longestStall = std::max(longestStall, sinceTick.restart());
    });
    while (history.loading())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    bool shown = false;
    const auto connection = QObject::connect(&history, &Storico::daysShown, [&] { shown = true; });
    ticker.start(5);
    total.start();
    sinceTick.start();
    history.showDays(FirstDay, FirstDay.addDays(days - 1));
    while (!shown)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    longestStall = std::max(longestStall, sinceTick.elapsed());
    history.panel().chart().grab();
    const qint64 ms = total.elapsed();
    ticker.stop();
    QObject::disconnect(connection);
    std::printf("%d day(s), %d zones: read and drawn in %lld ms (%lld points, %lld drawn), longest event-loop stall "
                "%lld ms\n",
                days, Zones, static_cast<long long>(ms),
                static_cast<long long>(history.shownPoints()->pointCount()),
                static_cast<long long>(history.panel().chart().drawnPointCount()), static_cast<long long>(longestStall));
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    const ProgramFolder folder(dir.path());
    writeDays(folder, 7);
    QFile settings(folder.filePath(QStringLiteral("Telvane2.ini")));
    settings.open(QIODevice::WriteOnly);
    settings.write("[Grafico]\r\nT_Min=10\r\nT_Max=30\r\n");
    settings.close();

    ManualClock clock;
    DailyLog log(folder, clock);
    IniStore ini(folder);
    ini.setCurrentIniName(QStringLiteral("Telvane2.ini"));
    PlantConfig plant;
    for (int z = 0; z < Zones; ++z) {
        Zona zone;
        zone.name = QStringLiteral("Zona %1").arg(z + 1);
        plant.zones.append(zone);
    }
    RecordingPrompts prompts;

    // A week of rounds every five seconds into the live chart's memory.
    const long before = rssKb();
    LiveTrend live;
    const QDateTime start(FirstDay, QTime(0, 0));
    const qint64 startMs = start.toMSecsSinceEpoch();
    for (qint64 round = 0; round < 7LL * 86400 / BaseMisuraSeconds; ++round) {
        const QDateTime at = QDateTime::fromMSecsSinceEpoch(startMs + round * BaseMisuraSeconds * 1000);
        for (int trace = 1; trace <= Zones; ++trace)
            live.addPoint(trace, at, 20 + trace % 3);
        live.roundFinished();
    }
    TrendChart chart;
    chart.resize(1280, 700);
    chart.applySettings(plant.chart, Zones, {}, {});
    chart.setPoints(&live.points());
    chart.redrawNow();
    chart.grab();
    const long after = rssKb();
    std::printf("live chart after 7 days of rounds: %lld points held (%.1f MB of points), resident memory grew "
                "%.1f MB\n",
                static_cast<long long>(live.points().pointCount()), live.points().bytesHeld() / 1048576.0,
                (after - before) / 1024.0);

    {
        QElapsedTimer timer;
        timer.start();
        TrendSet set;
        readDays(log, FirstDay, FirstDay, set);
        std::printf("1 day read alone (no window): %lld ms\n", static_cast<long long>(timer.elapsed()));
    }

    Storico history(log, ini, plant, prompts);
    history.resize(1280, 760);
    history.show();
    QCoreApplication::processEvents();
    showInWindow(history, 1);
    showInWindow(history, 7);

    return 0;
}
