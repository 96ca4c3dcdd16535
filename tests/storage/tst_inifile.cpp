#include "storage/inifile.h"
#include "storage/legacytext.h"

#include <QRegularExpression>
#include <QTest>

using namespace telvane;

class TestIniFile : public QObject
{
    Q_OBJECT

private slots:
    void reading_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected"); // a null string: the key is absent

        const QString absent;
        QTest::newRow("plain") << QByteArray("[Generale]\r\nZone=5\r\n") << "Generale" << "Zone" << "5";
        QTest::newRow("case of section and key") << QByteArray("[GENERALE]\r\nzone=5\r\n") << "generale" << "ZONE" << "5";
        QTest::newRow("blanks around names and value")
            << QByteArray("  [ Zona 01 ]  \r\n \t Nome   =  Sala  riunioni \t\r\n") << "Zona 01" << "Nome" << "Sala  riunioni";
        QTest::newRow("LF line ends") << QByteArray("[COM]\nPorta=3\nRetry=2\n") << "COM" << "Retry" << "2";
        QTest::newRow("no line end at the end") << QByteArray("[COM]\r\nPorta=3") << "COM" << "Porta" << "3";
        QTest::newRow("equals sign in the value") << QByteArray("[A]\r\nk=a=b\r\n") << "A" << "k" << "a=b";
        QTest::newRow("empty value is not absent") << QByteArray("[A]\r\nk=\r\n") << "A" << "k" << "";
        QTest::newRow("double quotes stripped") << QByteArray("[A]\r\nk=\" x \"\r\n") << "A" << "k" << " x ";
        QTest::newRow("single quotes stripped") << QByteArray("[A]\r\nk='x'\r\n") << "A" << "k" << "x";
        QTest::newRow("quotes outside blanks") << QByteArray("[A]\r\nk=  \"x\"  \r\n") << "A" << "k" << "x";
        QTest::newRow("mismatched quotes kept") << QByteArray("[A]\r\nk=\"x'\r\n") << "A" << "k" << "\"x'";
        QTest::newRow("opening quote only kept") << QByteArray("[A]\r\nk=\"x\r\n") << "A" << "k" << "\"x";
        QTest::newRow("lone quote kept") << QByteArray("[A]\r\nk=\"\r\n") << "A" << "k" << "\"";
        QTest::newRow("inner quotes kept") << QByteArray("[A]\r\nk=a\"b\"\r\n") << "A" << "k" << "a\"b\"";
        QTest::newRow("first of two keys") << QByteArray("[A]\r\nk=1\r\nK=2\r\n") << "A" << "k" << "1";
        QTest::newRow("first of two sections")
            << QByteArray("[A]\r\nk=1\r\n[B]\r\n[a]\r\nk=2\r\n") << "A" << "k" << "1";
        QTest::newRow("keys of a repeated section are not read")
            << QByteArray("[A]\r\nk=1\r\n[B]\r\n[a]\r\nj=2\r\n") << "A" << "j" << absent;
        QTest::newRow("missing section") << QByteArray("[A]\r\nk=1\r\n") << "B" << "k" << absent;
        QTest::newRow("missing key") << QByteArray("[A]\r\nk=1\r\n") << "A" << "j" << absent;
        QTest::newRow("key of another section") << QByteArray("[A]\r\nk=1\r\n[B]\r\n") << "B" << "k" << absent;
        QTest::newRow("key before any section") << QByteArray("k=1\r\n[A]\r\n") << "A" << "k" << absent;
        QTest::newRow("comment line") << QByteArray("[A]\r\n;k=1\r\n") << "A" << "k" << absent;
        QTest::newRow("line without equals") << QByteArray("[A]\r\nk\r\n") << "A" << "k" << absent;
        QTest::newRow("bracket without close does not start a section")
            << QByteArray("[A]\r\n[B\r\nk=1\r\n") << "A" << "k" << "1";
        QTest::newRow("comment after a header") << QByteArray("[A] ; zone\r\nk=1\r\n") << "A" << "k" << "1";
        QTest::newRow("300 characters read as 254")
            << QByteArray("[A]\r\nk=" + QByteArray(254, 'a') + QByteArray(46, 'b') + "\r\n") << "A" << "k"
            << QString(254, QLatin1Char('a'));
        QTest::newRow("cut after the quotes go")
            << QByteArray("[A]\r\nk=\"" + QByteArray(300, 'a') + "\"\r\n") << "A" << "k" << QString(254, QLatin1Char('a'));
        QTest::newRow("NUL inside a value") << QByteArray("[A]\r\nk=a\0b\r\n", 11) << "A" << "k" << QString::fromUtf16(u"a\0b", 3);
        QTest::newRow("UTF-8 BOM skipped") << QByteArray("\xEF\xBB\xBF[A]\r\nk=1\r\n") << "A" << "k" << "1";
        QTest::newRow("UTF-8 degree sign") << QByteArray("[A]\r\nk=\xC2\xB0" "C\r\n") << "A" << "k" << QString::fromUtf16(u"°C");
        QTest::newRow("Windows-1252 degree sign") << QByteArray("[A]\r\nk=\xB0" "C\r\n") << "A" << "k" << QString::fromUtf16(u"°C");
        QTest::newRow("Windows-1252 euro") << QByteArray("[A]\r\nk=5 \x80\r\n") << "A" << "k" << QString::fromUtf16(u"5 €");
        QTest::newRow("Windows-1252 dash and quotes")
            << QByteArray("[A]\r\nk=\x93" "a\x94\x96" "b\r\n") << "A" << "k" << QString::fromUtf16(u"“a”–b");
        QTest::newRow("Windows-1252 accented section")
            << QByteArray("[Unit\xE0]\r\nk=1\r\n") << QString::fromUtf16(u"UNITÀ") << "k" << "1";
        QTest::newRow("one invalid byte makes the whole file Windows-1252")
            << QByteArray("[A]\r\nk=\xC3\xA8\r\nj=\xE8\r\n") << "A" << "k" << QString::fromUtf16(u"Ã¨");
    }
    void reading()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        const IniFile file = IniFile::parse(bytes);
        QCOMPARE(file.value(section, key), expected.isNull() ? std::nullopt : std::optional<QString>(expected));
        QCOMPARE(file.value(section, key, QStringLiteral("default")), expected.isNull() ? QStringLiteral("default") : expected);
    }

    void defaultIsCutLikeAValue()
    {
        const IniFile file;
        QCOMPARE(file.value("A", "k", QString(300, QLatin1Char('d'))), QString(254, QLatin1Char('d')));
    }

    void namesReachableByReading()
    {
        const IniFile file = IniFile::parse("x=0\r\n[Zona 01]\r\nNome=a\r\n; c\r\nnome=b\r\nX=1\r\n[COM]\r\n[zona 01]\r\nY=2\r\n");
        QCOMPARE(file.sectionNames(), QStringList({"Zona 01", "COM"}));
        QCOMPARE(file.keyNames("ZONA 01"), QStringList({"Nome", "X"}));
        QCOMPARE(file.keyNames("Webcam"), QStringList());
    }

    void updating_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("after");

        QTest::newRow("one line changes, comments and order stay")
            << QByteArray("; Impianto\r\n[Generale]\r\nZone=3\r\n; fine\r\n\r\n[COM]\r\nPorta=1\r\nFormato=9600,N,8,1\r\n")
            << "com" << "PORTA" << "2"
            << QByteArray("; Impianto\r\n[Generale]\r\nZone=3\r\n; fine\r\n\r\n[COM]\r\nPorta=2\r\nFormato=9600,N,8,1\r\n");
        QTest::newRow("the key keeps its spelling and blanks")
            << QByteArray("[A]\r\n  ZONE = 3  \r\n") << "A" << "zone" << "5" << QByteArray("[A]\r\n  ZONE =5\r\n");
        QTest::newRow("LF file is written with CRLF")
            << QByteArray("[A]\nx=1\n\ny=2\n") << "A" << "x" << "9" << QByteArray("[A]\r\nx=9\r\n\r\ny=2\r\n");
        QTest::newRow("last line gets its line end")
            << QByteArray("[A]\r\nx=1") << "A" << "x" << "2" << QByteArray("[A]\r\nx=2\r\n");
        QTest::newRow("first of two keys is updated")
            << QByteArray("[A]\r\nk=1\r\nk=2\r\n") << "A" << "k" << "9" << QByteArray("[A]\r\nk=9\r\nk=2\r\n");
        QTest::newRow("missing key goes after the last non-blank line of its section")
            << QByteArray("[A]\r\nx=1\r\n; note\r\n\r\n[B]\r\ny=2\r\n") << "A" << "k" << "9"
            << QByteArray("[A]\r\nx=1\r\n; note\r\nk=9\r\n\r\n[B]\r\ny=2\r\n");
        QTest::newRow("missing key in the last section, trailing blanks stay")
            << QByteArray("[A]\r\nx=1\r\n\r\n\r\n") << "A" << "k" << "9" << QByteArray("[A]\r\nx=1\r\nk=9\r\n\r\n\r\n");
        QTest::newRow("missing key in an empty section")
            << QByteArray("[A]\r\n\r\n[B]\r\n") << "A" << "k" << "9" << QByteArray("[A]\r\nk=9\r\n\r\n[B]\r\n");
        QTest::newRow("missing key goes into the first of two sections")
            << QByteArray("[A]\r\nx=1\r\n[B]\r\n[A]\r\nk=2\r\n") << "A" << "k" << "9"
            << QByteArray("[A]\r\nx=1\r\nk=9\r\n[B]\r\n[A]\r\nk=2\r\n");
        QTest::newRow("missing section is appended")
            << QByteArray("[A]\r\nx=1\r\n") << "Zona 02" << "Nome" << "Cucina"
            << QByteArray("[A]\r\nx=1\r\n\r\n[Zona 02]\r\nNome=Cucina\r\n");
        QTest::newRow("missing section after a blank line")
            << QByteArray("[A]\r\nx=1\r\n\r\n") << "B" << "k" << "9" << QByteArray("[A]\r\nx=1\r\n\r\n[B]\r\nk=9\r\n");
        QTest::newRow("empty file") << QByteArray() << "Generale" << "Modo" << "1" << QByteArray("[Generale]\r\nModo=1\r\n");
        QTest::newRow("names are written trimmed")
            << QByteArray() << " B " << " k " << "9" << QByteArray("[B]\r\nk=9\r\n");
        QTest::newRow("BOM is dropped") << QByteArray("\xEF\xBB\xBF[A]\r\nx=1\r\n") << "A" << "x" << "2"
                                        << QByteArray("[A]\r\nx=2\r\n");
        QTest::newRow("Windows-1252 file is written as UTF-8")
            << QByteArray("[A]\r\nu=\xB0" "C\r\nx=1\r\n") << "A" << "x" << "2"
            << QByteArray("[A]\r\nu=\xC2\xB0" "C\r\nx=2\r\n");
        QTest::newRow("value is written as given")
            << QByteArray("[A]\r\nx=1\r\n") << "A" << "x" << QString::fromUtf16(u"5 €") << QByteArray("[A]\r\nx=5 \xE2\x82\xAC\r\n");
        QTest::newRow("junk lines stay")
            << QByteArray("[A]\r\njunk\r\n[broken\r\n\x01\x02\r\nx=1\r\n") << "A" << "x" << "2"
            << QByteArray("[A]\r\njunk\r\n[broken\r\n\x01\x02\r\nx=2\r\n");
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
        QCOMPARE(file.value(section, key), value);
        QCOMPARE(IniFile::parse(after).value(section, key), value);
    }

    void unwritableNamesAreRefused_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("bracket in section") << "Zona]" << "k" << "1";
        QTest::newRow("equals in key") << "A" << "a=b" << "1";
        QTest::newRow("empty key") << "A" << "  " << "1";
        QTest::newRow("key like a comment") << "A" << ";k" << "1";
        QTest::newRow("key like a header") << "A" << "[k" << "1";
        QTest::newRow("line break in value") << "A" << "x" << "1\r\n[B]";
        QTest::newRow("line break in section") << "A\nB" << "x" << "1";
    }
    void unwritableNamesAreRefused()
    {
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        const QByteArray before("[A]\r\nx=1\r\n");
        IniFile file = IniFile::parse(before);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Cannot write key"));
        QVERIFY(!file.setValue(section, key, value));
        QCOMPARE(file.toBytes(), before);
        QCOMPARE(file.value("A", "x"), QStringLiteral("1"));
    }

    void aLeadingByteOrderMarkInTheTextSurvivesAWrite()
    {
        // Two BOMs: the first is the file's, the second is text of the first line.
        const QByteArray bytes("\xEF\xBB\xBF\xEF\xBB\xBF[A]\r\nk=1\r\n");
        const IniFile file = IniFile::parse(bytes);
        QCOMPARE(file.value("A", "k"), std::nullopt);
        QCOMPARE(file.toBytes(), bytes);
    }

    void garbageNeverCrashes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("NUL bytes") << QByteArray(4096, '\0');
        QTest::newRow("binary") << []() {
            QByteArray bytes;
            for (int i = 0; i < 65536; ++i)
                bytes.append(char((i * 7919 + 13) % 256));
            return bytes;
        }();
        QTest::newRow("open brackets") << QByteArray("[[[[[\r\n[\r\n]\r\n[]\r\n=\r\n==\r\n[A\r\n");
        QTest::newRow("lone carriage returns") << QByteArray("[A]\rk=1\r\r\r\n");
        QTest::newRow("truncated UTF-8 at the end") << QByteArray("[A]\r\nk=\xE2\x82");
    }
    void garbageNeverCrashes()
    {
        QFETCH(QByteArray, bytes);
        IniFile file = IniFile::parse(bytes);
        QCOMPARE(file.value("A", "missing", "d"), QStringLiteral("d"));
        QVERIFY(file.setValue("A", "k", "v"));
        QCOMPARE(IniFile::parse(file.toBytes()).value("A", "k"), QStringLiteral("v"));
    }

    void aTenMegabyteLineReadsAs254Characters()
    {
        const QByteArray bytes = "[A]\r\nk=" + QByteArray(10 * 1024 * 1024, 'x') + "\r\nj=2\r\n";
        const IniFile file = IniFile::parse(bytes);
        QCOMPARE(file.value("A", "k"), QString(254, QLatin1Char('x')));
        QCOMPARE(file.value("A", "j"), QStringLiteral("2"));
    }

    void windows1252HighHalf_data()
    {
        QTest::addColumn<int>("byte");
        QTest::addColumn<int>("codePoint");
        QTest::newRow("euro") << 0x80 << 0x20AC;
        QTest::newRow("undefined 0x81 stays a control") << 0x81 << 0x0081;
        QTest::newRow("S caron") << 0x8A << 0x0160;
        QTest::newRow("en dash") << 0x96 << 0x2013;
        QTest::newRow("trade mark") << 0x99 << 0x2122;
        QTest::newRow("Y diaeresis") << 0x9F << 0x0178;
        QTest::newRow("no-break space is Latin-1") << 0xA0 << 0x00A0;
        QTest::newRow("degree is Latin-1") << 0xB0 << 0x00B0;
        QTest::newRow("y diaeresis is Latin-1") << 0xFF << 0x00FF;
    }
    void windows1252HighHalf()
    {
        QFETCH(int, byte);
        QFETCH(int, codePoint);
        const char bytes[] = {char(byte)};
        QCOMPARE(decodeWindows1252(QByteArrayView(bytes, 1)), QString(QChar(codePoint)));
        QCOMPARE(decodeLegacyText(QByteArrayView(bytes, 1)), QString(QChar(codePoint)));
    }
};

QTEST_GUILESS_MAIN(TestIniFile)
#include "tst_inifile.moc"
