#include "plantrig.h"
#include "recordingcommands.h"

#include "supervisor/supervisor.h"

#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

using TickList = QList<int>;

class TestMonitorCycle : public QObject
{
    Q_OBJECT

private:
    // One of each item, every register on its own address, so that the wire tells
    // which poll ran.
    static void setUpPlant(PlantRig &rig)
    {
        Runtime &rt = rig.rt;
        rt.plant.zones.resize(1);
        rt.plant.switches.resize(1);
        rt.plant.leds.resize(1);
        rt.plant.apriporta.present = true;

        configureZone(rt, 0, 1, 1, {{3, 0}, {3, 1}}, {3, 100});
        rt.editor.tables.ZoneWriteTable.set(0, ZoneSlot::Address, 1);
        rt.editor.tables.ZoneWriteTable.set(0, ZoneSlot::RemFunction, 6);
        rt.editor.tables.ZoneWriteTable.set(0, ZoneSlot::RemRegister, 101);
        rig.setValue(1, 3, 100, 1);
        rig.setValue(1, 3, 0, 205);
        rig.setValue(1, 3, 1, 210);

        SwitchTable &sr = rt.editor.tables.SwitchReadTable;
        sr.set(0, SwitchSlot::Address, 2);
        sr.set(0, SwitchSlot::Decimals, 0);
        sr.set(0, SwitchSlot::RemFunction, 1);
        sr.set(0, SwitchSlot::RemRegister, 10);
        sr.set(0, SwitchSlot::OnFunction, 1);
        sr.set(0, SwitchSlot::OnRegister, 20);
        sr.set(0, SwitchSlot::OffFunction, 1);
        sr.set(0, SwitchSlot::OffRegister, 21);
        rt.editor.tables.SwitchWriteTable.set(0, SwitchSlot::Address, 2);
        rt.editor.tables.SwitchWriteTable.set(0, SwitchSlot::RemFunction, 5);
        rt.editor.tables.SwitchWriteTable.set(0, SwitchSlot::RemRegister, 11);
        rig.setValue(2, 1, 10, 0);
        rig.setValue(2, 1, 20, 1);
        rig.setValue(2, 1, 21, 0);

        rt.editor.tables.DoorReadTable.set(0, DoorSlot::Address, 3);
        rt.editor.tables.DoorReadTable.set(0, DoorSlot::RemFunction, 2);
        rt.editor.tables.DoorReadTable.set(0, DoorSlot::RemRegister, 5);
        rt.editor.tables.DoorWriteTable.set(0, DoorSlot::Address, 3);
        rt.editor.tables.DoorWriteTable.set(0, DoorSlot::RemFunction, 6);
        rt.editor.tables.DoorWriteTable.set(0, DoorSlot::RemRegister, 6);
        rig.setValue(3, 2, 5, 1);

        LedTable &lr = rt.editor.tables.LedReadTable;
        lr.set(0, LedSlot::Address, 4);
        lr.set(0, LedSlot::Decimals, 0);
        lr.set(0, LedSlot::RemFunction, 1);
        lr.set(0, LedSlot::RemRegister, 7);
        lr.set(0, LedSlot::P1Function, 4);
        lr.set(0, LedSlot::P1Register, 30);
        lr.set(0, LedSlot::Threshold, 25);
        lr.set(0, LedSlot::Condition, 1);
        rt.editor.tables.LedWriteTable.set(0, LedSlot::Address, 4);
        rt.editor.tables.LedWriteTable.set(0, LedSlot::RemFunction, 5);
        rt.editor.tables.LedWriteTable.set(0, LedSlot::RemRegister, 8);
        rig.setValue(4, 1, 7, 1);
        rig.setValue(4, 4, 30, 30);

        rt.editor.lineProbe = {5, 3, 77};
        rig.setValue(5, 3, 77, 1);
        rig.addSlave(99);
    }

