#include "filesizelimit.h"
#include "storage/chronofiles.h"
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

} // namespace

class TestChronoFiles : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SettingsFolder> m_dir;
    ProgramFolder folder() const { return m_dir->folder(); }
    QByteArray scheduleFile() const { return m_dir->read(ChronoScheduleFileName); }
    QByteArray holidayFile() const { return m_dir->read(HolidayFileName); }

private slots:
    void init() { m_dir = std::make_unique<SettingsFolder>(); }
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void firstStartCreatesBothFiles()
    {
        ValueTables tables;
        ChronoSchedule schedule;
        schedule(3, 4, 5) = 99.0f;
        InitValueTables(tables, schedule);
        HolidayList holidays;
        holidays.setEntries({"01/01/2026"});

        QVERIFY(LoadChronoFiles(folder(), schedule, holidays));
        QCOMPARE(scheduleFile(), repeatedLine("20.0", 20370));
        QCOMPARE(holidayFile(), QByteArray(" \r\n"));
        QCOMPARE(schedule(3, 4, 5), 20.0f);
        QCOMPARE(holidays.rowCount(), 0);

        // Files that exist are left as they are.
        m_dir->write(ChronoScheduleFileName, "18.5\r\n");
        QVERIFY(EnsureChronoFiles(folder(), schedule));
        QCOMPARE(scheduleFile(), QByteArray("18.5\r\n"));
    }

    // Set points in "00.0" with the user's decimal separator; read back either way.
    void savedScheduleIsInFileOrderAndReadsBack_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QByteArray>("start");
        QTest::newRow("English") << QLocale(QLocale::English, QLocale::UnitedStates)
                                 << QByteArray("05.0\r\n123.4\r\n21.3\r\n20.0\r\n20.0\r\n20.0\r\n-03.5\r\n00.0\r\n");
        QTest::newRow("Italian") << QLocale(QLocale::Italian, QLocale::Italy)
                                 << QByteArray("05,0\r\n123,4\r\n21,3\r\n20,0\r\n20,0\r\n20,0\r\n-03,5\r\n00,0\r\n");
    }
    void savedScheduleIsInFileOrderAndReadsBack()
    {
        QFETCH(QLocale, locale);
        QFETCH(QByteArray, start);
        QLocale::setDefault(locale);
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
        QCOMPARE(content.left(start.size()), start);
        QCOMPARE(content.split('\n').value(210).replace(',', '.'), QByteArray("17.0\r"));

        ChronoSchedule loaded;
        HolidayList holidays;
        QVERIFY(LoadChronoFiles(folder(), loaded, holidays));
        QCOMPARE(loaded(0, 0, 2), 21.3f);
        QCOMPARE(loaded(96, 29, 6), 18.5f);
        QCOMPARE(loaded(1, 0, 0), 17.0f);
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
        m_dir->write(HolidayFileName, " \r\n");

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

    void holidays()
    {
        m_dir->write(HolidayFileName, "25/12/2026\r\n\r\n   5/1/2026  \n\t\nFestivit\xe0");
        ChronoSchedule schedule;
        HolidayList holidays;
        QVERIFY(LoadChronoFiles(folder(), schedule, holidays));
        QCOMPARE(holidays.stringList(), (QStringList{"25/12/2026", "5/1/2026", QString::fromUtf8("Festività")}));
        QCOMPARE(holidays.selectedRow(), 0);
        QVERIFY(holidays.containsDate(QDate(2026, 12, 25)));
        QVERIFY(holidays.containsDate(QDate(2026, 1, 5)));
        QVERIFY(!holidays.containsDate(QDate(2026, 12, 26)));
        QVERIFY(!HolidayList::containsDate({"Natale", "00/00/0000"}, QDate()));
    }

    void fullDiskKeepsTheOldSchedule()
    {
        IniStore ini(folder());
        ChronoSchedule schedule;
        ChronoZoneEnabled enabled{};
        HolidayList holidays;
        QVERIFY(SaveChronoSchedule(ini, schedule, enabled, holidays));
        const QByteArray before = scheduleFile();

        schedule.fill(16.5f);
        holidays.setEntries({"15/08/2026"});
        enabled.fill(true);
        {
            // Room for the holidays and the settings file, not for 20,370 set points.
            const FileSizeLimit limit(4096);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cronotermostato.cts"));
            QVERIFY(!SaveChronoSchedule(ini, schedule, enabled, holidays));
        }
        QCOMPARE(scheduleFile(), before);
        QCOMPARE(QDir(m_dir->path(ChronoFolderName)).entryList(QDir::Files), QStringList({"Cronotermostato.cts", "Festivita.cts"}));
        // What did fit is saved.
        QCOMPARE(holidayFile(), QByteArray("15/08/2026\r\n"));
        QCOMPARE(ini.ReadIniKey("Zona 30", "Cronotermostato", ""), QStringLiteral("1"));
    }
};

QTEST_GUILESS_MAIN(TestChronoFiles)
#include "tst_chronofiles.moc"
