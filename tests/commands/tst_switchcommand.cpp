#include "commandrig.h"

#include "commands/switchcommand.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

constexpr int Slave = 4;
constexpr int OnRegister = 30;
constexpr int OffRegister = 31;
constexpr int RemReadRegister = 10;
constexpr int RemWriteRegister = 11;
// The echo column: no answer at all.
constexpr int Silent = -1;

const QString WarningTitle = QStringLiteral("Gestione Interruttore");
const QString NotSwitchedOn =
    QStringLiteral("Attenzione: L'interruttore potrebbe non essere stato acceso a causa di un errore di comunicazione.");
const QString NotSwitchedOff =
    QStringLiteral("Attenzione: L'interruttore potrebbe non essere stato spento a causa di un errore di comunicazione.");

// Which of the two exchanges around the write are configured and how they go.
enum Exchange { NotConfigured, Answers, Silence };

} // namespace

class TestSwitchCommand : public QObject
{
    Q_OBJECT

private slots:
    void coilValuesAndEchoes_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("value"); // Val_on and Val_off alike
        QTest::addColumn<bool>("on");
        QTest::addColumn<bool>("simulated");
        QTest::addColumn<int>("echo");
        QTest::addColumn<int>("wire"); // the value in the request
        QTest::addColumn<bool>("confirmed");

