#include "config_editor/reloadeditor.h"

#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/serialline.h"
#include "storage/displayresets.h"
#include "storage/inistore.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace telvane;

namespace {

// A port that is always there; `onSelect` runs when the master points the line at a
// port, which only the serial settings load does during a reload.
class PortProbeLine final : public SerialLine
{
public:
    std::function<void()> onSelect;

    void setPort(const QString &) override
    {
        if (onSelect)
            std::exchange(onSelect, nullptr)();
    }
    bool setFormat(const QString &) override { return true; }
    bool open() override { return m_open = true; }
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &) override {}
    qint64 bytesAvailable() override { return 0; }
    QByteArray readAll() override { return {}; }
    void clearInput() override {}
    void yield(int) override {}
    QString lastError() const override { return {}; }

private:
    bool m_open = false;
};

class Editor
{
public:
    Editor() : m_ini(ProgramFolder(m_dir.path())), m_master(line, m_clock)
    {
        m_ini.setCurrentIniName(QStringLiteral("Telvane1.ini"));
    }

    bool writeSettings(const QByteArray &settings)
    {
        QFile file(m_dir.filePath(m_ini.currentIniName()));
        return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(settings) == settings.size();
    }
    bool copySettings(const QString &path)
    {
        QFile source(path);
        return source.open(QIODevice::ReadOnly) && writeSettings(source.readAll());
    }

    void reload() { ReloadEditor(EditorServices{m_ini, plant, resets, m_master, line, values, schedule}, state); }

    IniStore &ini() { return m_ini; }

    PortProbeLine line;
    PlantConfig plant;
    DisplayResets resets;
    ValueTables values;
    ChronoSchedule schedule;
    EditorState state;

private:
    QTemporaryDir m_dir;
    IniStore m_ini;
    ManualClock m_clock;
    ModbusMaster m_master;
};

QList<int> probeOf(const LineProbe &probe)
{
    return {probe.address, probe.functionCode, probe.registerNumber};
}

const char SmallPlant[] = R"([Generale]
Zone=2
LED=1
Interruttori=1
Apriporta=1
Cronotermostato=1
AutoAvvio=1
Grafico=1
Ricette=1
Master=1
[COM]
Attivita=1
Remoto=1
[Zona 01]
Indirizzo=9
Decimali=1
PV_r=3,40001
Cronotermostato=1
[Zona 02]
Indirizzo=10
SP_w=6,2
Cronotermostato=0
[Zona 03]
Indirizzo=11
PV_r=3,1
Cronotermostato=1
[LED 01]
Indirizzo=12
P1_r=2,3
[Interruttore 01]
Indirizzo=13
On_r=1,4
[Apriporta]
Indirizzo=14
REM_r=1,5
Tempo=2500
)";

} // namespace

class TestReloadEditor : public QObject
{
    Q_OBJECT

private slots:
    void smallPlant()
    {
        Editor editor;
        QVERIFY(editor.writeSettings(SmallPlant));
        editor.reload();
        const EditorState &state = editor.state;

        // Zone lines, then LED lines, then switch lines; zone 3 is not configured.
        QCOMPARE(state.lists.Lst_Letture.lines,
                 QStringList({"100>9:3,40001 [1]", "300>12:2,3 @ >=0 [0]", "200>13:1,4 [0]"}));
        QCOMPARE(state.lists.Lst_Scritture.lines, QStringList{"101>10:6,2 [0]"});
        QCOMPARE(state.lists.Lst_RemL.lines, QStringList{"400>14:1,5 [0]"});
        QVERIFY(state.lists.Lst_RemW.lines.isEmpty());
        QVERIFY(state.lists.Lst_Letture.enabled && state.lists.Lst_Scritture.enabled && state.lists.Lst_RemL.enabled);
        QVERIFY(!state.lists.Lst_RemW.enabled);
        QCOMPARE(state.tables.ZoneReadTable.at(2, ZoneSlot::Address), -1);
        QVERIFY(state.tables.zoneSlaveFlags[1]);

        QCOMPARE(probeOf(state.lineProbe), (QList<int>{9, 3, 40001}));
        QVERIFY(state.comm.lineActivity);
        QVERIFY(state.comm.remoteEnabled);

        QVERIFY(state.chronoThermostat);
        ChronoZoneEnabled chrono{};
        chrono[0] = true;
        chrono[2] = true; // beyond the zone count, yet its flag is the file's
        QCOMPARE(state.chronoZoneEnabled, chrono);
        QCOMPARE(state.doorPulseMs, 2500);
        QVERIFY(state.options.autoStart && state.options.chart && state.options.recipes && state.options.master);
    }

