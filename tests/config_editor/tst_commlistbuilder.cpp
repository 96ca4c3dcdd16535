#include "config_editor/commlistbuilder.h"
#include "config_editor/commlists.h"
#include "config_editor/registertables.h"
#include "storage/inistore.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

// A register number as the 16-bit table holds it.
constexpr int reg(int number)
{
    return qint16(quint16(number));
}

template <typename Table>
QList<int> row(const Table &table, int index)
{
    QList<int> values;
    for (int s = 0; s < Table::slotCount(); ++s)
        values.append(table.at(index, s));
    return values;
}

template <typename Table>
QList<int> unusedRow()
{
    return QList<int>(Table::slotCount(), -1);
}

// Three zones (the third without an address), two switches, two LEDs and the door opener.
const char FullPlant[] = R"([Zona 01]
Indirizzo=5
Decimali=1
REM_r=1,100
PV_r=3,40001
SP_r=3,40002
AL1_r=3,40003
AL2_r=
AL3_r=4,30005
REM_w=5,100
SP_w=6,40002
AL1_w=6,40003
Slave=1

[Zona 02]
Indirizzo= 12
Decimali=2
PV_r=3,1
SP_r=2,7
SP_w=6,2
Slave=0

[Zona 03]
Indirizzo=0
Decimali=1
PV_r=3,1
REM_w=5,1

[Interruttore 01]
Indirizzo=20
Decimali=1
REM_r=1,10
On_r=1,11
Off_r=1,12
REM_w=5,10
On_w=6,200
Off_w=6,201
Val_on=12,5
Val_off=0

[Interruttore 02]
Indirizzo=21
Decimali=2
On_w=5,1
Val_on=1
Val_off=7

[LED 01]
Indirizzo=7
REM_r=3,9
REM_w=6,9
P1_r=3,40010
Val=25
Col=3

[LED 02]
Indirizzo=8
Decimali=1
P1_r=4,20
Val=22,5
Condizione=6

[Apriporta]
Indirizzo=30
REM_r=2,1
REM_w=5,1
On_w=5,2
Off_w=5,3
Val_on=1
)";

class Plant
{
public:
    explicit Plant(const QByteArray &settings) : m_ini(ProgramFolder(m_dir.path()))
    {
        QFile file(m_dir.filePath(m_ini.currentIniName()));
        if (file.open(QIODevice::WriteOnly))
            file.write(settings);
    }

    IniStore &ini() { return m_ini; }

    // Every builder, in the order of an editor reload.
    void buildAll(int zones, int leds, bool door, int switches)
    {
        ClearCommLists(lists);
        BuildZoneReadList(m_ini, zones, lists, tables);
        BuildLedReadList(m_ini, leds, lists, tables);
        BuildDoorReadList(m_ini, door, lists, tables);
        BuildSwitchReadList(m_ini, switches, lists, tables);
        BuildZoneWriteList(m_ini, zones, lists, tables);
        BuildLedWriteList(m_ini, leds, lists, tables);
        BuildDoorWriteList(m_ini, door, lists, tables);
        BuildSwitchWriteList(m_ini, switches, lists, tables);
    }

    CommLists lists;
    RegisterTables tables;

private:
    QTemporaryDir m_dir;
    IniStore m_ini;
};

// One zone whose keys are given; the lines and row of its read table after a build.
struct OneZone
{
    explicit OneZone(const QByteArray &keys) : plant("[Zona 01]\n" + keys)
    {
        BuildZoneReadList(plant.ini(), 1, plant.lists, plant.tables);
    }
    Plant plant;
};

} // namespace

