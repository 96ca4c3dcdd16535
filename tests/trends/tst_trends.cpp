// Trend points as the charts meet them: live rounds, day files read back for the history,
// the lines drawn from them, the spreadsheet export, and the chart's keys in the settings.

#include "base/clock.h"
#include "storage/chartsettings.h"
#include "storage/numbertext.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"
#include "trends/chartkeys.h"
#include "trends/csvexport.h"
#include "trends/drawnsegments.h"
#include "trends/historyrange.h"
#include "trends/livetrend.h"
#include "trends/tracecolors.h"

#include <QScopeGuard>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>

using namespace telvane;

namespace {

constexpr qint64 Minute = 60 * 1000;
const QDate Day1(2026, 11, 14);
const QDateTime Start(Day1, QTime(0, 0, 0));

qint64 at(int seconds)
{
    return Start.addSecs(seconds).toMSecsSinceEpoch();
}

std::vector<TrendPoint> ramp(int count, qint64 stepMs)
{
    std::vector<TrendPoint> points;
    for (int i = 0; i < count; ++i)
        points.push_back({i * stepMs, static_cast<float>(i % 7)});
    return points;
}

std::pair<double, double> clamped(double min, double max)
{
    const ValueRange range = clampedValueRange({min, max}, {-200, 200});
    return {range.min, range.max};
}

} // namespace

class TestTrends : public QObject
{
    Q_OBJECT

private slots:
    // A zone that did not answer breaks its line; the statistics and the cursor leave the
    // gaps out, and the cursor shows nothing where the trace stopped long before.
    void liveRoundsWithFailedReadings()
    {
        LiveTrend live;
        live.addPoint(1, Start.addSecs(-60), -50.0);
        live.addPoint(1, Start, 20.5);
        live.addPoint(1, Start.addSecs(60), InvalidValue);
        live.addPoint(1, Start.addSecs(120), std::nan(""));
        live.addPoint(1, Start.addSecs(180), 21.0);
        live.addPoint(1, Start.addSecs(240), 100.0);
        live.roundFinished();

        const TrendSeries &trace = live.points().trace(1);
        QCOMPARE(trace.points().size(), 6u);
        QVERIFY(trace.points()[2].isGap());
        QVERIFY(trace.points()[3].isGap());
        const TrendStats stats = trace.stats(at(0), at(180));
        QCOMPARE(stats.count, 2);
        QCOMPARE(stats.min, 20.5f);
        QCOMPARE(stats.max, 21.0f);
        QCOMPARE(stats.mean, 20.75);

        QCOMPARE(trace.valueAt(at(-61), 2 * Minute), std::nullopt);
        QCOMPARE(trace.valueAt(at(30), 2 * Minute), std::optional<float>(20.5));
        QCOMPARE(trace.valueAt(at(90), 2 * Minute), std::nullopt);
        QCOMPARE(trace.valueAt(at(180), 2 * Minute), std::optional<float>(21));
        QCOMPARE(trace.valueAt(at(240 + 180), 2 * Minute), std::nullopt);
    }

