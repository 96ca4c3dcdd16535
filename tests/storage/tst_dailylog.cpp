#include "storage/dailylog.h"

#include "base/clock.h"
#include "storage/valuetables.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Records what the history chart would receive, one "trace|date-time|value" per point.
class RecordingSink final : public DailyLogSink
{
public:
    void addPoint(int trace, const QDateTime &time, float value) override
    {
        points << QStringLiteral("%1|%2|%3").arg(trace).arg(time.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"))).arg(value);
    }
    void redraw() override { ++redraws; }

    QStringList points;
    int redraws = 0;
};

} // namespace

class TestDailyLog : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString dataPath(const QString &fileName) const { return m_dir.path() + QStringLiteral("/Dati/") + fileName; }

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        QDir(m_dir.path()).removeRecursively();
        QVERIFY(QDir().mkpath(m_dir.path() + QStringLiteral("/Dati")));
    }

    void fileName_data()
    {
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QString>("expected");
        QTest::newRow("two-digit day and month") << QDate(2026, 11, 14) << "2026_11_14.csv";
        QTest::newRow("leading zeros") << QDate(2027, 1, 5) << "2027_01_05.csv";
    }
    void fileName()
    {
        QFETCH(QDate, date);
        QFETCH(QString, expected);
        QCOMPARE(DailyLogFileName(date), expected);
    }

    void line_data()
    {
        QTest::addColumn<QDateTime>("time");
        QTest::addColumn<QList<float>>("values");
        QTest::addColumn<QList<int>>("decimals");
        QTest::addColumn<QString>("expected");
        const QDateTime evening(QDate(2026, 11, 14), QTime(22, 20, 9));
        QTest::newRow("three zones") << evening << QList<float>{21.5f, 19.0f, 20.25f} << QList<int>{1, 1, 1}
                                     << "14/11/2026 22:20:09;21.5;19.0;20.3;";
        QTest::newRow("each zone its decimals") << evening << QList<float>{21.0f, 7.125f, -3.5f, 1.0f}
                                                << QList<int>{0, 3, 2, 1} << "14/11/2026 22:20:09;21;7.125;-3.50;1.0;";
        QTest::newRow("zone that did not answer") << evening << QList<float>{InvalidValue} << QList<int>{1}
                                                  << "14/11/2026 22:20:09;-99999.0;";
        QTest::newRow("leading zeros in date and time")
            << QDateTime(QDate(2027, 1, 5), QTime(7, 3, 0)) << QList<float>{5.0f} << QList<int>{1} << "05/01/2027 07:03:00;5.0;";
    }
    void line()
    {
        QFETCH(QDateTime, time);
        QFETCH(QList<float>, values);
        QFETCH(QList<int>, decimals);
        QFETCH(QString, expected);
        QList<LoggedValue> logged;
        for (qsizetype n = 0; n < values.size(); ++n)
            logged.append({values[n], decimals[n]});
        QCOMPARE(dailyLogLine(time, logged), expected);
    }

    void appendAddsCrLfAndKeepsEarlierLines()
    {
        ManualClock clock(QDateTime(QDate(2026, 11, 14), QTime(10, 0)));
        DailyLog log(ProgramFolder(m_dir.path()), clock);
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("14/11/2026 10:00:00;21.5;")));
        clock.advance(60000);
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("14/11/2026 10:01:00;21.6;")));
        QCOMPARE(readAll(dataPath(QStringLiteral("2026_11_14.csv"))),
                 QByteArray("14/11/2026 10:00:00;21.5;\r\n14/11/2026 10:01:00;21.6;\r\n"));
    }

    void midnightStartsTheNewDaysFile()
    {
        ManualClock clock(QDateTime(QDate(2026, 12, 31), QTime(23, 59, 59)));
        DailyLog log(ProgramFolder(m_dir.path()), clock);
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("old")));
        clock.advance(1000);
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("new")));
        QCOMPARE(readAll(dataPath(QStringLiteral("2026_12_31.csv"))), QByteArray("old\r\n"));
        QCOMPARE(readAll(dataPath(QStringLiteral("2027_01_01.csv"))), QByteArray("new\r\n"));
    }

    void failedAppendLosesOnlyThatLine()
    {
        ManualClock clock(QDateTime(QDate(2026, 3, 1), QTime(12, 0)));
        DailyLog log(ProgramFolder(m_dir.path()), clock);
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("first")));
        // Something in the way of the next day's file.
        QVERIFY(QDir().mkpath(dataPath(QStringLiteral("2026_03_02.csv"))));
        clock.advance(24 * 3600 * 1000);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("2026_03_02.csv.*lost")));
        QVERIFY(!log.AppendDailyLogLine(QStringLiteral("lost")));
        clock.setNow(QDateTime(QDate(2026, 3, 1), QTime(12, 2)));
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("third")));
        QCOMPARE(readAll(dataPath(QStringLiteral("2026_03_01.csv"))), QByteArray("first\r\nthird\r\n"));
    }

    void removedFolderIsMadeAgain()
    {
        QVERIFY(QDir(m_dir.path() + QStringLiteral("/Dati")).removeRecursively());
        ManualClock clock(QDateTime(QDate(2026, 3, 1), QTime(12, 0)));
        DailyLog log(ProgramFolder(m_dir.path()), clock);
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("kept")));
        QCOMPARE(readAll(dataPath(QStringLiteral("2026_03_01.csv"))), QByteArray("kept\r\n"));
    }

    void reading_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("complete");
        QTest::addColumn<QStringList>("points");
        const QString t1 = QStringLiteral("|14/11/2026 22:20:09|");
        const QString t2 = QStringLiteral("|14/11/2026 22:21:09|");

        QTest::newRow("empty file") << QByteArray() << true << QStringList();
        QTest::newRow("two lines, CR LF") << QByteArray("14/11/2026 22:20:09;21.5;19;20.3;\r\n14/11/2026 22:21:09;21.6;19.1;20.4;\r\n")
                                          << true
                                          << QStringList{"1" + t1 + "21.5", "2" + t1 + "19", "3" + t1 + "20.3",
                                                         "1" + t2 + "21.6", "2" + t2 + "19.1", "3" + t2 + "20.4"};
        QTest::newRow("LF and comma") << QByteArray("14/11/2026 22:20:09;21,5;\n14/11/2026 22:21:09;-3,25;\n") << true
                                      << QStringList{"1" + t1 + "21.5", "1" + t2 + "-3.25"};
        QTest::newRow("last line without its line end") << QByteArray("14/11/2026 22:20:09;21.5;") << true
                                                        << QStringList{"1" + t1 + "21.5"};
        QTest::newRow("zones added during the day")
            << QByteArray("14/11/2026 22:20:09;1;\r\n14/11/2026 22:21:09;1;2;\r\n") << true
            << QStringList{"1" + t1 + "1", "1" + t2 + "1", "2" + t2 + "2"};
        QTest::newRow("date without a value") << QByteArray("14/11/2026 22:20:09;\r\n") << false << QStringList();
        QTest::newRow("empty line in the middle")
            << QByteArray("14/11/2026 22:20:09;1;\r\n\r\n14/11/2026 22:21:09;2;\r\n") << false << QStringList{"1" + t1 + "1"};
        QTest::newRow("empty line at the end") << QByteArray("14/11/2026 22:20:09;1;\r\n\r\n") << false
                                               << QStringList{"1" + t1 + "1"};
        QTest::newRow("last value without its ;") << QByteArray("14/11/2026 22:20:09;1;\r\n14/11/2026 22:21:09;2;3\r\n")
                                                  << false << QStringList{"1" + t1 + "1", "1" + t2 + "2"};
        QTest::newRow("blank after the last ;") << QByteArray("14/11/2026 22:20:09;1; \r\n") << false
                                                << QStringList{"1" + t1 + "1"};
        QTest::newRow("value that is no number") << QByteArray("14/11/2026 22:20:09;1;x;3;\r\n") << false
                                                 << QStringList{"1" + t1 + "1"};
        QTest::newRow("empty value") << QByteArray("14/11/2026 22:20:09;;3;\r\n") << false << QStringList();
        QTest::newRow("value beyond a float") << QByteArray("14/11/2026 22:20:09;1" + QByteArray(45, '0') + ";\r\n")
                                              << false << QStringList();
        QTest::newRow("line without ;") << QByteArray("14/11/2026 22:20:09\r\n") << false << QStringList();
        QTest::newRow("date that is no date") << QByteArray("31/02/2026 22:20:09;1;\r\n") << false << QStringList();
        QTest::newRow("date in another order") << QByteArray("2026-11-14 22:20:09;1;\r\n") << false << QStringList();
        QTest::newRow("ten-megabyte line")
            << QByteArray("14/11/2026 22:20:09;") + QByteArray("1;").repeated(5 * 1024 * 1024) + "\r\n" << false
            << QStringList();
        QTest::newRow("binary garbage") << QByteArray("\x00\xff;\x01;\r\n\xfe\x80", 10).repeated(1000) << false
                                        << QStringList();
    }
    void reading()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, complete);
        QFETCH(QStringList, points);
        {
            QFile file(dataPath(QStringLiteral("2026_11_14.csv")));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        ManualClock clock;
        const DailyLog log(ProgramFolder(m_dir.path()), clock);
        RecordingSink sink;
        if (!complete)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("2026_11_14.csv.*damaged")));
        QCOMPARE(log.ReadDailyLog(QStringLiteral("2026_11_14.csv"), sink), complete);
        QCOMPARE(sink.points, points);
        QCOMPARE(sink.redraws, complete ? 1 : 0);
    }

    void missingFileIsNotRead()
    {
        ManualClock clock;
        const DailyLog log(ProgramFolder(m_dir.path()), clock);
        RecordingSink sink;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("2020_01_01.csv")));
        QVERIFY(!log.ReadDailyLog(QStringLiteral("2020_01_01.csv"), sink));
        QVERIFY(sink.points.isEmpty());
    }

    void writtenLinesReadBack()
    {
        ManualClock clock(QDateTime(QDate(2026, 11, 14), QTime(22, 20, 9)));
        DailyLog log(ProgramFolder(m_dir.path()), clock);
        const QList<LoggedValue> first{{21.5f, 1}, {InvalidValue, 1}, {7.125f, 3}};
        QVERIFY(log.AppendDailyLogLine(dailyLogLine(clock.now(), first)));
        clock.advance(60000);
        const QList<LoggedValue> second{{22.0f, 0}};
        QVERIFY(log.AppendDailyLogLine(dailyLogLine(clock.now(), second)));

        RecordingSink sink;
        QVERIFY(log.ReadDailyLog(DailyLogFileName(clock.now().date()), sink));
        QCOMPARE(sink.points, (QStringList{"1|14/11/2026 22:20:09|21.5", "2|14/11/2026 22:20:09|-99999",
                                           "3|14/11/2026 22:20:09|7.125", "1|14/11/2026 22:21:09|22"}));
    }
};

QTEST_GUILESS_MAIN(TestDailyLog)
#include "tst_dailylog.moc"