class TestCommListBuilder : public QObject
{
    Q_OBJECT

private slots:
    void fullPlantLists()
    {
        Plant plant(FullPlant);
        plant.buildAll(3, 2, true, 2);

        QCOMPARE(plant.lists.Lst_Letture.lines, QStringList({
                                                    "100>5:3,40001 [1]",
                                                    "100>5:3,40002 [1]",
                                                    "100>5:3,40003 [1]",
                                                    "100>5:4,30005 [1]",
                                                    "101>12:3,1 [2]",
                                                    "101>12:2,7 [0]",
                                                    "300>7:3,40010 @ >=25 [0]",
                                                    "301>8:4,20 @ <>22,5 [1]",
                                                    "200>20:1,11 [0]",
                                                    "200>20:1,12 [0]",
                                                }));
        QCOMPARE(plant.lists.Lst_RemL.lines, QStringList({
                                                 "100>5:1,100 [0]",
                                                 "300>7:3,9 [0]",
                                                 "400>30:2,1 [0]",
                                                 "200>20:1,10 [0]",
                                             }));
        QCOMPARE(plant.lists.Lst_Scritture.lines, QStringList({
                                                      "100>5:6,40002 [1]",
                                                      "100>5:6,40003 [1]",
                                                      "101>12:6,2 [2]",
                                                      "400>30:5,2 @ 1 [0]",
                                                      "400>30:5,3 @ 0 [0]",
                                                      "200>20:6,200 @ 12,5 [1]",
                                                      "200>20:6,201 @ 0 [1]",
                                                      "201>21:5,1 @ 1 [2]",
                                                  }));
        QCOMPARE(plant.lists.Lst_RemW.lines, QStringList({
                                                 "100>5:5,100 [1]",
                                                 "300>7:6,9 [0]",
                                                 "400>30:5,1 [0]",
                                                 "200>20:5,10 [1]",
                                             }));
    }

    void fullPlantTables()
    {
        Plant plant(FullPlant);
        plant.buildAll(3, 2, true, 2);
        const RegisterTables &t = plant.tables;

        QCOMPARE(row(t.ZoneReadTable, 0),
                 QList<int>({5, 1, 1, 100, 3, reg(40001), 3, reg(40002), 3, reg(40003), -1, -1, 4, 30005}));
        QCOMPARE(row(t.ZoneReadTable, 1), QList<int>({12, 2, -1, -1, 3, 1, 2, 7, -1, -1, -1, -1, -1, -1}));
        QCOMPARE(row(t.ZoneWriteTable, 0),
                 QList<int>({5, 1, 5, 100, -1, -1, 6, reg(40002), 6, reg(40003), -1, -1, -1, -1}));
        QCOMPARE(row(t.ZoneWriteTable, 1), QList<int>({12, 2, -1, -1, -1, -1, 6, 2, -1, -1, -1, -1, -1, -1}));
        // Zone 3 has no address; the zones after it are not configured.
        for (int z = 2; z < MaxZones; ++z) {
            QCOMPARE(row(t.ZoneReadTable, z), unusedRow<ZoneTable>());
            QCOMPARE(row(t.ZoneWriteTable, z), unusedRow<ZoneTable>());
        }

        QCOMPARE(row(t.SwitchReadTable, 0), QList<int>({20, 1, 1, 10, 1, 11, 1, 12, -1, -1, -1, -1}));
        QCOMPARE(row(t.SwitchReadTable, 1), QList<int>({21, 2, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}));
        QCOMPARE(row(t.SwitchWriteTable, 0), QList<int>({20, 1, 5, 10, 6, 200, 6, 201, 125, 0, -1, -1}));
        // No "Off_w": its value is not kept either.
        QCOMPARE(row(t.SwitchWriteTable, 1), QList<int>({21, 2, -1, -1, 5, 1, -1, -1, 100, -1, -1, -1}));
        for (int s = 2; s < MaxSwitches; ++s) {
            QCOMPARE(row(t.SwitchReadTable, s), unusedRow<SwitchTable>());
            QCOMPARE(row(t.SwitchWriteTable, s), unusedRow<SwitchTable>());
        }

        QCOMPARE(row(t.LedReadTable, 0), QList<int>({7, 0, 3, 9, 3, reg(40010), 25, 3, 1}));
        QCOMPARE(row(t.LedReadTable, 1), QList<int>({8, 1, -1, -1, 4, 20, 225, 1, 6}));
        QCOMPARE(row(t.LedWriteTable, 0), QList<int>({7, 0, 6, 9, -1, -1, -1, -1, -1}));
        QCOMPARE(row(t.LedWriteTable, 1), QList<int>({8, 1, -1, -1, -1, -1, -1, -1, -1}));
        for (int l = 2; l < MaxLeds; ++l) {
            QCOMPARE(row(t.LedReadTable, l), unusedRow<LedTable>());
            QCOMPARE(row(t.LedWriteTable, l), unusedRow<LedTable>());
        }

        QCOMPARE(row(t.DoorReadTable, 0), QList<int>({30, 0, 2, 1, -1, -1, -1, -1, -1, -1, -1, -1}));
        QCOMPARE(row(t.DoorWriteTable, 0), QList<int>({30, 0, 5, 1, 5, 2, 5, 3, -1, 1, 0, -1}));

        QCOMPARE(t.DoorWriteTable.at(0, DoorSlot::ValOn), 1);
        QCOMPARE(t.SwitchWriteTable.at(0, SwitchSlot::ValOn), 125);
        QCOMPARE(quint16(t.ZoneReadTable.at(0, zoneQuantityRegisterSlot(0))), quint16(40001));
    }

