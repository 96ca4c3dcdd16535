#include "filesizelimit.h"
#include "storage/atomicfile.h"
#include "storage/inifile.h"
#include "storage/inifilecache.h"
#include "storage/inistore.h"
#include "storage/legacytext.h"
#include "storage/modesettings.h"
#include "support/settingsfixture.h"

#include <QRegularExpression>

using namespace telvane;

namespace {

void setModified(const QString &path, const QDateTime &time)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

QDateTime modified(const QString &path)
{
    return QFileInfo(path).fileTime(QFileDevice::FileModificationTime);
}

QStringList entries(const SettingsFolder &dir)
{
    return QDir(dir.folder().root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

} // namespace

// The settings files: read as the files from the field were always read, written so that
// a crash, a full disk or another program's edit never costs a setting.
class TestSettingsFile : public QObject
{
    Q_OBJECT

private slots:
    void reading_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected"); // a null string: the key is absent
        const auto row = [](const char *name, const QByteArray &bytes, const QString &expected,
                            const QString &section = "A", const QString &key = "k") {
            QTest::newRow(name) << bytes << section << key << expected;
        };
        const QString absent;
        row("case of section and key", "[GENERALE]\r\nzone=5\r\n", "5", "generale", "ZONE");
        row("blanks around names and value", "  [ Zona 01 ]  \r\n \t Nome   =  Sala  riunioni \t\r\n", "Sala  riunioni",
            "Zona 01", "Nome");
        row("equals sign in the value", "[A]\r\nk=a=b\r\n", "a=b");
        row("empty value is not absent", "[A]\r\nk=\r\n", "");
        row("quotes stripped outside the blanks", "[A]\r\nk=  \" x \"  \r\n", " x ");
        row("single quotes stripped", "[A]\r\nk='x'\r\n", "x");
        row("UTF-16 little-endian", QByteArray("\xFF\xFE[\0A\0]\0\n\0k\0=\0\xB0\0C\0", 18), QString::fromUtf16(u"°C"));
        row("mismatched quotes kept", "[A]\r\nk=\"x'\r\n", "\"x'");
        row("first of two sections", "[A]\r\nk=1\r\n[B]\r\n[a]\r\nk=2\r\n", "1");
        row("key of another section", "[A]\r\nk=1\r\n[B]\r\n", absent, "B");
        row("300 characters read as 254", "[A]\r\nk=" + QByteArray(254, 'a') + QByteArray(46, 'b') + "\r\n",
            QString(254, 'a'));
        row("UTF-8 BOM skipped", "\xEF\xBB\xBF[A]\r\nk=1\r\n", "1");
        row("Windows-1252 text", "[Unit\xE0]\r\nk=\x93\xB0" "C \x80\x94\r\n", QString::fromUtf16(u"“°C €”"),
            QString::fromUtf16(u"UNITÀ"));
        // A legacy editor's stray byte in one line leaves the UTF-8 of the others alone.
        row("UTF-8 line beside a stray byte", "[A]\r\nk=\xC3\xA8\r\nj=\xE8\r\n", QString::fromUtf16(u"è"));
        row("CR alone ends the lines", "[A]\rj=1\rk=2\r", "2");
    }
    void reading()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        const IniFile file = IniFile::parse(bytes);
        QCOMPARE(file.value(section, key), expected.isNull() ? std::nullopt : std::optional<QString>(expected));
        QCOMPARE(file.value(section, key, "default"), expected.isNull() ? QStringLiteral("default") : expected);
    }

    void defaultsAndNames()
    {
        QCOMPARE(IniFile().value("A", "k", QString(300, 'd')), QString(254, 'd'));
        const IniFile file = IniFile::parse("x=0\r\n[Zona 01]\r\nNome=a\r\n; c\r\nnome=b\r\nX=1\r\n[COM]\r\n[zona 01]\r\nY=2\r\n");
        QCOMPARE(file.sectionNames(), QStringList({"Zona 01", "COM"}));
        QCOMPARE(file.keyNames("ZONA 01"), QStringList({"Nome", "X"}));
    }

