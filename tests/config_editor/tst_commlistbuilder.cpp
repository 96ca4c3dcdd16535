#include "config_editor/commlistbuilder.h"
#include "listtext.h"
#include "support/datarows.h"
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
        // Switch 2 has no "Off_w": its value is not kept either. Zone 3 is a slave but
        // has no address.
        QCOMPARE(tablesText(plant.tables), QString(R"(ZR0: 5 1 1 100 3 -25535 3 -25534 3 -25533 -1 -1 4 30005
ZR1: 12 2 -1 -1 3 1 2 7 -1 -1 -1 -1 -1 -1
ZW0: 5 1 5 100 -1 -1 6 -25534 6 -25533 -1 -1 -1 -1
ZW1: 12 2 -1 -1 -1 -1 6 2 -1 -1 -1 -1 -1 -1
SR0: 20 1 1 10 1 11 1 12 -1 -1 -1 -1
SR1: 21 2 -1 -1 -1 -1 -1 -1 -1 -1 -1 -1
SW0: 20 1 5 10 6 200 6 201 125 0 -1 -1
SW1: 21 2 -1 -1 5 1 -1 -1 100 -1 -1 -1
DR0: 30 0 2 1 -1 -1 -1 -1 -1 -1 -1 -1
DW0: 30 0 5 1 5 2 5 3 -1 1 0 -1
LR0: 7 0 3 9 3 -25526 25 3 1
LR1: 8 1 -1 -1 4 20 225 1 6
LW0: 7 0 6 9 -1 -1 -1 -1 -1
LW1: 8 1 -1 -1 -1 -1 -1 -1 -1
slaves 001000000000000000000000000000)"));
        // The named slots the commands use are the ones the builders fill.
        QCOMPARE(plant.tables.DoorWriteTable.at(0, DoorSlot::ValOn), 1);
        QCOMPARE(quint16(plant.tables.ZoneReadTable.at(0, zoneQuantityRegisterSlot(4))), quint16(30005));

        // A rebuild with fewer objects forgets the others.
        const QStringList kept = listsText(plant.lists).split('\n').filter(QRegularExpression("^. [12]00>"));
        plant.buildAll(1, 0, false, 1);
        QCOMPARE(listsText(plant.lists), kept.join('\n'));
        QVERIFY(tablesText(plant.tables).contains("SW0: 20 1 5 10 6 200 6 201 125 0 -1 -1\nslaves 0000"));
    }

    void slaveFlags()
    {
        // None has an address: the flags do not depend on it.
        Plant plant("[Zona 01]\nSlave=1\n[Zona 02]\nSlave=0\n[Zona 03]\nSlave=\n[Zona 05]\nSlave=1\n[Zona 06]\nSlave=0\n");
        BuildZoneReadList(plant.ini, 5, plant.lists, plant.tables);
        QCOMPARE(tablesText(plant.tables), QStringLiteral("\nslaves 001110000000000000000000000000"));
        // Without a settings file every zone but the first is a slave until told otherwise.
        SettingsFolder empty;
        BuildZoneReadList(IniStore(empty.folder()), 30, plant.lists, plant.tables);
        QCOMPARE(tablesText(plant.tables), QStringLiteral("\nslaves 011111111111111111111111111111"));
    }

    void countsOutOfRange()
    {
        QByteArray settings;
        for (int z = 1; z <= 30; ++z)
            settings += QStringLiteral("[Zona %1]\nIndirizzo=%2\nPV_r=3,1\n").arg(z, 2, 10, QChar('0')).arg(z).toLatin1();
        Plant plant(settings);
        BuildZoneReadList(plant.ini, 45, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines.size(), 30);
        QCOMPARE(plant.lists.Lst_Letture.lines.last(), QStringLiteral("129>30:3,1 [0]"));
        QCOMPARE(plant.tables.ZoneReadTable.at(29, ZoneSlot::Address), 30);
        ClearCommLists(plant.lists);
        BuildZoneReadList(plant.ini, -3, plant.lists, plant.tables);
        QCOMPARE(listsText(plant.lists) + tablesText(plant.tables), QStringLiteral("\nslaves 000000000000000000000000000000"));
    }

    // address | the zone's reading line, empty when the zone is not used
    void address_data()
    {
        addRows({"1|100>1:3,7 [1]", "255|100>255:3,7 [1]", "  009  |100>9:3,7 [1]", "0|", "256|", "-5|", "|", "5x|", "2.5|",
                 "99999999999999999999|"});
    }
    void address()
    {
        const QStringList cells = rowCells();
        const QRegularExpression unusedWarning("\\[Zona 01\\] Indirizzo = .*object not used");
        if (cells[1].isEmpty())
            QTest::ignoreMessage(QtWarningMsg, unusedWarning);
        else
            QTest::failOnWarning(unusedWarning);
        Plant plant("[Zona 01]\nIndirizzo=" + cells[0].toLatin1() + "\nDecimali=1\nREM_r=1,1\nPV_r=3,7\n");
        BuildZoneReadList(plant.ini, 1, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines.join('|'), cells[1]);
        QCOMPARE(plant.lists.Lst_RemL.lines.isEmpty(), cells[1].isEmpty());
        QCOMPARE(plant.tables.ZoneReadTable.at(0, zoneQuantityRegisterSlot(0)), cells[1].isEmpty() ? -1 : 7);
    }

    // PV_r | Decimali | the PV line, empty when the register is not used | function | register
    void registerKey_data()
    {
        addRows({"3,40001|1|100>5:3,40001 [1]|3|-25535", "1,7|2|100>5:1,7 [0]|1|7", "2,7|3|100>5:2,7 [0]|2|7",
                 "3,65535|0|100>5:3,65535 [0]|3|-1", "3,1| 01 |100>5:3,1 [01]|3|1", "3 , 12|0|100>5:3 , 12 [0]|3|12",
                 "3,1|x|100>5:3,1 [0]|3|1", "3|1||-1|-1", "|1||-1|-1", "3,abc|1||-1|-1", "131,5|1||-1|-1"});
    }
    void registerKey()
    {
        const QStringList cells = rowCells();
        // An empty key is a register not in use; anything else left out is worth a warning.
        const QRegularExpression keyWarning("\\[Zona 01\\] PV_r = .*register not used");
        if (!cells[2].isEmpty() || cells[0].isEmpty())
            QTest::failOnWarning(keyWarning);
        else
            QTest::ignoreMessage(QtWarningMsg, keyWarning);

        Plant plant("[Zona 01]\nIndirizzo=5\nDecimali=" + cells[1].toLatin1() + "\nPV_r=" + cells[0].toLatin1() + "\nSP_r=3,9\n");
        BuildZoneReadList(plant.ini, 1, plant.lists, plant.tables);
        const ZoneTable &table = plant.tables.ZoneReadTable;
        QCOMPARE(table.at(0, zoneQuantityFunctionSlot(0)), cells[3].toInt());
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(0)), cells[4].toInt());
        // A bad key costs only its own register.
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(1)), 9);
        const QStringList lines = plant.lists.Lst_Letture.lines;
        QCOMPARE(lines.mid(0, lines.size() - 1).join('|'), cells[2]);
        QVERIFY(lines.last().startsWith("100>5:3,9 ["));
    }

    // Condizione ("-" for absent) | operator | stored condition
    void ledCondition_data() { addRows({"-|>=|1", "2|<=|2", "3|=|3", "4|>|4", "5|<|5", "6|<>|6", "0|>=|1", "7|>=|1", "abc|>=|1"}); }
    void ledCondition()
    {
        const QStringList cells = rowCells();
        const QByteArray condition = cells[0] == "-" ? "" : "Condizione=" + cells[0].toLatin1();
        Plant plant("[LED 01]\nIndirizzo=7\nP1_r=3,40010\nVal=25\n" + condition);
        BuildLedReadList(plant.ini, 1, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines, QStringList{"300>7:3,40010 @ " + cells[1] + "25 [0]"});
        QCOMPARE(plant.tables.LedReadTable.at(0, LedSlot::Condition), cells[2].toInt());
    }

    // LED keys | the P1 line | threshold and colour in the row
    void ledThreshold_data()
    {
        addRows({"P1_r=3,1|300>7:3,1 @ >=0 [0]|0 1", "Decimali=1;P1_r=3,1;Val=21.5;Col=2|300>7:3,1 @ >=21.5 [1]|215 2",
                 "Decimali=2;P1_r=1,1;Val=1|300>7:1,1 @ >=1 [0]|1 1", "P1_r=3,1;Val=warm;Col=blue|300>7:3,1 @ >=warm [0]|0 1",
                 "Decimali=2;P1_r=3,1;Val=500|300>7:3,1 @ >=500 [2]|0 1", "Decimali=1;Val=3;Col=4||30 4"});
    }
    void ledThreshold()
    {
        const QStringList cells = rowCells();
        Plant plant("[LED 01];Indirizzo=7;" + cells[0].toLatin1());
        BuildLedReadList(plant.ini, 1, plant.lists, plant.tables);
        const LedTable &table = plant.tables.LedReadTable;
        QCOMPARE(plant.lists.Lst_Letture.lines.join(','), cells[1]);
        QCOMPARE(QStringLiteral("%1 %2").arg(table.at(0, LedSlot::Threshold)).arg(table.at(0, LedSlot::Colour)), cells[2]);
    }

    // keys of a switch and of the door opener | On_w line | Off_w line, each from the
    // address on | Val_on and Val_off in the row
    void writtenValues_data()
    {
        addRows({"On_w=6,1;Off_w=6,2|>20:6,1 @ 0 [1]|>20:6,2 @ 0 [1]|0 0",
                 "On_w=6,1;Off_w=6,2;Val_on=7,25;Val_off=-0.5|>20:6,1 @ 7,25 [1]|>20:6,2 @ -0.5 [1]|72 -5",
                 "On_w=2,1;Off_w=6,2;Val_on=3.7;Val_off=3.7|>20:2,1 @ 3.7 [0]|>20:6,2 @ 3.7 [1]|3 37",
                 "Off_w=6,1;Val_on=1;Val_off=1||>20:6,1 @ 1 [1]|-1 10", "On_w=6,1;Val_on=3276.8|>20:6,1 @ 3276.8 [1]||0 -1"});
    }
    void writtenValues()
    {
        const QStringList cells = rowCells();
        const QByteArray keys = cells[0].toLatin1();
        // The same keys for a switch and the door opener: only the value slots differ.
        Plant plant("[Interruttore 01];Indirizzo=20;Decimali=1;" + keys + ";[Apriporta];Indirizzo=20;Decimali=1;" + keys);
        BuildSwitchWriteList(plant.ini, 1, plant.lists, plant.tables);
        BuildDoorWriteList(plant.ini, true, plant.lists, plant.tables);
        QStringList lines;
        for (const char *code : {"200", "400"}) {
            for (const QString &line : cells.mid(1, 2))
                lines << (line.isEmpty() ? line : code + line);
        }
        lines.removeAll(QString());
        QCOMPARE(plant.lists.Lst_Scritture.lines, lines);
        const SwitchTable &switches = plant.tables.SwitchWriteTable;
        const DoorTable &door = plant.tables.DoorWriteTable;
        QCOMPARE(QStringLiteral("%1 %2").arg(switches.at(0, SwitchSlot::ValOn)).arg(switches.at(0, SwitchSlot::ValOff)), cells[3]);
        QCOMPARE(QStringLiteral("%1 %2").arg(door.at(0, DoorSlot::ValOn)).arg(door.at(0, DoorSlot::ValOff)), cells[3]);
        // Left for the door command to settle.
        QCOMPARE(door.at(0, 8), -1);
        QCOMPARE(door.at(0, 11), -1);
    }

    void enableFollowsLines()
    {
        Plant plant(FullPlant);
        plant.buildAll(3, 2, true, 2);
        EnableCommLists(plant.lists);
        const auto enabled = [&] {
            const CommLists &l = plant.lists;
            return QStringLiteral("%1%2%3%4").arg(l.Lst_Letture.enabled).arg(l.Lst_Scritture.enabled).arg(l.Lst_RemL.enabled).arg(l.Lst_RemW.enabled);
        };
        QCOMPARE(enabled(), QStringLiteral("1111"));
        // Only zone 2 left: no remote registers at all.
        plant.ini.WriteIniKey("Zona 01", "Indirizzo", "0");
        plant.buildAll(2, 0, false, 0);
        EnableCommLists(plant.lists);
        QCOMPARE(enabled(), QStringLiteral("1100"));
        ClearCommLists(plant.lists);
        EnableCommLists(plant.lists);
        QCOMPARE(enabled(), QStringLiteral("0000"));
    }
};

QTEST_GUILESS_MAIN(TestCommListBuilder)
#include "tst_commlistbuilder.moc"
