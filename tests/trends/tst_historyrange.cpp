#include "trends/historyrange.h"

#include "base/clock.h"
#include "support/settingsfixture.h"

using namespace telvane;

namespace {

const QDate Day1(2026, 11, 14);

} // namespace

class TestHistoryRange : public QObject
{
    Q_OBJECT

private slots:
    // Three days asked for: one whole, one damaged on its third line, one never logged.
    void rangeReadsEachDayByItsOwnFile()
    {
        SettingsFolder dir;
        dir.write("Dati/2026_11_14.csv", "14/11/2026 10:00:00;20.5;18,0;\r\n14/11/2026 10:01:00;21.0;-99999.0;\r\n");
        dir.write("Dati/2026_11_15.csv", "15/11/2026 00:00:05;1;2;\r\n15/11/2026 00:00:10;3;4;\r\n"
                                         "15/11/2026 00:00:15;5;6\r\n15/11/2026 00:00:20;7;8;\r\n");
        ManualClock clock(QDateTime(Day1, QTime(12, 0)));
        const DailyLog log(dir.folder(), clock);
        TrendSet set;
        std::atomic<int> progress = 0;

        const QList<DayResult> days = readDays(log, Day1, Day1.addDays(2), set, &progress);

        QCOMPARE(days.size(), 3);
        QCOMPARE(days[0].outcome, DayOutcome::Read);
        QCOMPARE(days[1].outcome, DayOutcome::Damaged);
        QCOMPARE(days[2].outcome, DayOutcome::Missing);
        QCOMPARE(days[2].date, Day1.addDays(2));
        QCOMPARE(progress.load(), 1000);

        // Zone 1: two points of the first day, three of the damaged one (its third line
        // gave its first value before the damage).
        const auto zone1 = set.trace(1).points();
        QCOMPARE(zone1.size(), 5u);
        QCOMPARE(zone1[4].value, 5.0f);
        QCOMPARE(zone1[4].ms, QDateTime(Day1.addDays(1), QTime(0, 0, 15)).toMSecsSinceEpoch());
        const auto zone2 = set.trace(2).points();
        QCOMPARE(zone2.size(), 4u);
        QCOMPARE(zone2[0].value, 18.0f);
        QVERIFY(zone2[1].isGap());
        QCOMPARE(set.usedTraces(), 2);
    }

    // The calendar marks the days that have a file; other files in the folder are not days.
    void daysThatHaveAFile()
    {
        SettingsFolder dir;
        for (const char *name : {"Dati/2026_11_01.csv", "Dati/2026_11_30.csv", "Dati/2026_12_01.csv",
                                 "Dati/2026_11_31.csv", "Dati/note.csv", "Dati/2026_11_02.txt"})
            dir.write(name, "");
        const QSet<QDate> days = daysWithLog(dir.folder(), QDate(2026, 11, 1), QDate(2026, 11, 30));
        QCOMPARE(days, (QSet<QDate>{QDate(2026, 11, 1), QDate(2026, 11, 30)}));
        QVERIFY(daysWithLog(ProgramFolder(dir.path("absent")), QDate(2026, 11, 1), QDate(2026, 11, 30)).isEmpty());
    }

    void rangeLimits()
    {
        SettingsFolder dir;
        ManualClock clock(QDateTime(Day1, QTime(12, 0)));
        const DailyLog log(dir.folder(), clock);
        TrendSet set;
        QVERIFY(readDays(log, Day1, Day1.addDays(-1), set).isEmpty());
        QCOMPARE(readDays(log, Day1, Day1.addDays(400), set).size(), MaxHistoryDays);
    }
};

QTEST_GUILESS_MAIN(TestHistoryRange)
#include "tst_historyrange.moc"
