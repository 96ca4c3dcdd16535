#include "base/clock.h"
#include "config_editor/commlistbuilder.h"
#include "config_editor/commsettings.h"
#include "config_editor/lineprobe.h"
#include "config_editor/reloadeditor.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"
#include "storage/displayresets.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"

#include <QRegularExpression>

using namespace telvane;

namespace {

// The settings file holds `settings`, one section a line with ";" between the lines of
// the file; the master and its scripted line are wired as in the program.
struct Editor
{
    explicit Editor(const QByteArray &settings) : ini(dir.store(QByteArray(settings).replace(';', '\n'))) {}
    void reload() { ReloadEditor(EditorServices{ini, plant, resets, master, line, values, schedule}, state); }
    void loadComm() { LoadCommSettings(ini, master, line, state.comm); }
    // Address, function and register of the line check.
    QList<int> probe() const { return {state.lineProbe.address, state.lineProbe.functionCode, state.lineProbe.registerNumber}; }
    // The four lists, each entry behind its list's letter: L Lst_Letture, S Lst_Scritture,
    // R Lst_RemL, W Lst_RemW.
    QStringList lists() const
    {
        QStringList text;
        const CommLists &l = state.lists;
        for (const auto &[letter, list] : {std::pair{"L ", &l.Lst_Letture}, std::pair{"S ", &l.Lst_Scritture},
                                           std::pair{"R ", &l.Lst_RemL}, std::pair{"W ", &l.Lst_RemW}}) {
            for (const QString &line : list->lines)
                text << letter + line;
        }
        return text;
    }
    // Which lists are enabled, in the same order.
    QList<bool> enabled() const
    {
        const CommLists &l = state.lists;
        return {l.Lst_Letture.enabled, l.Lst_Scritture.enabled, l.Lst_RemL.enabled, l.Lst_RemW.enabled};
    }
    // AutoAvvio, Grafico, Ricette, Master.
    QList<bool> options() const { return {state.options.autoStart, state.options.chart, state.options.recipes, state.options.master}; }

    SettingsFolder dir;
    IniStore ini;
    ManualClock clock;
    ScriptedLine line{clock};
    ModbusMaster master{line, clock};
    PlantConfig plant;
    DisplayResets resets;
    ValueTables values;
    ChronoSchedule schedule;
    EditorState state;
};

// Every slot of one row of a register table, in slot order.
template <typename Table>
QList<int> tableRow(const Table &table, int row)
{
    QList<int> cells;
    for (int slot = 0; slot < table.slotCount(); ++slot)
        cells << table.at(row, slot);
    return cells;
}

// Three zones (the third without an address), two switches, two LEDs and the door opener.
const char FullPlant[] = R"([Generale];Zone=3;LED=2;Apriporta=1;Interruttori=2
[Zona 01];Indirizzo=5;Decimali=1;REM_r=1,100;PV_r=3,40001;SP_r=3,40002;AL1_r=3,40003;AL2_r=;AL3_r=4,30005
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

const char SmallPlant[] = R"([Generale];Zone=2;LED=1;Interruttori=1;Apriporta=1;Cronotermostato=1;AutoAvvio=1;Grafico=1;Ricette=1;Master=1
[COM];Attivita=1;Remoto=0
[Zona 01];Indirizzo=9;Decimali=1;PV_r=3,40001;Cronotermostato=1
[Zona 02];Indirizzo=10;SP_w=6,2;Cronotermostato=0
[Zona 03];Indirizzo=11;PV_r=3,1;Cronotermostato=1
[LED 01];Indirizzo=12;P1_r=2,3
[Interruttore 01];Indirizzo=13;On_r=1,4
[Apriporta];Indirizzo=14;REM_r=1,5;Tempo=2500)";

// One zone's reading of PV_r.
struct ZoneCase
{
    QByteArray address = "5";
    QByteArray decimals = "1";
    QByteArray key = "3,7";
    bool zoneUsed = true;
    QString line;                // the PV reading line; empty: none
    int function = -1, reg = -1; // what the table holds for PV
    QString warning;             // what the log says; empty: nothing
};

