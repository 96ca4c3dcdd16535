#include "config_editor/chronopagemodel.h"
#include "storage/chronofiles.h"
#include "storage/holidaylist.h"
#include "support/settingsfixture.h"

using namespace telvane;

class TestChronoPageModel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    // Edits stay in the page's copy until it is confirmed.
    void editsActOnlyWhenSaved()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nCronotermostato=0\r\n[Zona 02]\r\nCronotermostato=1\r\n");
        ChronoSchedule live;
        HolidayList liveHolidays;
        liveHolidays.setEntries({"25/12/2026"});
        ChronoPageModel page;
        page.load(ini, live, liveHolidays.stringList());
        // The flags come from the file even while the option is off, so saving keeps them.
        QVERIFY(page.zoneEnabled(1));
        QVERIFY(!page.zoneEnabled(0));

        QCOMPARE(page.setSetPoints(1, 2, 74, 72, "21,5"), QString());
        QVERIFY(page.addHoliday(QDate(2026, 1, 6)));
        QVERIFY(!page.addHoliday(QDate(2026, 12, 25)));
        const QStringList wednesday = page.dayLines(1, 2);
        QCOMPARE(wednesday.size(), 96);
        QCOMPARE(wednesday.mid(71, 5), QStringList({"17:45   20.0", "18:00   21.5", "18:15   21.5", "18:30   21.5",
                                                    "18:45   20.0"}));
        QCOMPARE(live(73, 1, 2), 20.0f);
        QCOMPARE(liveHolidays.stringList(), QStringList{"25/12/2026"});

        page.setZoneEnabled(0, true);
        QVERIFY(page.save(ini, live, liveHolidays));
        QCOMPARE(live(73, 1, 2), 21.5f);
        QCOMPARE(live(73, 1, 3), 20.0f);
        QCOMPARE(liveHolidays.stringList(), QStringList({"25/12/2026", "06/01/2026"}));
        QCOMPARE(ini.ReadIniKey("Zona 01", "Cronotermostato", ""), QStringLiteral("1"));
        QCOMPARE(ini.ReadIniKey("Zona 02", "Cronotermostato", ""), QStringLiteral("1"));
        QCOMPARE(ini.ReadIniKey("Zona 03", "Cronotermostato", ""), QStringLiteral("0"));

        ChronoSchedule reread;
        HolidayList rereadHolidays;
        QVERIFY(LoadChronoFiles(ini.folder(), reread, rereadHolidays));
        QCOMPARE(reread(72, 1, 2), 21.5f);
        QCOMPARE(rereadHolidays.stringList(), liveHolidays.stringList());
    }

    void badSetPointChangesNothing()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("");
        ChronoPageModel page;
        page.load(ini, ChronoSchedule(), {});
        QVERIFY(page.setSetPoints(0, 0, 0, 95, "abc").contains("Non è un numero"));
        QVERIFY(page.setSetPoints(0, 0, 0, 95, "1000").contains("da -99,9 a 999,9"));
        QCOMPARE(page.dayLines(0, 0), ChronoPageModel().dayLines(0, 0));

        page.setSetPoints(0, 4, 10, 10, "18");
        page.copyDayToWeek(0, 4);
        for (int day = 0; day < 7; ++day)
            QCOMPARE(page.setPoint(10, 0, day), 18.0f);
        QCOMPARE(page.setPoint(10, 1, 0), 20.0f);
    }
};

QTEST_GUILESS_MAIN(TestChronoPageModel)
#include "tst_chronopagemodel.moc"
