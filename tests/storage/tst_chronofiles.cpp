#include "filesizelimit.h"
#include "storage/chronofiles.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/programfolder.h"
#include "storage/valuetables.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace telvane;

namespace {

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray lines(const QList<QByteArray> &values, const QByteArray &end = "\r\n")
{
    QByteArray content;
    for (const QByteArray &value : values)
        content += value + end;
    return content;
}

QByteArray repeatedLine(const QByteArray &line, int count)
{
    return (line + "\r\n").repeated(count);
}

} // namespace

class TestChronoFiles : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString schedulePath() const { return ProgramFolder(m_dir.path()).filePath(QStringLiteral("Crono/Cronotermostato.cts")); }
    QString holidayPath() const { return ProgramFolder(m_dir.path()).filePath(QStringLiteral("Crono/Festivita.cts")); }

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        QDir(m_dir.path()).removeRecursively();
        QVERIFY(QDir().mkpath(m_dir.path()));
    }

    void firstStartCreatesBothFiles()
    {
        ValueTables tables;
        ChronoSchedule schedule;
        schedule(3, 4, 5) = 99.0f;
        InitValueTables(tables, schedule);
        HolidayList holidays;
        holidays.setEntries({"01/01/2026"});

        QVERIFY(LoadChronoFiles(ProgramFolder(m_dir.path()), schedule, holidays));

        QCOMPARE(readAll(schedulePath()), repeatedLine("20.0", 20370));
        QCOMPARE(readAll(holidayPath()), QByteArray(" \r\n"));
        for (const float setPoint : schedule.entries())
            QCOMPARE(setPoint, 20.0f);
        QCOMPARE(holidays.rowCount(), 0);
        QCOMPARE(holidays.selectedRow(), -1);
    }

    void existingFilesAreNotReplaced()
    {
        writeFile(schedulePath(), "18.5\r\n");
        writeFile(holidayPath(), "25/12/2026\r\n");
        ChronoSchedule schedule;
        QVERIFY(EnsureChronoFiles(ProgramFolder(m_dir.path()), schedule));
        QCOMPARE(readAll(schedulePath()), QByteArray("18.5\r\n"));
        QCOMPARE(readAll(holidayPath()), QByteArray("25/12/2026\r\n"));
    }

    void savedScheduleIsInFileOrder()
    {
        ChronoSchedule schedule;
        schedule(0, 0, 0) = 5.0f;
        schedule(0, 0, 1) = 123.4f;
        schedule(0, 0, 2) = 21.25f;
        schedule(0, 0, 6) = -3.5f;
        schedule(0, 1, 0) = 0.04f;
        schedule(1, 0, 0) = 17.0f;
        schedule(96, 29, 6) = 18.5f;
        QVERIFY(EnsureChronoFiles(ProgramFolder(m_dir.path()), schedule));

        const QByteArray content = readAll(schedulePath());
        QCOMPARE(content.count("\r\n"), 20370);
        QCOMPARE(content.count('\n'), 20370);
        QVERIFY(content.endsWith("18.5\r\n"));
        const QList<QByteArray> fileLines = content.split('\n');
        QCOMPARE(fileLines.value(0), QByteArray("05.0\r"));
        QCOMPARE(fileLines.value(1), QByteArray("123.4\r"));
        QCOMPARE(fileLines.value(2), QByteArray("21.3\r"));
        QCOMPARE(fileLines.value(6), QByteArray("-03.5\r"));
        QCOMPARE(fileLines.value(7), QByteArray("00.0\r"));
        QCOMPARE(fileLines.value(8), QByteArray("20.0\r"));
        QCOMPARE(fileLines.value(210), QByteArray("17.0\r"));
    }

    void scheduleRoundTrip()
    {
        ChronoSchedule saved;
        int i = 0;
        for (float &setPoint : saved.entries())
            setPoint = float((i++ * 37) % 400) / 10.0f - 5.0f;
        writeFile(holidayPath(), " \r\n");
        QVERIFY(EnsureChronoFiles(ProgramFolder(m_dir.path()), saved));

        ChronoSchedule loaded;
        HolidayList holidays;
        QVERIFY(LoadChronoFiles(ProgramFolder(m_dir.path()), loaded, holidays));
        QCOMPARE(loaded.entries().size(), saved.entries().size());
        for (std::size_t n = 0; n < saved.entries().size(); ++n)
            QCOMPARE(loaded.entries()[n], saved.entries()[n]);
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
            << lines({"21,5", "19,0"}, "\n") + repeatedLine("18.0", 20368) << QList<float>{21.5f, 19.0f} << 18.0f << true;
        QTest::newRow("short file repeats its last line")
            << lines({"10.0", "11.0", "12.5"}) << QList<float>{10.0f, 11.0f, 12.5f} << 12.5f << false;
        QTest::newRow("short file ending in garbage")
            << lines({"10.0", "xyz"}) << QList<float>{10.0f, 7.0f} << 7.0f << false;
        QTest::newRow("empty file") << QByteArray() << QList<float>{7.0f} << 7.0f << false;
        QTest::newRow("garbage line keeps its set point")
            << lines({"10.0", "abc", "12.0"}) + repeatedLine("13.0", 20367) << QList<float>{10.0f, 7.0f, 12.0f}
            << 13.0f << false;
        QTest::newRow("empty line keeps its set point")
            << lines({"10.0", "", "12.0"}) + repeatedLine("13.0", 20367) << QList<float>{10.0f, 7.0f, 12.0f}
            << 13.0f << false;
        QTest::newRow("number too large for a float")
            << lines({"1" + QByteArray(50, '0'), "12.0"}) << QList<float>{7.0f, 12.0f} << 12.0f << false;
        QTest::newRow("over-long line is one line")
            << lines({QByteArray(100000, '1'), "12.0"}) << QList<float>{7.0f, 12.0f} << 12.0f << false;
        QTest::newRow("extra lines are ignored")
            << repeatedLine("15.0", 20370) + repeatedLine("99.0", 30000) << QList<float>{15.0f} << 15.0f << true;
        QTest::newRow("binary garbage")
            << QByteArray("\x00\xff\r\x01\n\x7f\xfe", 7).repeated(5000) << QList<float>{7.0f} << 7.0f << false;
    }
    void damagedScheduleFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QList<float>, expectedFirst);
        QFETCH(float, expectedRest);
        QFETCH(bool, complete);
        writeFile(schedulePath(), content);
        writeFile(holidayPath(), " \r\n");

        ChronoSchedule schedule;
        schedule.fill(7.0f);
        HolidayList holidays;
        if (!complete)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Cronotermostato.cts")));
        QCOMPARE(LoadChronoFiles(ProgramFolder(m_dir.path()), schedule, holidays), complete);

        const std::span<const float> entries = schedule.entries();
        QCOMPARE(entries.size(), std::size_t(20370));
        for (qsizetype n = 0; n < expectedFirst.size(); ++n)
            QCOMPARE(entries[n], expectedFirst[n]);
        for (std::size_t n = expectedFirst.size(); n < entries.size(); ++n) {
            QVERIFY(std::isfinite(entries[n]));
            QCOMPARE(entries[n], expectedRest);
        }
        // The file is read, never rewritten.
        QCOMPARE(readAll(schedulePath()), content);
    }

    void holidayFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("new file") << QByteArray(" \r\n") << QStringList();
        QTest::newRow("ten blanks") << QByteArray("          \r\n") << QStringList();
        QTest::newRow("blank lines skipped, entries trimmed")
            << QByteArray("25/12/2026\r\n\r\n  01/01/2027  \n\t\n06/01/2027") << QStringList{"25/12/2026", "01/01/2027", "06/01/2027"};
        QTest::newRow("list order kept") << QByteArray("31/12/2026\r\n01/01/2026\r\n") << QStringList{"31/12/2026", "01/01/2026"};
        QTest::newRow("Windows code page") << QByteArray("Festivit\xe0\r\n") << QStringList{QString::fromUtf8("Festività")};
    }
    void holidayFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, expected);
        writeFile(holidayPath(), content);
        ChronoSchedule schedule;
        HolidayList holidays;
        QVERIFY(LoadChronoFiles(ProgramFolder(m_dir.path()), schedule, holidays));
        QCOMPARE(holidays.stringList(), expected);
        QCOMPARE(holidays.selectedRow(), expected.isEmpty() ? -1 : 0);
    }

    void savedHolidays_data()
    {
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty list is ten blanks") << QStringList() << QByteArray("          \r\n");
        QTest::newRow("one a line, in order") << QStringList{"25/12/2026", "01/01/2026"}
                                              << QByteArray("25/12/2026\r\n01/01/2026\r\n");
    }
    void savedHolidays()
    {
        QFETCH(QStringList, entries);
        QFETCH(QByteArray, content);
        HolidayList saved;
        saved.setEntries(entries);
        QVERIFY(SaveHolidays(ProgramFolder(m_dir.path()), saved));
        QCOMPARE(readAll(holidayPath()), content);

        HolidayList loaded;
        loaded.setEntries({"stale"});
        ChronoSchedule schedule;
        QVERIFY(LoadChronoFiles(ProgramFolder(m_dir.path()), schedule, loaded));
        QCOMPARE(loaded.stringList(), entries);
    }

    void saveChronoScheduleWritesZoneFlags()
    {
        IniStore ini{ProgramFolder(m_dir.path())};
        ini.setCurrentIniName(QStringLiteral("Telvane1.ini"));
        QVERIFY(ini.WriteIniKey(QStringLiteral("Zona 03"), QStringLiteral("Nome"), QStringLiteral("Ufficio")));
        QVERIFY(ini.WriteIniKey(QStringLiteral("Zona 03"), QStringLiteral("Cronotermostato"), QStringLiteral("0")));

        ChronoSchedule schedule;
        schedule(0, 0, 0) = 16.5f;
        ChronoZoneEnabled enabled{};
        enabled[2] = true;
        enabled[29] = true;
        HolidayList holidays;
        holidays.setEntries({"15/08/2026"});

        QVERIFY(SaveChronoSchedule(ini, schedule, enabled, holidays));

        for (int zone = 1; zone <= 30; ++zone) {
            const QString section = QStringLiteral("Zona %1").arg(zone, 2, 10, QLatin1Char('0'));
            const QString expected = zone == 3 || zone == 30 ? QStringLiteral("1") : QStringLiteral("0");
            QCOMPARE(ini.ReadIniKey(section, QStringLiteral("Cronotermostato"), QStringLiteral("?")), expected);
        }
        QCOMPARE(ini.ReadIniKey(QStringLiteral("Zona 03"), QStringLiteral("Nome"), QString()), QStringLiteral("Ufficio"));
        QVERIFY(readAll(schedulePath()).startsWith("16.5\r\n20.0\r\n"));
        QCOMPARE(readAll(holidayPath()), QByteArray("15/08/2026\r\n"));
    }

    void fullDiskKeepsTheOldSchedule()
    {
        IniStore ini{ProgramFolder(m_dir.path())};
        ChronoSchedule schedule;
        ChronoZoneEnabled enabled{};
        HolidayList holidays;
        QVERIFY(SaveChronoSchedule(ini, schedule, enabled, holidays));
        const QByteArray before = readAll(schedulePath());

        schedule.fill(16.5f);
        holidays.setEntries({"15/08/2026"});
        enabled.fill(true);
        {
            // Room for the holidays and the settings file, not for 20,370 set points.
            const FileSizeLimit limit(4096);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Cronotermostato.cts")));
            QVERIFY(!SaveChronoSchedule(ini, schedule, enabled, holidays));
        }
        QCOMPARE(readAll(schedulePath()), before);
        QCOMPARE(QDir(m_dir.path() + QStringLiteral("/Crono")).entryList(QDir::Files),
                 (QStringList{"Cronotermostato.cts", "Festivita.cts"}));
        QCOMPARE(readAll(holidayPath()), QByteArray("15/08/2026\r\n"));
        QCOMPARE(ini.ReadIniKey(QStringLiteral("Zona 30"), QStringLiteral("Cronotermostato"), QString()),
                 QStringLiteral("1"));
    }

    // A file that cannot be written is reported, and the rest of the save still happens.
    void saveGoesOnPastAFailedFile()
    {
        IniStore ini{ProgramFolder(m_dir.path())};
        QVERIFY(QDir().mkpath(holidayPath()));
        ChronoSchedule schedule;
        schedule(0, 0, 0) = 16.5f;
        ChronoZoneEnabled enabled{};
        enabled[0] = true;
        HolidayList holidays;

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("Festivita.cts")));
        QVERIFY(!SaveChronoSchedule(ini, schedule, enabled, holidays));

        QVERIFY(readAll(schedulePath()).startsWith("16.5\r\n"));
        QCOMPARE(ini.ReadIniKey(QStringLiteral("Zona 01"), QStringLiteral("Cronotermostato"), QString()),
                 QStringLiteral("1"));
    }
};

QTEST_GUILESS_MAIN(TestChronoFiles)
#include "tst_chronofiles.moc"
