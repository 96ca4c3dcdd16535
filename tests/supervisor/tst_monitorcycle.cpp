#include "support/runtimefixture.h"

#include "supervisor/cycletask.h"
#include "supervisor/supervisor.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

using TickList = QList<int>;

namespace {

// A cycle task that writes to slave 99 (0x63) when asked, so its place among the polls
// shows on the wire.
class WireTask final : public CycleTask
{
public:
    explicit WireTask(ModbusMaster &master) : m_master(master) {}
    bool runTick() override { return writes && m_master.WriteRegister(6, 0x90, 1, 99) != ModbusMaster::InvalidValue; }
    void acquisitionStarted() override {}

    bool writes = false;

private:
    ModbusMaster &m_master;
};

const QString RemoteZoneRead = QStringLiteral("01 03 0010 0001");
const QString MeasurementRead = QStringLiteral("01 03 0000 0001");
const QString LedLampRead = QStringLiteral("04 04 0042 0001");
const QString ActivityRead = QStringLiteral("05 03 0050 0001");
// A tick with every poll due: the remote/local exchanges, the round (PV and SP), the
// switch states (On_r, Off_r) and the LED lamp.
const int FullTickRequests = 4 + 2 + 2 + 1;

// What the operator or the timer does.
enum class Act { Tick, Start, Reload, Stop };

// One of each item on slaves 1 to 4, the line probe on slave 5: every register has its
// own address, so the wire tells which poll ran.
struct CycleFixture : RuntimeFixture
{
    Supervisor supervisor{rt};
    WireTask task{rt.services.master};

    CycleFixture(int remotePeriod, int measurementPeriod, int ledPeriod)
    {
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
        switch (what) {
        case Act::Tick:
            return supervisor.monitoring().MonitorCycle();
        case Act::Start:
            return supervisor.MenuStart();
        case Act::Reload:
            return supervisor.MenuRileggi();
        case Act::Stop:
            return supervisor.MenuStop();
        }
    }
};

} // namespace

Q_DECLARE_METATYPE(Act)

