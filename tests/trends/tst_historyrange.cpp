#include "trends/historyrange.h"

#include "base/clock.h"
#include "storage/numbertext.h"
#include "support/settingsfixture.h"

#include <QScopeGuard>

#include <cstring>
#include <ctime>

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

    // Every shape of number a day file may hold reads as the general number parser reads it.
    void valuesReadAsTheNumberParser()
    {
        const QStringList fields = {"-0,25", "+3", "7.", ".5", "-0.0", "123456789012.345", "1234567890123456.5", " 4.5", "0.1"};
        QByteArray line = "14/11/2026 10:00:00;";
        for (const QString &field : fields)
            line += field.toLatin1() + ';';
        SettingsFolder dir;
        dir.write("Dati/2026_11_14.csv", line + "\r\n");
        ManualClock clock(QDateTime(Day1, QTime(12, 0)));
        TrendSet set;
        QCOMPARE(readDays(DailyLog(dir.folder(), clock), Day1, Day1, set).value(0).outcome, DayOutcome::Read);
        for (int i = 0; i < fields.size(); ++i) {
            const auto points = set.trace(i + 1).points();
            QVERIFY2(points.size() == 1, qPrintable(fields[i]));
            const float expected = parseSingle(fields[i]).value_or(0);
            QVERIFY2(std::memcmp(&points[0].value, &expected, sizeof(float)) == 0,
                     qPrintable(fields[i] + QStringLiteral(" read as ") + QString::number(points[0].value, 'g', 9)));
        }
    }

    // Each line's time is the instant the local rules give, also on the days the clock
    // changes (the plant's own zone, whatever the machine running the tests).
    void timesAcrossClockChanges_data()
    {
        QTest::addColumn<QDate>("day");
        QTest::addColumn<QStringList>("times");
        QTest::newRow("back in autumn") << QDate(2026, 10, 25)
                                        << QStringList{"00:59:59", "01:59:00", "02:00:00", "02:30:00", "03:00:00",
                                                       "03:30:00", "23:59:59"};
        QTest::newRow("forward in spring") << QDate(2026, 3, 29)
                                           << QStringList{"01:59:59", "03:00:00", "03:00:05", "12:00:00"};
    }

    void timesAcrossClockChanges()
    {
        QFETCH(QDate, day);
        QFETCH(QStringList, times);
        const QByteArray zone = qgetenv("TZ");
        const bool hadZone = qEnvironmentVariableIsSet("TZ");
        qputenv("TZ", "Europe/Rome");
        tzset();
        const auto restore = qScopeGuard([&] {
            hadZone ? qputenv("TZ", zone) : qunsetenv("TZ");
            tzset();
        });
        SettingsFolder dir;
        QByteArray text;
        for (const QString &time : times)
            text += day.toString("dd/MM/yyyy ").toLatin1() + time.toLatin1() + ";1;\r\n";
        dir.write("Dati/" + DailyLogFileName(day), text);
        ManualClock clock(QDateTime(day, QTime(12, 0)));
        TrendSet set;
        readDays(DailyLog(dir.folder(), clock), day, day, set);
        const auto points = set.trace(1).points();
        QCOMPARE(points.size(), size_t(times.size()));
        for (int i = 0; i < times.size(); ++i) {
            QCOMPARE(QDateTime::fromMSecsSinceEpoch(points[i].ms),
                     QDateTime(day, QTime::fromString(times[i], "HH:mm:ss")));
        }
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
