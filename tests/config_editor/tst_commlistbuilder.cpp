#include "config_editor/commlistbuilder.h"
#include "listtext.h"
#include "support/settingsfixture.h"

#include <QRegularExpression>

using namespace telvane;

namespace {

// Three zones (the third without an address), two switches, two LEDs and the door opener;
// one section a line, ";" between the lines of the file.
const char FullPlant[] = R"([Zona 01];Indirizzo=5;Decimali=1;REM_r=1,100;PV_r=3,40001;SP_r=3,40002;AL1_r=3,40003;AL2_r=;AL3_r=4,30005
REM_w=5,100;SP_w=6,40002;AL1_w=6,40003;Slave=1
[Zona 02];Indirizzo= 12;Decimali=2;PV_r=3,1;SP_r=2,7;SP_w=6,2;Slave=0
[Zona 03];Indirizzo=0;PV_r=3,1
[Interruttore 01];Indirizzo=20;Decimali=1;REM_r=1,10;On_r=1,11;Off_r=1,12
REM_w=5,10;On_w=6,200;Off_w=6,201;Val_on=12,5;Val_off=0
[Interruttore 02];Indirizzo=21;Decimali=2;On_w=5,1;Val_on=1;Val_off=7
[LED 01];Indirizzo=7;REM_r=3,9;REM_w=6,9;P1_r=3,40010;Val=25;Col=3
[LED 02];Indirizzo=8;Decimali=1;P1_r=4,20;Val=22,5;Condizione=6
[Apriporta];Indirizzo=30;REM_r=2,1;REM_w=5,1;On_w=5,2;Off_w=5,3;Val_on=1
)";

struct Plant
{
    explicit Plant(const QByteArray &settings) : ini(dir.store(QByteArray(settings).replace(';', '\n'))) {}

    // Every builder, in the order of an editor reload.
    void buildAll(int zones, int leds, bool door, int switches)
    {
        ClearCommLists(lists);
        BuildZoneReadList(ini, zones, lists, tables);
        BuildLedReadList(ini, leds, lists, tables);
        BuildDoorReadList(ini, door, lists, tables);
        BuildSwitchReadList(ini, switches, lists, tables);
        BuildZoneWriteList(ini, zones, lists, tables);
        BuildLedWriteList(ini, leds, lists, tables);
        BuildDoorWriteList(ini, door, lists, tables);
        BuildSwitchWriteList(ini, switches, lists, tables);
    }

    SettingsFolder dir;
    IniStore ini;
    CommLists lists;
    RegisterTables tables;
};

} // namespace