    static void setPeriods(Runtime &rt, int remote, int measurement, int led)
    {
        rt.editor.comm.remotePeriod = remote;
        rt.editor.comm.measurementPeriod = measurement;
        rt.editor.comm.ledPeriod = led;
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    void orderOfOneTick_data()
    {
        QTest::addColumn<bool>("remote");
        QTest::addColumn<QList<QByteArray>>("remoteExchanges");
        QTest::addColumn<QStringList>("activity");

        QTest::newRow("remote mode") << true
                                     << QList<QByteArray>{PlantRig::readRequest(1, 3, 100),
                                                          PlantRig::readRequest(2, 1, 10),
                                                          PlantRig::readRequest(3, 2, 5),
                                                          PlantRig::readRequest(4, 1, 7)}
                                     << QStringList{"Remoto...", "", "Lettura...", ""};
        // In local mode the supervisor's state (acquiring: 1, a coil's 1 is 0xFF00) is written.
        QTest::newRow("local mode") << false
                                    << QList<QByteArray>{PlantRig::writeRequest(1, 6, 101, 1),
                                                         PlantRig::writeRequest(2, 5, 11, 0xFF00),
                                                         PlantRig::writeRequest(3, 6, 6, 1),
                                                         PlantRig::writeRequest(4, 5, 8, 0xFF00)}
                                    << QStringList{"Locale...", "", "Lettura...", ""};
    }

    void orderOfOneTick()
    {
        QFETCH(bool, remote);
        QFETCH(QList<QByteArray>, remoteExchanges);
        QFETCH(QStringList, activity);

        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 1, 1, 1);
        rig.rt.editor.comm.remoteEnabled = remote;
        rig.rt.editor.comm.lineActivity = true;
        RecordingCommands commands(rig.rt.master);
        rig.rt.operatorCommands = &commands;
        Supervisor supervisor(rig.rt);
        supervisor.SetAcquisitionState(true);
        rig.rt.commands.PendingDoorOpen = true;
        rig.rt.commands.PendingSwitchOn = 1;
        rig.rt.commands.PendingSwitchOff = 0;
        rig.rt.commands.PendingSetValue = true;
        QStringList panel3;
        connect(&rig.rt.statusBar, &StatusBar::panelChanged, this, [&panel3](int panel, const QString &text) {
            if (panel == StatusBar::ActivityPanel)
                panel3.append(text);
        });

        supervisor.MonitorCycle();

        QList<QByteArray> expected{
            PlantRig::writeRequest(99, 6, 900, 1),
            PlantRig::writeRequest(99, 6, 910, 0), // off first
            PlantRig::writeRequest(99, 6, 911, 1),
            PlantRig::writeRequest(99, 6, 920, 215),
        };
        expected += remoteExchanges;
        expected += {
            PlantRig::readRequest(1, 3, 0), // the measurement round: PV, SP; alarms not read
            PlantRig::readRequest(1, 3, 1),
            PlantRig::readRequest(2, 1, 20), // the switch states: On_r, Off_r
            PlantRig::readRequest(2, 1, 21),
            PlantRig::readRequest(4, 4, 30), // the LED lamps
        };
        QCOMPARE(rig.takeRequests(), expected);
        QCOMPARE(commands.calls, (QStringList{"door", "switch 0 off", "switch 1 on", "set value"}));
        QCOMPARE(panel3, activity);
        QCOMPARE(rig.rt.commands.PendingDoorOpen, false);
        QCOMPARE(rig.rt.commands.PendingSwitchOff, -1);
        QCOMPARE(rig.rt.commands.PendingSwitchOn, -1);
        QCOMPARE(rig.rt.commands.PendingSetValue, false);
        QCOMPARE(rig.rt.values.ZoneValues[0][0], 20.5f);
        QCOMPARE(rig.rt.items.switches[0], SwitchState::On);
        QVERIFY(rig.rt.items.leds[0].lit);
        if (remote) {
            QCOMPARE(rig.rt.items.zoneRemote[0], RemoteState::Remote);
            QCOMPARE(rig.rt.items.switchRemote[0], RemoteState::Local);
            QCOMPARE(rig.rt.items.doorRemote, RemoteState::Remote);
        }

        // Each command runs once.
        supervisor.MonitorCycle();
        QCOMPARE(commands.calls.size(), 4);
    }