class TestMonitorCycle : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

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
        const QStringList reads{MeasurementRead, "01 03 0001 0001", "02 01 0022 0001", "02 01 0023 0001", LedLampRead};
        QCOMPARE(fx.takeRequests(), QStringList{"63 06 0090 0001"} + exchanges + reads);
        QCOMPARE(fx.panelTexts[StatusBar::ActivityPanel], (QStringList{activity, "", "Lettura...", ""}));
    }

    void ticksOfEachPoll_data()
    {
        QTest::addColumn<QList<int>>("periods"); // remote, measurement, LED
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<TickList>("remoteTicks");
        QTest::addColumn<TickList>("measurementTicks");
        QTest::addColumn<TickList>("ledTicks");
        QTest::addColumn<TickList>("activityTicks");

        QTest::newRow("defaults, first ticks") << QList<int>{3, 60, 3} << 1 << 10 << TickList{3, 6, 9} << TickList{}
                                               << TickList{3, 6, 9} << TickList{1, 2, 4, 5, 7, 8, 10};
        // The counter restarts after 300, a multiple of every default period.
        QTest::newRow("defaults, around the wrap") << QList<int>{3, 60, 3} << 298 << 304 << TickList{300, 303}
                                                   << TickList{300} << TickList{300, 303}
                                                   << TickList{298, 299, 301, 302, 304};
        // Periods that do not divide 300 run unevenly around the wrap; 0 never runs.
        QTest::newRow("7, 300 and 0") << QList<int>{7, 300, 0} << 285 << 316 << TickList{287, 294, 307, 314}
                                      << TickList{300} << TickList{} << TickList{};
        QTest::newRow("all 0: only the activity poll")
            << QList<int>{0, 0, 0} << 1 << 3 << TickList{} << TickList{} << TickList{} << TickList{1, 2, 3};
    }
    void ticksOfEachPoll()
    {
        QFETCH(QList<int>, periods);
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(TickList, remoteTicks);
        QFETCH(TickList, measurementTicks);
        QFETCH(TickList, ledTicks);
        QFETCH(TickList, activityTicks);
        CycleFixture fx(periods[0], periods[1], periods[2]);
        fx.rt.model.plant.switches.clear();
        fx.rt.model.plant.apriporta.present = false;
        // Rows without an activity poll have it switched off.
        fx.rt.model.editor.comm.lineActivity = !activityTicks.isEmpty();
        fx.supervisor.SetAcquisitionState(true);

        const QStringList polls{RemoteZoneRead, MeasurementRead, LedLampRead, ActivityRead};
        QList<TickList> ran(polls.size());
        for (int tick = 1; tick <= to; ++tick) {
            fx.supervisor.monitoring().MonitorCycle();
            const QStringList requests = fx.takeRequests();
            for (int poll = 0; poll < polls.size(); ++poll)
                if (tick >= from && requests.contains(polls[poll]))
                    ran[poll].append(tick);
        }
        QCOMPARE(ran, (QList<TickList>{remoteTicks, measurementTicks, ledTicks, activityTicks}));
    }

    // Clicked while a poll waits: a Stop ends the tick after that exchange and leaves
    // the timer off; a Start or Reload runs once the tick is over, a nested tick is
    // skipped.
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
        CycleFixture fx(1, 1, 1);
        fx.supervisor.SetAcquisitionState(true);
        bool clicked = false;
        fx.line.setDuringYield([&] {
            if (std::exchange(clicked, true))
                return;
            const qsizetype sent = fx.line.requests().size();
            for (Act click : clicks)
                fx.act(click);
            QCOMPARE(fx.line.requests().size(), sent);
        });

        fx.supervisor.monitoring().MonitorCycle();
        QVERIFY(clicked);
        const QStringList startRead{MeasurementRead, "01 03 0001 0001", "02 01 0022 0001", "02 01 0023 0001"};
        const bool reads = clicks.last() == Act::Start || clicks.last() == Act::Reload;
        QCOMPARE(fx.takeRequests().mid(tickRequests), reads ? startRead : QStringList{});
        const bool stopped = clicks == QList{Act::Stop};
        QCOMPARE(fx.supervisor.AcquisitionRunning(), !stopped);
        QCOMPARE(fx.supervisor.monitoring().Timer_Monitor().isActive(), !stopped);
        QCOMPARE(fx.supervisor.monitoring().CycleCounter(), counterAfter);
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

    // The timer runs on through a Start's re-read while acquiring, and through a Start
    // or Reload clicked during a tick and run at its end. A tick it fires into one of
    // their reply waits must not start: its exchanges would be refused as the line is
    // taken and counted against the instruments.
    void noTickDuringARead_data()
    {
        QTest::addColumn<Act>("click");
        QTest::addColumn<bool>("duringATick");
        QTest::addColumn<int>("ticksRun");
        QTest::addColumn<int>("counterAfter");
        QTest::newRow("start while acquiring") << Act::Start << false << 0 << 0;
        QTest::newRow("start during a tick") << Act::Start << true << 1 << 0;
        QTest::newRow("reload during a tick") << Act::Reload << true << 1 << 1;
    }
    void noTickDuringARead()
    {
        QFETCH(Act, click);
        QFETCH(bool, duringATick);
        QFETCH(int, ticksRun);
        QFETCH(int, counterAfter);
        CycleFixture fx(1, 1, 1);
        fx.supervisor.SetAcquisitionState(true);
        QSignalSpy ticks(&fx.supervisor.monitoring(), &MonitoringCycle::tickFinished);
        bool clicked = !duringATick;
        // Every reply wait after the click is where the timer fires.
        fx.line.setDuringYield([&] { fx.act(std::exchange(clicked, true) ? Act::Tick : click); });

        fx.act(duringATick ? Act::Tick : click);
        QCOMPARE(ticks.size(), ticksRun);
        QCOMPARE(fx.supervisor.monitoring().CycleCounter(), counterAfter);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 0), 0);
        QVERIFY(fx.supervisor.monitoring().Timer_Monitor().isActive());
    }

    void pollAnswersDriveTheCounts_data()
    {
        QTest::addColumn<bool>("remote");
        QTest::addColumn<bool>("answers");
        QTest::addColumn<QList<int>>("counts"); // zone, switch, LED; each 3 before the tick
        QTest::addColumn<RemoteState>("zoneState");
        // A LED's answer is not looked at: only its failure counts.
        QTest::newRow("remote, answering") << true << true << QList<int>{0, 0, 3} << RemoteState::Remote;
        QTest::newRow("local, silent") << false << false << QList<int>{4, 4, 4} << RemoteState::Unknown;
    }

    void pollAnswersDriveTheCounts()
    {
        QFETCH(bool, remote);
        QFETCH(bool, answers);
        QFETCH(QList<int>, counts);
        QFETCH(RemoteState, zoneState);
        CycleFixture fx(1, 0, 0);
        fx.rt.model.editor.comm.remoteEnabled = remote;
        if (!answers)
            fx.slaves.clear();
        for (int i = 0; i < 3; ++i) {
            fx.rt.services.alarms.ReportZoneFailure(0);
            fx.rt.services.alarms.ReportSwitchFailure(0);
            fx.rt.services.alarms.ReportLedFailure(0);
        }
        fx.rt.services.items.zoneRemote[0] = RemoteState::Local;
        fx.supervisor.SetAcquisitionState(true);

        fx.supervisor.monitoring().MonitorCycle();
        const AlarmBook &alarms = fx.rt.services.alarms;
        QCOMPARE((QList<int>{alarms.FailCount(AlarmItemKind::Zone, 0), alarms.FailCount(AlarmItemKind::Switch, 0),
                             alarms.FailCount(AlarmItemKind::Led, 0)}),
                 counts);
        QCOMPARE(fx.rt.services.items.zoneRemote[0], zoneState);
    }
};

QTEST_GUILESS_MAIN(TestMonitorCycle)
#include "tst_monitorcycle.moc"