// One LED's reading of P1_r, and what its table row holds.
struct LedCase
{
    QByteArray keys;
    QString line; // empty: none
    int threshold = 0, colour = 1, condition = 1;
};

// The line check parsed from `lines`: address, function and register; whether it stays on.
struct ProbeCase
{
    QStringList lines;
    QList<int> probe;
    bool activity = true, activityAfter = true;
};

// A switch's and the door opener's writing keys (the same for both): the lines from the
// address on (empty: none) and Val_on, Val_off as held.
struct WriteCase
{
    QByteArray keys;
    QString onLine, offLine;
    QList<int> values;
};

} // namespace

Q_DECLARE_METATYPE(ZoneCase)
Q_DECLARE_METATYPE(LedCase)
Q_DECLARE_METATYPE(ProbeCase)
Q_DECLARE_METATYPE(WriteCase)

// What the editor's reload puts on the wire: the reading and writing lists and their
// register tables, the serial settings and the check of the line.
class TestCommLists : public QObject
{
    Q_OBJECT

private slots:
    void fullPlant()
    {
        Editor editor(FullPlant);
        editor.reload();
        QCOMPARE(editor.lists(), QStringList({
            "L 100>5:3,40001 [1]", "L 100>5:3,40002 [1]", "L 100>5:3,40003 [1]", "L 100>5:4,30005 [1]",
            "L 101>12:3,1 [2]", "L 101>12:2,7 [0]", "L 300>7:3,40010 @ >=25 [0]", "L 301>8:4,20 @ <>22,5 [1]",
            "L 200>20:1,11 [0]", "L 200>20:1,12 [0]",
            "S 100>5:6,40002 [1]", "S 100>5:6,40003 [1]", "S 101>12:6,2 [2]", "S 400>30:5,2 @ 1 [0]",
            "S 400>30:5,3 @ 0 [0]", "S 200>20:6,200 @ 12,5 [1]", "S 200>20:6,201 @ 0 [1]", "S 201>21:5,1 @ 1 [2]",
            "R 100>5:1,100 [0]", "R 300>7:3,9 [0]", "R 400>30:2,1 [0]", "R 200>20:1,10 [0]",
            "W 100>5:5,100 [1]", "W 300>7:6,9 [0]", "W 400>30:5,1 [0]", "W 200>20:5,10 [1]"}));
        // Registers above 32767 are held as the negative number of their 16 bits.
        const RegisterTables &t = editor.state.tables;
        QCOMPARE(tableRow(t.ZoneReadTable, 0), (QList<int>{5, 1, 1, 100, 3, -25535, 3, -25534, 3, -25533, -1, -1, 4, 30005}));
        QCOMPARE(tableRow(t.ZoneWriteTable, 1), (QList<int>{12, 2, -1, -1, -1, -1, 6, 2, -1, -1, -1, -1, -1, -1}));
        // Switch 2 has no "Off_w": its value is not kept either.
        QCOMPARE(tableRow(t.SwitchWriteTable, 0), (QList<int>{20, 1, 5, 10, 6, 200, 6, 201, 125, 0, -1, -1}));
        QCOMPARE(tableRow(t.SwitchWriteTable, 1), (QList<int>{21, 2, -1, -1, 5, 1, -1, -1, 100, -1, -1, -1}));
        QCOMPARE(tableRow(t.DoorReadTable, 0), (QList<int>{30, 0, 2, 1, -1, -1, -1, -1, -1, -1, -1, -1}));
        QCOMPARE(tableRow(t.DoorWriteTable, 0), (QList<int>{30, 0, 5, 1, 5, 2, 5, 3, -1, 1, 0, -1}));
        QCOMPARE(tableRow(t.LedReadTable, 1), (QList<int>{8, 1, -1, -1, 4, 20, 225, 1, 6}));
        // The first zone is never a slave; zone 3 is one although it has no address.
        const auto slaveZones = [&t] {
            QList<int> zones;
            for (int zone = 0; zone < MaxZones; ++zone) {
                if (t.zoneSlaveFlags[zone])
                    zones << zone;
            }
            return zones;
        };
        QCOMPARE(slaveZones(), QList<int>{2});
        QCOMPARE(editor.enabled(), QList<bool>(4, true));

        // A rebuild with fewer objects forgets the others.
        const QStringList kept = editor.lists().filter(QRegularExpression("^. [12]00>"));
        editor.ini.writeIniKeys({{"Generale", "Zone", "1"}, {"Generale", "LED", "0"}, {"Generale", "Apriporta", "0"},
                                 {"Generale", "Interruttori", "1"}});
        editor.reload();
        QCOMPARE(editor.lists(), kept);
        QCOMPARE(tableRow(t.LedReadTable, 1), QList<int>(LedTable::slotCount(), -1));
        QCOMPARE(tableRow(t.DoorWriteTable, 0), QList<int>(DoorTable::slotCount(), -1));
        QCOMPARE(slaveZones(), QList<int>());
        // Only zone 2 left: a list without lines is not polled.
        editor.ini.writeIniKeys({{"Zona 01", "Indirizzo", "0"}, {"Generale", "Zone", "2"}, {"Generale", "Interruttori", "0"}});
        editor.reload();
        QCOMPARE(editor.enabled(), (QList<bool>{true, true, false, false}));
    }