class TestCommListBuilder : public QObject
{
    Q_OBJECT

private slots:
    void fullPlant()
    {
        Plant plant(FullPlant);
        plant.buildAll(3, 2, true, 2);
        QCOMPARE(listsText(plant.lists), QString(R"(L 100>5:3,40001 [1]
L 100>5:3,40002 [1]
L 100>5:3,40003 [1]
L 100>5:4,30005 [1]
L 101>12:3,1 [2]
L 101>12:2,7 [0]
L 300>7:3,40010 @ >=25 [0]
L 301>8:4,20 @ <>22,5 [1]
L 200>20:1,11 [0]
L 200>20:1,12 [0]
S 100>5:6,40002 [1]
S 100>5:6,40003 [1]
S 101>12:6,2 [2]
S 400>30:5,2 @ 1 [0]
S 400>30:5,3 @ 0 [0]
S 200>20:6,200 @ 12,5 [1]
S 200>20:6,201 @ 0 [1]
S 201>21:5,1 @ 1 [2]
R 100>5:1,100 [0]
R 300>7:3,9 [0]
R 400>30:2,1 [0]
R 200>20:1,10 [0]
W 100>5:5,100 [1]
W 300>7:6,9 [0]
W 400>30:5,1 [0]
W 200>20:5,10 [1])"));
        // Registers above 32767 are held as the negative number of their 16 bits.
        const RegisterTables &t = plant.tables;
        QCOMPARE(tableRow(t.ZoneReadTable, 0), (QList<int>{5, 1, 1, 100, 3, -25535, 3, -25534, 3, -25533, -1, -1, 4, 30005}));
        QCOMPARE(tableRow(t.ZoneWriteTable, 1), (QList<int>{12, 2, -1, -1, -1, -1, 6, 2, -1, -1, -1, -1, -1, -1}));
        // Switch 2 has no "Off_w": its value is not kept either.
        QCOMPARE(tableRow(t.SwitchWriteTable, 0), (QList<int>{20, 1, 5, 10, 6, 200, 6, 201, 125, 0, -1, -1}));
        QCOMPARE(tableRow(t.SwitchWriteTable, 1), (QList<int>{21, 2, -1, -1, 5, 1, -1, -1, 100, -1, -1, -1}));
        QCOMPARE(tableRow(t.DoorReadTable, 0), (QList<int>{30, 0, 2, 1, -1, -1, -1, -1, -1, -1, -1, -1}));
        QCOMPARE(tableRow(t.DoorWriteTable, 0), (QList<int>{30, 0, 5, 1, 5, 2, 5, 3, -1, 1, 0, -1}));
        QCOMPARE(tableRow(t.LedReadTable, 1), (QList<int>{8, 1, -1, -1, 4, 20, 225, 1, 6}));
        // Zone 3 is a slave but has no address.
        QCOMPARE(slaveZones(t), QList<int>{2});

        // A rebuild with fewer objects forgets the others.
        const QStringList kept = listsText(plant.lists).split('\n').filter(QRegularExpression("^. [12]00>"));
        plant.buildAll(1, 0, false, 1);
        QCOMPARE(listsText(plant.lists), kept.join('\n'));
        QCOMPARE(tableRow(t.LedReadTable, 1), QList<int>(LedTable::slotCount(), -1));
        QCOMPARE(tableRow(t.DoorWriteTable, 0), QList<int>(DoorTable::slotCount(), -1));
        QCOMPARE(slaveZones(t), QList<int>());
    }

    void slaveFlags()
    {
        // None has an address: the flags do not depend on it.
        Plant plant("[Zona 01]\nSlave=1\n[Zona 02]\nSlave=0\n[Zona 03]\nSlave=\n[Zona 05]\nSlave=1\n[Zona 06]\nSlave=0\n");
        BuildZoneReadList(plant.ini, 5, plant.lists, plant.tables);
        QCOMPARE(slaveZones(plant.tables), (QList<int>{2, 3, 4}));
        // Counts beyond the limit are cut to it.
        SettingsFolder empty;
        BuildZoneReadList(IniStore(empty.folder()), 45, plant.lists, plant.tables);
        QCOMPARE(slaveZones(plant.tables).size(), MaxZones - 1);
        QVERIFY(!plant.tables.zoneSlaveFlags[0]);
    }

    void address_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<QString>("line"); // the zone's reading line, empty when the zone is not used
        QTest::newRow("255") << QByteArray("255") << "100>255:3,7 [1]";
        QTest::newRow("0") << QByteArray("0") << "";
        QTest::newRow("256") << QByteArray("256") << "";
        QTest::newRow("trailing letter") << QByteArray("5x") << "";
        QTest::newRow("decimals") << QByteArray("2.5") << "";
    }
    void address()
    {
        QFETCH(QByteArray, address);
        QFETCH(QString, line);
        const QRegularExpression unusedWarning("\\[Zona 01\\] Indirizzo = .*object not used");
        if (line.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, unusedWarning);
        else
            QTest::failOnWarning(unusedWarning);
        Plant plant("[Zona 01]\nIndirizzo=" + address + "\nDecimali=1\nREM_r=1,1\nPV_r=3,7\n");
        BuildZoneReadList(plant.ini, 1, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines, line.isEmpty() ? QStringList() : QStringList{line});
        QCOMPARE(plant.lists.Lst_RemL.lines.isEmpty(), line.isEmpty());
        QCOMPARE(plant.tables.ZoneReadTable.at(0, zoneQuantityRegisterSlot(0)), line.isEmpty() ? -1 : 7);
    }

