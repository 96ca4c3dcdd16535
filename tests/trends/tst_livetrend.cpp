#include "trends/livetrend.h"

#include "base/clock.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"

#include <QTest>

#include <cmath>

using namespace telvane;

namespace {

constexpr qint64 Minute = 60 * 1000;
const QDateTime Start(QDate(2026, 11, 14), QTime(0, 0, 0));

// One measurement round of `zones` zones at `at`, each zone reading `value`.
void round(LiveTrend &live, const QDateTime &at, int zones, double value)
{
    for (int trace = 1; trace <= zones; ++trace)
        live.addPoint(trace, at, value);
    live.roundFinished();
}

} // namespace

class TestLiveTrend : public QObject
{
    Q_OBJECT

private slots:
    // A zone that did not answer breaks its line: no point anywhere near the marker.
    void failedReadingsAreGaps()
    {
        LiveTrend live;
        live.addPoint(1, Start.addSecs(-60), -50.0);
        live.addPoint(1, Start, 20.5);
        live.addPoint(1, Start.addSecs(60), InvalidValue);
        live.addPoint(1, Start.addSecs(120), std::nan(""));
        live.addPoint(1, Start.addSecs(180), 21.0);
        live.addPoint(1, Start.addSecs(240), 100.0);
        live.roundFinished();

        const auto points = live.points().trace(1).points();
        QCOMPARE(points.size(), 6u);
        QVERIFY(points[2].isGap());
        QVERIFY(points[3].isGap());
        // The statistics of the visible range only, gaps left out.
        const TrendStats stats = live.points().trace(1).stats(Start.toMSecsSinceEpoch(), Start.addSecs(180).toMSecsSinceEpoch());
        QCOMPARE(stats.count, 2);
        QCOMPARE(stats.min, 20.5f);
        QCOMPARE(stats.max, 21.0f);
        QCOMPARE(stats.mean, 20.75);
    }

    // Rounds every five seconds for three days: the chart keeps the last day only and its
    // memory stops growing once the first window is full.
    void windowSlidesAndMemoryStaysBounded()
    {
        LiveTrend live;
        int redraws = 0;
        live.onRound = [&redraws] { ++redraws; };
        constexpr int RoundsPerDay = 24 * 60 * 12;
        qsizetype bytesAfterFirstDay = 0;
        for (int i = 0; i < 3 * RoundsPerDay; ++i) {
            round(live, Start.addSecs(5 * i), 3, i % 50);
            if (i == 2 * RoundsPerDay)
                bytesAfterFirstDay = live.points().bytesHeld();
        }
        QCOMPARE(redraws, 3 * RoundsPerDay);
        const QDateTime last = Start.addSecs(5LL * (3 * RoundsPerDay - 1));
        QCOMPARE(live.points().lastMs(), last.toMSecsSinceEpoch());
        QCOMPARE(live.points().firstMs(), last.addDays(-1).toMSecsSinceEpoch());
        QCOMPARE(live.points().trace(2).size(), RoundsPerDay + 1);
        QCOMPARE(live.points().usedTraces(), 3);
        QCOMPARE(live.points().bytesHeld(), bytesAfterFirstDay);
    }

    void shorterWindowForgetsAtOnce()
    {
        LiveTrend live;
        for (int i = 0; i <= 120; ++i)
            round(live, Start.addSecs(60 * i), 1, i);
        live.setWindowMs(30 * Minute);
        QCOMPARE(live.points().trace(1).size(), 31);
        QCOMPARE(live.points().trace(1).points().front().value, 90.0f);
    }

    // After a restart the chart starts from the last day logged, not from nothing.
    void startsFromTheLoggedDay()
    {
        SettingsFolder dir;
        dir.write("Dati/2026_11_13.csv", "13/11/2026 09:00:00;1;\r\n13/11/2026 11:00:00;2;\r\n");
        dir.write("Dati/2026_11_14.csv", "14/11/2026 08:00:00;3;\r\n");
        const QDateTime now(QDate(2026, 11, 14), QTime(10, 0));
        ManualClock clock(now);
        LiveTrend live;
        live.loadLogged(DailyLog(dir.folder(), clock), now);
        const auto points = live.points().trace(1).points();
        QCOMPARE(points.size(), 2u);
        QCOMPARE(points[0].value, 2.0f);
        live.addPoint(1, now, 4);
        live.roundFinished();
        QCOMPARE(live.points().trace(1).size(), 3);
    }

    // What the cursor shows under the mouse: the last reading, unless the trace had a gap
    // or stopped long before.
    void valueUnderTheCursor()
    {
        TrendSeries series;
        const qint64 t0 = Start.toMSecsSinceEpoch();
        series.append(t0, 10);
        series.append(t0 + Minute, 11);
        series.append(t0 + 2 * Minute, TrendGap);
        series.append(t0 + 3 * Minute, 13);

        QCOMPARE(series.valueAt(t0 - 1, 2 * Minute), std::nullopt);
        QCOMPARE(series.valueAt(t0 + Minute + 30000, 2 * Minute), std::optional<float>(11));
        QCOMPARE(series.valueAt(t0 + 2 * Minute + 30000, 2 * Minute), std::nullopt);
        QCOMPARE(series.valueAt(t0 + 3 * Minute, 2 * Minute), std::optional<float>(13));
        QCOMPARE(series.valueAt(t0 + 10 * Minute, 2 * Minute), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(TestLiveTrend)
#include "tst_livetrend.moc"
