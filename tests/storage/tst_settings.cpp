#include "filesizelimit.h"
#include "storage/atomicfile.h"
#include "storage/colortext.h"
#include "storage/inifile.h"
#include "storage/inifilecache.h"
#include "storage/inistore.h"
#include "storage/legacytext.h"
#include "storage/modesettings.h"
#include "storage/numbertext.h"
#include "storage/textlinereader.h"
#include "storage/valueconversion.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"

#include <QBuffer>
#include <QRegularExpression>

using namespace telvane;

using OptionalDouble = std::optional<double>;
using OptionalText = std::optional<QString>;
using OptionalRegister = std::optional<qint16>;
using OptionalColour = std::optional<quint32>;

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
// a crash, a full disk or another program's edit never costs a setting; and the numbers,
// colours and register keys a technician types into them.
class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    // As the files from the field were always read: names in any case, blanks and quotes
    // around a value dropped, 254 characters at most, every text encoding a legacy
    // editor may have left.
    void reading()
    {
        const auto read = [](const QByteArray &bytes, const QString &section = "A", const QString &key = "k") {
            return IniFile::parse(bytes).value(section, key);
        };
        QCOMPARE(read("[GENERALE]\r\nzone=5\r\n", "generale", "ZONE"), OptionalText("5"));
        QCOMPARE(read("  [ Zona 01 ]  \r\n \t Nome   =  Sala  riunioni \t\r\n", "Zona 01", "Nome"), OptionalText("Sala  riunioni"));
        QCOMPARE(read("[A]\r\nk=a=b\r\n"), OptionalText("a=b"));
        QCOMPARE(read("[A]\r\nk=\r\n"), OptionalText(""));
        QCOMPARE(read("[A]\r\nk=  \" x \"  \r\n"), OptionalText(" x "));
        QCOMPARE(read("[A]\r\nk='x'\r\n"), OptionalText("x"));
        QCOMPARE(read("[A]\r\nk=\"x'\r\n"), OptionalText("\"x'"));
        // Of two sections with one name the first counts; a key of another section is absent.
        QCOMPARE(read("[A]\r\nk=1\r\n[B]\r\n[a]\r\nk=2\r\n"), OptionalText("1"));
        QCOMPARE(read("[A]\r\nk=1\r\n[B]\r\n", "B"), std::nullopt);
        QCOMPARE(read("[A]\r\nk=" + QByteArray(254, 'a') + QByteArray(46, 'b') + "\r\n"), OptionalText(QString(254, 'a')));
        QCOMPARE(read("[A]\rj=1\rk=2\r"), OptionalText("2"));
        QCOMPARE(read("\xEF\xBB\xBF[A]\r\nk=1\r\n"), OptionalText("1"));
        QCOMPARE(read(QByteArray("\xFF\xFE[\0A\0]\0\n\0k\0=\0\xB0\0C\0", 18)), OptionalText(QString::fromUtf16(u"°C")));
        QCOMPARE(read("[Unit\xE0]\r\nk=\x93\xB0" "C \x80\x94\r\n", QString::fromUtf16(u"UNITÀ")), OptionalText(QString::fromUtf16(u"“°C €”")));
        // A legacy editor's stray byte in one line leaves the UTF-8 of the others alone.
        QCOMPARE(read("[A]\r\nk=\xC3\xA8\r\nj=\xE8\r\n"), OptionalText(QString::fromUtf16(u"è")));
        QCOMPARE(IniFile::parse("[A]\r\nk=1\r\n").value("B", "k", QString(300, 'd')), QString(254, 'd'));
        const IniFile file = IniFile::parse("x=0\r\n[Zona 01]\r\nNome=a\r\n; c\r\nnome=b\r\nX=1\r\n[COM]\r\n[zona 01]\r\nY=2\r\n");
        QCOMPARE(file.sectionNames(), QStringList({"Zona 01", "COM"}));
        QCOMPARE(file.keyNames("ZONA 01"), QStringList({"Nome", "X"}));
        // A file that is not the text it should be is read as well as it can be, and told
        // about, so that a plant that shows no zones can be explained from the log.
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
        QCOMPARE(dir.read("Telvane1.ini"), QByteArray("[Generale]\r\nZone=5\r\n"));
        QCOMPARE(dir.read("Telvane2.ini"), QByteArray("[Generale]\r\nZone=7\r\n"));

        // The menu's switch stores the other mode and loads it, both ways.
        QVERIFY(!changeSettingsFile(store, true).CivilMode);
        QCOMPARE(dir.read("Telvane0.ini"), QByteArray("[Generale]\r\nModo=0\r\n"));
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane2.ini"));
        QVERIFY(changeSettingsFile(store, false).CivilMode);
        QCOMPARE(dir.read("Telvane0.ini"), QByteArray("[Generale]\r\nModo=1\r\n"));
        QCOMPARE(store.currentIniName(), QStringLiteral("Telvane1.ini"));
    }

    void writesKeepEverythingElse()
    {
        SettingsFolder dir;
        // Written by hand on another system: LF line ends, the last line without one, and a
        // legacy editor's Windows-1252 byte.
        IniStore store = dir.store("; impianto\n[COM]\nPorta = 1\nRetry=1\n\n[Zona 01]\nNome=Sal\xE0");
        const QString path = dir.path(SettingsFolder::Industrial);
        // Existing keys change in place, new keys join their section after its last key, a
        // new section goes at the end, a key given twice keeps its last value; everything
        // else of the file stays as the user left it, written as UTF-8 with CR LF.
        QVERIFY(store.writeIniKeys({{"com", "porta", "3"},
                                    {"Zona 01", "Indirizzo", "5"},
                                    {"Zona 02", "Nome", "Cucina"},
                                    {"COM", "TimeOut", "400"},
                                    {"Zona 01", "INDIRIZZO", "7"},
                                    {"Zona 02", "Indirizzo", "6"}}));
        QByteArray saved("; impianto\r\n[COM]\r\nPorta =3\r\nRetry=1\r\nTimeOut=400\r\n\r\n"
                         "[Zona 01]\r\nNome=Sal\xC3\xA0\r\nIndirizzo=7\r\n\r\n[Zona 02]\r\nNome=Cucina\r\nIndirizzo=6\r\n");
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
        for (int refused = 0; refused < 3; ++refused)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write key"));
        QVERIFY(!store.writeIniKeys({{"COM", "Porta", "2"}, {"B", "x=y", "3"}}));
        QVERIFY(!store.WriteIniKey("Zona]", "k", "1"));
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
        // Of two sections whose names differ by a trailing blank, the first is written.
        IniFile twin = IniFile::parse("[Sinottico]\r\nCampo_1=A\r\n[Sinottico ]\r\nCampo_1=A\r\n");
        QVERIFY(twin.setValue("Sinottico ", "Campo_1", "B"));
        QCOMPARE(twin.toBytes(), QByteArray("[Sinottico]\r\nCampo_1=B\r\n[Sinottico ]\r\nCampo_1=A\r\n"));
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

    void numbersAndColours()
    {
        QCOMPARE(parseNumber("21,5"), OptionalDouble(21.5));
        // Whatever the program would read otherwise than the user meant is no number.
        QCOMPARE(parseNumber("1.234,5"), OptionalDouble());
        QCOMPARE(parseNumber("12abc"), OptionalDouble());
        QCOMPARE(parseNumber(QString::fromUtf8("\u0661\u0662")), OptionalDouble());
        QCOMPARE(parseNumber(QString(400, '9')), OptionalDouble());
        QCOMPARE(parseNumber("0." + QString(400, '0') + "1"), OptionalDouble(0.0));
        // Set points and chart limits stay finite.
        QCOMPARE(parseSingle("20,5"), std::optional<float>(20.5f));
        QCOMPARE(parseSingle("-1" + QString(39, '0')), std::nullopt);
        QCOMPARE(parseSingle("nan"), std::nullopt);
        // The lenient reading of old files takes the number the text starts with.
        QCOMPARE(leadingInteger("12abc", -7), 12);
        QCOMPARE(leadingInteger("1.5.3", -7), 2);
        QCOMPARE(leadingNumber("99999999999"), 99999999999.0);
        QCOMPARE(leadingInteger("99999999999", -7), 2147483647);
        QCOMPARE(leadingNumber("-" + QString(400, '9')), 0.0);
        QCOMPARE(leadingInteger("-" + QString(400, '9'), -7), -2147483647 - 1);
        QCOMPARE(formatFixed(0.25, 1), QStringLiteral("0.3"));
        QCOMPARE(formatFixed(-0.04, 1), QStringLiteral("0.0"));
        QCOMPARE(FormatZoneValue(21.5f, 0, "°C"), QStringLiteral("22 °C"));
        QCOMPARE(FormatZoneValue(-3.25f, 1, "°C"), QStringLiteral("-3.3 °C"));
        QCOMPARE(FormatZoneValue(1.23456f, 7, "°C"), QStringLiteral("1.235 °C"));
        QCOMPARE(FormatZoneValue(InvalidValue, 3, "°C"), QStringLiteral("--.-"));
        QCOMPARE(FormatZoneValue(-99999.5f, 1, "°C"), QStringLiteral("-99999.5 °C"));
        // Colours as a legacy editor wrote them: "&H" hexadecimal or a signed decimal.
        QCOMPARE(parseColorText("&h80ff"), OptionalColour(0x80FF));
        QCOMPARE(parseColorText("&H800000&"), OptionalColour(0x800000));
        QCOMPARE(parseColorText("16777215"), OptionalColour(0xFFFFFF));
        QCOMPARE(parseColorText("-32513"), OptionalColour(0xFFFF80FF));
        for (const char *text : {"&H1FFFFFFFF", "4294967296", "&HGG00", "&H-FF"})
            QVERIFY2(!parseColorText(text), text);
        QCOMPARE(formatColorText(0x00c0e0ff), QStringLiteral("&HC0E0FF"));
        for (const quint32 colour : {0x0u, 0xFFFF80FFu})
            QCOMPARE(parseColorText(formatColorText(colour)), OptionalColour(colour));
    }

    void operatorText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<OptionalRegister>("registerValue"); // none: the text does not convert
        QTest::addColumn<float>("value");
        const auto row = [](const QString &text, int decimals, OptionalRegister raw, float value) {
            QTest::addRow("'%s' with %d decimals", qPrintable(text.left(12)), decimals) << text << decimals << raw << value;
        };
        row("7,25", 1, 72, 7.2f);
        row("1.2,5", 1, 1, 0.125f);
        row(" -0,5 ", 1, -5, -0.5f);
        row("-3276,8", 1, -32768, -3276.8f);
        row("12abc", 0, std::nullopt, 12.0f);
        row("1,5", 5, 15000, 0.15f);
        row("21,5", -1, 21, 21.0f);
        row(QString(60, '9'), 0, std::nullopt, 0.0f);
    }
    void operatorText()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(OptionalRegister, registerValue);
        QFETCH(float, value);
        QCOMPARE(registerFromText(text, decimals), registerValue);
        // The unchecked conversion passes every failure over as 0.
        QCOMPARE(TextToRegister(text, decimals), registerValue.value_or(0));
        QCOMPARE(TextToValue(text, decimals), value);
    }

    void fileLines()
    {
        // The lines joined by "|", with "!" for a line longer than eight bytes.
        const auto lines = [](QByteArray content) {
            QBuffer buffer(&content);
            buffer.open(QIODevice::ReadOnly);
            TextLineReader reader(buffer, 8);
            QStringList lines;
            QByteArray line;
            for (TextLineReader::Result result; lines.size() < 5 && (result = reader.readLine(line)) != TextLineReader::Result::End;)
                lines << (result == TextLineReader::Result::TooLong ? QStringLiteral("!") : QString::fromLatin1(line));
            return lines.join('|');
        };
        QCOMPARE(lines("a\r\nbc"), QStringLiteral("a|bc"));
        QCOMPARE(lines("a\nbc\r"), QStringLiteral("a|bc"));
        QCOMPARE(lines("a\rb\n"), QStringLiteral("a\rb"));
        QCOMPARE(lines("12345678\r\nx\n"), QStringLiteral("12345678|x"));
        QCOMPARE(lines("123456789\r\nx\n"), QStringLiteral("!|x"));
        QCOMPARE(lines("123456789\nx\n"), QStringLiteral("!|x"));
        // A huge line is skipped whole, not handed out in pieces.
        QCOMPARE(lines(QByteArray(300000, 'z') + "\nafter\n"), QStringLiteral("!|after"));
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
