#include "commandrig.h"

#include "commands/dooropencommand.h"
#include "commands/plantcommands.h"
#include "commands/setvaluecommand.h"
#include "commands/switchcommand.h"
#include "supervisor/supervisor.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

enum class Command { SwitchOn, SwitchOff, Door, SetValue };

constexpr int SwitchSlave = 4;
constexpr int DoorSlave = 9;
constexpr int ZoneSlave = 12;

// Two switches, the door opener and one zone, all on present slaves that echo, and the
// polls switched off so that a tick only runs what was queued.
void setUpPlant(CommandRig &rig)
{
    rig.rt.plant.switches.resize(2);
    rig.configureSwitchWrite(0, SwitchSlave, {5, 30}, {5, 31}, 1, 0);
    rig.configureSwitchWrite(1, SwitchSlave, {6, 32}, {6, 33}, 1, 0);
    rig.configureDoorWrite(DoorSlave, {5, 40}, {5, 41}, 1, 0);
    rig.configureZoneWrite(0, ZoneSlave, 1, 1, 6, 101);
    rig.addSlave(SwitchSlave);
    rig.addSlave(DoorSlave);
    rig.addSlave(ZoneSlave);
    rig.rt.editor.comm.remotePeriod = 0;
    rig.rt.editor.comm.measurementPeriod = 0;
    rig.rt.editor.comm.ledPeriod = 0;
    rig.rt.editor.comm.lineActivity = false;
}

} // namespace

Q_DECLARE_METATYPE(Command)

class TestPlantCommands : public QObject
{
    Q_OBJECT

private:
    static void addCommandRows()
    {
        QTest::addColumn<Command>("command");
        QTest::newRow("switch on") << Command::SwitchOn;
        QTest::newRow("switch off") << Command::SwitchOff;
        QTest::newRow("door") << Command::Door;
        QTest::newRow("set value") << Command::SetValue;
    }

    static std::optional<CommandOutcome> request(PlantCommands &commands, Command command)
    {
        switch (command) {
        case Command::SwitchOn:
            return commands.requestSwitch(0, true);
        case Command::SwitchOff:
            return commands.requestSwitch(0, false);
        case Command::Door:
            return commands.requestDoorOpen();
        case Command::SetValue:
            return commands.requestSetValue(0, QStringLiteral("21,5"));
        }
        return std::nullopt;
    }

private slots:
    void rightsRefusalSendsNothing_data() { addCommandRows(); }
    // Anonymous: a second of "Privilegi insufficienti", nothing on the line, no box,
    // no count toward any alarm, whether the command runs at once or from the queue.
    void rightsRefusalSendsNothing()
    {
        QFETCH(Command, command);
        for (const bool acquiring : {false, true}) {
            CommandRig rig;
            setUpPlant(rig);
            Supervisor supervisor(rig.rt);
            PlantCommands commands(rig.rt, rig.prompts, supervisor);
            rig.rt.operatorCommands = &commands;
            if (acquiring)
                supervisor.SetAcquisitionState(true);
            QSignalSpy panels(&rig.rt.statusBar, &StatusBar::panelChanged);

            const std::optional<CommandOutcome> outcome = request(commands, command);
            if (acquiring) {
                QVERIFY(!outcome);
                supervisor.MonitorCycle();
            } else {
                QCOMPARE(outcome, CommandOutcome::Refused);
            }

            QVERIFY(rig.line.requests().isEmpty());
            QVERIFY(rig.prompts.asked().isEmpty());
            QCOMPARE(rig.pause.pauses(), QList<int>{1000});
            QCOMPARE(panels.count(), 2);
            QCOMPARE(panels.at(0), (QList<QVariant>{StatusBar::MessagePanel, QStringLiteral("Privilegi insufficienti")}));
            QCOMPARE(panels.at(1), (QList<QVariant>{StatusBar::MessagePanel, QString()}));
            QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
            QCOMPARE(rig.rt.values.ZoneValues[0][1], InvalidValue);
        }
    }