    // Each step of a reload sees the results of the steps before it and none after.
    void order()
    {
        Editor editor;
        QVERIFY(editor.writeSettings(SmallPlant));
        EditorState &state = editor.state;
        state.lists.Lst_Letture.lines = QStringList{"previous"};
        state.lists.Lst_Letture.enabled = false;
        state.options = {};
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

        bool portTested = false;
        editor.line.onSelect = [&] {
            portTested = true;
            QCOMPARE(state.lists.Lst_Letture.lines.size(), 3);
            QCOMPARE(state.lists.Lst_RemL.lines.size(), 1); // the door opener's
            QCOMPARE(state.doorPulseMs, 2500);
            QVERIFY(state.chronoZoneEnabled[0]);
            QCOMPARE(probeOf(state.lineProbe), (QList<int>{9, 3, 40001}));
            // Still to come: fresh value tables, enabled lists, the general options.
            QCOMPARE(editor.values.ZoneValues[0][0], 21.5f);
            QCOMPARE(editor.schedule(0, 0, 0), 5.0f);
            QVERIFY(!state.lists.Lst_Letture.enabled);
            QVERIFY(!state.options.autoStart);
        };

        editor.reload();
        QVERIFY(plantLoaded);
        QVERIFY(portTested);
        QCOMPARE(editor.values.ZoneValues[0][0], InvalidValue);
        QCOMPARE(editor.schedule(0, 0, 0), ChronoSchedule::DefaultSetPoint);
        QVERIFY(state.lists.Lst_Letture.enabled);
        QVERIFY(state.options.autoStart);
        QVERIFY(state.comm.portAvailable);
    }

    void reloadFollowsEdits()
    {
        Editor editor;
        QVERIFY(editor.writeSettings(SmallPlant));
        editor.reload();

        // One zone left, nothing read from it, the chrono-thermostat off: the check of
        // the line has nothing to read and switches itself off.
        editor.ini().WriteIniKey("Generale", "Zone", "1");
        editor.ini().WriteIniKey("Generale", "LED", "0");
        editor.ini().WriteIniKey("Generale", "Interruttori", "0");
        editor.ini().WriteIniKey("Generale", "Cronotermostato", "0");
        editor.ini().WriteIniKey("Zona 01", "PV_r", "");
        editor.reload();

        const EditorState &state = editor.state;
        QVERIFY(state.lists.Lst_Letture.lines.isEmpty());
        QVERIFY(!state.lists.Lst_Letture.enabled);
        QCOMPARE(probeOf(state.lineProbe), (QList<int>{-1, -1, -1}));
        QVERIFY(!state.comm.lineActivity);
        QCOMPARE(state.tables.ZoneWriteTable.at(1, ZoneSlot::Address), -1);
        QCOMPARE(state.tables.LedReadTable.at(0, LedSlot::Address), -1);
        QVERIFY(!state.tables.zoneSlaveFlags[1]);
        QVERIFY(!state.chronoThermostat);
        QCOMPARE(state.chronoZoneEnabled, ChronoZoneEnabled{});

        // Switched back on in the file, the check comes back with the next reading line.
        editor.ini().WriteIniKey("Zona 01", "PV_r", "4,8");
        editor.reload();
        QVERIFY(editor.state.comm.lineActivity);
        QCOMPARE(probeOf(editor.state.lineProbe), (QList<int>{9, 4, 8}));
    }