    // After a restart the chart starts from the last day logged; then rounds every five
    // seconds for three days: the chart keeps the last day only, its memory stops growing
    // once the first window is full, and a shorter window forgets at once.
    void windowSlidesAndMemoryStaysBounded()
    {
        SettingsFolder dir;
        dir.write("Dati/2026_11_12.csv", "12/11/2026 23:00:00;1;\r\n");
        dir.write("Dati/2026_11_13.csv", "13/11/2026 01:00:00;2;\r\n13/11/2026 23:00:00;3;\r\n");
        ManualClock clock(Start);
        LiveTrend live;
        live.loadLogged(DailyLog(dir.folder(), clock), Start);
        QCOMPARE(live.points().trace(1).points().front().value, 2.0f);
        QCOMPARE(live.points().trace(1).size(), 2);
        int redraws = 0;
        live.onRound = [&redraws] { ++redraws; };
        constexpr int RoundsPerDay = 24 * 60 * 12;
        qsizetype bytesAfterFirstDay = 0;
        for (int i = 0; i < 3 * RoundsPerDay; ++i) {
            for (int trace = 1; trace <= 3; ++trace)
                live.addPoint(trace, Start.addSecs(5 * i), i % 50);
            live.roundFinished();
            if (i == 0)
                QCOMPARE(live.points().trace(1).size(), 3);
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

        live.setWindowMs(30 * Minute);
        QCOMPARE(live.points().trace(1).size(), 30 * 12 + 1);
        QCOMPARE(live.points().trace(1).points().front().ms, last.addSecs(-30 * 60).toMSecsSinceEpoch());
    }

    // Gaps split the line; a range that starts and ends between samples still draws to
    // the edges from the samples just outside it.
    void drawnLines()
    {
        const std::vector<TrendPoint> gapped = {{0, 1}, {10, 2}, {20, TrendGap}, {30, TrendGap}, {40, 5}, {50, 6}};
        auto segments = drawnSegments(gapped, 0, 50, 100);
        QCOMPARE(segments.size(), 2u);
        QCOMPARE(segments[0].size(), 2u);
        QCOMPARE(segments[1].front().ms, 40);
        QCOMPARE(segments[1].back().value, 6.0f);

        segments = drawnSegments(ramp(10, 100), 250, 550, 100);
        QCOMPARE(segments.size(), 1u);
        QCOMPARE(segments[0].front().ms, 200);
        QCOMPARE(segments[0].back().ms, 600);
        QCOMPARE(segments[0].size(), 5u);

        // A day at five-second rounds on a chart 800 pixels wide: at most four samples per
        // column are drawn, in time order, every peak and trough is still there, and the
        // reduction does not bridge a gap either.
        auto points = ramp(17280, 5000);
        points[5000].value = 250;
        points[12000].value = -40;
        const qint64 to = points.back().ms;
        segments = drawnSegments(points, 0, to, 800);
        QCOMPARE(segments.size(), 1u);
        const auto &drawn = segments[0];
        QVERIFY(drawn.size() <= 4 * 801);
        QVERIFY(std::is_sorted(drawn.begin(), drawn.end(),
                               [](const TrendPoint &a, const TrendPoint &b) { return a.ms < b.ms; }));
        const auto [low, high] = std::minmax_element(drawn.begin(), drawn.end(),
                                                     [](const TrendPoint &a, const TrendPoint &b) { return a.value < b.value; });
        QCOMPARE(high->value, 250.0f);
        QCOMPARE(high->ms, points[5000].ms);
        QCOMPARE(low->value, -40.0f);
        QCOMPARE(drawn.front().ms, 0);
        QCOMPARE(drawn.back().ms, to);

        for (int i = 4000; i < 4010; ++i)
            points[i].value = TrendGap;
        segments = drawnSegments(points, 0, to, 200);
        QCOMPARE(segments.size(), 2u);
        QVERIFY(segments[0].back().ms < 4000 * 5000);
        QVERIFY(segments[1].front().ms >= 4010 * 5000);
        QVERIFY(segments[0].size() + segments[1].size() <= 4 * 202);
    }

    // Four days asked for: one whole, one damaged on its third line, one never logged, one
    // of odd numbers.
    void historyReadsEachDayByItsOwnFile()
    {
        SettingsFolder dir;
        dir.write("Dati/2026_11_14.csv", "14/11/2026 10:00:00;20.5;18,0;\r\n14/11/2026 10:01:00;21.0;-99999.0;\r\n");
        dir.write("Dati/2026_11_15.csv", "15/11/2026 00:00:05;1;2;\r\n15/11/2026 00:00:10;3;4;\r\n"
                                         "15/11/2026 00:00:15;5;6\r\n15/11/2026 00:00:20;7;8;\r\n");
        // The fourth day holds every shape of number a day file may hold, one per zone.
        const QStringList fields = {"-0,25", "+3", "7.", ".5", "-0.0", "123456789012.345", "1234567890123456.5", " 4.5", "0.1"};
        dir.write("Dati/2026_11_17.csv", "17/11/2026 10:00:00;" + fields.join(';').toLatin1() + ";\r\n");
        ManualClock clock(QDateTime(Day1, QTime(12, 0)));
        const DailyLog log(dir.folder(), clock);
        TrendSet set;
        std::atomic<int> progress = 0;

        const QList<DayResult> days = readDays(log, Day1, Day1.addDays(3), set, &progress);

        QCOMPARE(days.size(), 4);
        QCOMPARE(days[0].outcome, DayOutcome::Read);
        QCOMPARE(days[1].outcome, DayOutcome::Damaged);
        QCOMPARE(days[2].outcome, DayOutcome::Missing);
        QCOMPARE(days[2].date, Day1.addDays(2));
        QCOMPARE(progress.load(), 1000);

        // Zone 1: two points of the first day, three of the damaged one (its third line
        // gave its first value before the damage), one of the fourth; zone 2 one fewer of
        // the damaged day.
        const auto zone1 = set.trace(1).points();
        QCOMPARE(zone1.size(), 6u);
        QCOMPARE(zone1[4].value, 5.0f);
        QCOMPARE(zone1[4].ms, QDateTime(Day1.addDays(1), QTime(0, 0, 15)).toMSecsSinceEpoch());
        const auto zone2 = set.trace(2).points();
        QCOMPARE(zone2.size(), 5u);
        QCOMPARE(zone2[0].value, 18.0f);
        QVERIFY(zone2[1].isGap());
        // Each number as the general number parser reads it, to the bit.
        QCOMPARE(days[3].outcome, DayOutcome::Read);
        QCOMPARE(set.usedTraces(), fields.size());
        for (int i = 0; i < fields.size(); ++i) {
            const float read = set.trace(i + 1).points().back().value;
            const float expected = parseSingle(fields[i]).value_or(0);
            QVERIFY2(std::memcmp(&read, &expected, sizeof(float)) == 0,
                     qPrintable(fields[i] + QStringLiteral(" read as ") + QString::number(read, 'g', 9)));
        }

        // A backwards range reads nothing; a long one stops at the most days shown.
        QVERIFY(readDays(log, Day1, Day1.addDays(-1), set).isEmpty());
        QCOMPARE(readDays(log, Day1, Day1.addDays(400), set).size(), MaxHistoryDays);
        // The calendar marks the days that have a file; other files in the folder are not days.
        for (const char *name : {"Dati/2026_11_30.csv", "Dati/2026_12_01.csv", "Dati/2026_11_31.csv", "Dati/note.csv",
                                 "Dati/2026_11_02.txt"})
            dir.write(name, "");
        QCOMPARE(daysWithLog(dir.folder(), QDate(2026, 11, 1), QDate(2026, 11, 30)),
                 (QSet<QDate>{Day1, Day1.addDays(1), Day1.addDays(3), QDate(2026, 11, 30)}));
        QVERIFY(daysWithLog(ProgramFolder(dir.path("absent")), QDate(2026, 11, 1), QDate(2026, 11, 30)).isEmpty());
    }

    // Each line's time is the instant the local rules give, also on the days the clock
    // changes (the plant's own zone, whatever the machine running the tests).
    void historyTimesAcrossClockChanges()
    {
        const QByteArray zone = qgetenv("TZ");
        const bool hadZone = qEnvironmentVariableIsSet("TZ");
        qputenv("TZ", "Europe/Rome");
        tzset();
        const auto restore = qScopeGuard([&] {
            hadZone ? qputenv("TZ", zone) : qunsetenv("TZ");
            tzset();
        });
        const std::pair<QDate, QStringList> days[] = {
            {QDate(2026, 10, 25), {"00:59:59", "01:59:00", "02:00:00", "02:30:00", "03:00:00", "03:30:00", "23:59:59"}},
            {QDate(2026, 3, 29), {"01:59:59", "03:00:00", "03:00:05", "12:00:00"}}};
        for (const auto &[day, times] : days) {
            SettingsFolder dir;
            QByteArray text;
            for (const QString &time : times)
                text += day.toString("dd/MM/yyyy ").toLatin1() + time.toLatin1() + ";1;\r\n";
            dir.write("Dati/" + dailyLogFileName(day), text);
            ManualClock clock(QDateTime(day, QTime(12, 0)));
            TrendSet set;
            readDays(DailyLog(dir.folder(), clock), day, day, set);
            const auto points = set.trace(1).points();
            QCOMPARE(points.size(), size_t(times.size()));
            for (int i = 0; i < times.size(); ++i)
                QCOMPARE(QDateTime::fromMSecsSinceEpoch(points[i].ms), QDateTime(day, QTime::fromString(times[i], "HH:mm:ss")));
        }
    }

    // Zone 1 every minute with a failed reading; zone 2 joins a minute late; zone 3 is
    // configured and never logged. The lines follow the locale and the shown range only;
    // the file opens in a spreadsheet with its accents.
    void csvExport()
    {
        TrendSet set;
        set.addPoint(1, at(0), 21.3f);
        set.addPoint(1, at(60), InvalidValue);
        set.addPoint(1, at(120), 1234.5f);
        set.addPoint(2, at(60), -0.125f);
        set.addPoint(2, at(120), 19.0f);
        const QLocale italian(QLocale::Italian, QLocale::Italy);
        const QStringList names{"Soggiorno", "Cucina; nord"};
        QCOMPARE(csvExportLines(set, names, 3, at(0), at(120), italian),
                 (QStringList{"Data e ora;Soggiorno;\"Cucina; nord\";Zona 3", "14/11/2026 00:00:00;21,3;;",
                              "14/11/2026 00:01:00;;-0,125;", "14/11/2026 00:02:00;1234,5;19;"}));
        QCOMPARE(csvExportLines(set, names, 3, at(0), at(120), QLocale(QLocale::English, QLocale::UnitedStates)),
                 (QStringList{"Data e ora,Soggiorno,Cucina; nord,Zona 3", "14/11/2026 00:00:00,21.3,,",
                              "14/11/2026 00:01:00,,-0.125,", "14/11/2026 00:02:00,1234.5,19,"}));
        QCOMPARE(csvExportLines(set, {"A", "B"}, 2, at(30), at(90), italian),
                 (QStringList{"Data e ora;A;B", "14/11/2026 00:01:00;;-0,125"}));

        SettingsFolder dir;
        QVERIFY(writeCsvFile(dir.path("esportazione.csv"), {"Data e ora;Zona è", "14/11/2026 10:00:00;1"}));
        QCOMPARE(dir.read("esportazione.csv"),
                 QByteArray("\xEF\xBB\xBF" "Data e ora;Zona \xC3\xA8\r\n14/11/2026 10:00:00;1\r\n"));
        QVERIFY(!writeCsvFile(dir.path("absent/esportazione.csv"), {"x"}));
    }

    // A colour picked on screen goes to the file in blue-green-red order and the chart
    // reads back the same colour; the stored forms old files hold show as meant. A zoom
    // or scroll never leaves the absolute limits; the displayed limits and the
    // information box's place are written back, the rest of the file kept.
    void chartKeys()
    {
        SettingsFolder dir;
        IniStore store = dir.store("[Grafico]\r\nT_Max=50\r\nInfo_X=450\r\nInfo_Y=900\r\n"
                                   "[Zona 02]\r\nNome=Cucina\r\nColore=&HFF\r\n");
        QCOMPARE(readInfoPosition(store).x, 450);
        // Never moved: a little inside the plot's corner, not over its axis labels.
        QCOMPARE(readInfoPosition(dir.store("[Grafico]\r\n", QStringLiteral("Telvane1.ini"))).y, 1000);
        QVERIFY(writeTraceColor(store, 1, storedColor(0x12, 0x34, 0x56)));
        QVERIFY(writeChartColor(store, "Colore_Sfondo", storedColor(0, 0, 0x80)));
        QVERIFY(writeValueLimits(store, -12.5, 37));
        QVERIFY(writeInfoPosition(store, {150, 300}));
        const QByteArray file = dir.read(SettingsFolder::Industrial);
        QVERIFY2(file.contains("[Zona 02]\r\nNome=Cucina\r\nColore=&H563412\r\n"), file.constData());
        QVERIFY2(file.contains("T_Max=37\r\n") && file.contains("T_Min=-12.5\r\n"), file.constData());
        QCOMPARE(readInfoPosition(store).y, 300);
        const ChartSettings chart = LoadChartSettings(store, {"Soggiorno", "Cucina"});
        QCOMPARE(screenColor(chart.traceColors[1]), (ScreenColor{0x12, 0x34, 0x56}));
        QCOMPARE(chart.background, 0x800000u);
        QCOMPARE(chart.displayMin, -12.5f);

        QCOMPARE(screenColor(0x000000FFu), (ScreenColor{255, 0, 0}));
        QCOMPARE(screenColor(0x00FF0000u), (ScreenColor{0, 0, 255}));
        QCOMPARE(screenColor(0xFFFF80FFu), (ScreenColor{255, 128, 0})); // widened to four digits
        QCOMPARE(screenColor(0xFFFFFF00u), (ScreenColor{0, 255, 0}));
        QCOMPARE(screenColor(0x80000008u), (ScreenColor{0, 0, 0, SystemWindowTextIndex}));

        QCOMPARE(clamped(190, 230), std::pair(160.0, 200.0));
        QCOMPARE(clamped(-250, -150), std::pair(-200.0, -100.0));
        QCOMPARE(clamped(-500, 500), std::pair(-200.0, 200.0));
        QCOMPARE(clamped(30, 10), std::pair(10.0, 30.0));
        QCOMPARE(clamped(20, 20), std::pair(20.0, 21.0));
    }
};

QTEST_GUILESS_MAIN(TestTrends)
#include "tst_trends.moc"
