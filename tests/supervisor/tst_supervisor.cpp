// The supervisor as the operator drives it (start-up, Start, Stop, Reload, the automatic
// start, the alarm indication) and the monitoring cycle its timer runs.

#include "support/runtimefixture.h"

#include "journal/operatorjournal.h"
#include "supervisor/chartlogging.h"
#include "supervisor/cycletask.h"
#include "supervisor/supervisor.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

using TickList = QList<int>;

namespace {

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

// Start or Reload, the state they find and the requests they send (-1: the command does nothing).
struct StartCase
{
    bool reload = false, acquiring = false, communicate = true, portOpen = true;
    int requests = -1;
};

} // namespace

Q_DECLARE_METATYPE(Act)
Q_DECLARE_METATYPE(PollTicks)
Q_DECLARE_METATYPE(StartCase)

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
        fx.rt.services.master.setCommunicate(false);
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
        // leaves the editor locked; a second one, in standby, does nothing.
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

    // Start reads every item once, Reload only while acquiring; both need an open port
    // only to talk to the instruments.
    void startAndReload_data()
    {
        QTest::addColumn<StartCase>("c");
        QTest::newRow("start, simulation without port") << StartCase{.communicate = false, .portOpen = false, .requests = 0};
        QTest::newRow("start, communicating") << StartCase{.requests = 4};
        QTest::newRow("start, communicating without port") << StartCase{.portOpen = false};
        QTest::newRow("reload in standby") << StartCase{.reload = true};
        QTest::newRow("reload while acquiring") << StartCase{.reload = true, .acquiring = true, .requests = 4};
        QTest::newRow("reload, port gone") << StartCase{.reload = true, .acquiring = true, .portOpen = false};
    }
    void startAndReload()
    {
        QFETCH(StartCase, c);
        CycleFixture fx;
        if (c.acquiring)
            fx.supervisor.MenuStart();
        fx.takeRequests();
        fx.rt.model.values.ZoneValues[0][0] = InvalidValue;
        fx.rt.model.editor.comm.portAvailable = c.portOpen;
        fx.supervisor.setCommunicateWithInstruments(c.communicate);
        QSignalSpy changed(&fx.supervisor, &Supervisor::acquisitionStateChanged);

        c.reload ? fx.supervisor.MenuRileggi() : fx.supervisor.MenuStart();
        QCOMPARE(fx.takeRequests(), c.requests > 0 ? StartReads : QStringList{});
        QCOMPARE(fx.rt.model.values.ZoneValues[0][0] != InvalidValue, c.requests >= 0);
        QCOMPARE(fx.supervisor.AcquisitionRunning(), c.acquiring || c.requests >= 0);
        QCOMPARE(fx.supervisor.monitoring().Timer_Monitor().isActive(), c.acquiring || c.requests >= 0);
        QCOMPARE(changed.size(), c.requests < 0 ? 0 : c.reload ? 2 : 1);
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
        QVERIFY(QFile::exists(fx.dir.filePath(QStringLiteral("Dati/2026_11_14.csv"))));
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
};

QTEST_GUILESS_MAIN(TestSupervisor)
#include "tst_supervisor.moc"
