#include "config_editor/editorpages.h"
#include "config_editor/pagemodel.h"
#include "support/settingsfixture.h"

using namespace telvane;

Q_DECLARE_METATYPE(telvane::FieldKind)

namespace {

FieldSpec specOf(FieldKind kind)
{
    FieldSpec definition;
    definition.section = QStringLiteral("Zona 01");
    definition.key = QStringLiteral("K");
    definition.kind = kind;
    definition.maximum = 30;
    return definition;
}

int fieldOf(const PageModel &page, const QString &section, const QString &key)
{
    const int index = page.indexOf(section, key);
    if (index < 0)
        qFatal("no field %s/%s", qPrintable(section), qPrintable(key));
    return index;
}

} // namespace

class TestPageModel : public QObject
{
    Q_OBJECT

private slots:
    // What the technician may type: empty disables on purpose, anything the program
    // would silently leave out, clamp or read as 0 is refused with a reason.
    void fieldProblems_data()
    {
        QTest::addColumn<FieldKind>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("reason"); // a word of the reason; empty: accepted
        QTest::newRow("address empty") << FieldKind::Address << "" << 0 << "";
        QTest::newRow("address 255") << FieldKind::Address << " 255 " << 0 << "";
        QTest::newRow("address 0") << FieldKind::Address << "0" << 0 << "1 a 255";
        QTest::newRow("address 300") << FieldKind::Address << "300" << 0 << "1 a 255";
        QTest::newRow("read register") << FieldKind::ReadRegister << "3,40001" << 0 << "";
        QTest::newRow("read without register") << FieldKind::ReadRegister << "3" << 0 << "Manca il registro";
        QTest::newRow("read with a write code") << FieldKind::ReadRegister << "6,1" << 0 << "1, 2, 3 o 4";
        QTest::newRow("register beyond 65535") << FieldKind::ReadRegister << "3,70000" << 0 << "non valido";
        QTest::newRow("write coil") << FieldKind::WriteRegister << "5,12" << 0 << "";
        QTest::newRow("write with a read code") << FieldKind::WriteRegister << "3,12" << 0 << "5, 6 o 8";
        QTest::newRow("clock code 8") << FieldKind::ClockRegister << "8,100" << 0 << "";
        QTest::newRow("clock coil") << FieldKind::ClockRegister << "5,100" << 0 << "6 o 8";
        QTest::newRow("value comma") << FieldKind::Value << "21,5" << 1 << "";
        QTest::newRow("value text") << FieldKind::Value << "abc" << 1 << "Non è un numero";
        QTest::newRow("value beyond 16 bits") << FieldKind::Value << "3276,8" << 1 << "troppo grande";
        QTest::newRow("value fits without decimals") << FieldKind::Value << "3276" << 0 << "";
        QTest::newRow("colour name") << FieldKind::Colour << "rosso" << 0 << "&H";
        QTest::newRow("count") << FieldKind::Count << "30" << 0 << "";
        QTest::newRow("count beyond") << FieldKind::Count << "31" << 0 << "da 0 a 30";
    }
    void fieldProblems()
    {
        QFETCH(FieldKind, kind);
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(QString, reason);
        const QString problem = fieldProblem(specOf(kind), text, decimals);
        if (reason.isEmpty())
            QVERIFY2(problem.isEmpty(), qPrintable(problem));
        else
            QVERIFY2(problem.contains(reason), qPrintable(problem));
    }

    // Opening shows the stored texts (the page's own defaults for missing keys);
    // confirming writes all ten controls, check boxes as "1"/"0".
    void rs232PageRoundTrip()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("[COM]\r\nPorta=/dev/ttyUSB0\r\nRemoto=1\r\n");
        PageModel page = rs232Page();
        page.load(ini);
        QCOMPARE(page.text(fieldOf(page, "COM", "TimeOut")), QStringLiteral("400"));
        QCOMPARE(page.text(fieldOf(page, "COM", "Porta")), QStringLiteral("/dev/ttyUSB0"));
        QVERIFY(page.canConfirm());
        page.setText(fieldOf(page, "COM", "Base Misura"), "301");
        QVERIFY(page.problem(fieldOf(page, "COM", "Base Misura")).contains("da 5 a 300"));
        QVERIFY(!page.save(ini));
        QCOMPARE(dir.read(SettingsFolder::Industrial), QByteArray("[COM]\r\nPorta=/dev/ttyUSB0\r\nRemoto=1\r\n"));