    void options_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("on");
        QTest::newRow("absent") << QByteArray() << false;
        QTest::newRow("0") << QByteArray("0") << false;
        QTest::newRow("1") << QByteArray("1") << true;
        QTest::newRow("-1") << QByteArray("-1") << true;
        QTest::newRow("garbage") << QByteArray("si") << false;
    }

    void options()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, on);
        QByteArray general = "[Generale]\nZone=1\n";
        if (!value.isNull()) {
            for (const char *key : {"AutoAvvio", "Grafico", "Ricette", "Master", "Cronotermostato"})
                general += QByteArray(key) + "=" + value + "\n";
        }
        Editor editor;
        QVERIFY(editor.writeSettings(general + "[Zona 01]\nCronotermostato=1\n"));
        editor.reload();
        const EditorState &state = editor.state;
        QCOMPARE(state.options.autoStart, on);
        QCOMPARE(state.options.chart, on);
        QCOMPARE(state.options.recipes, on);
        QCOMPARE(state.options.master, on);
        QCOMPARE(state.chronoThermostat, on);
        QCOMPARE(state.chronoZoneEnabled[0], on);
    }

    void noSettingsFile()
    {
        Editor editor;
        editor.state.doorPulseMs = 0;
        editor.reload();
        const EditorState &state = editor.state;
        QCOMPARE(editor.plant.zoneCount(), 0);
        for (const CommList *list : {&state.lists.Lst_Letture, &state.lists.Lst_Scritture, &state.lists.Lst_RemL,
                                     &state.lists.Lst_RemW}) {
            QVERIFY(list->lines.isEmpty());
            QVERIFY(!list->enabled);
        }
        QCOMPARE(probeOf(state.lineProbe), (QList<int>{-1, -1, -1}));
        QCOMPARE(state.doorPulseMs, 1000);
        QVERIFY(!state.chronoThermostat);
        QVERIFY(!state.options.autoStart);
        QCOMPARE(state.tables.DoorWriteTable.at(0, DoorSlot::Address), -1);
    }

    void demoPlant()
    {
        Editor editor;
        QVERIFY(editor.copySettings(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant/Telvane1.ini")));
        editor.reload();
        const EditorState &state = editor.state;

        // Six zones reading PV, SP and the three alarms, three LEDs, three switches
        // reading their on and off states.
        QCOMPARE(state.lists.Lst_Letture.lines.size(), 6 * 5 + 3 + 3 * 2);
        QCOMPARE(state.lists.Lst_Letture.lines.first(), QStringLiteral("100>1:3,1 [1]"));
        QCOMPARE(state.lists.Lst_Letture.lines.mid(30, 5), QStringList({
                                                               "300>1:3,1 @ <5 [1]",
                                                               "301>7:2,4 @ =1 [0]",
                                                               "302>6:3,1 @ >=28 [1]",
                                                               "200>7:1,1 [0]",
                                                               "200>7:1,1 [0]",
                                                           }));
        QCOMPARE(state.lists.Lst_Letture.lines.last(), QStringLiteral("202>7:3,20 [0]"));
        QCOMPARE(state.lists.Lst_RemL.lines, QStringList({
                                                 "100>1:1,1 [0]",
                                                 "101>2:1,1 [0]",
                                                 "102>3:1,1 [0]",
                                                 "103>4:1,1 [0]",
                                                 "104>5:1,1 [0]",
                                                 "105>6:1,1 [0]",
                                                 "300>1:1,1 [0]",
                                                 "302>6:1,1 [0]",
                                                 "400>7:1,9 [0]",
                                                 "200>7:1,9 [0]",
                                                 "201>7:1,9 [0]",
                                                 "202>7:1,9 [0]",
                                             }));
        QCOMPARE(state.lists.Lst_Scritture.lines.size(), 6 * 5 + 2 + 3 * 2);
        QCOMPARE(state.lists.Lst_Scritture.lines.mid(29), QStringList({
                                                              "105>6:6,5 [1]",
                                                              "400>7:5,5 @ 1 [0]",
                                                              "400>7:5,5 @ 0 [0]",
                                                              "200>7:5,1 @ 1 [0]",
                                                              "200>7:5,1 @ 0 [0]",
                                                              "201>7:5,2 @ 1 [0]",
                                                              "201>7:5,2 @ 0 [0]",
                                                              "202>7:6,20 @ 1 [0]",
                                                              "202>7:6,20 @ 0 [0]",
                                                          }));
        QCOMPARE(state.lists.Lst_RemW.lines.size(), 6 + 2 + 1 + 3);

        // The frost lamp compares the reading in tenths with 5.0 degrees.
        QCOMPARE(state.tables.LedReadTable.at(0, LedSlot::Threshold), 50);
        QCOMPARE(state.tables.LedReadTable.at(0, LedSlot::Condition), 5);
        QCOMPARE(state.tables.DoorWriteTable.at(0, DoorSlot::ValOn), 1);
        QCOMPARE(state.tables.zoneSlaveFlags, (std::array<bool, MaxZones>{}));

        QCOMPARE(probeOf(state.lineProbe), (QList<int>{1, 3, 1}));
        QVERIFY(state.comm.remoteEnabled);
        QVERIFY(state.chronoThermostat);
        ChronoZoneEnabled chrono{};
        std::fill_n(chrono.begin(), 4, true);
        QCOMPARE(state.chronoZoneEnabled, chrono);
        QCOMPARE(state.doorPulseMs, 1500);
        QVERIFY(!state.options.autoStart);
        QVERIFY(state.options.chart);
        QVERIFY(!state.options.recipes);
        QVERIFY(!state.options.master);
    }
};

QTEST_GUILESS_MAIN(TestReloadEditor)
#include "tst_reloadeditor.moc"