        QTest::newRow("coil on: 1 goes as FF00, FF00 echoed") << 5 << 1 << true << false << 0xFF00 << 0xFF00 << true;
        QTest::newRow("coil off: 0, 0 echoed") << 5 << 0 << false << false << 0 << 0 << true;
        QTest::newRow("coil on with 0 written, 0 echoed") << 5 << 0 << true << false << 0 << 0 << true;
        QTest::newRow("coil on, 0 echoed") << 5 << 1 << true << false << 0 << 0xFF00 << false;
        QTest::newRow("coil off, FF00 echoed") << 5 << 0 << false << false << 0xFF00 << 0 << false;
        QTest::newRow("coil value 2 goes as it is, never confirmed") << 5 << 2 << true << false << 2 << 2 << false;
        QTest::newRow("coil on, no answer") << 5 << 1 << true << false << Silent << 0xFF00 << false;
        QTest::newRow("register on: 1 stays 1") << 6 << 1 << true << false << 1 << 1 << true;
        QTest::newRow("register off: 0 echoed") << 6 << 0 << false << false << 0 << 0 << true;
        QTest::newRow("register off, 1 echoed") << 6 << 0 << false << false << 1 << 0 << false;
        QTest::newRow("register on, FF00 echoed for 1") << 6 << 1 << true << false << 0xFF00 << 1 << false;
        QTest::newRow("register negative value") << 6 << -5 << true << false << 0xFFFB << 0xFFFB << true;
        QTest::newRow("register off, no answer") << 6 << 0 << false << false << Silent << 0 << false;
        QTest::newRow("code 8, 0 echoed") << 8 << 0 << false << false << 0 << 0 << true;
        QTest::newRow("code 8, non-zero echo") << 8 << 5 << true << false << 5 << 5 << false;
        QTest::newRow("code 8, -256 echoed as written") << 8 << -256 << true << false << 0xFF00 << 0xFF00 << false;
        QTest::newRow("simulated coil on") << 5 << 1 << true << true << 0 << 0 << true;
        QTest::newRow("simulated coil off") << 5 << 0 << false << true << 0 << 0 << true;
        QTest::newRow("simulated register") << 6 << 7 << true << true << 0 << 0 << true;
        QTest::newRow("simulated code 8 non-zero") << 8 << 5 << true << true << 0 << 0 << false;
    }
    // No remote/local registers: the write is the only request, and with a doubtful
    // result all three steps count a failure.
    void coilValuesAndEchoes()
    {
        QFETCH(int, functionCode);
        QFETCH(int, value);
        QFETCH(bool, on);
        QFETCH(bool, simulated);
        QFETCH(int, echo);
        QFETCH(int, wire);
        QFETCH(bool, confirmed);

        CommandRig rig;
        rig.login(true, false);
        rig.rt.plant.switches.resize(3);
        rig.configureSwitchWrite(2, Slave, {functionCode, OnRegister}, {functionCode, OffRegister}, value, value);
        rig.rt.master.setCommunicate(!simulated);
        if (echo == Silent)
            rig.line.setResponder({});
        else
            rig.echoWrites(quint16(echo));
        for (int i = 0; i < 4; ++i)
            rig.rt.alarms.ReportSwitchFailure(2);
        QSignalSpy refreshes(&rig.rt.synoptic, &SynopticRefresh::switchStatesChanged);

        const CommandOutcome outcome = SwitchCommand(rig.rt, rig.prompts, 2, on);

        const QList<QByteArray> expectedRequests =
            simulated ? QList<QByteArray>{}
                      : QList<QByteArray>{PlantRig::writeRequest(Slave, functionCode, on ? OnRegister : OffRegister,
                                                                 quint16(wire))};
        QCOMPARE(rig.line.requests(), expectedRequests);
        QCOMPARE(outcome, confirmed ? CommandOutcome::Confirmed : CommandOutcome::Doubtful);
        if (confirmed) {
            QVERIFY(rig.prompts.asked().isEmpty());
            QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 2), 0);
            QCOMPARE(rig.rt.items.switches[2], on ? SwitchState::On : SwitchState::Off);
            QCOMPARE(refreshes.count(), 1);
        } else {
            const RecordingPrompts::Prompt warning{RecordingPrompts::Kind::Warning, WarningTitle,
                                                   on ? NotSwitchedOn : NotSwitchedOff};
            QCOMPARE(rig.prompts.asked(), QList<RecordingPrompts::Prompt>{warning});
            QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 2), 4 + 3);
            QCOMPARE(rig.rt.alarms.switchEntries().size(), 1);
            QCOMPARE(rig.rt.items.switches[2], SwitchState::Undetermined);
            QCOMPARE(refreshes.count(), 0);
        }
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QString());
    }

    // The remote state is read before the write and a local state of 0 written after it.
    void exchangesAroundTheWrite()
    {
        CommandRig rig;
        rig.login(false, true);
        rig.rt.plant.switches.resize(1);
        rig.configureSwitchWrite(0, Slave, {5, OnRegister}, {5, OffRegister}, 1, 0);
        rig.rt.editor.tables.SwitchWriteTable.set(0, SwitchSlot::RemFunction, 5);
        rig.rt.editor.tables.SwitchWriteTable.set(0, SwitchSlot::RemRegister, RemWriteRegister);
        SwitchTable &read = rig.rt.editor.tables.SwitchReadTable;
        read.set(0, SwitchSlot::Address, Slave);
        read.set(0, SwitchSlot::RemFunction, 1);
        read.set(0, SwitchSlot::RemRegister, RemReadRegister);
        rig.setValue(Slave, 1, RemReadRegister, 1);

        QCOMPARE(SwitchCommand(rig.rt, rig.prompts, 0, true), CommandOutcome::Confirmed);

        QCOMPARE(rig.line.requests(), (QList<QByteArray>{
                                          PlantRig::readRequest(Slave, 1, RemReadRegister),
                                          PlantRig::writeRequest(Slave, 5, OnRegister, 0xFF00),
                                          PlantRig::writeRequest(Slave, 5, RemWriteRegister, 0),
                                      }));
        QCOMPARE(rig.rt.items.switchRemote[0], RemoteState::Remote);
        QVERIFY(rig.prompts.asked().isEmpty());
    }

    void failureCounts_data()
    {
        QTest::addColumn<int>("remote");
        QTest::addColumn<int>("local");
        QTest::addColumn<bool>("confirmed");
        QTest::addColumn<int>("failCount");

        QTest::newRow("all answer") << int(Answers) << int(Answers) << true << 0;
        QTest::newRow("exchanges silent, write confirmed") << int(Silence) << int(Silence) << true << 0;
        QTest::newRow("exchanges answer, write doubtful") << int(Answers) << int(Answers) << false << 1;
        QTest::newRow("remote silent, write doubtful") << int(Silence) << int(Answers) << false << 1;
        QTest::newRow("local silent, write doubtful") << int(Answers) << int(Silence) << false << 2;
        QTest::newRow("everything silent") << int(Silence) << int(Silence) << false << 3;
        QTest::newRow("no exchanges, write doubtful") << int(NotConfigured) << int(NotConfigured) << false << 3;
        QTest::newRow("no exchanges, write confirmed") << int(NotConfigured) << int(NotConfigured) << true << 0;
    }
    void failureCounts()
    {
        QFETCH(int, remote);
        QFETCH(int, local);
        QFETCH(bool, confirmed);
        QFETCH(int, failCount);

        CommandRig rig;
        rig.login(true, false);
        rig.rt.plant.switches.resize(1);
        rig.configureSwitchWrite(0, Slave, {6, OnRegister}, {6, OffRegister}, 1, 0);
        if (remote != NotConfigured) {
            SwitchTable &read = rig.rt.editor.tables.SwitchReadTable;
            read.set(0, SwitchSlot::Address, Slave);
            read.set(0, SwitchSlot::RemFunction, 3);
            read.set(0, SwitchSlot::RemRegister, RemReadRegister);
        }
        if (local != NotConfigured) {
            rig.rt.editor.tables.SwitchWriteTable.set(0, SwitchSlot::RemFunction, 6);
            rig.rt.editor.tables.SwitchWriteTable.set(0, SwitchSlot::RemRegister, RemWriteRegister);
        }
        rig.line.setResponder([&](const QByteArray &request) -> ScriptedLine::Reply {
            const int address = quint8(request[2]) << 8 | quint8(request[3]);
            if (address == RemReadRegister)
                return remote == Answers ? ScriptedLine::withCrc(QByteArray::fromHex("040302") + QByteArray(2, 0))
                                         : ScriptedLine::Reply();
            if (address == RemWriteRegister)
                return local == Answers ? ScriptedLine::Reply(request) : ScriptedLine::Reply();
            QByteArray reply = request;
            if (!confirmed)
                reply = ScriptedLine::withCrc(request.left(4) + QByteArray::fromHex("0002"));
            return reply;
        });

        SwitchCommand(rig.rt, rig.prompts, 0, true);

        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 0), failCount);
    }

    void notConfigured_data()
    {
        QTest::addColumn<int>("missingSlot");
        QTest::newRow("no On_w function") << int(SwitchSlot::OnFunction);
        QTest::newRow("no On_w register") << int(SwitchSlot::OnRegister);
        QTest::newRow("no Off_w function") << int(SwitchSlot::OffFunction);
        QTest::newRow("no Off_w register") << int(SwitchSlot::OffRegister);
    }
    // Neither direction goes out when either write is missing, and nothing is said.
    void notConfigured()
    {
        QFETCH(int, missingSlot);
        for (const bool on : {true, false}) {
            CommandRig rig;
            rig.login(true, false);
            rig.rt.plant.switches.resize(1);
            rig.configureSwitchWrite(0, Slave, {5, OnRegister}, {5, OffRegister}, 1, 0);
            rig.rt.editor.tables.SwitchWriteTable.set(0, missingSlot, UnusedSlot);

            QCOMPARE(SwitchCommand(rig.rt, rig.prompts, 0, on), CommandOutcome::NotConfigured);
            QVERIFY(rig.line.requests().isEmpty());
            QVERIFY(rig.prompts.asked().isEmpty());
            QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
            QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QString());
        }
    }

    void messagePanel_data()
    {
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("text");
        QTest::newRow("on") << true << "Accensione...";
        QTest::newRow("off") << false << "Spegnimento...";
    }
    void messagePanel()
    {
        QFETCH(bool, on);
        QFETCH(QString, text);
        CommandRig rig;
        rig.login(true, false);
        rig.rt.plant.switches.resize(1);
        rig.configureSwitchWrite(0, Slave, {5, OnRegister}, {5, OffRegister}, 1, 0);
        QSignalSpy changes(&rig.rt.statusBar, &StatusBar::panelChanged);
        // The text is up while the write waits for its echo.
        QString duringWrite;
        rig.line.setDuringYield([&] { duringWrite = rig.rt.statusBar.panel(StatusBar::MessagePanel); });

        SwitchCommand(rig.rt, rig.prompts, 0, on);

        QCOMPARE(duringWrite, text);
        QCOMPARE(changes.count(), 2);
        QCOMPARE(changes.at(0), (QList<QVariant>{StatusBar::MessagePanel, text}));
        QCOMPARE(changes.at(1), (QList<QVariant>{StatusBar::MessagePanel, QString()}));
    }
};

QTEST_GUILESS_MAIN(TestSwitchCommand)
#include "tst_switchcommand.moc"
