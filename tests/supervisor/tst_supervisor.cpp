// The supervisor as the operator drives it (start-up, Start, Stop, Reload, the automatic
// start, the alarm indication), the monitoring cycle its timer runs, and the exchanges of
// that cycle: each item's remote read and local write, the state reads, the measurement
// round with its log line and chart.

#include "support/runtimefixture.h"

#include "journal/operatorjournal.h"
#include "supervisor/activitypoll.h"
#include "supervisor/chartlogging.h"
#include "supervisor/chartsink.h"
#include "supervisor/cycletask.h"
#include "supervisor/dooroperations.h"
#include "supervisor/ledoperations.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/supervisor.h"
#include "supervisor/switchoperations.h"
#include "supervisor/zoneoperations.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

using TickList = QList<int>;

namespace {

enum class Kind { Zone, Switch, Door, Led };

// Row 2 of each kind (the door's only row): REM_r at 0x20 and REM_w at 0x21 of slave 12.
void configure(RegisterTables &t, Kind kind, int readCode, int writeCode)
{
    const auto rows = [&](auto &readTable, auto &writeTable, int row) {
        setRow(readTable, row, {12, 0, readCode, 0x20});
        setRow(writeTable, row, {12, 0, writeCode, 0x21});
    };
    kind == Kind::Zone     ? rows(t.ZoneReadTable, t.ZoneWriteTable, 2)
    : kind == Kind::Switch ? rows(t.SwitchReadTable, t.SwitchWriteTable, 2)
    : kind == Kind::Door   ? rows(t.DoorReadTable, t.DoorWriteTable, 0)
                           : rows(t.LedReadTable, t.LedWriteTable, 2);
}

// One remote read or local write of an item and what it must do.
struct ItemExchange
{
    bool read;
    int code, value; // value: the answer to a read, or the state written; -1: absent slave
    QString request;
    bool ok;
    RemoteState state;
    bool busy = false;
};

bool runExchange(Runtime &rt, Kind kind, bool read, int state)
{
    if (read)
        return kind == Kind::Zone ? zoneRemoteRead(rt, 2) : kind == Kind::Switch ? switchRemoteRead(rt, 2)
             : kind == Kind::Door ? doorRemoteRead(rt)     : ledRemoteRead(rt, 2);
    return kind == Kind::Zone ? zoneLocalWrite(rt, 2, state) : kind == Kind::Switch ? switchLocalWrite(rt, 2, state)
         : kind == Kind::Door ? doorLocalWrite(rt, state)     : ledLocalWrite(rt, 2, state);
}

struct RecordingChart final : ChartSink
{
    void addPoint(int trace, const QDateTime &at, double value) override { points.append({trace, at, value}); }
    void roundFinished() override { ++rounds; }

