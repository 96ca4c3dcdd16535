#include "support/runtimefixture.h"

#include "commands/plantcommands.h"
#include "supervisor/supervisor.h"

#include <QLoggingCategory>
#include <QTest>

using namespace telvane;

namespace {

enum class Click { SwitchOnImage, SwitchOffImage, DoorOpener, ZoneValue, UnreadZoneValue };

const QString SwitchOnWrite = QStringLiteral("04 05 0030 ff00");
const QString SwitchOffWrite = QStringLiteral("04 05 0031 0000");
const QStringList DoorPulse{"09 05 0040 ff00", "09 05 0041 0000"};

// A switch on slave 4, the door opener on slave 9 and two zones on slave 12, all
// echoing, with the polls off so that a tick only runs what was queued. The commands
// are the cycle's task, as in a running plant.
struct CommandsFixture : RuntimeFixture
{
    Supervisor supervisor{rt};
    PlantCommands commands{rt, prompts, supervisor.acquisition()};
    // How each command that ran ended, as the commands tell it.
    QList<CommandOutcome> told;

    explicit CommandsFixture(bool acquiring)
    {
        rt.model.plant.switches.resize(1);
        rt.model.plant.zones.resize(2);
        RegisterTables &t = rt.model.editor.tables;
        setRow(t.SwitchWriteTable, 0, {4, 0, -1, -1, 5, 0x30, 5, 0x31, 1, 0});
        // The door's Val_on and Val_off sit one slot later than a switch's.
        setRow(t.DoorWriteTable, 0, {9, 0, -1, -1, 5, 0x40, 5, 0x41, -1, 1, 0});
        setRow(t.ZoneWriteTable, 0, {12, 1, -1, -1, -1, -1, 6, 0x50});
        setRow(t.ZoneWriteTable, 1, {12, 0, -1, -1, -1, -1, 6, 0x51});
        slaves = {4, 9, 12};
        rt.model.editor.comm.remotePeriod = rt.model.editor.comm.measurementPeriod = rt.model.editor.comm.ledPeriod = 0;
        rt.cycleTasks.append(&commands);
        commands.setOutcomeListener([this](CommandOutcome outcome) { told.append(outcome); });
        if (acquiring)
            supervisor.SetAcquisitionState(true);
    }

    void click(Click what)
    {
        switch (what) {
        case Click::SwitchOnImage:
            return commands.switchOnImageClicked(0);
        case Click::SwitchOffImage:
            return commands.switchOffImageClicked(0);
        case Click::DoorOpener:
            return commands.doorOpenerClicked();
        case Click::ZoneValue:
            return commands.zoneValueDoubleClicked(0, QStringLiteral("21,5 °C"));
        case Click::UnreadZoneValue:
            return commands.zoneValueDoubleClicked(0, QStringLiteral("--.-"));
        }
    }
};

} // namespace

Q_DECLARE_METATYPE(Click)
Q_DECLARE_METATYPE(telvane::UserLevel)

class TestPlantCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    // What a click or a double-click on a zone's value sends at once and what the next
    // tick sends, with the value box it asks and how each command ended.
    void clicks_data()
    {
        QTest::addColumn<Click>("click");
        QTest::addColumn<bool>("acquiring");
        QTest::addColumn<UserLevel>("user");
        QTest::addColumn<int>("switchControlMode");
        QTest::addColumn<std::optional<QString>>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<QStringList>("atOnce");
        QTest::addColumn<QStringList>("nextTick");
        QTest::addColumn<QList<CommandOutcome>>("told");
        const UserLevel tech{true, false};
        const std::optional<QString> none;
        const QList<CommandOutcome> confirmed{CommandOutcome::Confirmed};
        const QList<CommandOutcome> refused{CommandOutcome::Refused};
        const QStringList nothing;
        // The picture shown "on" switches off only while acquiring, then at once and
        // again from the queue; the one shown "off" switches on at once only standing by.
        QTest::newRow("Img_on standing by") << Click::SwitchOnImage << false << tech << 1 << none << false << nothing
                                            << nothing << QList<CommandOutcome>{};
        QTest::newRow("Img_on acquiring") << Click::SwitchOnImage << true << tech << 1 << none << false
                                          << QStringList{SwitchOffWrite} << QStringList{SwitchOffWrite}
                                          << confirmed + confirmed;
        QTest::newRow("Img_off standing by") << Click::SwitchOffImage << false << tech << 1 << none << false
                                             << QStringList{SwitchOnWrite} << nothing << confirmed;
        QTest::newRow("Img_off acquiring") << Click::SwitchOffImage << true << tech << 1 << none << false << nothing
                                           << QStringList{SwitchOnWrite} << confirmed;
        QTest::newRow("Img_on, switches not commanded") << Click::SwitchOnImage << true << tech << 0 << none << false
                                                        << nothing << nothing << QList<CommandOutcome>{};
        QTest::newRow("Img_off, switches not commanded") << Click::SwitchOffImage << false << tech << 2 << none
                                                         << false << nothing << nothing << QList<CommandOutcome>{};
        // The door does not look at the switches' mode.
        QTest::newRow("door standing by") << Click::DoorOpener << false << tech << 0 << none << false << DoorPulse
                                          << nothing << confirmed;
        QTest::newRow("door acquiring") << Click::DoorOpener << true << tech << 0 << none << false << nothing
                                        << DoorPulse << confirmed;
        // Anonymous: a second of "Privilegi insufficienti", nothing on the line, no box,
        // whether the command runs at once or from the queue.
        QTest::newRow("anonymous, switch from the queue") << Click::SwitchOffImage << true << UserLevel{} << 1 << none
                                                          << false << nothing << nothing << refused;
        QTest::newRow("anonymous, door at once") << Click::DoorOpener << false << UserLevel{} << 0 << none << false
                                                 << nothing << nothing << refused;
        // A double-click on a zone's value first drops a value still waiting (zone 2's 40),
        // then asks for the new one and queues it; refusals here are silent.
        QTest::newRow("value, technician") << Click::ZoneValue << true << tech << 1 << std::optional<QString>(" 22,5 ")
                                           << true << nothing << QStringList{"0c 06 0050 00e1"} << confirmed;
        QTest::newRow("value, anonymous") << Click::ZoneValue << true << UserLevel{} << 1
                                          << std::optional<QString>("22,5") << false << nothing << nothing
                                          << QList<CommandOutcome>{};
        QTest::newRow("value, no valid reading") << Click::UnreadZoneValue << true << tech << 1
                                                 << std::optional<QString>("22,5") << false << nothing << nothing
                                                 << QList<CommandOutcome>{};
        QTest::newRow("value, cancel") << Click::ZoneValue << true << tech << 1 << none << true << nothing << nothing
                                       << QList<CommandOutcome>{};
    }
    void clicks()
    {
        QFETCH(Click, click);
        QFETCH(bool, acquiring);
        QFETCH(UserLevel, user);
        QFETCH(int, switchControlMode);
        QFETCH(std::optional<QString>, answer);
        QFETCH(bool, asked);
        QFETCH(QStringList, atOnce);
        QFETCH(QStringList, nextTick);
        QFETCH(QList<CommandOutcome>, told);
        CommandsFixture fx(acquiring);
        fx.rt.services.user = user;
        fx.rt.model.plant.SwitchControlMode = qint16(switchControlMode);
        if (click == Click::ZoneValue || click == Click::UnreadZoneValue) {
            fx.commands.queueSetValue(1, QStringLiteral("40"));
            fx.prompts.scriptTextInput(answer);
        }

        fx.click(click);
        QCOMPARE(fx.takeRequests(), atOnce);
        fx.supervisor.monitoring().MonitorCycle();
        QCOMPARE(fx.takeRequests(), nextTick);
        fx.supervisor.monitoring().MonitorCycle();
        QCOMPARE(fx.takeRequests(), QStringList());
        QCOMPARE(fx.told, told);
        const RecordingPrompts::Prompt box{RecordingPrompts::Kind::TextInput, "Modifica parametro...",
                                           "Inserire il valore da impostare:"};
        QCOMPARE(fx.prompts.asked(), asked ? QList{box} : QList<RecordingPrompts::Prompt>());
        const bool refusal = told == QList{CommandOutcome::Refused};
        if (click != Click::DoorOpener || refusal) // the door's pulse pauses on its own
            QCOMPARE(fx.pause.pauses(), refusal ? QList<int>{1000} : QList<int>());
        if (refusal)
            QCOMPARE(fx.panelTexts[StatusBar::MessagePanel], (QStringList{"Privilegi insufficienti", ""}));
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
    }

    // A click that would act at once while the line waits for another reply waits for
    // the next tick instead, and no tick starts inside the command's own reply waits.
    void clickWhileTheLineIsInUse()
    {
        CommandsFixture fx(true);
        fx.login(true, false);
        bool clicked = false;
        fx.line.setDuringYield([&] {
            if (!std::exchange(clicked, true))
                fx.commands.switchOnImageClicked(0);
        });
        fx.commands.queueDoorOpen(); // a tick with the door pulse in it
        fx.supervisor.monitoring().MonitorCycle();
        // Clicked during the door's reply wait: queued, and run by the same tick.
        QCOMPARE(fx.takeRequests(), (DoorPulse + QStringList{SwitchOffWrite}));

        fx.line.setDuringYield([&] { fx.supervisor.monitoring().MonitorCycle(); });
        fx.commands.switchOnImageClicked(0);
        QCOMPARE(fx.supervisor.monitoring().CycleCounter(), 1);
    }

    // One tick runs the door, the switch-off, the switch-on and the set value, each as it
    // ended, a silent instrument included; a second value queued before the tick
    // replaces the first.
    void queueRunsInOrder()
    {
        CommandsFixture fx(true);
        fx.login(true, false);
        fx.slaves.remove(9);
        fx.commands.queueSetValue(0, QStringLiteral("dieci"));
        fx.commands.queueSetValue(1, QStringLiteral("40"));
        fx.commands.queueSwitch(0, true);
        fx.commands.queueSwitch(0, false);
        fx.commands.queueDoorOpen();
        fx.supervisor.monitoring().MonitorCycle();
        QCOMPARE(fx.takeRequests(), (DoorPulse + QStringList{SwitchOffWrite, SwitchOnWrite, "0c 06 0051 0028"}));
        QCOMPARE(fx.told, (QList{CommandOutcome::Doubtful, CommandOutcome::Confirmed, CommandOutcome::Confirmed,
                                 CommandOutcome::Confirmed}));
        QCOMPARE(fx.rt.model.values.ZoneValues[1][1], 40.0f);
    }

    // A Start drops the door and switch commands left from before; a set value stays.
    void startDropsLeftoverCommands()
    {
        CommandsFixture fx(false);
        fx.login(true, false);
        fx.commands.queueDoorOpen();
        fx.commands.queueSwitch(0, true);
        fx.commands.queueSwitch(0, false);
        fx.commands.queueSetValue(1, QStringLiteral("40"));
        fx.supervisor.MenuStart();
        fx.takeRequests();
        fx.supervisor.monitoring().MonitorCycle();
        QCOMPARE(fx.takeRequests(), QStringList{"0c 06 0051 0028"});
    }
};

QTEST_GUILESS_MAIN(TestPlantCommands)
#include "tst_plantcommands.moc"
