#include "config_editor/reloadeditor.h"

#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"
#include "listtext.h"
#include "storage/displayresets.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"

using namespace telvane;

namespace {

struct Editor
{
    explicit Editor(const QByteArray &settings) : ini(dir.store(settings, "Telvane1.ini")) {}
    void reload() { ReloadEditor(EditorServices{ini, plant, resets, master, line, values, schedule}, state); }
    // Address, function and register of the line check.
    QList<int> probe() const
    {
        return {state.lineProbe.address, state.lineProbe.functionCode, state.lineProbe.registerNumber};
    }

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

// AutoAvvio, Grafico, Ricette, Master.
QList<bool> optionFlags(const EditorState &s)
{
    return {s.options.autoStart, s.options.chart, s.options.recipes, s.options.master};
}

// One section a line, ";" between the lines of the file.
QByteArray smallPlantSettings()
{
    return QByteArray(R"([Generale];Zone=2;LED=1;Interruttori=1;Apriporta=1;Cronotermostato=1;AutoAvvio=1;Grafico=1;Ricette=1;Master=1
[COM];Attivita=1;Remoto=1
[Zona 01];Indirizzo=9;Decimali=1;PV_r=3,40001;Cronotermostato=1
[Zona 02];Indirizzo=10;SP_w=6,2;Cronotermostato=0
[Zona 03];Indirizzo=11;PV_r=3,1;Cronotermostato=1
[LED 01];Indirizzo=12;P1_r=2,3
[Interruttore 01];Indirizzo=13;On_r=1,4
[Apriporta];Indirizzo=14;REM_r=1,5;Tempo=2500)").replace(';', '\n');
}

} // namespace

class TestReloadEditor : public QObject
{
    Q_OBJECT

private slots:
    void smallPlant()
    {
        Editor editor(smallPlantSettings());
        editor.reload();
        const EditorState &state = editor.state;
        // Zone lines, then LED lines, then switch lines; zone 3 is not configured.
        QCOMPARE(listsText(state.lists), QStringLiteral("L 100>9:3,40001 [1]\nL 300>12:2,3 @ >=0 [0]\nL 200>13:1,4 [0]\n"
                                                        "S 101>10:6,2 [0]\nR 400>14:1,5 [0]"));
        QVERIFY(state.lists.Lst_Letture.enabled && state.lists.Lst_RemL.enabled && !state.lists.Lst_RemW.enabled);
        QCOMPARE(editor.probe(), (QList<int>{9, 3, 40001}));
        QVERIFY(state.comm.lineActivity && state.comm.remoteEnabled && state.comm.portAvailable);
        ChronoZoneEnabled chrono{};
        chrono[0] = true;
        chrono[2] = true; // beyond the zone count, yet its flag is the file's
        QCOMPARE(state.chronoZoneEnabled, chrono);
        QCOMPARE(state.doorPulseMs, 2500);
        QCOMPARE(optionFlags(state), QList<bool>(4, true));
    }

    // Each step of a reload sees the results of the steps before it and none after.
    void order()
    {
        Editor editor(smallPlantSettings());
        EditorState &state = editor.state;
        state.lists.Lst_Letture.lines = QStringList{"previous"};
        state.doorPulseMs = 0;
        editor.values.ZoneValues[0][0] = 21.5f;
        editor.schedule(0, 0, 0) = 5.0f;

        bool plantLoaded = false;
        QObject::connect(&editor.resets, &DisplayResets::ResetZoneDisplays, [&] {
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
            QCOMPARE(optionFlags(state), QList<bool>(4, false));
        });

        editor.reload();
        QVERIFY(plantLoaded && portTested);
        QCOMPARE(editor.values.ZoneValues[0][0], -99999.0f);
        QCOMPARE(editor.schedule(0, 0, 0), 20.0f);
        QVERIFY(state.lists.Lst_Letture.enabled);
        QCOMPARE(optionFlags(state), QList<bool>(4, true));
    }

