#include "support/runtimefixture.h"

#include "commands/plantcommands.h"
#include "supervisor/supervisor.h"

#include <QTest>

using namespace telvane;

namespace {

using Request = std::function<std::optional<CommandOutcome>(PlantCommands &)>;

// A switch on slave 4, the door opener on slave 9 and one zone on slave 12, all
// echoing, with the polls off so that a tick only runs what was queued.
struct CommandsFixture : RuntimeFixture
{
    Supervisor supervisor{rt};
    PlantCommands commands{rt, prompts, supervisor};
    // How each command that ran ended, as the commands tell it.
    QList<CommandOutcome> told;

    explicit CommandsFixture(bool acquiring)
    {
        rt.plant.switches.resize(1);
        rt.plant.zones.resize(2);
        RegisterTables &t = rt.editor.tables;
        setRow(t.SwitchWriteTable, 0, {4, 0, -1, -1, 5, 0x30, 5, 0x31, 1, 0});
        // The door's Val_on and Val_off sit one slot later than a switch's.
        setRow(t.DoorWriteTable, 0, {9, 0, -1, -1, 5, 0x40, 5, 0x41, -1, 1, 0});
        setRow(t.ZoneWriteTable, 0, {12, 1, -1, -1, -1, -1, 6, 0x50});
        setRow(t.ZoneWriteTable, 1, {12, 0, -1, -1, -1, -1, 6, 0x51});
        slaves = {4, 9, 12};
        rt.editor.comm.remotePeriod = rt.editor.comm.measurementPeriod = rt.editor.comm.ledPeriod = 0;
        rt.operatorCommands = &commands;
        commands.setOutcomeListener([this](CommandOutcome outcome) { told.append(outcome); });
        if (acquiring)
            supervisor.SetAcquisitionState(true);
    }
};

} // namespace

Q_DECLARE_METATYPE(Request)

class TestPlantCommands : public QObject
{
    Q_OBJECT

private slots:
    void commands_data()
    {
        QTest::addColumn<Request>("request");
        QTest::addColumn<QStringList>("wire");
        QTest::newRow("switch on") << Request([](PlantCommands &c) { return c.requestSwitch(0, true); })
                                   << QStringList{"04 05 0030 ff00"};
        QTest::newRow("switch off") << Request([](PlantCommands &c) { return c.requestSwitch(0, false); })
                                    << QStringList{"04 05 0031 0000"};
        QTest::newRow("door") << Request([](PlantCommands &c) { return c.requestDoorOpen(); })
                              << QStringList{"09 05 0040 ff00", "09 05 0041 0000"};
        QTest::newRow("set value") << Request([](PlantCommands &c) { return c.requestSetValue(0, "21,5"); })
                                   << QStringList{"0c 06 0050 00d7"};
    }
    // Standing by, a command goes out at once; acquiring, it waits for the next tick,
    // which leaves the queue empty. Either way its outcome is told when it ran.
    void commands()
    {
        QFETCH(Request, request);
        QFETCH(QStringList, wire);
        CommandsFixture standingBy(false);
        standingBy.login(true, false);
        QCOMPARE(request(standingBy.commands), CommandOutcome::Confirmed);
        QCOMPARE(standingBy.takeRequests(), wire);
        QCOMPARE(standingBy.told, QList{CommandOutcome::Confirmed});

        CommandsFixture acquiring(true);
        acquiring.login(true, false);
        QCOMPARE(request(acquiring.commands), std::nullopt);
        QVERIFY(acquiring.line.requests().isEmpty() && acquiring.told.isEmpty());
        acquiring.supervisor.MonitorCycle();
        QCOMPARE(acquiring.takeRequests(), wire);
        QCOMPARE(acquiring.told, QList{CommandOutcome::Confirmed});
        acquiring.supervisor.MonitorCycle();
        QVERIFY(acquiring.takeRequests().isEmpty());
        QVERIFY(acquiring.prompts.asked().isEmpty());
    }

    // Anonymous: a second of "Privilegi insufficienti", nothing on the line, no box and
    // no count toward any alarm, whether the command runs at once or from the queue.
    void rightsRefusalSendsNothing_data() { commands_data(); }
    void rightsRefusalSendsNothing()
    {
        QFETCH(Request, request);
        for (const bool acquiring : {false, true}) {
            CommandsFixture fx(acquiring);
            const std::optional<CommandOutcome> outcome = request(fx.commands);
            if (acquiring)
                fx.supervisor.MonitorCycle();
            QCOMPARE(outcome, acquiring ? std::nullopt : std::optional(CommandOutcome::Refused));
            QVERIFY(fx.line.requests().isEmpty());
            QVERIFY(fx.prompts.asked().isEmpty());
            QCOMPARE(fx.pause.pauses(), QList<int>{1000});
            QCOMPARE(fx.panelTexts[StatusBar::MessagePanel], (QStringList{"Privilegi insufficienti", ""}));
            QCOMPARE(fx.rt.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
            QCOMPARE(fx.told, QList{CommandOutcome::Refused});
        }
    }

    // What the queue ran is told as it ended, a silent instrument included; a second
    // value typed before the tick replaces the first.
    void queuedOutcomesAreTold()
    {
        CommandsFixture fx(true);
        fx.login(true, false);
        fx.slaves.remove(9);
        fx.commands.requestDoorOpen();
        fx.commands.requestSwitch(0, true);
        fx.commands.requestSetValue(0, QStringLiteral("dieci"));
        fx.commands.requestSetValue(1, QStringLiteral("40"));
        fx.supervisor.MonitorCycle();
        QCOMPARE(fx.takeRequests(),
                 (QStringList{"09 05 0040 ff00", "09 05 0041 0000", "04 05 0030 ff00", "0c 06 0051 0028"}));
        QCOMPARE(fx.told, (QList{CommandOutcome::Doubtful, CommandOutcome::Confirmed, CommandOutcome::Confirmed}));
        QCOMPARE(fx.rt.values.ZoneValues[1][1], 40.0f);
    }
};

QTEST_GUILESS_MAIN(TestPlantCommands)
#include "tst_plantcommands.moc"