        page.setText(fieldOf(page, "COM", "Base Misura"), "120");
        page.setText(fieldOf(page, "COM", "Attivita"), "1");
        page.setText(fieldOf(page, "Sinottico", "SuonoAllarme"), "sirena.wav");
        QVERIFY(page.save(ini));
        QCOMPARE(dir.read(SettingsFolder::Industrial),
                 QByteArray("[COM]\r\nPorta=/dev/ttyUSB0\r\nRemoto=1\r\nFormato=9600,N,8,1\r\nRetry=1\r\n"
                            "TimeOut=400\r\nBase Remoto=3\r\nBase Misura=120\r\nBase LED=3\r\nAttivita=1\r\n\r\n"
                            "[Sinottico]\r\nSuonoAllarme=sirena.wav\r\n"));
    }

    // Only the zones within the count (as typed on the page) are checked and saved; the
    // first zone has no slave flag; keys the file lacks and the page left empty stay out.
    void zonePageSavesTheCountedZones()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nZone=3\r\n[Zona 03]\r\nIndirizzo=0\r\n");
        PageModel page = zonesPage();
        page.load(ini);
        QCOMPARE(page.indexOf("Zona 01", "Slave"), -1);
        QVERIFY(page.indexOf("Zona 02", "Slave") >= 0);
        QCOMPARE(page.itemCount(0), 3);
        QVERIFY(page.firstProblem().startsWith("Zona 03, Indirizzo:"));

        page.setText(fieldOf(page, "Generale", "Zone"), "2");
        QVERIFY(page.canConfirm());
        page.setText(fieldOf(page, "Zona 02", "PV_r"), " 3,40001 ");
        QVERIFY(page.save(ini));
        QCOMPARE(ini.ReadIniKey("Generale", "Zone", ""), QStringLiteral("2"));
        QCOMPARE(ini.ReadIniKey("Zona 02", "PV_r", ""), QStringLiteral("3,40001"));
        QCOMPARE(ini.ReadIniKey("Zona 03", "Indirizzo", ""), QStringLiteral("0"));
        QCOMPARE(ini.ReadIniKey("Zona 03", "Nome", "absent"), QStringLiteral("absent"));
        QCOMPARE(ini.ReadIniKey("Zona 02", "PV_w", "absent"), QStringLiteral("absent"));
    }

    // A value goes into the register it is written to: with the item's decimals, or
    // none when that register is a bit.
    void valuesAreCheckedWithTheirRegistersDecimals()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nInterruttori=1\r\nLED=1\r\n"
                                 "[Interruttore 01]\r\nDecimali=2\r\nOn_w=6,5\r\nVal_on=400\r\n"
                                 "[LED 01]\r\nDecimali=2\r\nP1_r=1,5\r\nVal=400\r\nCondizione=6\r\nCol=0\r\n");
        PageModel page = switchesAndLedsPage();
        page.load(ini);
        QCOMPARE(page.problems(), QList<int>{fieldOf(page, "Interruttore 01", "Val_on")});
        page.setText(fieldOf(page, "Interruttore 01", "Decimali"), "1");
        QVERIFY(page.canConfirm());
        page.setText(fieldOf(page, "LED 01", "P1_r"), "3,5");
        QCOMPARE(page.problems(), QList<int>{fieldOf(page, "LED 01", "Val")});
    }

    void flagsReadAsTheProgramReadsThem()
    {
        const PageModel options = generalOptionsPage();
        const FieldSpec &autoStart = options.field(0).definition;
        QVERIFY(!flagTicked(autoStart, "abc"));
        QVERIFY(flagTicked(autoStart, "2"));
        const PageModel zones = zonesPage();
        const FieldSpec &slave = zones.field(zones.indexOf("Zona 02", "Slave")).definition;
        QVERIFY(flagTicked(slave, ""));
        QVERIFY(!flagTicked(slave, " 0 "));
    }
};

QTEST_GUILESS_MAIN(TestPageModel)
#include "tst_pagemodel.moc"