    QList<std::tuple<int, QDateTime, double>> points;
    int rounds = 0;
};

// `functions`: per quantity its function code, -1 when it is not read; `answers`: where
// the slave holds the register (200 + k at 100 + k).
using Codes = QList<int>;
using Answers = QList<bool>;
const Answers AllAnswer(5, true);

void setUpZone(RuntimeFixture &fx, int zone, int slave, const Codes &functions, const Answers &answers)
{
    fx.slaves.insert(slave);
    setRow(fx.rt.model.editor.tables.ZoneReadTable, zone, {slave, 1});
    for (int k = 0; k < 5; ++k) {
        fx.rt.model.editor.tables.ZoneReadTable.set(zone, zoneQuantityFunctionSlot(k), qint16(functions[k]));
        fx.rt.model.editor.tables.ZoneReadTable.set(zone, zoneQuantityRegisterSlot(k), qint16(100 + k));
        if (answers[k])
            fx.setValue(slave, functions[k], 100 + k, 200 + k);
    }
}

QString dailyLog(RuntimeFixture &fx)
{
    QFile file(fx.dir.filePath(QStringLiteral("Dati/2026_11_15.csv")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("<no file>");
}


// A cycle task that writes to slave 99 (0x63) when asked, so its place among the polls
// shows on the wire.
struct WireTask final : CycleTask
{
    explicit WireTask(ModbusMaster &master) : master(master) {}
    bool runTick() override { return writes && master.WriteRegister(6, 0x90, 1, 99) != ModbusMaster::InvalidValue; }
    void acquisitionStarted() override {}

    ModbusMaster &master;
    bool writes = false;
};

const QString MeasurementRead = QStringLiteral("01 03 0000 0001");
const QString LedLampRead = QStringLiteral("04 04 0042 0001");
// What a Start reads: the round (PV and SP) and the switch states (On_r, Off_r).
const QStringList StartReads{MeasurementRead, "01 03 0001 0001", "02 01 0022 0001", "02 01 0023 0001"};
// A tick with every poll due: the remote/local exchanges, the Start's reads and the LED lamp.
const int FullTickRequests = 4 + 4 + 1;

// What the operator or the timer does.
enum class Act { Tick, Start, Reload, Stop };

// A loaded supervisor over one of each item on slaves 1 to 4 and the line probe on slave
// 5: every register has its own address, so the wire tells which poll ran.
struct CycleFixture : RuntimeFixture
{
    Supervisor supervisor{rt};
    WireTask task{rt.services.master};

    explicit CycleFixture(int remotePeriod = 1, int measurementPeriod = 1, int ledPeriod = 1)
    {
        supervisor.load();
        rt.model.plant.zones.resize(1);
        rt.model.plant.switches.resize(1);
        rt.model.plant.leds.resize(1);
        rt.model.plant.apriporta.present = true;
        RegisterTables &t = rt.model.editor.tables;
        // Address, decimals, REM function and register, then the table's own slots.
        setRow(t.ZoneReadTable, 0, {1, 1, 3, 0x10, 3, 0, 3, 1});
        setRow(t.ZoneWriteTable, 0, {1, 1, 6, 0x11});
        setRow(t.SwitchReadTable, 0, {2, 0, 1, 0x20, 1, 0x22, 1, 0x23});
        setRow(t.SwitchWriteTable, 0, {2, 0, 5, 0x21});
        setRow(t.DoorReadTable, 0, {3, 0, 2, 0x30});
        setRow(t.DoorWriteTable, 0, {3, 0, 6, 0x31});
        setRow(t.LedReadTable, 0, {4, 0, 1, 0x40, 4, 0x42, 25, -1, 1});
        setRow(t.LedWriteTable, 0, {4, 0, 5, 0x41});
        rt.model.editor.lineProbe = {5, 3, 0x50};
        for (auto [slave, functionCode, address, value] :
             {std::tuple{1, 3, 0x10, 1}, {1, 3, 0, 205}, {1, 3, 1, 210}, {2, 1, 0x20, 0}, {2, 1, 0x22, 1},
              {2, 1, 0x23, 0}, {3, 2, 0x30, 1}, {4, 1, 0x40, 1}, {4, 4, 0x42, 30}, {5, 3, 0x50, 1}})
            setValue(slave, functionCode, address, value);
        slaves.insert(99);
        rt.model.editor.comm.remotePeriod = remotePeriod;
        rt.model.editor.comm.measurementPeriod = measurementPeriod;
        rt.model.editor.comm.ledPeriod = ledPeriod;
        rt.model.editor.comm.remoteEnabled = true;
        rt.cycleTasks.append(&task);
    }

    void act(Act what)
    {
        if (what == Act::Tick)
            return supervisor.monitoring().MonitorCycle();
        using Menu = void (Supervisor::*)();
        const Menu menus[] = {nullptr, &Supervisor::MenuStart, &Supervisor::MenuRileggi, &Supervisor::MenuStop};
        (supervisor.*menus[int(what)])();
    }

    // The acquisition button's image after each of `phases` blink phases.
    QList<int> blinkImages(int phases)
    {
        QList<int> images;
        for (int i = 0; i < phases; ++i) {
            supervisor.alarmIndication().Timer_LampeggioTick();
            images.append(supervisor.acquisition().buttonImage());
        }
        return images;
    }
};

// Which ticks each poll ran on, from tick `from` to tick `to`.
struct PollTicks
{
    int remotePeriod, measurementPeriod, ledPeriod, from, to;
    TickList remote, measurement, led, activity;
};

} // namespace

Q_DECLARE_METATYPE(Act)
Q_DECLARE_METATYPE(PollTicks)
Q_DECLARE_METATYPE(ItemExchange)

class TestSupervisor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    // Start-up loads the settings, acknowledges what the last run left, makes the
    // program's folders and arms the automatic start if asked.
    void startUp_data()
    {
        QTest::addColumn<QString>("autoAvvio");
        QTest::addColumn<QString>("grafico");
        QTest::addColumn<bool>("portOpens");
        QTest::newRow("both options on") << "1" << "1" << true;
        QTest::newRow("both options off") << "0" << "0" << true;
        QTest::newRow("no port") << "0" << "1" << false;
    }
    void startUp()
    {
        QFETCH(QString, autoAvvio);
        QFETCH(QString, grafico);
        QFETCH(bool, portOpens);
        RuntimeFixture fx;
        fx.line.setOpenRefused(!portOpens);
        const QString ini = QStringLiteral("[Generale]\nZone=1\nAutoAvvio=%1\nGrafico=%2\n"
                                           "[Zona 01]\nIndirizzo=5\nPV_r=3,40001\n[COM]\nPorta=2\n");
        fx.writeFile(QStringLiteral("Telvane2.ini"), ini.arg(autoAvvio, grafico).toUtf8());
        fx.rt.services.alarms.ReportSwitchFailure(0);
        Supervisor supervisor(fx.rt);

        supervisor.startUp();
        QCOMPARE(fx.rt.model.editor.tables.ZoneReadTable.at(0, ZoneSlot::Address), 5);
        QCOMPARE(fx.rt.display.ChartLoggingOption, grafico == QLatin1String("1"));
        QCOMPARE(supervisor.TimerAutoStart().isActive(), autoAvvio == QLatin1String("1"));
        QCOMPARE(supervisor.SerialPortOpen(), portOpens);
        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::PortPanel), QString(portOpens ? "COM2:9600,N,8,1" : "Nessuna COM"));
        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::MessagePanel), QString(autoAvvio == "1" ? "Avvio in corso..." : ""));
        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::StatePanel), QStringLiteral("Standby"));
        QVERIFY(!supervisor.AcquisitionRunning() && supervisor.acquisition().AutoStartPending());
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        for (const char *folder : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(fx.dir.filePath(QLatin1String(folder))).exists(), folder);

        // The operator's choice of chart logging from the editor's menu outlives the
        // reload that follows every confirmed editor page, and the next start.
        const bool chosen = grafico != QLatin1String("1");
        MenuVediGraf(fx.rt);
        ReloadEditor(fx.rt);
        QCOMPARE(fx.rt.display.ChartLoggingOption, chosen);
        RuntimeFixture restarted;
        QVERIFY(QFile::copy(fx.dir.filePath(QStringLiteral("Telvane2.ini")), restarted.dir.filePath(QStringLiteral("Telvane2.ini"))));
        ReloadEditor(restarted.rt);
        QCOMPARE(restarted.rt.display.ChartLoggingOption, chosen);
    }

    // An operator's shift, with or without an alarm sound configured.
    void acquisitionAndAlarms_data()
    {
        QTest::addColumn<QString>("sound");
        QTest::newRow("sound configured") << "allarme.wav";
        QTest::newRow("no sound") << "";
    }
    void acquisitionAndAlarms()
    {
        QFETCH(QString, sound);
        CycleFixture fx;
        Supervisor &supervisor = fx.supervisor;
        AlarmIndication &indication = supervisor.alarmIndication();
        StatusBar &bar = fx.rt.display.statusBar;
        // Simulating, the port is not needed.
        fx.rt.services.master.setCommunicate(false);
        fx.rt.model.editor.comm.portAvailable = false;
        // Every quantity read, as the unread alarm quantities would count as failures.
        setRow(fx.rt.model.editor.tables.ZoneReadTable, 0, {1, 1, 3, 0x10, 3, 0, 3, 1, 3, 2, 3, 3, 3, 4});
        fx.rt.model.plant.synoptic.alarmSound = sound;
        fx.rt.display.EditorOpen = true;
        QSignalSpy editor(&supervisor, &Supervisor::editorFrameEnabledRequested);
        QStringList journal; // each entry's line in the month's file, without its time
        QObject::connect(&fx.rt.services.journal, &OperatorJournal::recorded, [&](const JournalEntry &entry) {
            journal.append(journalLine(entry).section(QLatin1Char(';'), 1));
        });
        const std::pair<const char *, std::function<bool()>> standbyOnly[] = {
            {"exit", [&] { return supervisor.MenuFine(); }},
            {"about", [&] { return supervisor.MenuAbout(); }},
            {"season", [&] { return supervisor.MenuStagione(); }}};

        // While the automatic start is pending the button blinks every 350 ms; the start
        // empties the activity and message panels and ends the blink.
        supervisor.armAutoStart(true);
        QCOMPARE(bar.panel(StatusBar::MessagePanel), QStringLiteral("Avvio in corso..."));
        QCOMPARE(fx.blinkImages(4), (QList<int>{3, 4, 3, 4}));
        bar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Remoto..."));
        supervisor.TimerAutoStartTick();
        QVERIFY(!supervisor.acquisition().AutoStartPending() && supervisor.AcquisitionRunning());
        QCOMPARE(bar.panel(StatusBar::StatePanel), QStringLiteral("Acquisizione"));
        QCOMPARE(bar.panel(StatusBar::MessagePanel), QString());
        QCOMPARE(bar.panel(StatusBar::ActivityPanel), QString());
        QCOMPARE(supervisor.acquisition().buttonImage(), AcquisitionState::AcquiringImage);
        QVERIFY(supervisor.monitoring().Timer_Monitor().isActive());
        QVERIFY(!indication.AlarmBlinkActive());
        QCOMPARE(QList<QVariantList>(editor), QList<QVariantList>{{false}}); // the open editor is locked
        editor.clear();

        // Acquiring, what needs standby is refused with a message shown for half a second.
        for (const auto &[name, command] : standbyOnly) {
            fx.pause.clear();
            fx.panelTexts[StatusBar::MessagePanel].clear();
            QVERIFY2(!command(), name);
            QCOMPARE(fx.panelTexts[StatusBar::MessagePanel], (QStringList{"Operazione non permessa", ""}));
            QCOMPARE(fx.pause.pauses(), QList<int>{500});
        }

        // The sixth failure blinks the button and plays the sound on every other phase,
        // every 700 ms now; acknowledging ends both. Only an acknowledgement of listed
        // alarms is journalled, with how many there were.
        fx.sound.clear();
        for (int i = 0; i < 6; ++i) {
            fx.rt.services.alarms.ReportZoneFailure(0);
            fx.rt.services.alarms.ReportSwitchFailure(0);
        }
        QVERIFY(indication.AlarmBlinkActive() && indication.Timer_Lampeggio().isActive());
        QCOMPARE(fx.blinkImages(3), (QList<int>{3, 4, 3}));
        const QString played = fx.dir.filePath(QStringLiteral("allarme.wav"));
        QCOMPARE(fx.sound.played(), (sound.isEmpty() ? QStringList{} : QStringList{played, played}));
        supervisor.ResetAlarms();
        supervisor.ResetAlarms();
        QVERIFY(!supervisor.AlarmPending());
        QCOMPARE(supervisor.acquisition().buttonImage(), AcquisitionState::AcquiringImage);
        indication.Timer_LampeggioTick();
        QVERIFY(!indication.Timer_Lampeggio().isActive());
        QCOMPARE(supervisor.acquisition().buttonImage(), AcquisitionState::AcquiringImage);

        // A re-read is no stop and start. A Stop by a technician clears the displays and
        // leaves the editor locked; a second one, or a re-read, in standby does nothing.
        fx.login(true, false);
        supervisor.MenuRileggi();
        indication.SetAlarmBlink(true);
        fx.rt.services.items.switches[0] = SwitchState::On;
        fx.rt.services.items.leds[1].lit = true;
        bar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Remoto..."));
        bar.setPanel(StatusBar::MessagePanel, QStringLiteral("Accensione..."));
        QSignalSpy zonesReset(&fx.rt.display.displayResets, &DisplayResets::ResetZoneDisplays);
        supervisor.MenuStop();
        supervisor.MenuStop();
        supervisor.MenuRileggi();
        QVERIFY(!supervisor.AcquisitionRunning() && !supervisor.monitoring().Timer_Monitor().isActive());
        QVERIFY(!indication.AlarmBlinkActive() && !indication.Timer_Lampeggio().isActive());
        QCOMPARE(bar.panel(StatusBar::StatePanel), QStringLiteral("Standby"));
        QVERIFY(bar.panel(StatusBar::ActivityPanel).isEmpty() && bar.panel(StatusBar::MessagePanel).isEmpty());
        QCOMPARE(supervisor.acquisition().buttonImage(), AcquisitionState::StandbyImage);
        QCOMPARE(zonesReset.size(), 2);
        QCOMPARE(fx.rt.services.items.switches[0], SwitchState::Undetermined);
        QVERIFY(!fx.rt.services.items.leds[1].lit);
        QVERIFY(editor.isEmpty());

        // Neither acquiring nor about to start: a blink stops at its next phase, and what
        // needs standby runs.
        indication.SetAlarmBlink(true);
        indication.Timer_LampeggioTick();
        QVERIFY(!indication.Timer_Lampeggio().isActive());
        fx.pause.clear();
        for (const auto &[name, command] : standbyOnly)
            QVERIFY2(command(), name);
        QVERIFY(fx.pause.pauses().isEmpty());

        // A Start with an alarm pending blinks again; an administrator's Stop gives the
        // editor back.
        for (int i = 0; i < 6; ++i)
            fx.rt.services.alarms.ReportLedFailure(2);
        indication.SetAlarmBlink(false);
        supervisor.MenuStart();
        QVERIFY(indication.AlarmBlinkActive() && indication.Timer_Lampeggio().isActive());
        QCOMPARE(QList<QVariantList>(editor), QList<QVariantList>{{false}});
        fx.login(false, true);
        supervisor.MenuStop();
        QCOMPARE(editor.last(), QVariantList{true});

        // A Start that cannot talk to the instruments does not start, and says why.
        fx.rt.services.master.setCommunicate(true);
        fx.rt.model.editor.comm.portAvailable = false;
        supervisor.MenuStart();
        QVERIFY(!supervisor.AcquisitionRunning());
        QCOMPARE(journal, (QStringList{"Anonimo;Start;automatico;", "Anonimo;Riconoscimento allarmi;2 in elenco;",
                                       "Tecnico;Rileggi;;", "Tecnico;Stop;;", "Tecnico;Start;;",
                                       "Amministratore;Stop;;", "Amministratore;Start;;porta seriale non disponibile"}));
    }

    void orderOfOneTick_data()
    {
        QTest::addColumn<bool>("remote");
        QTest::addColumn<QStringList>("exchanges");
        QTest::addColumn<QString>("activity");
        QTest::newRow("remote mode") << true
                                     << QStringList{"01 03 0010 0001", "02 01 0020 0001", "03 02 0030 0001",
                                                    "04 01 0040 0001"}
                                     << "Remoto...";
        // The supervisor's state (acquiring: 1; a coil's 1 is 0xFF00) is written.
        QTest::newRow("local mode") << false
                                    << QStringList{"01 06 0011 0001", "02 05 0021 ff00", "03 06 0031 0001",
                                                   "04 05 0041 ff00"}
                                    << "Locale...";
    }
    void orderOfOneTick()
    {
        QFETCH(bool, remote);
        QFETCH(QStringList, exchanges);
        QFETCH(QString, activity);
        CycleFixture fx(1, 1, 1);
        fx.rt.model.editor.comm.remoteEnabled = remote;
        fx.rt.model.editor.comm.lineActivity = true;
        fx.supervisor.SetAcquisitionState(true);
        fx.task.writes = true;

        fx.supervisor.monitoring().MonitorCycle();
        // The task, then the polls; the task kept the line busy, so no activity poll.
        QCOMPARE(fx.takeRequests(), QStringList{"63 06 0090 0001"} + exchanges + StartReads + QStringList{LedLampRead});
        QCOMPARE(fx.panelTexts[StatusBar::ActivityPanel], (QStringList{activity, "", "Lettura...", ""}));
    }

    void ticksOfEachPoll_data()
    {
        QTest::addColumn<PollTicks>("p");
        QTest::newRow("defaults, first ticks") << PollTicks{3, 60, 3, 1, 10, {3, 6, 9}, {}, {3, 6, 9}, {1, 2, 4, 5, 7, 8, 10}};
        // The counter restarts after 300, a multiple of every default period.
        QTest::newRow("defaults, around the wrap")
            << PollTicks{3, 60, 3, 298, 304, {300, 303}, {300}, {300, 303}, {298, 299, 301, 302, 304}};
        // Periods that do not divide 300 run unevenly around the wrap; 0 never runs.
        QTest::newRow("7, 300 and 0") << PollTicks{7, 300, 0, 285, 316, {287, 294, 307, 314}, {300}, {}, {}};
        QTest::newRow("all 0: only the activity poll") << PollTicks{0, 0, 0, 1, 3, {}, {}, {}, {1, 2, 3}};
    }
    void ticksOfEachPoll()
    {
        QFETCH(PollTicks, p);
        CycleFixture fx(p.remotePeriod, p.measurementPeriod, p.ledPeriod);
        fx.rt.model.plant.switches.clear();
        fx.rt.model.plant.apriporta.present = false;
        // Rows without an activity poll have it switched off.
        fx.rt.model.editor.comm.lineActivity = !p.activity.isEmpty();
        fx.supervisor.SetAcquisitionState(true);

        const QStringList polls{"01 03 0010 0001", MeasurementRead, LedLampRead, "05 03 0050 0001"};
        QList<TickList> ran(polls.size());
        for (int tick = 1; tick <= p.to; ++tick) {
            fx.supervisor.monitoring().MonitorCycle();
            const QStringList requests = fx.takeRequests();
            for (int poll = 0; poll < polls.size(); ++poll)
                if (tick >= p.from && requests.contains(polls[poll]))
                    ran[poll].append(tick);
        }
        QCOMPARE(ran, (QList<TickList>{p.remote, p.measurement, p.led, p.activity}));
    }

    // Clicked while a poll waits: a Stop ends the tick after that exchange and leaves
    // the timer off; a Start or Reload runs once the tick is over, a nested tick is
    // skipped. The timer runs on through them and fires into their reply waits: no tick
    // may start there, its exchanges would be refused as the line is taken and counted
    // against the instruments.
    void clicksDuringATick_data()
    {
        QTest::addColumn<QList<Act>>("clicks");
        QTest::addColumn<int>("tickRequests");
        QTest::addColumn<int>("counterAfter");
        QTest::newRow("stop") << QList{Act::Stop} << 1 << 1;
        QTest::newRow("stop, then start") << QList{Act::Stop, Act::Start} << 1 << 0;
        QTest::newRow("start while acquiring") << QList{Act::Start} << FullTickRequests << 0;
        QTest::newRow("reload") << QList{Act::Reload} << FullTickRequests << 1;
        QTest::newRow("another tick") << QList{Act::Tick} << FullTickRequests << 1;
    }
    void clicksDuringATick()
    {
        QFETCH(QList<Act>, clicks);
        QFETCH(int, tickRequests);
        QFETCH(int, counterAfter);
        CycleFixture fx;
        fx.supervisor.SetAcquisitionState(true);
        QSignalSpy ticks(&fx.supervisor.monitoring(), &MonitoringCycle::tickFinished);
        bool clicked = false;
        fx.line.setDuringYield([&] {
            if (std::exchange(clicked, true)) {
                if (fx.supervisor.AcquisitionRunning())
                    fx.act(Act::Tick);
                return;
            }
            const qsizetype sent = fx.line.requests().size();
            for (Act click : clicks)
                fx.act(click);
            QCOMPARE(fx.line.requests().size(), sent);
        });

        fx.supervisor.monitoring().MonitorCycle();
        QVERIFY(clicked);
        const bool reads = clicks.last() == Act::Start || clicks.last() == Act::Reload;
        QCOMPARE(fx.takeRequests().mid(tickRequests), reads ? StartReads : QStringList{});
        const bool stopped = clicks == QList{Act::Stop};
        QCOMPARE(fx.supervisor.AcquisitionRunning(), !stopped);
        QCOMPARE(fx.supervisor.monitoring().Timer_Monitor().isActive(), !stopped);
        QCOMPARE(fx.supervisor.monitoring().CycleCounter(), counterAfter);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 0), 0);
        if (stopped)
            return;
        QCOMPARE(ticks.size(), 1);
        // A Start clicked outside a tick while acquiring: the same.
        fx.act(Act::Start);
        QCOMPARE(ticks.size(), 1);
        QCOMPARE(fx.takeRequests(), StartReads);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 0), 0);
    }

    // A Stop during a round on a silent line (three zones, two quantities each, three
    // attempts): the try under way ends, nothing more goes on the wire, the port is
    // closed, only that try counts toward its zone's alarm and the round writes no
    // line in the day's file. A later Start talks to the instruments again.
    void stopEndsARoundOnASilentLine_data()
    {
        QTest::addColumn<Act>("during");
        QTest::newRow("tick") << Act::Tick;
        QTest::newRow("start's read") << Act::Start;
        QTest::newRow("reload") << Act::Reload;
    }
    void stopEndsARoundOnASilentLine()
    {
        QFETCH(Act, during);
        CycleFixture fx(0, 1, 0);
        fx.rt.services.master.setAttempts(3);
        fx.rt.display.ChartLoggingOption = true;
        fx.rt.model.plant.zones.resize(3);
        fx.rt.model.plant.switches.clear();
        for (int zone = 0; zone < 3; ++zone)
            setRow(fx.rt.model.editor.tables.ZoneReadTable, zone, {9, 1, 3, 0x10, 3, 0, 3, 1});
        fx.supervisor.SetAcquisitionState(during != Act::Start);
        int stopsAsked = 0;
        fx.line.setDuringYield([&] {
            if (stopsAsked++ == 0)
                fx.supervisor.MenuStop();
        });

        fx.act(during);
        QCOMPARE(fx.takeRequests(), QStringList{fx.request(9, 3, 0, 1)});
        QVERIFY(!fx.line.isOpen());
        QVERIFY(!fx.supervisor.AcquisitionRunning());
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 0), 1);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 1), 0);
        QVERIFY(!QFile::exists(fx.dir.filePath(QStringLiteral("Dati/2026_11_14.csv"))));

        fx.line.setDuringYield({});
        fx.setValue(9, 3, 0, 200);
        fx.supervisor.MenuStart();
        QVERIFY(fx.supervisor.AcquisitionRunning());
        QCOMPARE(fx.takeRequests().first(), fx.request(9, 3, 0, 1));
        QCOMPARE(fx.rt.model.values.ZoneValues[0][0], 20.0f);
        QVERIFY(QFile::exists(fx.dir.filePath(QStringLiteral("Dati/2026_11_14.csv"))));
        // A re-read with the port gone does nothing; acquiring goes on.
        fx.rt.model.editor.comm.portAvailable = false;
        fx.supervisor.MenuRileggi();
        QVERIFY(fx.takeRequests().isEmpty() && fx.supervisor.AcquisitionRunning());
    }

    // One tick's remote/local exchanges and the counts (zone, switch, LED; each 3
    // before): an answer clears them, but a LED's answer is not looked at; silence counts.
    void pollAnswersDriveTheCounts()
    {
        for (const bool remote : {true, false}) {
            CycleFixture fx(1, 0, 0);
            fx.rt.model.editor.comm.remoteEnabled = remote;
            if (!remote)
                fx.slaves.clear(); // local, on a silent line
            for (const AlarmItemKind kind : {AlarmItemKind::Zone, AlarmItemKind::Switch, AlarmItemKind::Led})
                for (int i = 0; i < 3; ++i)
                    fx.rt.services.alarms.reportFailure(kind, 0);
            fx.rt.services.items.zoneRemote[0] = RemoteState::Local;
            fx.supervisor.SetAcquisitionState(true);

            fx.supervisor.monitoring().MonitorCycle();
            const AlarmBook &alarms = fx.rt.services.alarms;
            QCOMPARE((QList<int>{alarms.FailCount(AlarmItemKind::Zone, 0), alarms.FailCount(AlarmItemKind::Switch, 0),
                                 alarms.FailCount(AlarmItemKind::Led, 0)}),
                     (remote ? QList<int>{0, 0, 3} : QList<int>{4, 4, 4}));
            QCOMPARE(fx.rt.services.items.zoneRemote[0], remote ? RemoteState::Remote : RemoteState::Unknown);
        }
    }

    // The remote read and local write of every item kind. A failed exchange counts toward
    // the item's alarm; the door opener has none. One asked for while another waits for
    // its reply is refused as "line busy": that says nothing of the instrument.
    void exchange_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<ItemExchange>("x");
        const RemoteState unknown = RemoteState::Unknown, remote = RemoteState::Remote, local = RemoteState::Local;
        for (auto [kind, name] : {std::pair{Kind::Zone, "zone"}, {Kind::Switch, "switch"}, {Kind::Door, "door"},
                                  {Kind::Led, "LED"}}) {
            QTest::addRow("%s remote", name) << kind << ItemExchange{true, 3, 1, "0c 03 0020 0001", true, remote};
            QTest::addRow("%s local", name) << kind << ItemExchange{true, 1, 0, "0c 01 0020 0001", true, local};
            QTest::addRow("%s silent", name) << kind << ItemExchange{true, 3, -1, "0c 03 0020 0001", false, unknown};
            QTest::addRow("%s write code", name) << kind << ItemExchange{true, 6, 1, "", false, unknown};
            QTest::addRow("%s coil on", name) << kind << ItemExchange{false, 5, 1, "0c 05 0021 ff00", true, unknown};
            QTest::addRow("%s register", name) << kind << ItemExchange{false, 6, 1, "0c 06 0021 0001", true, unknown};
            QTest::addRow("%s no echo", name) << kind << ItemExchange{false, 6, -1, "0c 06 0021 0001", false, unknown};
            QTest::addRow("%s read code", name) << kind << ItemExchange{false, 3, 1, "", false, unknown};
            QTest::addRow("%s read, line busy", name) << kind << ItemExchange{true, 3, 1, "", false, unknown, true};
            QTest::addRow("%s write, line busy", name) << kind << ItemExchange{false, 6, 1, "", false, unknown, true};
        }
    }
    void exchange()
    {
        QFETCH(Kind, kind);
        QFETCH(ItemExchange, x);
        const auto [read, code, value, request, ok, state, busy] = x;
        RuntimeFixture fx;
        configure(fx.rt.model.editor.tables, kind, read ? code : 3, read ? 6 : code);
        if (value >= 0)
            fx.setValue(12, code, 0x20, value);
        QSignalSpy changed(&fx.rt.display.synoptic, &SynopticRefresh::remoteStatesChanged);

        bool result = false, asked = false;
        const auto run = [&] { result = runExchange(fx.rt, kind, x.read, std::max(x.value, 1)); };
        if (busy) {
            fx.setValue(1, 3, 0, 7);
            fx.line.setDuringYield([&] { std::exchange(asked, true) ? void() : run(); });
            QCOMPARE(fx.rt.services.master.ReadRegister(3, 0, 1), 7);
            QVERIFY(asked);
            QCOMPARE(fx.takeRequests(), QStringList{RuntimeFixture::request(1, 3, 0, 1)});
        } else {
            run();
        }
        QCOMPARE(result, ok);
        QCOMPARE(fx.takeRequests(), request.isEmpty() ? QStringList{} : QStringList{request});
        const bool counted = kind != Kind::Door && !ok && !request.isEmpty();
        const AlarmItemKind alarmKinds[] = {AlarmItemKind::Zone, AlarmItemKind::Switch, AlarmItemKind::Zone,
                                            AlarmItemKind::Led};
        QCOMPARE(fx.rt.services.alarms.FailCount(alarmKinds[int(kind)], 2), counted ? 1 : 0);
        const RemoteState states[] = {fx.rt.services.items.zoneRemote[2], fx.rt.services.items.switchRemote[2], fx.rt.services.items.doorRemote,
                                      fx.rt.services.items.ledRemote[2]};
        QCOMPARE(states[int(kind)], state);
        QCOMPARE(changed.size(), state == RemoteState::Unknown ? 0 : 1);
    }

    // The state reads of one tick. Switch 0: coils, on. 1: registers with 1 decimal, off.
    // 2: silent. LED 0: 25.5 with 1 decimal against 25.0 (">="): lit. 1: the same reading
    // with "<": dark. 2: silent. 3: no P1_r.
    void stateReads()
    {
        RuntimeFixture fx;
        fx.rt.model.plant.switches.resize(3);
        fx.rt.model.plant.leds.resize(4);
        RegisterTables &t = fx.rt.model.editor.tables;
        setRow(t.SwitchReadTable, 0, {21, 2, -1, -1, 1, 0x10, 1, 0x11});
        setRow(t.SwitchReadTable, 1, {22, 1, -1, -1, 3, 0x10, 3, 0x11});
        setRow(t.SwitchReadTable, 2, {23, 0, -1, -1, 1, 0x10});
        setRow(t.LedReadTable, 0, {31, 1, -1, -1, 3, 0x10, 250, 1, 1});
        setRow(t.LedReadTable, 1, {31, 1, -1, -1, 3, 0x10, 250, 1, 5});
        setRow(t.LedReadTable, 2, {33, 0, -1, -1, 4, 0x09, 0, 1, 1});
        setRow(t.LedReadTable, 3, {34, 0, -1, -1, -1, -1, 0, 1, 1});
        for (auto [slave, functionCode, address, value] :
             {std::tuple{21, 1, 0x10, 1}, {21, 1, 0x11, 0}, {22, 3, 0x10, 0}, {22, 3, 0x11, 15}, {31, 3, 0x10, 255}})
            fx.setValue(slave, functionCode, address, value);
        for (int i = 0; i < 3; ++i)
            fx.rt.services.alarms.ReportSwitchFailure(0);
        ItemStates &items = fx.rt.services.items;
        items.leds[2] = {true, 12.0f};

        readAllSwitchStates(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"15 01 0010 0001", "15 01 0011 0001", "16 03 0010 0001",
                                                 "16 03 0011 0001", "17 01 0010 0001"}));
        QCOMPARE(fx.rt.model.values.SwitchValues[1][1], 1.5f);
        QCOMPARE(items.switches[0], SwitchState::On);
        QCOMPARE(items.switches[1], SwitchState::Off);
        QCOMPARE(items.switches[2], SwitchState::Undetermined);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 2), 1);
        // On_r and Off_r, each used or not: a state only when they agree.
        const float bad = InvalidValue;
        QCOMPARE(switchStateFrom(true, 1.0f, true, 1.0f), SwitchState::Undetermined);
        QCOMPARE(switchStateFrom(true, 0.0f, false, bad), SwitchState::Off);
        QCOMPARE(switchStateFrom(false, bad, true, 0.0f), SwitchState::On);
        QCOMPARE(switchStateFrom(false, bad, false, bad), SwitchState::Undetermined);

        readAllLedLamps(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"1f 03 0010 0001", "1f 03 0010 0001", "21 04 0009 0001"}));
        QVERIFY(items.leds[0].lit && !items.leds[1].lit && !items.leds[2].lit);
        QCOMPARE(items.leds[0].value, 25.5f);
        QCOMPARE(items.leds[2].value, InvalidValue);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 2), 1);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 3), 0);
        fx.setValue(33, 4, 0x09, 0);
        readAllLedLamps(fx.rt);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 2), 0);
        QVERIFY(items.leds[2].lit);
        fx.takeRequests();
        // Lit below, at and above the threshold for each condition from 0 to 9: 1 ">=",
        // 2 "<=", 3 "=", 4 ">", 5 "<", 6 "<>", any other ">=".
        QStringList lit;
        for (int condition = 0; condition <= 9; ++condition) {
            lit.append(QString());
            for (int reading : {249, 250, 251})
                lit.last() += ledConditionHolds(condition, reading, 250) ? '1' : '0';
        }
        QCOMPARE(lit, (QStringList{"011", "011", "110", "010", "001", "100", "101", "011", "011", "011"}));

        // The line probe: a silent line is noted once, not on every idle tick.
        fx.rt.model.editor.lineProbe = {21, 1, 0x10};
        QVERIFY(activityPoll(fx.rt));
        fx.rt.model.editor.lineProbe = {6, 3, 0x40};
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("The line is silent"));
        QVERIFY(!activityPoll(fx.rt));
        QTest::failOnWarning(QRegularExpression("The line"));
        QVERIFY(!activityPoll(fx.rt));
        fx.rt.model.editor.lineProbe = {-1, -1, -1};
        QVERIFY(!activityPoll(fx.rt));
        QCOMPARE(fx.takeRequests(), (QStringList{"15 01 0010 0001", "06 03 0040 0001", "06 03 0040 0001"}));

        // An index outside the plant sends nothing.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No zone with index 30"));
        QVERIFY(!zoneRemoteRead(fx.rt, 30));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No LED with index 10"));
        QVERIFY(!ledRemoteRead(fx.rt, 10));
        QVERIFY(fx.takeRequests().isEmpty());
    }

    // Zone 2 beside a zone that always answers: its count after one and two rounds, and
    // whether it is listed. An alarm quantity not read counts twice; any later good read
    // clears the count.
    void failureCountsPerRound_data()
    {
        QTest::addColumn<Codes>("functions");
        QTest::addColumn<Answers>("answers");
        QTest::addColumn<QList<int>>("counts");
        QTest::addColumn<QList<int>>("listed");
        const Answers none(5, false);
        QTest::newRow("PV and SP only") << Codes{3, 3, -1, -1, -1} << Answers{true, true, false, false, false}
                                        << QList<int>{6, 6} << QList<int>{1, 1};
        QTest::newRow("all five answer") << Codes(5, 3) << AllAnswer << QList<int>{0, 0} << QList<int>{0, 0};
        QTest::newRow("slave absent") << Codes(5, 4) << none << QList<int>{5, 10} << QList<int>{0, 1};
        QTest::newRow("SP unused") << Codes{3, -1, 3, 3, 3} << Answers{true, false, true, true, true}
                                   << QList<int>{0, 0} << QList<int>{0, 0};
        QTest::newRow("AL3 silent") << Codes(5, 3) << Answers{true, true, true, true, false} << QList<int>{1, 1}
                                    << QList<int>{0, 0};
        QTest::newRow("nothing configured") << Codes(5, -1) << none << QList<int>{8, 16} << QList<int>{1, 1};
    }
    void failureCountsPerRound()
    {
        QFETCH(Codes, functions);
        QFETCH(Answers, answers);
        QFETCH(QList<int>, counts);
        QFETCH(QList<int>, listed);
        RuntimeFixture fx;
        fx.rt.model.plant.zones.resize(2);
        fx.rt.model.plant.zones[1].name = QStringLiteral("Soggiorno");
        setUpZone(fx, 0, 1, Codes(5, 3), AllAnswer);
        setUpZone(fx, 1, 2, functions, answers);

        for (int round = 0; round < 2; ++round) {
            ReadAllMeasurements(fx.rt);
            QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 1), counts[round]);
            QCOMPARE(fx.rt.services.alarms.zoneEntries().size(), listed[round]);
        }
        if (listed[1])
            QVERIFY(fx.rt.services.alarms.zoneEntries().first().startsWith(QLatin1String("Soggiorno (14/11/2026 22:2")));
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 0), 0);
        // What was not read holds the invalid marker, for the synoptic's "--.-".
        for (int k = 0; k < 5; ++k)
            QCOMPARE(fx.rt.model.values.ZoneValues[1][k] == InvalidValue, !answers[k]);
    }

    // One round over zones of every kind: registers are scaled by the zone's decimals,
    // coils and discrete inputs are not; rows without a usable slave address or read code
    // send nothing and count as failures.
    void oneRound()
    {
        RuntimeFixture fx;
        fx.rt.model.plant.zones.resize(5);
        RegisterTables &t = fx.rt.model.editor.tables;
        setRow(t.ZoneReadTable, 0, {7, 1, -1, -1, 3, 0x9c41});
        setRow(t.ZoneReadTable, 1, {7, 2, -1, -1, 4, 0x9c41});
        setRow(t.ZoneReadTable, 2, {7, 2, -1, -1, 1, 0x9c41});
        setRow(t.ZoneReadTable, 3, {256, 1, -1, -1, 3, 0, 3, 1});
        setRow(t.ZoneReadTable, 4, {5, 1, -1, -1, 6, 0, 9, 1});
        fx.setValue(7, 3, 0x9c41, 215);
        fx.setValue(7, 4, 0x9c41, -5);
        fx.setValue(7, 1, 0x9c41, 1);

        ReadAllMeasurements(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"07 03 9c41 0001", "07 04 9c41 0001", "07 01 9c41 0001"}));
        QCOMPARE(fx.rt.model.values.ZoneValues[0][0], 21.5f);
        QCOMPARE(fx.rt.model.values.ZoneValues[1][0], -0.05f);
        QCOMPARE(fx.rt.model.values.ZoneValues[2][0], 1.0f);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 3), 8);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 4), 8);

        // A round refused as the line is busy counts against no zone.
        fx.rt.model.plant.zones.resize(1);
        setUpZone(fx, 0, 2, Codes(5, 3), AllAnswer);
        fx.rt.services.alarms.clearFailCount(AlarmItemKind::Zone, 0);
        fx.setValue(1, 3, 0, 7);
        bool asked = false;
        fx.line.setDuringYield([&] { std::exchange(asked, true) ? void() : ReadAllMeasurements(fx.rt); });
        QCOMPARE(fx.rt.services.master.ReadRegister(3, 0, 1), 7);
        QVERIFY(asked);
        QCOMPARE(fx.takeRequests(), QStringList{RuntimeFixture::request(1, 3, 0, 1)});
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 0), 0);
    }

    // Zone 3 does not answer; zone 4 has more decimals than the log shows. The round
    // begins just before midnight and its silent reads take it past: the line is stamped
    // when the round begins and goes to the file of the day it is written; each chart
    // point has the time its zone was read.
    void logLineAndChart_data()
    {
        QTest::addColumn<bool>("option");
        QTest::addColumn<int>("chartQuantity");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QList<double>>("points");
        QTest::newRow("set point") << true << 1 << "14/11/2026 23:59:59;21.5;19.0;-99999.0;\r\n"
                                   << QList<double>{21.5, 19.0, -99999.0, 0.0201};
        QTest::newRow("measured value") << true << 0 << "14/11/2026 23:59:59;20.0;18.5;-99999.0;\r\n"
                                        << QList<double>{20.0, 18.5, -99999.0, 0.02};
        QTest::newRow("option off") << false << 1 << "<no file>" << QList<double>{};
        QTest::newRow("no such quantity") << true << 7 << "14/11/2026 23:59:59;\r\n" << QList<double>{};
    }
    void logLineAndChart()
    {
        QFETCH(bool, option);
        QFETCH(int, chartQuantity);
        QFETCH(QString, line);
        QFETCH(QList<double>, points);
        RuntimeFixture fx;
        fx.clock.setNow(QDateTime(QDate(2026, 11, 14), QTime(23, 59, 59, 900)));
        RecordingChart chart;
        fx.rt.display.chart = &chart;
        fx.rt.display.ChartLoggingOption = option;
        fx.rt.model.plant.zones.resize(4);
        fx.rt.model.plant.zoneDisplay.chartQuantity = qint16(chartQuantity);
        const int decimals[] = {1, 1, 1, 4};
        for (int zone = 0; zone < 4; ++zone)
            setRow(fx.rt.model.editor.tables.ZoneReadTable, zone, {zone + 1, decimals[zone], -1, -1, 3, 0, 3, 1});
        for (auto [slave, pv, sp] : {std::tuple{1, 200, 215}, {2, 185, 190}, {4, 200, 201}}) {
            fx.setValue(slave, 3, 0, pv);
            fx.setValue(slave, 3, 1, sp);
        }
        QSignalSpy refreshed(&fx.rt.display.synoptic, &SynopticRefresh::zoneTextsChanged);
        if (chartQuantity > 4)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Zone Grafico"));

        ReadAllMeasurements(fx.rt);
        QCOMPARE(dailyLog(fx), line);
        QCOMPARE(chart.rounds, 1);
        QCOMPARE(chart.points.size(), points.size());
        for (int i = 0; i < points.size(); ++i) {
            QCOMPARE(std::get<0>(chart.points[i]), i + 1);
            QCOMPARE(float(std::get<2>(chart.points[i])), float(points[i]));
        }
        if (!points.isEmpty())
            QVERIFY(std::get<1>(chart.points[3]) > std::get<1>(chart.points[0]));
        QCOMPARE(fx.rt.model.values.ZoneValues[0][1], 21.5f);
        QCOMPARE(refreshed.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSupervisor)
#include "tst_supervisor.moc"