    void updating_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("after");
        const auto row = [](const char *name, const QByteArray &before, const QByteArray &after,
                            const QString &section = "A", const QString &key = "k", const QString &value = "9") {
            QTest::newRow(name) << before << section << key << value << after;
        };
        row("one line changes, comments and order stay",
            "; Impianto\r\n[Generale]\r\nZone=3\r\n; fine\r\n\r\n[COM]\r\nPorta=1\r\nFormato=9600,N,8,1\r\n",
            "; Impianto\r\n[Generale]\r\nZone=3\r\n; fine\r\n\r\n[COM]\r\nPorta=2\r\nFormato=9600,N,8,1\r\n", "com",
            "PORTA", "2");
        row("LF file is written with CRLF, last line gets its end", "[A]\nk=1\n\ny=2", "[A]\r\nk=9\r\n\r\ny=2\r\n");
        row("missing key goes after the last non-blank line of its section",
            "[A]\r\nx=1\r\n; note\r\n\r\n[B]\r\ny=2\r\n", "[A]\r\nx=1\r\n; note\r\nk=9\r\n\r\n[B]\r\ny=2\r\n");
        row("missing section is appended", "[A]\r\nx=1\r\n", "[A]\r\nx=1\r\n\r\n[Zona 02]\r\nNome=Cucina\r\n",
            "Zona 02", "Nome", "Cucina");
        row("a name with a trailing blank writes the first of the sections it names",
            "[Sinottico]\r\nCampo_1=A\r\n[Sinottico ]\r\nCampo_1=A\r\n",
            "[Sinottico]\r\nCampo_1=B\r\n[Sinottico ]\r\nCampo_1=A\r\n", "Sinottico ", "Campo_1", "B");
        row("Windows-1252 file is written as UTF-8", "[A]\r\nu=\xB0" "C\r\nk=1\r\n",
            "[A]\r\nu=\xC2\xB0" "C\r\nk=5 \xE2\x82\xAC\r\n", "A", "k", QString::fromUtf16(u"5 €"));
    }
    void updating()
    {
        QFETCH(QByteArray, before);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QByteArray, after);
        IniFile file = IniFile::parse(before);
        QVERIFY(file.setValue(section, key, value));
        QCOMPARE(file.toBytes(), after);
        QCOMPARE(IniFile::parse(after).value(section, key), value);
    }

    // A file that is not the text it should be is read as well as it can be, and told
    // about, so that a plant that shows no zones can be explained from the log.
    void formatProblems()
    {
        QCOMPARE(settingsTextProblem("[A]\r\nk=\xC2\xB0\r\n"), QString());
        QVERIFY(settingsTextProblem(QByteArray("\xFF\xFE[\0A\0]\0", 8)).contains("UTF-16"));
        QVERIFY(settingsTextProblem(QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16)).contains("NUL"));
        QVERIFY(settingsTextProblem("[A]\rk=1\r").contains("CR alone"));
    }

    void modeChoosesTheCurrentFile()
    {
        SettingsFolder dir;
        dir.write("Telvane1.ini", "[Generale]\r\nZone=4\r\n");
        IniStore store = dir.store("[Generale]\r\nZone=7\r\n");
        store.setCurrentIniName("Other.ini");
        // No mode file: the industrial plant.
        QVERIFY(!LoadSettings(store).CivilMode);
        QCOMPARE(store.ReadIniKey("Generale", "Zone", ""), QStringLiteral("7"));
        // An empty mode is not "0": the civil plant.
        dir.write("Telvane0.ini", "[Generale]\r\nModo=\r\n");
        QVERIFY(LoadSettings(store).CivilMode);
        QCOMPARE(store.ReadIniKey("Generale", "Zone", ""), QStringLiteral("4"));

        // Writes go to the current file only.
        QVERIFY(store.WriteIniKey("Generale", "Zone", "5"));
        QVERIFY(store.WriteIniKey("COM", "Porta", "2"));
        QCOMPARE(dir.read("Telvane1.ini"), QByteArray("[Generale]\r\nZone=5\r\n\r\n[COM]\r\nPorta=2\r\n"));
        QCOMPARE(dir.read("Telvane2.ini"), QByteArray("[Generale]\r\nZone=7\r\n"));
        QCOMPARE(store.ReadIniKey("generale", "zone", ""), QStringLiteral("5"));

        // The menu's switch stores the other mode and loads it, both ways.
        QVERIFY(!ChangeSettingsFile(store, true).CivilMode);
        QCOMPARE(dir.read("Telvane0.ini"), QByteArray("[Generale]\r\nModo=0\r\n"));
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane2.ini"));
        QVERIFY(ChangeSettingsFile(store, false).CivilMode);
        QCOMPARE(dir.read("Telvane0.ini"), QByteArray("[Generale]\r\nModo=1\r\n"));
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane1.ini"));
    }

    void writesKeepEverythingElse()
    {
        SettingsFolder dir;
        IniStore store = dir.store("; impianto\r\n[COM]\r\nPorta = 1\r\nRetry=1\r\n\r\n[Zona 01]\r\nNome=Sala\r\n");
        const QString path = dir.path(SettingsFolder::Industrial);
        // Existing keys change in place, new keys join their section after its last key, a
        // new section goes at the end, a key given twice keeps its last value; everything
        // else of the file stays as the user left it.
        QVERIFY(store.WriteIniKeys({{"com", "porta", "3"},
                                    {"Zona 01", "Indirizzo", "5"},
                                    {"Zona 02", "Nome", "Cucina"},
                                    {"COM", "TimeOut", "400"},
                                    {"Zona 01", "INDIRIZZO", "7"},
                                    {"Zona 02", "Indirizzo", "6"}}));
        QByteArray saved("; impianto\r\n[COM]\r\nPorta =3\r\nRetry=1\r\nTimeOut=400\r\n\r\n"
                         "[Zona 01]\r\nNome=Sala\r\nIndirizzo=7\r\n\r\n[Zona 02]\r\nNome=Cucina\r\nIndirizzo=6\r\n");
        QCOMPARE(dir.read(SettingsFolder::Industrial), saved);

        // Another program's edit is seen right after our own write, even when it keeps the
        // file's size and time.
        const QDateTime ourWrite = modified(path);
        saved.replace("Porta =3", "Porta =4");
        dir.write(SettingsFolder::Industrial, saved);
        setModified(path, ourWrite);
        QCOMPARE(store.ReadIniKey("COM", "Porta", ""), QStringLiteral("4"));

        // A value written unchanged leaves the file alone: whoever watches its time sees
        // no change that is none.
        const QDateTime old(QDate(2020, 3, 1), QTime(12, 0));
        setModified(path, old);
        QVERIFY(store.WriteIniKey("com", "PORTA", "4"));
        QCOMPARE(modified(path), old);

        // A batch with a key that cannot be written, a section name or a value that would
        // break the file: nothing is written.
        const QStringList before = entries(dir);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write key"));
        QVERIFY(!store.WriteIniKeys({{"COM", "Porta", "2"}, {"B", "x=y", "3"}}));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write key"));
        QVERIFY(!store.WriteIniKey("Zona]", "k", "1"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write key"));
        QVERIFY(!store.WriteIniKey("COM", "x", "1\r\n[B]"));
        // A full disk keeps the old file whole, and nothing is left beside it.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write"));
        {
            const FileSizeLimit limit(8);
            QVERIFY(!store.WriteIniKey("COM", "Porta", "a value longer than the limit"));
        }
        QCOMPARE(dir.read(SettingsFolder::Industrial), saved);
        QCOMPARE(entries(dir), before);
        QCOMPARE(store.ReadIniKey("COM", "Porta", ""), QStringLiteral("4"));

        // A cache that trusts the stamps at once still sees a new one.
        IniFileCache trusting(-1);
        QCOMPARE(trusting.load(path)->value("COM", "Porta"), QStringLiteral("4"));
        dir.write(SettingsFolder::Industrial, saved.replace("Porta =4", "Porta =5"));
        setModified(path, old.addSecs(5));
        QCOMPARE(trusting.load(path)->value("COM", "Porta"), QStringLiteral("5"));
        // A file that is gone reads as absent.
        QVERIFY(QFile::remove(path));
        QCOMPARE(store.ReadIniKey("COM", "Porta", "default"), QStringLiteral("default"));

        // A program folder that is gone is not made by a write.
        IniStore lost{ProgramFolder(dir.path("missing"))};
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write"));
        QVERIFY(!lost.WriteIniKey("A", "k", "1"));
        QVERIFY(!QFileInfo::exists(dir.path("missing")));
        QCOMPARE(lost.ReadIniKey("A", "k", "default"), QStringLiteral("default"));
    }

    // What a save killed half-way leaves beside the settings, chrono and recipe files is
    // removed; files that only look alike are the user's and stay.
    void leftoverSaveFilesRemoved()
    {
        SettingsFolder dir;
        const QStringList leftovers{"Telvane1.ini.k3Xq9Z", "Crono/Cronotermostato.cts.a1B2c3", "Ricetta/Estate.prg.ZZ9zz9"};
        const QStringList kept{"Telvane1.ini", "Telvane1.ini.k3Xq9", "Dati/2026_11_14.csv.a1B2c3"};
        for (const QString &name : leftovers + kept)
            dir.write(name, "x");
        for (int i = 0; i < leftovers.size(); ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Removed .*interrupted"));
        QCOMPARE(removeLeftoverSaveFiles(dir.folder()), leftovers.size());
        for (const QString &name : leftovers)
            QVERIFY2(!QFile::exists(dir.path(name)), qPrintable(name));
        for (const QString &name : kept)
            QVERIFY2(QFile::exists(dir.path(name)), qPrintable(name));
    }
};

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