    void ticksOfEachPoll_data()
    {
        QTest::addColumn<QList<int>>("periods"); // remote, measurement, LED
        QTest::addColumn<bool>("activity");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<TickList>("remoteTicks");
        QTest::addColumn<TickList>("measurementTicks");
        QTest::addColumn<TickList>("ledTicks");
        QTest::addColumn<TickList>("activityTicks");

        QTest::newRow("defaults, first ticks")
            << QList<int>{3, 60, 3} << true << 1 << 10 << TickList{3, 6, 9} << TickList{} << TickList{3, 6, 9}
            << TickList{1, 2, 4, 5, 7, 8, 10};
        QTest::newRow("defaults, the first minute")
            << QList<int>{3, 60, 3} << false << 58 << 62 << TickList{60} << TickList{60} << TickList{60}
            << TickList{};
        // The counter restarts after 300: 300 is a multiple of every default period.
        QTest::newRow("defaults, around the wrap")
            << QList<int>{3, 60, 3} << true << 298 << 304 << TickList{300, 303} << TickList{300}
            << TickList{300, 303} << TickList{298, 299, 301, 302, 304};
        QTest::newRow("defaults, second wrap")
            << QList<int>{3, 60, 3} << false << 598 << 601 << TickList{600} << TickList{600} << TickList{600}
            << TickList{};
        // Periods that do not divide 300 run unevenly around the wrap.
        QTest::newRow("7, 300 and a swallowed 0")
            << QList<int>{7, 300, 0} << false << 285 << 316 << TickList{287, 294, 307, 314} << TickList{300}
            << TickList{} << TickList{};
        QTest::newRow("measurement every 7")
            << QList<int>{30, 7, 30} << false << 293 << 308 << TickList{300} << TickList{294, 307} << TickList{300}
            << TickList{};
        QTest::newRow("30, 5 and 1")
            << QList<int>{30, 5, 1} << true << 296 << 305 << TickList{300} << TickList{300, 305}
            << TickList{296, 297, 298, 299, 300, 301, 302, 303, 304, 305} << TickList{};
        QTest::newRow("all 0: only the activity poll")
            << QList<int>{0, 0, 0} << true << 1 << 3 << TickList{} << TickList{} << TickList{}
            << TickList{1, 2, 3};
    }

    void ticksOfEachPoll()
    {
        QFETCH(QList<int>, periods);
        QFETCH(bool, activity);
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(TickList, remoteTicks);
        QFETCH(TickList, measurementTicks);
        QFETCH(TickList, ledTicks);
        QFETCH(TickList, activityTicks);

        PlantRig rig;
        setUpPlant(rig);
        rig.rt.plant.switches.resize(0);
        rig.rt.plant.apriporta.present = false;
        setPeriods(rig.rt, periods[0], periods[1], periods[2]);
        rig.rt.editor.comm.remoteEnabled = true;
        rig.rt.editor.comm.lineActivity = activity;
        Supervisor supervisor(rig.rt);
        supervisor.SetAcquisitionState(true);

        TickList remote, measurement, led, probe;
        for (int tick = 1; tick <= to; ++tick) {
            supervisor.MonitorCycle();
            const QList<QByteArray> requests = rig.takeRequests();
            if (tick < from)
                continue;
            if (requests.contains(PlantRig::readRequest(1, 3, 100)))
                remote.append(tick);
            if (requests.contains(PlantRig::readRequest(1, 3, 0)))
                measurement.append(tick);
            if (requests.contains(PlantRig::readRequest(4, 4, 30)))
                led.append(tick);
            if (requests.contains(PlantRig::readRequest(5, 3, 77)))
                probe.append(tick);
        }
        QCOMPARE(remote, remoteTicks);
        QCOMPARE(measurement, measurementTicks);
        QCOMPARE(led, ledTicks);
        QCOMPARE(probe, activityTicks);
        QVERIFY(supervisor.CycleCounter() >= 0 && supervisor.CycleCounter() < 300);
        QVERIFY(supervisor.Timer_Monitor().isActive());
    }

    void stopDuringATick_data()
    {
        QTest::addColumn<bool>("stop");
        QTest::newRow("stop while a poll waits") << true;
        QTest::newRow("no stop") << false;
    }