    void slaveFlags()
    {
        Plant plant(R"([Zona 01]
Slave=1
[Zona 02]
Slave=0
[Zona 03]
Slave=
[Zona 05]
Slave=1
[Zona 06]
Slave=0
)");
        // None has an address: the flags do not depend on it.
        BuildZoneReadList(plant.ini(), 5, plant.lists, plant.tables);
        std::array<bool, MaxZones> expected{};
        expected[2] = true; // empty
        expected[3] = true; // absent
        expected[4] = true;
        QCOMPARE(plant.tables.zoneSlaveFlags, expected);
        QVERIFY(plant.lists.Lst_Letture.lines.isEmpty());
    }

    void rebuildForgetsRemovedObjects()
    {
        Plant plant(FullPlant);
        plant.buildAll(3, 2, true, 2);
        QVERIFY(plant.tables.zoneSlaveFlags[2]);

        plant.buildAll(1, 0, false, 1);
        QCOMPARE(row(plant.tables.ZoneReadTable, 1), unusedRow<ZoneTable>());
        QCOMPARE(row(plant.tables.LedReadTable, 0), unusedRow<LedTable>());
        QCOMPARE(row(plant.tables.DoorWriteTable, 0), unusedRow<DoorTable>());
        QCOMPARE(row(plant.tables.SwitchWriteTable, 1), unusedRow<SwitchTable>());
        QCOMPARE(plant.tables.zoneSlaveFlags, (std::array<bool, MaxZones>{}));
        QCOMPARE(plant.lists.Lst_RemL.lines, QStringList({"100>5:1,100 [0]", "200>20:1,10 [0]"}));
    }