    // A zone is left out for a bad address, a register for a bad key; the log says so
    // unless the key was left empty on purpose.
    void zoneReading_data()
    {
        QTest::addColumn<ZoneCase>("c");
        QTest::newRow("address 255") << ZoneCase{.address = "255", .line = "100>255:3,7 [1]", .function = 3, .reg = 7};
        for (const char *address : {"0", "256", "5x", "2.5"})
            QTest::addRow("address %s", address) << ZoneCase{.address = address, .zoneUsed = false, .warning = "Indirizzo = .*object not used"};
        QTest::newRow("coil ignores decimals") << ZoneCase{.decimals = "2", .key = "1,7", .line = "100>5:1,7 [0]", .function = 1, .reg = 7};
        QTest::newRow("blanks around the comma") << ZoneCase{.decimals = "0", .key = "3 , 12", .line = "100>5:3 , 12 [0]", .function = 3, .reg = 12};
        QTest::newRow("decimals not a number") << ZoneCase{.decimals = "x", .key = "3,1", .line = "100>5:3,1 [0]", .function = 3, .reg = 1,
                                                                   .warning = "Decimali = \"x\""};
        QTest::newRow("empty, not in use") << ZoneCase{.key = ""};
        QTest::newRow("register 65535") << ZoneCase{.key = "3,65535", .line = "100>5:3,65535 [1]", .function = 3, .reg = -1};
        for (const char *key : {"3", "3,abc", "131,5", "0,12", "3,65536", "3,12.5", "3,1,2"})
            QTest::addRow("key %s", key) << ZoneCase{.key = key, .warning = "PV_r = .*register not used"};
    }
    void zoneReading()
    {
        QFETCH(ZoneCase, c);
        QTest::failOnWarning(QRegularExpression("."));
        if (!c.warning.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[Zona 01\\] " + c.warning));
        Editor editor("[Zona 01]\nIndirizzo=" + c.address + "\nDecimali=" + c.decimals + "\nREM_r=1,1\nPV_r=" + c.key + "\nSP_r=3,9\n");
        BuildZoneReadList(editor.ini, 1, editor.state.lists, editor.state.tables);
        const ZoneTable &table = editor.state.tables.ZoneReadTable;
        QCOMPARE(table.at(0, zoneQuantityFunctionSlot(0)), c.function);
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(0)), c.reg);
        // A bad key costs only its own register.
        QCOMPARE(table.at(0, zoneQuantityRegisterSlot(1)), c.zoneUsed ? 9 : -1);
        QCOMPARE(editor.state.lists.Lst_RemL.lines.size(), c.zoneUsed ? 1 : 0);
        QStringList lines = editor.state.lists.Lst_Letture.lines;
        if (c.zoneUsed)
            QVERIFY(lines.takeLast().contains(":3,9 ["));
        QCOMPARE(lines, c.line.isEmpty() ? QStringList() : QStringList{c.line});
    }

    // The threshold is held in the LED's decimals, as the instrument sends its reading.
    void ledReading_data()
    {
        QTest::addColumn<LedCase>("c");
        QTest::newRow("condition 2") << LedCase{"P1_r=3,1;Val=25;Condizione=2", "300>7:3,1 @ <=25 [0]", 25, 1, 2};
        QTest::newRow("condition 5") << LedCase{"P1_r=3,1;Val=25;Condizione=5", "300>7:3,1 @ <25 [0]", 25, 1, 5};
        QTest::newRow("condition 0") << LedCase{"P1_r=3,1;Val=25;Condizione=0", "300>7:3,1 @ >=25 [0]", 25};
        QTest::newRow("condition 7") << LedCase{"P1_r=3,1;Val=25;Condizione=7", "300>7:3,1 @ >=25 [0]", 25};
        QTest::newRow("coil without decimals") << LedCase{"Decimali=2;P1_r=1,1;Val=1", "300>7:1,1 @ >=1 [0]", 1};
        QTest::newRow("text values") << LedCase{"P1_r=3,1;Val=warm;Col=blue", "300>7:3,1 @ >=warm [0]"};
        QTest::newRow("beyond 16 bits") << LedCase{"Decimali=2;P1_r=3,1;Val=500", "300>7:3,1 @ >=500 [2]"};
        QTest::newRow("no register") << LedCase{"Decimali=1;Val=3;Col=4", "", 30, 4};
    }
    void ledReading()
    {
        QFETCH(LedCase, c);
        Editor editor("[LED 01];Indirizzo=7;" + c.keys);
        BuildLedReadList(editor.ini, 1, editor.state.lists, editor.state.tables);
        QCOMPARE(editor.state.lists.Lst_Letture.lines, c.line.isEmpty() ? QStringList() : QStringList{c.line});
        const LedTable &table = editor.state.tables.LedReadTable;
        QCOMPARE((QList<int>{table.at(0, LedSlot::Threshold), table.at(0, LedSlot::Colour), table.at(0, LedSlot::Condition)}),
                 (QList<int>{c.threshold, c.colour, c.condition}));
    }

    // The same keys for a switch and the door opener: only the value slots differ.
    void writtenValues_data()
    {
        QTest::addColumn<WriteCase>("c");
        QTest::newRow("comma and negative")
            << WriteCase{"On_w=6,1;Off_w=6,2;Val_on=7,25;Val_off=-0.5", ">20:6,1 @ 7,25 [1]", ">20:6,2 @ -0.5 [1]", {72, -5}};
        QTest::newRow("coil has no decimals")
            << WriteCase{"On_w=2,1;Off_w=6,2;Val_on=3.7;Val_off=3.7", ">20:2,1 @ 3.7 [0]", ">20:6,2 @ 3.7 [1]", {3, 37}};
        QTest::newRow("no On_w") << WriteCase{"Off_w=6,1;Val_on=1;Val_off=1", "", ">20:6,1 @ 1 [1]", {-1, 10}};
        QTest::newRow("beyond 16 bits") << WriteCase{"On_w=6,1;Val_on=3276.8", ">20:6,1 @ 3276.8 [1]", "", {0, -1}};
    }
    void writtenValues()
    {
        QFETCH(WriteCase, c);
        const QByteArray &keys = c.keys;
        Editor editor("[Interruttore 01];Indirizzo=20;Decimali=1;" + keys + ";[Apriporta];Indirizzo=20;Decimali=1;" + keys);
        BuildSwitchWriteList(editor.ini, 1, editor.state.lists, editor.state.tables);
        BuildDoorWriteList(editor.ini, true, editor.state.lists, editor.state.tables);
        QStringList lines;
        for (const char *code : {"200", "400"}) {
            for (const QString &line : {c.onLine, c.offLine}) {
                if (!line.isEmpty())
                    lines << code + line;
            }
        }
        QCOMPARE(editor.state.lists.Lst_Scritture.lines, lines);
        const SwitchTable &switches = editor.state.tables.SwitchWriteTable;
        const DoorTable &door = editor.state.tables.DoorWriteTable;
        QCOMPARE((QList<int>{switches.at(0, SwitchSlot::ValOn), switches.at(0, SwitchSlot::ValOff)}), c.values);
        QCOMPARE((QList<int>{door.at(0, DoorSlot::ValOn), door.at(0, DoorSlot::ValOff)}), c.values);
    }

    // The check reads the register of the first reading line; without one it is off.
    void lineProbe_data()
    {
        QTest::addColumn<ProbeCase>("c");
        QTest::newRow("LED line without blanks") << ProbeCase{{"301>255:4,0@<>22,5[1]"}, {255, 4, 0}};
        QTest::newRow("blanks around the comma") << ProbeCase{{"101>12:3 , 12 [0]"}, {12, 3, 12}};
        QTest::newRow("check off") << ProbeCase{{"100>5:3,1 [1]"}, {-1, -1, -1}, false, false};
        // A first line that cannot be read leaves the check on, without a probe.
        for (const char *line : {"hello", "100>5:3 [0]", "100>x:3,1 [0]", "100>99999999999:3,1 [0]"})
            QTest::addRow("%s", line) << ProbeCase{{line}, {-1, -1, -1}};
    }
    void lineProbe()
    {
        QFETCH(ProbeCase, c);
        if (c.activityAfter && c.probe.first() == -1)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No line probe"));
        const LineProbe parsed = ParseLineProbe(c.activity, c.lines);
        QCOMPARE((QList<int>{parsed.address, parsed.functionCode, parsed.registerNumber}), c.probe);
        QCOMPARE(c.activity, c.activityAfter);
    }

    // Each step of a reload sees the results of the steps before it and none after.
    void reloadInOrder()
    {
        Editor editor(SmallPlant);
        EditorState &state = editor.state;
        state.lists.Lst_Letture.lines = QStringList{"previous"};
        editor.values.ZoneValues[0][0] = 21.5f;
        editor.schedule(0, 0, 0) = 5.0f;
        bool plantLoaded = false;
        const auto onReset = QObject::connect(&editor.resets, &DisplayResets::ResetZoneDisplays, [&] {
            plantLoaded = true;
            QCOMPARE(editor.plant.zoneCount(), 2);
            // The lists are cleared only after the plant is loaded.
            QCOMPARE(state.lists.Lst_Letture.lines, QStringList{"previous"});
        });
        // The serial settings load tries the port: the lists, the chrono and door keys
        // and the probe are in place; fresh value tables, enabled lists and the general
        // options are still to come.
        bool portTested = false;
        editor.line.setOnOpen([&] {
            portTested = true;
            QCOMPARE(state.lists.Lst_Letture.lines.size(), 3);
            QCOMPARE(state.lists.Lst_RemL.lines.size(), 1);
            QCOMPARE(state.doorPulseMs, 2500);
            QVERIFY(state.chronoZoneEnabled[0]);
            QCOMPARE(editor.probe(), (QList<int>{9, 3, 40001}));
            QCOMPARE(editor.values.ZoneValues[0][0], 21.5f);
            QCOMPARE(editor.schedule(0, 0, 0), 5.0f);
            QVERIFY(!state.lists.Lst_Letture.enabled);
            QCOMPARE(editor.options(), QList<bool>(4, false));
        });

        editor.reload();
        QVERIFY(plantLoaded && portTested);
        QObject::disconnect(onReset);
        editor.line.setOnOpen({});
        // Zone lines, then LED lines, then switch lines; zone 3 is beyond the count.
        QCOMPARE(editor.lists(), QStringList({"L 100>9:3,40001 [1]", "L 300>12:2,3 @ >=0 [0]", "L 200>13:1,4 [0]",
                                              "S 101>10:6,2 [0]", "R 400>14:1,5 [0]"}));
        QCOMPARE(editor.enabled(), (QList<bool>{true, true, true, false}));
        // Line check on, remote commands off, the port in use.
        QCOMPARE((QList<bool>{state.comm.lineActivity, state.comm.remoteEnabled, state.comm.portAvailable}),
                 (QList<bool>{true, false, true}));
        ChronoZoneEnabled chrono{};
        chrono[0] = true;
        chrono[2] = true; // beyond the zone count, yet its flag is the file's
        QCOMPARE(state.chronoZoneEnabled, chrono);
        QCOMPARE(editor.values.ZoneValues[0][0], InvalidValue);
        QCOMPARE(editor.schedule(0, 0, 0), 20.0f);
        QCOMPARE(editor.options(), QList<bool>(4, true));

        // One zone left, nothing read from it, the chrono-thermostat off: the check of
        // the line has nothing to read and switches itself off.
        editor.ini.writeIniKeys({{"Generale", "Zone", "1"}, {"Generale", "LED", "0"}, {"Generale", "Interruttori", "0"},
                                 {"Generale", "Cronotermostato", "0"}, {"Zona 01", "PV_r", ""}});
        editor.reload();
        QCOMPARE(editor.lists(), QStringList{"R 400>14:1,5 [0]"});
        QVERIFY(!state.lists.Lst_Letture.enabled);
        QCOMPARE(editor.probe(), (QList<int>{-1, -1, -1}));
        QVERIFY(!state.comm.lineActivity);
        // The tables are rebuilt too: zone 1 keeps its address and nothing else.
        QCOMPARE(tableRow(state.tables.ZoneReadTable, 0), (QList<int>{9, 1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}));
        QCOMPARE(tableRow(state.tables.LedReadTable, 0), QList<int>(LedTable::slotCount(), -1));
        QVERIFY(!state.chronoThermostat);
        QCOMPARE(state.chronoZoneEnabled, ChronoZoneEnabled{});
        // Switched back on in the file, the check comes back with the next reading line.
        editor.ini.WriteIniKey("Zona 01", "PV_r", "4,8");
        editor.reload();
        QVERIFY(state.comm.lineActivity);
        QCOMPARE(editor.probe(), (QList<int>{9, 4, 8}));

        // No settings file at all: an empty plant, nothing on the wire.
        QVERIFY(QFile::remove(editor.ini.folder().filePath(editor.ini.currentIniName())));
        editor.reload();
        QCOMPARE(editor.plant.zoneCount(), 0);
        QCOMPARE(editor.lists(), QStringList());
        QCOMPARE(editor.probe(), (QList<int>{-1, -1, -1}));
        QCOMPARE(state.doorPulseMs, 1000);
        QVERIFY(!state.chronoThermostat);
        QCOMPARE(editor.options(), QList<bool>(4, false));
    }

    // A check-box option is on unless its text is "0": a hand-edited "si" is on.
    void options_data()
    {
        QTest::addColumn<QByteArray>("text"); // null: the keys are absent
        QTest::addColumn<bool>("on");
        QTest::newRow("absent") << QByteArray() << false;
        QTest::newRow("0") << QByteArray("0") << false;
        QTest::newRow("si") << QByteArray("si") << true;
        QTest::newRow("empty") << QByteArray("") << true;
    }
    void options()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, on);
        const bool present = !text.isNull();
        QByteArray settings = "[Generale]\nZone=1\n";
        for (const char *key : {"AutoAvvio", "Grafico", "Ricette", "Master", "Cronotermostato"})
            settings += present ? key + ("=" + text) + "\n" : QByteArray();
        settings += "[COM]\n" + (present ? "Remoto=" + text + "\nAttivita=" + text + "\n" : QByteArray());
        Editor editor(settings + "[Zona 01]\nIndirizzo=9\nPV_r=3,1\nCronotermostato=" + (present ? text : "1") + "\n");
        editor.reload();
        QCOMPARE(editor.options(), QList<bool>(4, on));
        QCOMPARE(editor.state.chronoThermostat, on);
        QCOMPARE(editor.state.chronoZoneEnabled[0], on);
        QCOMPARE(editor.state.comm.remoteEnabled, on);
        QCOMPARE(editor.state.comm.lineActivity, on);
    }

    // The serial settings as read; the port is tried once by opening it and left closed:
    // the master opens it for each operation.
    void serialSettings()
    {
        Editor editor("[COM];Porta = /dev/ttyUSB0 ;Formato=  19200,E,8,1  ;Retry=4;TimeOut=250;Base Misura=120;Base Remoto=5;Base LED=2");
        editor.loadComm();
        const CommSettings &s = editor.state.comm;
        const auto periods = [&s] { return QList<int>{s.measurementPeriod, s.remotePeriod, s.ledPeriod}; };
        QCOMPARE(periods(), (QList<int>{120, 5, 2}));
        QCOMPARE(editor.master.attempts(), 4);
        QCOMPARE(editor.master.replyTimeout(), 0.25f);
        QCOMPARE(s.statusText, QStringLiteral("COM/dev/ttyUSB0:19200,E,8,1"));
        QCOMPARE(editor.line.port(), QStringLiteral("/dev/ttyUSB0"));
        QCOMPARE(editor.line.format(), QStringLiteral("19200,E,8,1"));
        QCOMPARE(editor.line.openCalls(), 1);
        QVERIFY(s.portAvailable && !editor.line.isOpen());
        // Periods are kept within their limits.
        editor.ini.writeIniKeys({{"COM", "Base Misura", "300"}, {"COM", "Base Remoto", "30"}, {"COM", "Base LED", "0"}});
        editor.loadComm();
        QCOMPARE(periods(), (QList<int>{300, 30, 0}));
        editor.ini.writeIniKeys({{"COM", "Base Misura", "301"}, {"COM", "Base Remoto", "31"}, {"COM", "Base LED", "-5"}});
        editor.loadComm();
        QCOMPARE(periods(), (QList<int>{300, 30, 30}));

        // A format that cannot be used: no port, and the line is neither touched nor re-pointed.
        const int opened = editor.line.openCalls();
        for (const auto &[format, reason] : {std::pair{"9600,X,8,1", "parità"}, {"veloce,N,8,1", "velocità"}, {"", "virgole"}}) {
            editor.ini.writeIniKeys({{"COM", "Porta", "2"}, {"COM", "Formato", format}});
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("\\[COM\\] Formato = .*%1.*no serial port").arg(reason)));
            editor.loadComm();
            QVERIFY2(!s.portAvailable && s.statusText == "Nessuna COM", format);
            QCOMPARE(editor.line.openCalls(), opened);
            QCOMPARE(editor.line.port(), QStringLiteral("/dev/ttyUSB0"));
        }
        // A port that does not open: no port and the line keeps its format, until the port is back.
        editor.ini.WriteIniKey("COM", "Formato", "4800,N,8,1");
        editor.line.setOpenRefused(true, "No such file or directory");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot be opened.*No such file"));
        editor.loadComm();
        QVERIFY(!s.portAvailable);
        QCOMPARE(s.statusText, QStringLiteral("Nessuna COM"));
        QCOMPARE(editor.line.format(), QStringLiteral("19200,E,8,1"));
        editor.line.setOpenRefused(false);
        editor.loadComm();
        QVERIFY(s.portAvailable);
        QCOMPARE(s.statusText, QStringLiteral("COM2:4800,N,8,1"));
        QCOMPARE(editor.line.format(), QStringLiteral("4800,N,8,1"));
    }
};

QTEST_GUILESS_MAIN(TestCommLists)
#include "tst_commlists.moc"
