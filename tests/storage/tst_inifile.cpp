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

    void unwritableNamesAreRefused_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("bracket in section") << "Zona]" << "k" << "1";
        QTest::newRow("line break in value") << "A" << "x" << "1\r\n[B]";
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
    }

    // A file that is not the text it should be is read as well as it can be, and told
    // about, so that a plant that shows no zones can be explained from the log.
    void formatProblems_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("problem"); // empty: none
        QTest::newRow("UTF-8") << QByteArray("[A]\r\nk=\xC2\xB0\r\n") << QString();
        QTest::newRow("UTF-16") << QByteArray("\xFF\xFE[\0A\0]\0", 8) << "UTF-16";
        QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16) << "NUL";
        QTest::newRow("CR alone") << QByteArray("[A]\rk=1\r") << "CR alone";
    }
    void formatProblems()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, problem);
        const QString found = settingsTextProblem(bytes);
        QVERIFY2(problem.isEmpty() ? found.isEmpty() : found.contains(problem), qPrintable(found));
    }

};

QTEST_GUILESS_MAIN(TestIniFile)
#include "tst_inifile.moc"