    void stopDuringATick()
    {
        QFETCH(bool, stop);

        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 1, 1, 1);
        rig.rt.editor.comm.remoteEnabled = true;
        Supervisor supervisor(rig.rt);
        supervisor.SetAcquisitionState(true);
        bool stopped = false;
        if (stop) {
            rig.line.setDuringYield([&] {
                if (!stopped) {
                    stopped = true;
                    supervisor.MenuStop();
                }
            });
        }

        supervisor.MonitorCycle();
        // The tick carries on to its end either way.
        QCOMPARE(rig.takeRequests().size(), 9);
        QCOMPARE(supervisor.AcquisitionRunning(), !stop);
        QCOMPARE(supervisor.Timer_Monitor().isActive(), !stop);
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::StatePanel), stop ? QString("Standby") : QString("Acquisizione"));
    }

    void startDuringATickRunsAfterIt_data()
    {
        QTest::addColumn<bool>("stopFirst");
        QTest::addColumn<bool>("reload");
        QTest::newRow("stop, then start") << true << false;
        QTest::newRow("start while acquiring") << false << false;
        QTest::newRow("reload") << false << true;
    }

    void startDuringATickRunsAfterIt()
    {
        QFETCH(bool, stopFirst);
        QFETCH(bool, reload);

        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 1, 1, 1);
        rig.rt.editor.comm.remoteEnabled = true;
        Supervisor supervisor(rig.rt);
        supervisor.SetAcquisitionState(true);
        bool clicked = false;
        int requestsBeforeClick = 0;
        rig.line.setDuringYield([&] {
            if (clicked)
                return;
            clicked = true;
            requestsBeforeClick = int(rig.line.requests().size());
            if (stopFirst)
                supervisor.MenuStop();
            if (reload)
                supervisor.MenuRileggi();
            else
                supervisor.MenuStart();
            // Nothing went on the wire meanwhile.
            QCOMPARE(int(rig.line.requests().size()), requestsBeforeClick);
        });

        supervisor.MonitorCycle();
        // The tick, then the round and the switch states of the start.
        const QList<QByteArray> requests = rig.takeRequests();
        QCOMPARE(requests.size(), 9 + 4);
        QCOMPARE(requests.mid(9), (QList<QByteArray>{PlantRig::readRequest(1, 3, 0), PlantRig::readRequest(1, 3, 1),
                                                     PlantRig::readRequest(2, 1, 20), PlantRig::readRequest(2, 1, 21)}));
        QVERIFY(supervisor.AcquisitionRunning());
        QVERIFY(supervisor.Timer_Monitor().isActive());
        QCOMPARE(supervisor.CycleCounter(), reload ? 1 : 0);
        // Two full rounds, each with the alarm quantities missing: 3 x 2 each.
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 0), 6);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
    }

    void aTickNeverRunsInsideAnother()
    {
        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 1, 1, 1);
        Supervisor supervisor(rig.rt);
        supervisor.SetAcquisitionState(true);
        int nested = 0;
        rig.line.setDuringYield([&] {
            ++nested;
            supervisor.MonitorCycle();
        });

        supervisor.MonitorCycle();
        QVERIFY(nested > 0);
        QCOMPARE(supervisor.CycleCounter(), 1);
        QCOMPARE(rig.takeRequests().size(), 9);
    }

    void queuedWhileStandingByIsClearedByStart()
    {
        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 3, 60, 3);
        RecordingCommands commands(rig.rt.master);
        rig.rt.operatorCommands = &commands;
        Supervisor supervisor(rig.rt);
        rig.rt.commands.PendingDoorOpen = true;
        rig.rt.commands.PendingSwitchOff = 0;
        rig.rt.commands.PendingSwitchOn = 0;
        rig.rt.commands.PendingSetValue = true;

        supervisor.MenuStart();
        QVERIFY(supervisor.AcquisitionRunning());
        QCOMPARE(rig.rt.commands.PendingDoorOpen, false);
        QCOMPARE(rig.rt.commands.PendingSwitchOff, -1);
        QCOMPARE(rig.rt.commands.PendingSwitchOn, -1);

        supervisor.MonitorCycle();
        // A set value waits for the next tick whatever the state: Start leaves it.
        QCOMPARE(commands.calls, QStringList{"set value"});
    }

    void withoutCommandsTheQueueIsDropped()
    {
        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 0, 0, 0);
        Supervisor supervisor(rig.rt);
        supervisor.SetAcquisitionState(true);
        rig.rt.commands.PendingSwitchOn = 0;
        rig.rt.commands.PendingDoorOpen = true;

        supervisor.MonitorCycle();
        QCOMPARE(rig.rt.commands.PendingSwitchOn, -1);
        QCOMPARE(rig.rt.commands.PendingDoorOpen, false);
        QVERIFY(rig.takeRequests().isEmpty());
    }

    void tickIntervalOverrideKeepsPeriodsInTicks()
    {
        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 0, 2, 0);
        Supervisor supervisor(rig.rt);
        supervisor.setMonitorIntervalMs(50);
        supervisor.load();
        QCOMPARE(supervisor.Timer_Monitor().interval(), 50);
        QVERIFY(!supervisor.Timer_Monitor().isActive());
        supervisor.SetAcquisitionState(true);
        QVERIFY(supervisor.Timer_Monitor().isActive());

        supervisor.MonitorCycle();
        QVERIFY(!rig.takeRequests().contains(PlantRig::readRequest(1, 3, 0)));
        supervisor.MonitorCycle();
        QVERIFY(rig.takeRequests().contains(PlantRig::readRequest(1, 3, 0)));
        QCOMPARE(supervisor.Timer_Monitor().interval(), 50);
        QVERIFY(supervisor.Timer_Monitor().isActive());
    }

    void remoteAnswersDriveTheCounts_data()
    {
        QTest::addColumn<bool>("remote");
        QTest::addColumn<bool>("answers");
        QTest::addColumn<int>("zoneCount");
        QTest::addColumn<int>("switchCount");
        QTest::addColumn<int>("ledCount");
        QTest::addColumn<RemoteState>("zoneState");

        // Counts start at 3 for every item.
        QTest::newRow("remote, answering: cleared") << true << true << 0 << 0 << 3 << RemoteState::Remote;
        QTest::newRow("remote, silent: counted") << true << false << 4 << 4 << 4 << RemoteState::Unknown;
        QTest::newRow("local, echoed: cleared") << false << true << 0 << 0 << 3 << RemoteState::Unknown;
        QTest::newRow("local, silent: counted") << false << false << 4 << 4 << 4 << RemoteState::Unknown;
    }

    void remoteAnswersDriveTheCounts()
    {
        QFETCH(bool, remote);
        QFETCH(bool, answers);
        QFETCH(int, zoneCount);
        QFETCH(int, switchCount);
        QFETCH(int, ledCount);
        QFETCH(RemoteState, zoneState);

        PlantRig rig;
        setUpPlant(rig);
        setPeriods(rig.rt, 1, 0, 0);
        rig.rt.editor.comm.remoteEnabled = remote;
        for (int slave : {1, 2, 3, 4})
            if (!answers)
                rig.removeSlave(slave);
        for (int i = 0; i < 3; ++i) {
            rig.rt.alarms.ReportZoneFailure(0);
            rig.rt.alarms.ReportSwitchFailure(0);
            rig.rt.alarms.ReportLedFailure(0);
        }
        rig.rt.items.zoneRemote[0] = RemoteState::Local;
        if (!remote)
            rig.rt.items.zoneRemote[0] = RemoteState::Unknown;
        Supervisor supervisor(rig.rt);
        supervisor.SetAcquisitionState(true);

        supervisor.MonitorCycle();
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 0), zoneCount);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 0), switchCount);
        // The cycle does not look at a LED's answer: only a failure counts.
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Led, 0), ledCount);
        QCOMPARE(rig.rt.items.zoneRemote[0], zoneState);
    }
};

QTEST_GUILESS_MAIN(TestMonitorCycle)
#include "tst_monitorcycle.moc"