    void actNowOrQueue_data() { addCommandRows(); }
    // Standing by, a command goes out at once; acquiring, it waits for the next tick.
    void actNowOrQueue()
    {
        QFETCH(Command, command);
        const QMap<Command, QList<QByteArray>> wire{
            {Command::SwitchOn, {PlantRig::writeRequest(SwitchSlave, 5, 30, 0xFF00)}},
            {Command::SwitchOff, {PlantRig::writeRequest(SwitchSlave, 5, 31, 0)}},
            {Command::Door,
             {PlantRig::writeRequest(DoorSlave, 5, 40, 0xFF00), PlantRig::writeRequest(DoorSlave, 5, 41, 0)}},
            {Command::SetValue, {PlantRig::writeRequest(ZoneSlave, 6, 101, 215)}},
        };

        CommandRig standingBy;
        setUpPlant(standingBy);
        standingBy.login(true, false);
        Supervisor idle(standingBy.rt);
        PlantCommands now(standingBy.rt, standingBy.prompts, idle);
        QList<CommandOutcome> toldNow;
        now.setOutcomeListener([&toldNow](CommandOutcome outcome) { toldNow.append(outcome); });
        QCOMPARE(request(now, command), CommandOutcome::Confirmed);
        QCOMPARE(standingBy.line.requests(), wire[command]);
        QCOMPARE(toldNow, QList<CommandOutcome>{CommandOutcome::Confirmed});

        CommandRig acquiring;
        setUpPlant(acquiring);
        acquiring.login(true, false);
        Supervisor running(acquiring.rt);
        PlantCommands queued(acquiring.rt, acquiring.prompts, running);
        QList<CommandOutcome> toldLater;
        queued.setOutcomeListener([&toldLater](CommandOutcome outcome) { toldLater.append(outcome); });
        acquiring.rt.operatorCommands = &queued;
        running.SetAcquisitionState(true);
        QCOMPARE(request(queued, command), std::nullopt);
        QVERIFY(acquiring.line.requests().isEmpty());
        QVERIFY(toldLater.isEmpty());

        running.MonitorCycle();
        QCOMPARE(acquiring.line.requests(), wire[command]);
        QCOMPARE(toldLater, QList<CommandOutcome>{CommandOutcome::Confirmed});
        const CommandQueue &queue = acquiring.rt.commands;
        QVERIFY(!queue.PendingDoorOpen);
        QCOMPARE(queue.PendingSwitchOn, CommandQueue::NoSwitch);
        QCOMPARE(queue.PendingSwitchOff, CommandQueue::NoSwitch);
        QVERIFY(!queue.PendingSetValue);
        QCOMPARE(queue.PendingSetValueZone, -1);
        QVERIFY(queue.PendingSetValueText.isEmpty());
        QVERIFY(acquiring.prompts.asked().isEmpty());
    }

    // Queued in the order on, off, door, value; the tick runs door, off, on, value.
    void oneTickRunsTheQueueInOrder()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.login(false, true);
        Supervisor supervisor(rig.rt);
        PlantCommands commands(rig.rt, rig.prompts, supervisor);
        rig.rt.operatorCommands = &commands;
        supervisor.SetAcquisitionState(true);

        commands.requestSwitch(1, true);
        commands.requestSwitch(0, false);
        commands.requestDoorOpen();
        commands.requestSetValue(0, QStringLiteral("19.5"));
        supervisor.MonitorCycle();

        QCOMPARE(rig.line.requests(), (QList<QByteArray>{
                                          PlantRig::writeRequest(DoorSlave, 5, 40, 0xFF00),
                                          PlantRig::writeRequest(DoorSlave, 5, 41, 0),
                                          PlantRig::writeRequest(SwitchSlave, 5, 31, 0), // off first
                                          PlantRig::writeRequest(SwitchSlave, 6, 32, 1),
                                          PlantRig::writeRequest(ZoneSlave, 6, 101, 195),
                                      }));
        QCOMPARE(rig.rt.items.switches[0], SwitchState::Off);
        QCOMPARE(rig.rt.items.switches[1], SwitchState::On);
        QCOMPARE(rig.rt.values.ZoneValues[0][1], 19.5f);

        // Nothing is left for the next tick.
        supervisor.MonitorCycle();
        QCOMPARE(rig.line.requests().size(), 5);
    }

    // What the queue ran is told as it ended, a silent instrument included.
    void queuedOutcomesAreTold()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.removeSlave(DoorSlave);
        rig.login(true, false);
        Supervisor supervisor(rig.rt);
        PlantCommands commands(rig.rt, rig.prompts, supervisor);
        QList<CommandOutcome> told;
        commands.setOutcomeListener([&told](CommandOutcome outcome) { told.append(outcome); });
        rig.rt.operatorCommands = &commands;
        supervisor.SetAcquisitionState(true);

        commands.requestDoorOpen();
        commands.requestSwitch(0, true);
        commands.requestSetValue(0, QStringLiteral("dieci"));
        supervisor.MonitorCycle();

        QCOMPARE(told, (QList<CommandOutcome>{CommandOutcome::Doubtful, CommandOutcome::Confirmed,
                                              CommandOutcome::Refused}));
    }

    // A second value typed before the tick replaces the first.
    void laterSetValueReplacesTheWaitingOne()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.configureZoneWrite(1, ZoneSlave, 0, 1, 6, 201);
        rig.login(true, false);
        Supervisor supervisor(rig.rt);
        PlantCommands commands(rig.rt, rig.prompts, supervisor);
        rig.rt.operatorCommands = &commands;
        supervisor.SetAcquisitionState(true);

        commands.requestSetValue(0, QStringLiteral("21,5"));
        commands.requestSetValue(1, QStringLiteral("40"));
        supervisor.MonitorCycle();

        QCOMPARE(rig.line.requests(), QList<QByteArray>{PlantRig::writeRequest(ZoneSlave, 6, 201, 40)});
        QCOMPARE(rig.rt.values.ZoneValues[0][1], InvalidValue);
        QCOMPARE(rig.rt.values.ZoneValues[1][1], 40.0f);
    }
};

QTEST_GUILESS_MAIN(TestPlantCommands)
#include "tst_plantcommands.moc"
