#include "base/clock.h"
#include "filesizelimit.h"
#include "storage/chronofiles.h"
#include "storage/dailylog.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"

#include <QLocale>
#include <QRegularExpression>

#include <memory>

using namespace telvane;

namespace {

QByteArray repeatedLine(const QByteArray &line, int count)
{
    return (line + "\r\n").repeated(count);
}

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

// The files of every day's measurements and of the chrono-thermostat: each line that was
// measured is kept whole, whatever the disk, the locale or a crash did.
class TestDayFiles : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsFolder> m_dir;
    ProgramFolder folder() const { return m_dir->folder(); }
    QByteArray dataFile(const QString &name) const { return m_dir->read(QStringLiteral("Dati/") + name); }
    QByteArray scheduleFile() const { return m_dir->read(ChronoScheduleFileName); }
    QByteArray holidayFile() const { return m_dir->read(HolidayFileName); }

private slots:
    void init() { m_dir = std::make_unique<SettingsFolder>(); }
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void dailyLogKeepsWholeLines()
    {
        ManualClock clock(QDateTime(QDate(2026, 12, 31), QTime(23, 58, 58)));
        DailyLog log(m_dir->folder(), clock);
        const QByteArray first = "31/12/2026 23:58:58;21.5;";
        QVERIFY(log.AppendDailyLogLine(QString::fromLatin1(first)));
        // A full disk takes only part of a line: that part is cut off again, so the next
        // line does not continue it and the day reads back whole.
        {
            const FileSizeLimit limit(first.size() + 2 + 12);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("2026_12_31.csv.*lost"));
            QVERIFY(!log.AppendDailyLogLine(QStringLiteral("31/12/2026 23:59:58;21.6;")));
        }
        QCOMPARE(dataFile("2026_12_31.csv"), first + "\r\n");
        clock.advance(61000);
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("31/12/2026 23:59:59;21.7;")));
        RecordingSink sink;
        QVERIFY(log.ReadDailyLog(QStringLiteral("2026_12_31.csv"), sink));
        QCOMPARE(sink.text(), QStringLiteral("23:58:58 1=21.5, 23:59:59 1=21.7"));
        // A fragment left by a crash is closed off before the next line.
        m_dir->write("Dati/2026_12_31.csv", first + "\r\n31/12/20");
        QVERIFY(log.AppendDailyLogLine(QStringLiteral("31/12/2026 23:59:59;21.8;")));
        QCOMPARE(dataFile("2026_12_31.csv"), first + "\r\n31/12/20\r\n31/12/2026 23:59:59;21.8;\r\n");
        // Midnight opens the next day's file.
        clock.advance(1000);
        QVERIFY(log.AppendDailyLogLine("new year"));
        QCOMPARE(dataFile("2027_01_01.csv"), QByteArray("new year\r\n"));
        QCOMPARE(dataFile("2026_12_31.csv").count("\r\n"), 3);
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
    // the files read back either way.
    void numbersFollowTheUsersLocale_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QByteArray>("day");
        QTest::addColumn<QByteArray>("scheduleStart");
        QTest::newRow("English") << QLocale(QLocale::English, QLocale::UnitedStates)
                                 << QByteArray("14/11/2026 22:20:09;21.5;-99999.0;7.125;\r\n14/11/2026 22:21:09;22;\r\n")
                                 << QByteArray("05.0\r\n123.4\r\n21.3\r\n20.0\r\n20.0\r\n20.0\r\n-03.5\r\n00.0\r\n");
        QTest::newRow("Italian") << QLocale(QLocale::Italian, QLocale::Italy)
                                 << QByteArray("14/11/2026 22:20:09;21,5;-99999,0;7,125;\r\n14/11/2026 22:21:09;22;\r\n")
                                 << QByteArray("05,0\r\n123,4\r\n21,3\r\n20,0\r\n20,0\r\n20,0\r\n-03,5\r\n00,0\r\n");
    }
    void numbersFollowTheUsersLocale()
    {
        QFETCH(QLocale, locale);
        QFETCH(QByteArray, day);
        QFETCH(QByteArray, scheduleStart);
        QLocale::setDefault(locale);
        ManualClock clock(QDateTime(QDate(2026, 11, 14), QTime(22, 20, 9)));
        DailyLog log(m_dir->folder(), clock);
        QVERIFY(log.AppendDailyLogLine(dailyLogLine(clock.now(), QList<LoggedValue>{{21.5f, 1}, {InvalidValue, 1}, {7.125f, 3}})));
        clock.advance(60000);
        QVERIFY(log.AppendDailyLogLine(dailyLogLine(clock.now(), QList<LoggedValue>{{22.0f, 0}})));
        QCOMPARE(dataFile(dailyLogFileName(clock.now().date())), day);
        RecordingSink sink;
        QVERIFY(log.ReadDailyLog(dailyLogFileName(clock.now().date()), sink));
        QCOMPARE(sink.text(), QStringLiteral("22:20:09 1=21.5, 22:20:09 2=-99999, 22:20:09 3=7.125, 22:21:09 1=22"));

        // Set points in "00.0", in the file's order of zone, slot and day.
        ChronoSchedule saved;
        saved(0, 0, 0) = 5.0f;
        saved(0, 0, 1) = 123.4f;
        saved(0, 0, 2) = 21.25f;
        saved(0, 0, 6) = -3.5f;
        saved(0, 1, 0) = 0.04f;
        saved(1, 0, 0) = 17.0f;
        saved(96, 29, 6) = 18.5f;
        QVERIFY(EnsureChronoFiles(folder(), saved));
        const QByteArray content = scheduleFile();
        QCOMPARE(content.count("\r\n"), 20370);
        QCOMPARE(content.left(scheduleStart.size()), scheduleStart);
        QCOMPARE(content.split('\n').value(210).replace(',', '.'), QByteArray("17.0\r"));
        ChronoSchedule loaded;
        HolidayList holidays;
        QVERIFY(LoadChronoFiles(folder(), loaded, holidays));
        QCOMPARE(loaded(0, 0, 2), 21.3f);
        QCOMPARE(loaded(96, 29, 6), 18.5f);
        QCOMPARE(loaded(1, 0, 0), 17.0f);
    }

    void chronoFilesFromFirstStart()
    {
        // The first start makes both files: every set point at 20.0, no holidays.
        ChronoSchedule schedule;
        HolidayList holidays;
        holidays.setEntries({"01/01/2026"});
        QVERIFY(LoadChronoFiles(folder(), schedule, holidays));
        QCOMPARE(scheduleFile(), repeatedLine("20.0", 20370));
        QCOMPARE(holidayFile(), QByteArray(" \r\n"));
        QCOMPARE(holidays.rowCount(), 0);

        // Holidays as a hand edit leaves them: blanks and empty lines do not count.
        m_dir->write(HolidayFileName, "25/12/2026\r\n\r\n   5/1/2026  \n\t\nFestivit\xe0");
        QVERIFY(LoadChronoFiles(folder(), schedule, holidays));
        QCOMPARE(holidays.stringList(), (QStringList{"25/12/2026", "5/1/2026", QString::fromUtf8("Festività")}));
        QCOMPARE(holidays.selectedRow(), 0);
        QVERIFY(holidays.containsDate(QDate(2026, 12, 25)));
        QVERIFY(holidays.containsDate(QDate(2026, 1, 5)));
        QVERIFY(!holidays.containsDate(QDate(2026, 12, 26)));
        QVERIFY(!HolidayList::containsDate({"Natale", "00/00/0000"}, QDate()));

        // A disk with room for the holidays and the settings file, not for 20,370 set
        // points, keeps the old schedule whole and saves what did fit.
        IniStore ini(folder());
        ChronoZoneEnabled enabled{};
        enabled.fill(true);
        schedule.fill(16.5f);
        holidays.setEntries({"15/08/2026"});
        const QByteArray before = scheduleFile();
        {
            const FileSizeLimit limit(4096);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cronotermostato.cts"));
            QVERIFY(!SaveChronoSchedule(ini, schedule, enabled, holidays));
        }
        QCOMPARE(scheduleFile(), before);
        QCOMPARE(QDir(m_dir->path(ChronoFolderName)).entryList(QDir::Files), QStringList({"Cronotermostato.cts", "Festivita.cts"}));
        QCOMPARE(holidayFile(), QByteArray("15/08/2026\r\n"));
        QCOMPARE(ini.ReadIniKey("Zona 30", "Cronotermostato", ""), QStringLiteral("1"));
        // No holidays are saved as a line of blanks, never as an empty file.
        holidays.setEntries({});
        QVERIFY(SaveChronoSchedule(ini, schedule, enabled, holidays));
        QCOMPARE(holidayFile(), QByteArray(10, ' ') + "\r\n");
    }

    // A damaged schedule file: the set points it holds are read, the rest are filled the
    // way files from the field have always been read. Every table starts at 7.0 so
    // untouched entries show.
    void damagedScheduleFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QList<float>>("expectedFirst");
        QTest::addColumn<float>("expectedRest");
        QTest::addColumn<bool>("complete");
        QTest::newRow("comma and LF from an Italian machine")
            << "21,5\n19,0\n" + repeatedLine("18.0", 20368) << QList<float>{21.5f, 19.0f} << 18.0f << true;
        QTest::newRow("short file repeats its last line")
            << QByteArray("10.0\r\n12.5\r\n") << QList<float>{10.0f, 12.5f} << 12.5f << false;
        QTest::newRow("empty line keeps its set point")
            << "10.0\r\n\r\n12.0\r\n" + repeatedLine("13.0", 20367) << QList<float>{10.0f, 7.0f, 12.0f} << 13.0f << false;
    }
    void damagedScheduleFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QList<float>, expectedFirst);
        QFETCH(float, expectedRest);
        QFETCH(bool, complete);
        m_dir->write(ChronoScheduleFileName, content);

        ChronoSchedule schedule;
        schedule.fill(7.0f);
        HolidayList holidays;
        if (!complete)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cronotermostato.cts"));
        QCOMPARE(LoadChronoFiles(folder(), schedule, holidays), complete);

        const std::span<const float> entries = schedule.entries();
        QCOMPARE(QList<float>(entries.begin(), entries.begin() + expectedFirst.size()), expectedFirst);
        QVERIFY(std::all_of(entries.begin() + expectedFirst.size(), entries.end(),
                            [&](float setPoint) { return setPoint == expectedRest; }));
        // The file is read, never rewritten.
        QCOMPARE(scheduleFile(), content);
    }
};

QTEST_GUILESS_MAIN(TestDayFiles)
#include "tst_dayfiles.moc"