    void reloadFollowsEdits()
    {
        Editor editor(smallPlantSettings());
        editor.reload();
        // One zone left, nothing read from it, the chrono-thermostat off: the check of
        // the line has nothing to read and switches itself off.
        editor.ini.WriteIniKey("Generale", "Zone", "1");
        editor.ini.WriteIniKey("Generale", "LED", "0");
        editor.ini.WriteIniKey("Generale", "Interruttori", "0");
        editor.ini.WriteIniKey("Generale", "Cronotermostato", "0");
        editor.ini.WriteIniKey("Zona 01", "PV_r", "");
        editor.reload();
        const EditorState &state = editor.state;
        QCOMPARE(listsText(state.lists), QStringLiteral("R 400>14:1,5 [0]"));
        QVERIFY(!state.lists.Lst_Letture.enabled);
        QCOMPARE(editor.probe(), (QList<int>{-1, -1, -1}));
        QVERIFY(!state.comm.lineActivity);
        // The tables are rebuilt too: zone 1 keeps its address and nothing else.
        QCOMPARE(tableRow(state.tables.ZoneReadTable, 0),
                 (QList<int>{9, 1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}));
        QCOMPARE(tableRow(state.tables.LedReadTable, 0), QList<int>(LedTable::slotCount(), -1));
        QVERIFY(!state.chronoThermostat);
        QCOMPARE(state.chronoZoneEnabled, ChronoZoneEnabled{});

        // Switched back on in the file, the check comes back with the next reading line.
        editor.ini.WriteIniKey("Zona 01", "PV_r", "4,8");
        editor.reload();
        QVERIFY(editor.state.comm.lineActivity);
        QCOMPARE(editor.probe(), (QList<int>{9, 4, 8}));
    }

    // A check-box option is on unless its text is "0": a hand-edited "si" is on.
    void options_data()
    {
        QTest::addColumn<bool>("present");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("on");
        QTest::newRow("absent") << false << QByteArray() << false;
        QTest::newRow("0") << true << QByteArray("0") << false;
        QTest::newRow("1") << true << QByteArray("1") << true;
        QTest::newRow("si") << true << QByteArray("si") << true;
        QTest::newRow("empty") << true << QByteArray() << true;
    }
    void options()
    {
        QFETCH(bool, present);
        QFETCH(QByteArray, text);
        QFETCH(bool, on);
        QByteArray general = "[Generale]\nZone=1\n";
        for (const char *key : {"AutoAvvio", "Grafico", "Ricette", "Master", "Cronotermostato"})
            general += present ? key + ("=" + text) + "\n" : QByteArray();
        Editor editor(general + "[Zona 01]\nCronotermostato=" + (present ? text : "1") + "\n");
        editor.reload();
        const GeneralOptions &options = editor.state.options;
        QCOMPARE(options.autoStart, on);
        QCOMPARE(options.chart, on);
        QCOMPARE(options.recipes, on);
        QCOMPARE(options.master, on);
        QCOMPARE(editor.state.chronoThermostat, on);
        QCOMPARE(editor.state.chronoZoneEnabled[0], on);
    }

    void noSettingsFile()
    {
        Editor editor("");
        QVERIFY(QFile::remove(editor.dir.path("Telvane1.ini")));
        editor.state.doorPulseMs = 0;
        editor.reload();
        QCOMPARE(editor.plant.zoneCount(), 0);
        QCOMPARE(listsText(editor.state.lists), QString());
        QCOMPARE(editor.probe(), (QList<int>{-1, -1, -1}));
        QCOMPARE(editor.state.doorPulseMs, 1000);
        QVERIFY(!editor.state.chronoThermostat);
        QCOMPARE(optionFlags(editor.state), QList<bool>(4, false));
    }

};

QTEST_GUILESS_MAIN(TestReloadEditor)
#include "tst_reloadeditor.moc"