    void countsOutOfRange_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("rowsUsed");
        QTest::newRow("negative") << -3 << 0;
        QTest::newRow("zero") << 0 << 0;
        QTest::newRow("above the maximum") << 45 << 30;
    }

    void countsOutOfRange()
    {
        QFETCH(int, count);
        QFETCH(int, rowsUsed);
        QByteArray settings;
        for (int z = 1; z <= 30; ++z)
            settings += QStringLiteral("[Zona %1]\nIndirizzo=%2\nPV_r=3,1\n").arg(z, 2, 10, QChar('0')).arg(z).toLatin1();
        Plant plant(settings);
        BuildZoneReadList(plant.ini(), count, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines.size(), rowsUsed);
        for (int z = 0; z < MaxZones; ++z)
            QCOMPARE(plant.tables.ZoneReadTable.at(z, ZoneSlot::Address), z < rowsUsed ? z + 1 : -1);
        if (rowsUsed > 0)
            QCOMPARE(plant.lists.Lst_Letture.lines.last(), QStringLiteral("129>30:3,1 [0]"));
    }

    void address_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<QString>("line"); // empty: the zone is not used

        QTest::newRow("1") << QByteArray("1") << "100>1:3,7 [1]";
        QTest::newRow("255") << QByteArray("255") << "100>255:3,7 [1]";
        QTest::newRow("blanks") << QByteArray("  9  ") << "100>9:3,7 [1]";
        QTest::newRow("leading zero") << QByteArray("009") << "100>9:3,7 [1]";
        QTest::newRow("0") << QByteArray("0") << QString();
        QTest::newRow("256") << QByteArray("256") << QString();
        QTest::newRow("negative") << QByteArray("-5") << QString();
        QTest::newRow("empty") << QByteArray("") << QString();
        QTest::newRow("garbage") << QByteArray("abc") << QString();
        QTest::newRow("trailing garbage") << QByteArray("5x") << QString();
        QTest::newRow("fraction") << QByteArray("2.5") << QString();
        QTest::newRow("huge") << QByteArray("99999999999999999999") << QString();
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
        OneZone zone("Indirizzo=" + address + "\nDecimali=1\nREM_r=1,1\nPV_r=3,7\n");
        const ZoneTable &table = zone.plant.tables.ZoneReadTable;
        if (line.isEmpty()) {
            QVERIFY(zone.plant.lists.Lst_Letture.lines.isEmpty());
            QVERIFY(zone.plant.lists.Lst_RemL.lines.isEmpty());
            QCOMPARE(row(table, 0), unusedRow<ZoneTable>());
        } else {
            QCOMPARE(zone.plant.lists.Lst_Letture.lines, QStringList{line});
            QCOMPARE(table.at(0, ZoneSlot::Decimals), 1);
            QCOMPARE(table.at(0, zoneQuantityRegisterSlot(0)), 7);
        }
    }

    void registerKey_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("decimals");
        QTest::addColumn<QString>("line"); // empty: the register is not used
        QTest::addColumn<int>("function");
        QTest::addColumn<int>("registerNumber");

        QTest::newRow("holding register") << QByteArray("3,40001") << QByteArray("1") << "100>5:3,40001 [1]" << 3
                                          << reg(40001);
        QTest::newRow("input register") << QByteArray("4,7") << QByteArray("2") << "100>5:4,7 [2]" << 4 << 7;
        QTest::newRow("coil: no decimals") << QByteArray("1,7") << QByteArray("2") << "100>5:1,7 [0]" << 1 << 7;
        QTest::newRow("input bit: no decimals") << QByteArray("2,7") << QByteArray("3") << "100>5:2,7 [0]" << 2
                                                << 7;
        QTest::newRow("register 0") << QByteArray("3,0") << QByteArray("0") << "100>5:3,0 [0]" << 3 << 0;
        QTest::newRow("highest register") << QByteArray("3,65535") << QByteArray("0") << "100>5:3,65535 [0]" << 3
                                          << -1;
        QTest::newRow("decimals text kept") << QByteArray("3,1") << QByteArray(" 01 ") << "100>5:3,1 [01]" << 3 << 1;
        QTest::newRow("blanks inside") << QByteArray("3 , 12") << QByteArray("0") << "100>5:3 , 12 [0]" << 3 << 12;
        QTest::newRow("garbage decimals") << QByteArray("3,1") << QByteArray("x") << "100>5:3,1 [0]" << 3 << 1;
        QTest::newRow("too many decimals") << QByteArray("3,1") << QByteArray("4") << "100>5:3,1 [0]" << 3 << 1;

        QTest::newRow("no comma") << QByteArray("3") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("empty") << QByteArray("") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("blank") << QByteArray("   ") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("register not a number") << QByteArray("3,abc") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("function not a number") << QByteArray("x,5") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("no function") << QByteArray(",5") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("no register") << QByteArray("3,") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("two commas") << QByteArray("3,40001,2") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("register too big") << QByteArray("3,65536") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("negative register") << QByteArray("3,-1") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("function 0") << QByteArray("0,5") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("exception function") << QByteArray("131,5") << QByteArray("1") << QString() << -1 << -1;
        QTest::newRow("fractional function") << QByteArray("3.5,5") << QByteArray("1") << QString() << -1 << -1;
    }

    void registerKey()
    {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, decimals);
        QFETCH(QString, line);
        QFETCH(int, function);
        QFETCH(int, registerNumber);

        // An empty key is a register not in use; anything else left out is worth a warning.
        const QRegularExpression keyWarning("\\[Zona 01\\] PV_r = .*register not used");
        if (!line.isEmpty() || key.trimmed().isEmpty())
            QTest::failOnWarning(keyWarning);
        else
            QTest::ignoreMessage(QtWarningMsg, keyWarning);

        OneZone zone("Indirizzo=5\nDecimali=" + decimals + "\nPV_r=" + key + "\nSP_r=3,9\n");
        const ZoneTable &table = zone.plant.tables.ZoneReadTable;
        QCOMPARE(table.at(0, zoneQuantityFunctionSlot(0)), function);
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(0)), registerNumber);
        // A bad key costs only its own register.
        QCOMPARE(table.at(0, ZoneSlot::Address), 5);
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(1)), 9);
        const QStringList lines = zone.plant.lists.Lst_Letture.lines;
        QCOMPARE(lines.size(), line.isEmpty() ? 1 : 2);
        if (!line.isEmpty())
            QCOMPARE(lines.first(), line);
        QVERIFY(lines.last().startsWith("100>5:3,9 ["));
    }

    void ledCondition_data()
    {
        QTest::addColumn<QByteArray>("condition"); // null: key absent
        QTest::addColumn<QString>("op");
        QTest::addColumn<int>("stored");

        QTest::newRow("absent") << QByteArray() << ">=" << 1;
        QTest::newRow("1") << QByteArray("1") << ">=" << 1;
        QTest::newRow("2") << QByteArray("2") << "<=" << 2;
        QTest::newRow("3") << QByteArray("3") << "=" << 3;
        QTest::newRow("4") << QByteArray("4") << ">" << 4;
        QTest::newRow("5") << QByteArray("5") << "<" << 5;
        QTest::newRow("6") << QByteArray("6") << "<>" << 6;
        QTest::newRow("0") << QByteArray("0") << ">=" << 1;
        QTest::newRow("7") << QByteArray("7") << ">=" << 1;
        QTest::newRow("9") << QByteArray("9") << ">=" << 1;
        QTest::newRow("garbage") << QByteArray("abc") << ">=" << 1;
        QTest::newRow("empty") << QByteArray("") << ">=" << 1;
    }

    void ledCondition()
    {
        QFETCH(QByteArray, condition);
        QFETCH(QString, op);
        QFETCH(int, stored);
        QByteArray keys = "[LED 01]\nIndirizzo=7\nP1_r=3,40010\nVal=25\n";
        if (!condition.isNull())
            keys += "Condizione=" + condition + "\n";
        Plant plant(keys);
        BuildLedReadList(plant.ini(), 1, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines, QStringList{"300>7:3,40010 @ " + op + "25 [0]"});
        QCOMPARE(plant.tables.LedReadTable.at(0, LedSlot::Condition), stored);
    }

    void ledThreshold_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("threshold");
        QTest::addColumn<int>("colour");

        QTest::newRow("defaults") << QByteArray("P1_r=3,1\n") << "300>7:3,1 @ >=0 [0]" << 0 << 1;
        QTest::newRow("scaled like P1") << QByteArray("Decimali=1\nP1_r=3,1\nVal=21.5\nCol=2\n")
                                        << "300>7:3,1 @ >=21.5 [1]" << 215 << 2;
        QTest::newRow("bit read: no decimals") << QByteArray("Decimali=2\nP1_r=1,1\nVal=1\n") << "300>7:1,1 @ >=1 [0]"
                                               << 1 << 1;
        QTest::newRow("garbage threshold") << QByteArray("P1_r=3,1\nVal=warm\nCol=blue\n") << "300>7:3,1 @ >=warm [0]"
                                           << 0 << 1;
        QTest::newRow("threshold overflows") << QByteArray("Decimali=2\nP1_r=3,1\nVal=500\n")
                                             << "300>7:3,1 @ >=500 [2]" << 0 << 1;
        QTest::newRow("no P1") << QByteArray("Decimali=1\nVal=3\nCol=4\n") << QString() << 30 << 4;
    }

    void ledThreshold()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QString, line);
        QFETCH(int, threshold);
        QFETCH(int, colour);
        Plant plant("[LED 01]\nIndirizzo=7\n" + keys);
        BuildLedReadList(plant.ini(), 1, plant.lists, plant.tables);
        QCOMPARE(plant.lists.Lst_Letture.lines, line.isEmpty() ? QStringList() : QStringList{line});
        QCOMPARE(plant.tables.LedReadTable.at(0, LedSlot::Threshold), threshold);
        QCOMPARE(plant.tables.LedReadTable.at(0, LedSlot::Colour), colour);
    }

    void writtenValues_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<int>("valOn");
        QTest::addColumn<int>("valOff");

        QTest::newRow("defaults") << QByteArray("On_w=6,1\nOff_w=6,2\n")
                                  << QStringList{"200>20:6,1 @ 0 [1]", "200>20:6,2 @ 0 [1]"} << 0 << 0;
        QTest::newRow("scaled by decimals") << QByteArray("On_w=6,1\nOff_w=6,2\nVal_on=7,25\nVal_off=-0.5\n")
                                            << QStringList{"200>20:6,1 @ 7,25 [1]", "200>20:6,2 @ -0.5 [1]"} << 72
                                            << -5;
        QTest::newRow("bit register: no decimals")
            << QByteArray("On_w=2,1\nOff_w=6,2\nVal_on=3.7\nVal_off=3.7\n")
            << QStringList{"200>20:2,1 @ 3.7 [0]", "200>20:6,2 @ 3.7 [1]"} << 3 << 37;
        QTest::newRow("only on") << QByteArray("On_w=6,1\nVal_on=1\nVal_off=1\n") << QStringList{"200>20:6,1 @ 1 [1]"}
                                 << 10 << -1;
        QTest::newRow("only off") << QByteArray("Off_w=6,1\nVal_on=1\nVal_off=1\n")
                                  << QStringList{"200>20:6,1 @ 1 [1]"} << -1 << 10;
        QTest::newRow("garbage value") << QByteArray("On_w=6,1\nVal_on=on\n") << QStringList{"200>20:6,1 @ on [1]"}
                                       << 0 << -1;
        QTest::newRow("value overflows") << QByteArray("On_w=6,1\nVal_on=3276.8\n")
                                         << QStringList{"200>20:6,1 @ 3276.8 [1]"} << 0 << -1;
    }

    void writtenValues()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QStringList, lines);
        QFETCH(int, valOn);
        QFETCH(int, valOff);

        // The same keys for a switch and the door opener: only the value slots differ.
        Plant plant("[Interruttore 01]\nIndirizzo=20\nDecimali=1\n" + keys + "[Apriporta]\nIndirizzo=20\nDecimali=1\n"
                    + keys);
        BuildSwitchWriteList(plant.ini(), 1, plant.lists, plant.tables);
        BuildDoorWriteList(plant.ini(), true, plant.lists, plant.tables);

        QStringList doorLines;
        for (const QString &line : lines)
            doorLines.append("400" + line.mid(3));
        QCOMPARE(plant.lists.Lst_Scritture.lines, lines + doorLines);
        QCOMPARE(plant.tables.SwitchWriteTable.at(0, SwitchSlot::ValOn), valOn);
        QCOMPARE(plant.tables.SwitchWriteTable.at(0, SwitchSlot::ValOff), valOff);
        QCOMPARE(plant.tables.DoorWriteTable.at(0, DoorSlot::ValOn), valOn);
        QCOMPARE(plant.tables.DoorWriteTable.at(0, DoorSlot::ValOff), valOff);
        // Left for the door command to settle.
        QCOMPARE(plant.tables.DoorWriteTable.at(0, 8), -1);
        QCOMPARE(plant.tables.DoorWriteTable.at(0, 11), -1);
    }

    void doorAbsent()
    {
        Plant plant(FullPlant);
        BuildDoorReadList(plant.ini(), false, plant.lists, plant.tables);
        BuildDoorWriteList(plant.ini(), false, plant.lists, plant.tables);
        QVERIFY(plant.lists.Lst_RemL.lines.isEmpty());
        QVERIFY(plant.lists.Lst_RemW.lines.isEmpty());
        QVERIFY(plant.lists.Lst_Scritture.lines.isEmpty());
        QCOMPARE(row(plant.tables.DoorReadTable, 0), unusedRow<DoorTable>());
        QCOMPARE(row(plant.tables.DoorWriteTable, 0), unusedRow<DoorTable>());
    }

    void enableFollowsLines()
    {
        Plant plant(FullPlant);
        plant.buildAll(3, 2, true, 2);
        EnableCommLists(plant.lists);
        QVERIFY(plant.lists.Lst_Letture.enabled && plant.lists.Lst_Scritture.enabled);
        QVERIFY(plant.lists.Lst_RemL.enabled && plant.lists.Lst_RemW.enabled);

        // Only zone 2 left: no remote registers at all.
        plant.ini().WriteIniKey("Zona 01", "Indirizzo", "0");
        plant.buildAll(2, 0, false, 0);
        EnableCommLists(plant.lists);
        QVERIFY(plant.lists.Lst_Letture.enabled && plant.lists.Lst_Scritture.enabled);
        QVERIFY(!plant.lists.Lst_RemL.enabled && !plant.lists.Lst_RemW.enabled);

        ClearCommLists(plant.lists);
        EnableCommLists(plant.lists);
        QVERIFY(!plant.lists.Lst_Letture.enabled && !plant.lists.Lst_Scritture.enabled);
    }

    void missingSettingsFile()
    {
        QTemporaryDir dir;
        IniStore ini{ProgramFolder(dir.path())};
        CommLists lists;
        RegisterTables tables;
        BuildZoneReadList(ini, 30, lists, tables);
        BuildSwitchWriteList(ini, 10, lists, tables);
        BuildLedReadList(ini, 10, lists, tables);
        QVERIFY(lists.Lst_Letture.lines.isEmpty() && lists.Lst_Scritture.lines.isEmpty());
        QCOMPARE(row(tables.ZoneReadTable, 0), unusedRow<ZoneTable>());
        QCOMPARE(row(tables.LedReadTable, 9), unusedRow<LedTable>());
        // Every zone but the first is a slave until told otherwise.
        QVERIFY(!tables.zoneSlaveFlags[0]);
        QVERIFY(tables.zoneSlaveFlags[29]);
    }
};

QTEST_GUILESS_MAIN(TestCommListBuilder)
#include "tst_commlistbuilder.moc"
