#include "storage/dailylog.h"

#include "base/clock.h"
#include "filesizelimit.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"

#include <QLocale>
#include <QRegularExpression>

#include <memory>

using namespace telvane;

namespace {

// Records what the history chart would receive, as "time trace=value" joined by ", ".
class RecordingSink final : public DailyLogSink
{
public:
    void addPoint(int trace, const QDateTime &time, float value) override
    {
        points << QStringLiteral("%1 %2=%3").arg(time.toString("HH:mm:ss")).arg(trace).arg(value);
        dates << time.date();
    }
    void redraw() override { ++redraws; }
    QString text() const { return points.join(", "); }

    QStringList points;
    QList<QDate> dates;
    int redraws = 0;
};

} // namespace

class TestDailyLog : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsFolder> m_dir;
    QByteArray dataFile(const QString &name) const { return m_dir->read(QStringLiteral("Dati/") + name); }

private slots:
    void init() { m_dir = std::make_unique<SettingsFolder>(); }

    void appendsWithCrLfIntoTheDaysFile()
    {
        ManualClock clock(QDateTime(QDate(2026, 12, 31), QTime(23, 59, 58)));
        DailyLog log(m_dir->folder(), clock);
        QVERIFY(log.AppendDailyLogLine("first"));
        clock.advance(1000);
        QVERIFY(log.AppendDailyLogLine("second"));
        clock.advance(1000);
        QVERIFY(log.AppendDailyLogLine("new year"));
        QCOMPARE(dataFile("2026_12_31.csv"), QByteArray("first\r\nsecond\r\n"));
        QCOMPARE(dataFile("2027_01_01.csv"), QByteArray("new year\r\n"));
    }

    // A full disk takes only part of a line: that part is cut off again, so the next line
    // does not continue it and the day reads back whole. A fragment left by a crash is
    // closed off before the next line.
    void fullDiskLeavesNoFragment()
    {
        ManualClock clock(QDateTime(QDate(2026, 11, 14), QTime(22, 20, 9)));
        DailyLog log(m_dir->folder(), clock);
        const QByteArray first = "14/11/2026 22:20:09;21.5;";
        QVERIFY(log.AppendDailyLogLine(QString::fromLatin1(first)));
        {
            const FileSizeLimit limit(first.size() + 2 + 12);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("2026_11_14.csv.*lost"));
            QVERIFY(!log.AppendDailyLogLine(QStringLiteral("14/11/2026 22:21:09;21.6;")));
        }
        QCOMPARE(dataFile("2026_11_14.csv"), first + "\r\n");
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("14/11/2026 22:22:09;21.7;")));
        RecordingSink sink;
        QVERIFY(log.ReadDailyLog(QStringLiteral("2026_11_14.csv"), sink));
        QCOMPARE(sink.text(), QStringLiteral("22:20:09 1=21.5, 22:22:09 1=21.7"));

        m_dir->write("Dati/2026_11_14.csv", first + "\r\n14/11/20");
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("14/11/2026 22:23:09;21.8;")));
        QCOMPARE(dataFile("2026_11_14.csv"), first + "\r\n14/11/20\r\n14/11/2026 22:23:09;21.8;\r\n");
    }

    void reading_data()
    {
        QTest::addColumn<QByteArray>("content"); // null: no file
        QTest::addColumn<bool>("complete");
        QTest::addColumn<QString>("points");
        const QByteArray t1 = "14/11/2026 22:20:09;";
        const QByteArray t2 = "14/11/2026 22:21:09;";
        QTest::newRow("two lines, CR LF") << t1 + "21.5;19;\r\n" + t2 + "21.6;19.1;\r\n" << true
                                          << "22:20:09 1=21.5, 22:20:09 2=19, 22:21:09 1=21.6, 22:21:09 2=19.1";
        QTest::newRow("LF and comma, no end on the last line") << t1 + "21,5;\n" + t2 + "-3,25;" << true
                                                               << "22:20:09 1=21.5, 22:21:09 1=-3.25";
        QTest::newRow("zones added during the day") << t1 + "1;\r\n" + t2 + "1;2;\r\n" << true
                                                    << "22:20:09 1=1, 22:21:09 1=1, 22:21:09 2=2";
        QTest::newRow("empty line in the middle") << t1 + "1;\r\n\r\n" + t2 + "2;\r\n" << false << "22:20:09 1=1";
        QTest::newRow("value that is no number") << t1 + "1;x;3;\r\n" << false << "22:20:09 1=1";
        QTest::newRow("date that is no date") << QByteArray("31/02/2026 22:20:09;1;\r\n") << false << "";
        QTest::newRow("no file") << QByteArray() << false << "";
    }
    void reading()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, complete);
        QFETCH(QString, points);
        if (!content.isNull())
            m_dir->write("Dati/2026_11_14.csv", content);
        ManualClock clock;
        const DailyLog log(m_dir->folder(), clock);
        RecordingSink sink;
        if (!complete)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("2026_11_14.csv"));
        QCOMPARE(log.ReadDailyLog("2026_11_14.csv", sink), complete);
        QCOMPARE(sink.text(), points);
        QCOMPARE(sink.redraws, complete ? 1 : 0);
        QCOMPARE(sink.dates.count(QDate(2026, 11, 14)), sink.dates.size());
    }

    // The values carry the user's decimal separator, so that a spreadsheet in the user's
    // language reads them as numbers; the date-time is written the same everywhere, and
    // the file reads back either way.
    void writtenLinesReadBack_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("English") << QLocale(QLocale::English, QLocale::UnitedStates)
                                 << QByteArray("14/11/2026 22:20:09;21.5;-99999.0;7.125;\r\n14/11/2026 22:21:09;22;\r\n");
        QTest::newRow("Italian") << QLocale(QLocale::Italian, QLocale::Italy)
                                 << QByteArray("14/11/2026 22:20:09;21,5;-99999,0;7,125;\r\n14/11/2026 22:21:09;22;\r\n");
    }
    void writtenLinesReadBack()
    {
        QFETCH(QLocale, locale);
        QFETCH(QByteArray, file);
        QLocale::setDefault(locale);
        ManualClock clock(QDateTime(QDate(2026, 11, 14), QTime(22, 20, 9)));
        DailyLog log(m_dir->folder(), clock);
        const QList<LoggedValue> first{{21.5f, 1}, {InvalidValue, 1}, {7.125f, 3}};
        QVERIFY(log.AppendDailyLogLine(dailyLogLine(clock.now(), first)));
        clock.advance(60000);
        const QList<LoggedValue> second{{22.0f, 0}};
        QVERIFY(log.AppendDailyLogLine(dailyLogLine(clock.now(), second)));
        QCOMPARE(dataFile(DailyLogFileName(clock.now().date())), file);

        RecordingSink sink;
        QVERIFY(log.ReadDailyLog(DailyLogFileName(clock.now().date()), sink));
        QCOMPARE(sink.text(), QStringLiteral("22:20:09 1=21.5, 22:20:09 2=-99999, 22:20:09 3=7.125, 22:21:09 1=22"));
    }
    void cleanup() { QLocale::setDefault(QLocale::c()); }
};

QTEST_GUILESS_MAIN(TestDailyLog)
#include "tst_dailylog.moc"