    void registerKey_data()
    {
        QTest::addColumn<QByteArray>("key");      // PV_r
        QTest::addColumn<QByteArray>("decimals"); // Decimali
        QTest::addColumn<QString>("line");        // the PV line, empty when the register is not used
        QTest::addColumn<int>("function");
        QTest::addColumn<int>("reg");
        QTest::newRow("coil ignores decimals") << QByteArray("1,7") << QByteArray("2") << "100>5:1,7 [0]" << 1 << 7;
        QTest::newRow("blanks around the comma") << QByteArray("3 , 12") << QByteArray("0") << "100>5:3 , 12 [0]" << 3 << 12;
        QTest::newRow("decimals not a number") << QByteArray("3,1") << QByteArray("x") << "100>5:3,1 [0]" << 3 << 1;
        QTest::newRow("no register") << QByteArray("3") << QByteArray("1") << "" << -1 << -1;
        QTest::newRow("empty, not in use") << QByteArray() << QByteArray("1") << "" << -1 << -1;
        QTest::newRow("register not a number") << QByteArray("3,abc") << QByteArray("1") << "" << -1 << -1;
        QTest::newRow("function beyond a byte") << QByteArray("131,5") << QByteArray("1") << "" << -1 << -1;
    }
    void registerKey()
    {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, decimals);
        QFETCH(QString, line);
        QFETCH(int, function);
        QFETCH(int, reg);
        // An empty key is a register not in use; anything else left out is worth a warning.
        const QRegularExpression keyWarning("\\[Zona 01\\] PV_r = .*register not used");
        if (!line.isEmpty() || key.isEmpty())
            QTest::failOnWarning(keyWarning);
        else
            QTest::ignoreMessage(QtWarningMsg, keyWarning);

