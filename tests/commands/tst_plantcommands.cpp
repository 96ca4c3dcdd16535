// The operator's commands on the plant: who may give them, what each one puts on the
// wire and tells the operator, and how the synoptic's clicks run them at once or from
// the queue of the monitoring cycle.

#include "support/runtimefixture.h"

#include "commands/dooropencommand.h"
#include "commands/plantcommands.h"
#include "commands/setvaluecommand.h"
#include "commands/switchcommand.h"
#include "commands/users.h"
#include "supervisor/supervisor.h"

#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace telvane;

namespace {

using Kind = RecordingPrompts::Kind;
using Asked = QList<RecordingPrompts::Prompt>;
using Outcomes = QList<CommandOutcome>;

const QString SwitchOnWrite = QStringLiteral("04 05 0030 ff00");
const QString SwitchOffWrite = QStringLiteral("04 05 0031 0000");
const QStringList DoorPulse{"09 05 0040 ff00", "09 05 0041 0000"};

RecordingPrompts::Prompt warning(const QString &title, const QString &text) { return {Kind::Warning, title, text}; }

// Quantity k of zone z (both from 0) is written to register 0x50 + 0x10 * z + k of slave 12.
void setZoneWrite(RegisterTables &t, int zone, int quantity, int functionCode)
{
    t.ZoneWriteTable.set(zone, zoneQuantityFunctionSlot(quantity), qint16(functionCode));
    t.ZoneWriteTable.set(zone, zoneQuantityRegisterSlot(quantity), qint16(0x50 + 0x10 * zone + quantity));
}

// A switch on slave 4, the door opener on slave 9 and two zones on slave 12, all
// echoing, with the polls off so that a tick only runs what was queued. The commands
// are the cycle's task, as in a running plant.
struct CommandsFixture : RuntimeFixture
{
    Supervisor supervisor{rt};
    PlantCommands commands{rt, prompts, supervisor.acquisition()};
    // How each command that ran ended, as the commands tell it.
    Outcomes told;

    explicit CommandsFixture(bool acquiring = false)
    {
        rt.model.plant.switches.resize(1);
        rt.model.plant.zones.resize(2);
        RegisterTables &t = rt.model.editor.tables;
        setRow(t.SwitchWriteTable, 0, {4, 0, -1, -1, 5, 0x30, 5, 0x31, 1, 0});
        // The door's Val_on and Val_off sit one slot later than a switch's.
        setRow(t.DoorWriteTable, 0, {9, 0, -1, -1, 5, 0x40, 5, 0x41, -1, 1, 0});
        setRow(t.ZoneWriteTable, 0, {12, 1});
        setRow(t.ZoneWriteTable, 1, {12, 0});
        setZoneWrite(t, 0, 1, 6);
        setZoneWrite(t, 1, 1, 6);
        slaves = {4, 9, 12};
        rt.model.editor.comm.remotePeriod = rt.model.editor.comm.measurementPeriod = rt.model.editor.comm.ledPeriod = 0;
        rt.cycleTasks.append(&commands);
        commands.setOutcomeListener([this](CommandOutcome outcome) { told.append(outcome); });
        if (acquiring)
            supervisor.SetAcquisitionState(true);
    }

    void tick() { supervisor.monitoring().MonitorCycle(); }

    // Every write is answered with `echo` (-1: not at all) in place of the value written.
    void echo(const std::function<int(const QByteArray &request)> &echoOf)
    {
        line.setResponder([echoOf](const QByteArray &request) -> ScriptedLine::Reply {
            const int echo = echoOf(request);
            if (echo < 0)
                return {};
            return ScriptedLine::withCrc(request.left(4) + char(echo >> 8) + char(echo));
        });
    }
};

// What a click sent at once and at the next tick, and how each command that ran ended.
struct Sent
{
    QStringList atOnce;
    QStringList nextTick;
    Outcomes told;
    // Element by element: QList's own == hands two empty lists of an enum to memcmp as
    // null pointers, which the undefined-behaviour sanitizer rejects.
    bool operator==(const Sent &other) const
    {
        return atOnce == other.atOnce && nextTick == other.nextTick && std::ranges::equal(told, other.told);
    }
};

char *toString(const Sent &sent)
{
    QStringList told;
    for (CommandOutcome outcome : sent.told)
        told.append(QString::number(int(outcome)));
    return qstrdup(qPrintable("at once {" + sent.atOnce.join(", ") + "}, next tick {" + sent.nextTick.join(", ") +
                              "}, outcomes {" + told.join(", ") + "}"));
}

} // namespace

class TestPlantCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    // Every attempt logs out whoever was in first: panel 1 shows "Anonimo" before the new
    // user. The journal has the logout of a user with rights, then the login or its
    // refusal with the name, never the password.
    void login()
    {
        CommandsFixture fx;
        QStringList journalled;
        connect(&fx.rt.services.journal, &OperatorJournal::recorded, [&journalled](const JournalEntry &entry) {
            journalled.append(journalLine(entry).section(u';', 1));
        });
        UserLevel user{false, true};
        fx.rt.display.statusBar.setPanel(StatusBar::PortPanel, QStringLiteral("Utente: Amministratore"));
        // The panel's texts as they change, the last one who is logged in now.
        const auto login = [&](const QString &name, const QString &password, const QStringList &panel,
                               const QStringList &journal, bool refused = false) {
            fx.panelTexts[StatusBar::PortPanel].clear();
            fx.prompts.clear();
            journalled.clear();
            const UserLevel result = logInUser(name, password, user, fx.rt.display.statusBar, fx.prompts, fx.rt.services.journal);
            QCOMPARE(fx.panelTexts[StatusBar::PortPanel], panel);
            QCOMPARE(userPanelText(user), fx.rt.display.statusBar.panel(StatusBar::PortPanel));
            QCOMPARE(userPanelText(result), userPanelText(user));
            QCOMPARE(fx.prompts.asked(), refused ? Asked{warning("Accesso", "Password errata.")} : Asked{});
            QCOMPARE(journalled, journal);
        };
        login("Tecnico", "Qx7", {"Utente: Anonimo", "Utente: Tecnico"},
              {"Amministratore;Logout;;", "Tecnico;Login;Tecnico;"});
        // Case counts, and so do blanks; a refusal leaves nobody logged in.
        login("Tecnico", "qx7", {"Utente: Anonimo"}, {"Tecnico;Logout;;", "Anonimo;Login;Tecnico;password errata"}, true);
        login("Admin", "Wm4 ", {}, {"Anonimo;Login;Admin;password errata"}, true);
        login("Service", "7ubl4ko", {"Utente: Amministratore"}, {"Amministratore;Login;Service;"});
        // Both fields empty is the quiet way out.
        login("", "", {"Utente: Anonimo"}, {"Amministratore;Logout;;"});
        QVERIFY(!user.hasCommandRights());
    }

    // Without remote/local registers the write is the only request: a confirmed one sets
    // the switch's state and refreshes the synoptic, a doubtful one warns and leaves the
    // state undetermined.
    void switchCommand()
    {
        CommandsFixture fx;
        fx.login(true, false);
        QSignalSpy refreshes(&fx.rt.display.synoptic, &SynopticRefresh::switchStatesChanged);
        int echo = 0xFF00;
        fx.echo([&echo](const QByteArray &) { return echo; });
        const auto doubtful = [](const char *state) {
            return Asked{warning("Gestione Interruttore", QStringLiteral("Attenzione: L'interruttore potrebbe non "
                                   "essere stato %1 a causa di un errore di comunicazione.").arg(state))};
        };

        // Echoed 0 for a coil's FF00: the state stays as it was.
        echo = 0;
        QCOMPARE(SwitchCommand(fx.rt, fx.prompts, 0, true), CommandOutcome::Doubtful);
        QCOMPARE(fx.takeRequests(), QStringList{SwitchOnWrite});
        QCOMPARE(fx.prompts.asked(), doubtful("acceso"));
        QCOMPARE(fx.rt.services.items.switches[0], SwitchState::Undetermined);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 1);
        QCOMPARE(refreshes.count(), 0);
        QCOMPARE(fx.panelTexts[StatusBar::MessagePanel], (QStringList{"Accensione...", ""}));

        fx.prompts.clear();
        echo = 0xFF00;
        QCOMPARE(SwitchCommand(fx.rt, fx.prompts, 0, true), CommandOutcome::Confirmed);
        QCOMPARE(fx.rt.services.items.switches[0], SwitchState::On);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        QCOMPARE(refreshes.count(), 1);
        QCOMPARE(fx.prompts.asked(), Asked{});

        // A register is written its value as it is; 1 echoed for 0.
        fx.prompts.clear();
        fx.takeRequests();
        fx.rt.model.editor.tables.SwitchWriteTable.set(0, SwitchSlot::OffFunction, 6);
        echo = 1;
        QCOMPARE(SwitchCommand(fx.rt, fx.prompts, 0, false), CommandOutcome::Doubtful);
        QCOMPARE(fx.takeRequests(), QStringList{"04 06 0031 0000"});
        QCOMPARE(fx.prompts.asked(), doubtful("spento"));
        QCOMPARE(fx.rt.services.items.switches[0], SwitchState::On);
        QCOMPARE(fx.panelTexts[StatusBar::MessagePanel].mid(2), (QStringList{"Accensione...", "", "Spegnimento...", ""}));

        // Simulated: nothing on the line, the state is set.
        fx.rt.services.master.setCommunicate(false);
        QCOMPARE(SwitchCommand(fx.rt, fx.prompts, 0, false), CommandOutcome::Confirmed);
        QCOMPARE(fx.rt.services.items.switches[0], SwitchState::Off);
        QCOMPARE(refreshes.count(), 2);

        // Either write missing: neither direction goes out, and nothing is said.
        fx.rt.services.master.setCommunicate(true);
        fx.prompts.clear();
        fx.rt.model.editor.tables.SwitchWriteTable.set(0, SwitchSlot::OffRegister, UnusedSlot);
        for (const bool on : {true, false})
            QCOMPARE(SwitchCommand(fx.rt, fx.prompts, 0, on), CommandOutcome::NotConfigured);
        QCOMPARE(fx.takeRequests(), QStringList{});
        QCOMPARE(fx.prompts.asked(), Asked{});
    }

    // The remote state (slave 5) is read before the write and a local state of 0 written
    // after it (slave 4); each exchange and the echo count once toward the alarm, each
    // with the reason of its own exchange, and a good one clears the count.
    void switchFailureCounts()
    {
        CommandsFixture fx;
        fx.login(true, false);
        setRow(fx.rt.model.editor.tables.SwitchReadTable, 0, {5, 0, 3, 0x10});
        setRow(fx.rt.model.editor.tables.SwitchWriteTable, 0, {4, 0, 6, 0x11});
        bool stateAnswers = false;
        int writeEcho = -1; // -1: no answer
        fx.line.setResponder([&](const QByteArray &request) -> ScriptedLine::Reply {
            const int functionCode = request.at(1);
            if (functionCode == 3)
                return stateAnswers ? ScriptedLine::withCrc(request.left(2) + QByteArray::fromHex("020001"))
                                    : ScriptedLine::Reply();
            const int echo = functionCode == 5 ? writeEcho : stateAnswers ? 0 : -1;
            return echo < 0 ? ScriptedLine::Reply() : ScriptedLine::withCrc(request.left(4) + char(echo >> 8) + char(echo));
        });
        QStringList counted;
        QObject::connect(&fx.rt.services.alarms, &AlarmBook::failureCounted,
                         [&](AlarmItemKind, int, const QString &reason) { counted << reason; });
        const auto command = [&](bool answers, int echo) {
            stateAnswers = answers;
            writeEcho = echo;
            counted.clear();
            SwitchCommand(fx.rt, fx.prompts, 0, true);
            return fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0);
        };
        QCOMPARE(command(false, -1), 3);
        QCOMPARE(fx.takeRequests(), (QStringList{"05 03 0010 0001", SwitchOnWrite, "04 06 0011 0000"}));
        QCOMPARE(counted, QStringList(3, "Time out"));
        QCOMPARE(command(true, 0xFF00), 0);
        QCOMPARE(counted, QStringList{});
        QCOMPARE(command(true, 0), 1);
        QCOMPARE(counted, QStringList{"Eco non valida: 0 per 65280"});
        // The state's exchanges clear the count before the write is counted.
        QCOMPARE(command(true, -1), 1);
        QCOMPARE(counted, QStringList{"Time out"});
    }

    // Open, hold for the pulse time, release, then the door sound. The release goes out
    // whatever became of the opening; simulated, the pulse still takes its time.
    void doorOpenCommand()
    {
        CommandsFixture fx;
        fx.login(false, true);
        fx.rt.model.plant.synoptic.doorSound = QStringLiteral("porta.wav");
        const QStringList sound{fx.dir.filePath(QStringLiteral("porta.wav"))};
        fx.rt.model.editor.doorPulseMs = 300;
        setRow(fx.rt.model.editor.tables.DoorWriteTable, 0, {9, 0, -1, -1, 6, 0x40, 6, 0x41, -1, 3, 2});
        QList<qint64> sentAtMs;
        fx.line.setResponder([&](const QByteArray &request) {
            sentAtMs << fx.clock.monotonicMs();
            return ScriptedLine::Reply().at(RuntimeFixture::ReplyDelayMs, request);
        });
        QCOMPARE(DoorOpenCommand(fx.rt, fx.prompts), CommandOutcome::Confirmed);
        QCOMPARE(fx.takeRequests(), (QStringList{"09 06 0040 0003", "09 06 0041 0002"}));
        QCOMPARE(fx.pause.pauses(), QList<int>{300});
        QVERIFY2(sentAtMs.size() == 2 && sentAtMs[1] - sentAtMs[0] >= 300, "released before the pulse time");
        QCOMPARE(fx.sound.played(), sound);
        QCOMPARE(fx.panelTexts[StatusBar::MessagePanel], (QStringList{"Apertura porta...", ""}));

        fx.rt.services.master.setCommunicate(false);
        fx.rt.model.editor.doorPulseMs = 1000;
        QCOMPARE(DoorOpenCommand(fx.rt, fx.prompts), CommandOutcome::Confirmed);
        QCOMPARE(fx.takeRequests(), QStringList{});
        QCOMPARE(fx.pause.pauses(), (QList<int>{300, 1000}));
        QCOMPARE(fx.sound.played(), sound + sound);

        fx.rt.services.master.setCommunicate(true);
        fx.rt.model.plant.synoptic.doorSound.clear();
        const QString notOpened = "Attenzione: La porta potrebbe non essere stata aperta a causa di un errore di "
                                  "comunicazione.";
        const QString notReleased = "Attenzione: L'apriporta potrebbe non essere stato rilasciato a causa di un "
                                    "errore di comunicazione.";
        for (const auto &[register_, told] : {std::pair{0x40, notOpened}, std::pair{0x41, notReleased}}) {
            fx.prompts.clear();
            const int silent = register_;
            fx.echo([silent](const QByteArray &request) { return request[3] == silent ? -1 : int(quint8(request[5])); });
            QCOMPARE(DoorOpenCommand(fx.rt, fx.prompts), CommandOutcome::Doubtful);
            QCOMPARE(fx.takeRequests(), (QStringList{"09 06 0040 0003", "09 06 0041 0002"}));
            QCOMPARE(fx.prompts.asked(), Asked{warning("Gestione Apriporta", told)});
        }

        fx.rt.model.editor.tables.DoorWriteTable.set(0, DoorSlot::OffFunction, UnusedSlot);
        QCOMPARE(DoorOpenCommand(fx.rt, fx.prompts), CommandOutcome::NotConfigured);
        QCOMPARE(fx.takeRequests(), QStringList{});
        QCOMPARE(fx.pause.pauses().size(), 4);
    }

    // The value goes to the register of the quantity the synoptic shows (`Zone Testo`),
    // scaled by the zone's decimals; the operator is told when it cannot go, and a 0 is
    // never sent in place of a value that could not be used.
    void setValueCommand()
    {
        CommandsFixture fx;
        fx.login(true, false);
        QSignalSpy refreshes(&fx.rt.display.synoptic, &SynopticRefresh::zoneTextsChanged);
        float &shown = fx.rt.model.values.ZoneValues[0][1];
        const QString title = QStringLiteral("Modifica parametro...");
        fx.rt.model.plant.zoneDisplay.textQuantity = 1;
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, 0, QStringLiteral("21,5")), CommandOutcome::Confirmed);
        QCOMPARE(fx.takeRequests(), QStringList{"0c 06 0051 00d7"});
        QCOMPARE(shown, 21.5f);
        QCOMPARE(refreshes.count(), 1);

        for (const QString text : {"3276,8", "21x,5"}) {
            fx.prompts.clear();
            QCOMPARE(SetValueCommand(fx.rt, fx.prompts, 0, text), CommandOutcome::Refused);
            QCOMPARE(fx.prompts.asked(), Asked{warning(title, "Valore non valido: \"" + text +
                                                                    "\". Nessun valore è stato inviato allo strumento.")});
        }
        QCOMPARE(fx.takeRequests(), QStringList{});

        // Simulated, the value is taken with a point as well.
        fx.rt.services.master.setCommunicate(false);
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, 0, QStringLiteral("18.5")), CommandOutcome::Confirmed);
        QCOMPARE(fx.takeRequests(), QStringList{});
        QCOMPARE(shown, 18.5f);

        // Code 8 is a write too; zone 2 has no decimal.
        fx.rt.services.master.setCommunicate(true);
        fx.rt.model.plant.zoneDisplay.textQuantity = 4;
        setZoneWrite(fx.rt.model.editor.tables, 1, 4, 8);
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, 1, QStringLiteral("2")), CommandOutcome::Confirmed);
        QCOMPARE(fx.takeRequests(), QStringList{"0c 08 0064 0002"});
        QCOMPARE(fx.rt.model.values.ZoneValues[1][4], 2.0f);

        // A read code is no write register.
        fx.prompts.clear();
        setZoneWrite(fx.rt.model.editor.tables, 1, 4, 3);
        QTest::ignoreMessage(QtWarningMsg, "Zone 2 has no write register for quantity 4: value not sent");
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, 1, QStringLiteral("21")), CommandOutcome::NotConfigured);
        QCOMPARE(fx.takeRequests(), QStringList{});
        QCOMPARE(fx.prompts.asked().size(), 1);

        // Not echoed back: not shown.
        fx.prompts.clear();
        fx.rt.model.plant.zoneDisplay.textQuantity = 1;
        fx.echoWrites(214);
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, 0, QStringLiteral("22")), CommandOutcome::Doubtful);
        QCOMPARE(fx.takeRequests(), QStringList{"0c 06 0051 00dc"});
        QCOMPARE(fx.prompts.asked(), Asked{warning(title, "Attenzione: Il valore potrebbe non essere stato "
                                                            "impostato a causa di un errore di comunicazione.")});
        QCOMPARE(shown, 18.5f);
    }

    // What a click or a double-click on a zone's value sends at once and what the next
    // tick sends, with the value box it asks and how each command ended.
    void clicks()
    {
        CommandsFixture fx;
        fx.login(true, false);
        fx.rt.model.plant.SwitchControlMode = 1;
        PlantCommands &c = fx.commands;
        const auto clicked = [&fx](const std::function<void()> &click) {
            fx.told.clear();
            fx.pause.clear();
            fx.prompts.clear();
            Sent sent;
            click();
            sent.atOnce = fx.takeRequests();
            fx.tick();
            sent.nextTick = fx.takeRequests();
            sent.told = fx.told;
            return sent;
        };
        const Outcomes confirmed{CommandOutcome::Confirmed};
        const Outcomes refused{CommandOutcome::Refused};

        // Standing by, the picture shown "on" does nothing; the one shown "off" switches on
        // at once, but only while the switches are commanded (mode 1).
        QCOMPARE(clicked([&] { c.switchOnImageClicked(0); }), Sent{});
        QCOMPARE(clicked([&] { c.switchOffImageClicked(0); }), (Sent{{SwitchOnWrite}, {}, confirmed}));
        QCOMPARE(fx.pause.pauses(), QList<int>{});
        fx.rt.model.plant.SwitchControlMode = 2;
        QCOMPARE(clicked([&] { c.switchOffImageClicked(0); }), Sent{});
        // The door does not look at the switches' mode.
        fx.rt.model.plant.SwitchControlMode = 0;
        QCOMPARE(clicked([&] { c.doorOpenerClicked(); }), (Sent{DoorPulse, {}, confirmed}));
        // Anonymous: a second of "Privilegi insufficienti", nothing on the line, no box,
        // whether the command runs at once or from the queue.
        fx.rt.services.user = {};
        fx.panelTexts[StatusBar::MessagePanel].clear();
        QCOMPARE(clicked([&] { c.doorOpenerClicked(); }), (Sent{{}, {}, refused}));
        QCOMPARE(fx.pause.pauses(), QList<int>{1000});
        QCOMPARE(fx.panelTexts[StatusBar::MessagePanel], (QStringList{"Privilegi insufficienti", ""}));

        // Acquiring, "on" switches off at once and again from the queue; "off" and the
        // door wait for the tick.
        fx.supervisor.SetAcquisitionState(true);
        fx.rt.model.plant.SwitchControlMode = 1;
        QCOMPARE(clicked([&] { c.switchOffImageClicked(0); }), (Sent{{}, {}, refused}));
        QCOMPARE(fx.pause.pauses(), QList<int>{1000});
        fx.login(true, false);
        QCOMPARE(clicked([&] { c.switchOnImageClicked(0); }), (Sent{{SwitchOffWrite}, {SwitchOffWrite}, confirmed + confirmed}));
        QCOMPARE(clicked([&] { c.switchOffImageClicked(0); }), (Sent{{}, {SwitchOnWrite}, confirmed}));
        QCOMPARE(fx.pause.pauses(), QList<int>{});
        QCOMPARE(clicked([&] { c.doorOpenerClicked(); }), (Sent{{}, DoorPulse, confirmed}));
        fx.rt.model.plant.SwitchControlMode = 0;
        QCOMPARE(clicked([&] { c.switchOnImageClicked(0); }), Sent{});

        // A double-click on a zone's value first drops a value still waiting (zone 2's 40),
        // then asks for the new one and queues it; refusals here are silent.
        const QList<RecordingPrompts::Prompt> box{{Kind::TextInput, "Modifica parametro...", "Inserire il valore da impostare:"}};
        const auto doubleClicked = [&](const QString &shown, std::optional<QString> answer) {
            c.queueSetValue(1, QStringLiteral("40"));
            fx.prompts.scriptTextInput(answer);
            return clicked([&] { c.zoneValueDoubleClicked(0, shown); });
        };
        QCOMPARE(doubleClicked(QStringLiteral("21,5 °C"), QStringLiteral(" 22,5 ")),
                 (Sent{{}, {"0c 06 0051 00e1"}, confirmed}));
        QCOMPARE(fx.prompts.asked(), box);
        QCOMPARE(doubleClicked(QStringLiteral("21,5 °C"), std::nullopt), Sent{});
        QCOMPARE(fx.prompts.asked(), box);
        QCOMPARE(doubleClicked(QStringLiteral("--.-"), QStringLiteral("22,5")), Sent{});
        fx.rt.services.user = {};
        QCOMPARE(doubleClicked(QStringLiteral("21,5 °C"), QStringLiteral("22,5")), Sent{});
        QCOMPARE(fx.prompts.asked(), QList<RecordingPrompts::Prompt>{});
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
        fx.tick();
        // Clicked during the door's reply wait: queued, and run by the same tick.
        QCOMPARE(fx.takeRequests(), (DoorPulse + QStringList{SwitchOffWrite}));

        fx.line.setDuringYield([&] { fx.tick(); });
        fx.commands.switchOnImageClicked(0);
        QCOMPARE(fx.supervisor.monitoring().CycleCounter(), 1);
    }

    // A Start drops the door and switch commands left from before; a set value stays.
    // One tick runs the door, the switch-off, the switch-on and the set value, each as it
    // ended, a silent instrument included; a second value queued before the tick
    // replaces the first.
    void queue()
    {
        CommandsFixture fx;
        fx.login(true, false);
        const auto queueAll = [&fx](const QString &value) {
            fx.commands.queueSetValue(0, QStringLiteral("dieci"));
            fx.commands.queueSetValue(1, value);
            fx.commands.queueSwitch(0, true);
            fx.commands.queueSwitch(0, false);
            fx.commands.queueDoorOpen();
        };
        queueAll(QStringLiteral("40"));
        fx.supervisor.MenuStart();
        fx.takeRequests();
        fx.tick();
        QCOMPARE(fx.takeRequests(), QStringList{"0c 06 0061 0028"});

        fx.slaves.remove(9);
        fx.told.clear();
        queueAll(QStringLiteral("41"));
        fx.tick();
        QCOMPARE(fx.takeRequests(), (DoorPulse + QStringList{SwitchOffWrite, SwitchOnWrite, "0c 06 0061 0029"}));
        QCOMPARE(fx.told, (Outcomes{CommandOutcome::Doubtful, CommandOutcome::Confirmed, CommandOutcome::Confirmed,
                                    CommandOutcome::Confirmed}));
        QCOMPARE(fx.rt.model.values.ZoneValues[1][1], 41.0f);
    }
};

QTEST_GUILESS_MAIN(TestPlantCommands)
#include "tst_plantcommands.moc"