        Plant plant("[Zona 01]\nIndirizzo=5\nDecimali=" + decimals + "\nPV_r=" + key + "\nSP_r=3,9\n");
        BuildZoneReadList(plant.ini, 1, plant.lists, plant.tables);
        const ZoneTable &table = plant.tables.ZoneReadTable;
        QCOMPARE(table.at(0, zoneQuantityFunctionSlot(0)), function);
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(0)), reg);
        // A bad key costs only its own register.
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(1)), 9);
        QStringList lines = plant.lists.Lst_Letture.lines;
        QVERIFY(lines.takeLast().startsWith("100>5:3,9 ["));
        QCOMPARE(lines, line.isEmpty() ? QStringList() : QStringList{line});
    }

    // The threshold is held in the LED's decimals, as the instrument sends its reading.
    void led_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QString>("line"); // empty: no P1 register, no line
        QTest::addColumn<int>("threshold");
        QTest::addColumn<int>("colour");
        QTest::addColumn<int>("condition");
        QTest::newRow("condition 2") << QByteArray("P1_r=3,1;Val=25;Condizione=2") << "300>7:3,1 @ <=25 [0]" << 25 << 1 << 2;
        QTest::newRow("condition 5") << QByteArray("P1_r=3,1;Val=25;Condizione=5") << "300>7:3,1 @ <25 [0]" << 25 << 1 << 5;
        QTest::newRow("condition 0") << QByteArray("P1_r=3,1;Val=25;Condizione=0") << "300>7:3,1 @ >=25 [0]" << 25 << 1 << 1;
        QTest::newRow("condition 7") << QByteArray("P1_r=3,1;Val=25;Condizione=7") << "300>7:3,1 @ >=25 [0]" << 25 << 1 << 1;
        QTest::newRow("coil without decimals") << QByteArray("Decimali=2;P1_r=1,1;Val=1") << "300>7:1,1 @ >=1 [0]" << 1 << 1 << 1;
        QTest::newRow("text values") << QByteArray("P1_r=3,1;Val=warm;Col=blue") << "300>7:3,1 @ >=warm [0]" << 0 << 1 << 1;
        QTest::newRow("beyond 16 bits") << QByteArray("Decimali=2;P1_r=3,1;Val=500") << "300>7:3,1 @ >=500 [2]" << 0 << 1 << 1;
        QTest::newRow("no register") << QByteArray("Decimali=1;Val=3;Col=4") << "" << 30 << 4 << 1;
    }
    void led()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QString, line);
        QFETCH(int, threshold);
        QFETCH(int, colour);
        QFETCH(int, condition);
        Plant plant("[LED 01];Indirizzo=7;" + keys);
        BuildLedReadList(plant.ini, 1, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines, line.isEmpty() ? QStringList() : QStringList{line});
        QCOMPARE(plant.tables.LedReadTable.at(0, LedSlot::Threshold), threshold);
        QCOMPARE(plant.tables.LedReadTable.at(0, LedSlot::Colour), colour);
        QCOMPARE(plant.tables.LedReadTable.at(0, LedSlot::Condition), condition);
    }

    // The same keys for a switch and the door opener: only the value slots differ.
    void writtenValues_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QString>("onLine");  // from the address on; empty: none
        QTest::addColumn<QString>("offLine");
        QTest::addColumn<int>("valOn");
        QTest::addColumn<int>("valOff");
        QTest::newRow("comma and negative")
            << QByteArray("On_w=6,1;Off_w=6,2;Val_on=7,25;Val_off=-0.5") << ">20:6,1 @ 7,25 [1]" << ">20:6,2 @ -0.5 [1]"
            << 72 << -5;
        QTest::newRow("coil has no decimals")
            << QByteArray("On_w=2,1;Off_w=6,2;Val_on=3.7;Val_off=3.7") << ">20:2,1 @ 3.7 [0]" << ">20:6,2 @ 3.7 [1]" << 3 << 37;
        QTest::newRow("no On_w") << QByteArray("Off_w=6,1;Val_on=1;Val_off=1") << "" << ">20:6,1 @ 1 [1]" << -1 << 10;
        QTest::newRow("beyond 16 bits") << QByteArray("On_w=6,1;Val_on=3276.8") << ">20:6,1 @ 3276.8 [1]" << "" << 0 << -1;
    }
    void writtenValues()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QString, onLine);
        QFETCH(QString, offLine);
        QFETCH(int, valOn);
        QFETCH(int, valOff);
        Plant plant("[Interruttore 01];Indirizzo=20;Decimali=1;" + keys + ";[Apriporta];Indirizzo=20;Decimali=1;" + keys);
        BuildSwitchWriteList(plant.ini, 1, plant.lists, plant.tables);
        BuildDoorWriteList(plant.ini, true, plant.lists, plant.tables);
        QStringList lines;
        for (const char *code : {"200", "400"}) {
            for (const QString &line : {onLine, offLine}) {
                if (!line.isEmpty())
                    lines << code + line;
            }
        }
        QCOMPARE(plant.lists.Lst_Scritture.lines, lines);
        const SwitchTable &switches = plant.tables.SwitchWriteTable;
        const DoorTable &door = plant.tables.DoorWriteTable;
        QCOMPARE(switches.at(0, SwitchSlot::ValOn), valOn);
        QCOMPARE(switches.at(0, SwitchSlot::ValOff), valOff);
        QCOMPARE(door.at(0, DoorSlot::ValOn), valOn);
        QCOMPARE(door.at(0, DoorSlot::ValOff), valOff);
    }

    void enableFollowsLines()
    {
        Plant plant(FullPlant);
        plant.buildAll(3, 2, true, 2);
        EnableCommLists(plant.lists);
        const CommLists &l = plant.lists;
        QVERIFY(l.Lst_Letture.enabled && l.Lst_Scritture.enabled && l.Lst_RemL.enabled && l.Lst_RemW.enabled);
        // Only zone 2 left: no remote registers at all.
        plant.ini.WriteIniKey("Zona 01", "Indirizzo", "0");
        plant.buildAll(2, 0, false, 0);
        EnableCommLists(plant.lists);
        QVERIFY(l.Lst_Letture.enabled && l.Lst_Scritture.enabled);
        QVERIFY(!l.Lst_RemL.enabled && !l.Lst_RemW.enabled);
    }
};

QTEST_GUILESS_MAIN(TestCommListBuilder)
#include "tst_commlistbuilder.moc"
