#include "support/runtimefixture.h"

#include "commands/switchcommand.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

RecordingPrompts::Prompt warning(bool on)
{
    return {RecordingPrompts::Kind::Warning, QStringLiteral("Gestione Interruttore"),
            QStringLiteral("Attenzione: L'interruttore potrebbe non essere stato %1 a causa di un errore di "
                           "comunicazione.")
                .arg(on ? "acceso" : "spento")};
}

// Switch 0 of slave 4 switches on through register 0x30 and off through 0x31.
void configureSwitch(RuntimeFixture &fx, int functionCode, int valOn, int valOff)
{
    fx.login(true, false);
    fx.rt.model.plant.switches.resize(1);
    setRow(fx.rt.model.editor.tables.SwitchWriteTable, 0,
           {4, 0, -1, -1, functionCode, 0x30, functionCode, 0x31, valOn, valOff});
}

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
        QTest::addColumn<QString>("request");
        QTest::addColumn<bool>("confirmed");

        QTest::newRow("coil on: 1 goes as FF00") << 5 << 1 << true << false << 0xFF00 << "04 05 0030 ff00" << true;
        QTest::newRow("coil on, 0 echoed") << 5 << 1 << true << false << 0 << "04 05 0030 ff00" << false;
        QTest::newRow("register off, 1 echoed") << 6 << 0 << false << false << 1 << "04 06 0031 0000" << false;
        QTest::newRow("simulated coil on") << 5 << 1 << true << true << 0 << "" << true;
    }
    // Without remote/local registers the write is the only request: a doubtful result
    // warns, a confirmed one sets the switch's state.
    void coilValuesAndEchoes()
    {
        QFETCH(int, functionCode);
        QFETCH(int, value);
        QFETCH(bool, on);
        QFETCH(bool, simulated);
        QFETCH(int, echo);
        QFETCH(QString, request);
        QFETCH(bool, confirmed);
        RuntimeFixture fx;
        configureSwitch(fx, functionCode, value, value);
        fx.rt.services.master.setCommunicate(!simulated);
        fx.echoWrites(quint16(echo));
        QSignalSpy refreshes(&fx.rt.display.synoptic, &SynopticRefresh::switchStatesChanged);

        const CommandOutcome outcome = SwitchCommand(fx.rt, fx.prompts, 0, on);
        QCOMPARE(outcome, confirmed ? CommandOutcome::Confirmed : CommandOutcome::Doubtful);
        QCOMPARE(fx.takeRequests(), request.isEmpty() ? QStringList{} : QStringList{request});
        QCOMPARE(fx.prompts.asked(), confirmed ? QList<RecordingPrompts::Prompt>{} : QList{warning(on)});
        const SwitchState state = on ? SwitchState::On : SwitchState::Off;
        QCOMPARE(fx.rt.services.items.switches[0], confirmed ? state : SwitchState::Undetermined);
        QCOMPARE(refreshes.count(), confirmed ? 1 : 0);
        QCOMPARE(fx.panelTexts[StatusBar::MessagePanel],
                 (QStringList{on ? "Accensione..." : "Spegnimento...", ""}));
    }

    // The remote state (slave 5) is read before the write and a local state of 0 written
    // after it (slave 4); each exchange and the echo count once toward the alarm, each
    // with the reason of its own exchange, and a good one clears the count.
    void failureCounts_data()
    {
        QTest::addColumn<bool>("remoteAnswers");
        QTest::addColumn<int>("writeEcho"); // -1: no answer
        QTest::addColumn<bool>("localAnswers");
        QTest::addColumn<int>("failCount");
        QTest::addColumn<QStringList>("reasons");
        QTest::newRow("all answer") << true << 0xFF00 << true << 0 << QStringList{};
        QTest::newRow("echo does not confirm") << true << 0 << true << 1 << QStringList{"Eco non valida: 0 per 65280"};
        QTest::newRow("only the write silent") << true << -1 << true << 1 << QStringList{"Time out"};
        QTest::newRow("everything silent") << false << -1 << false << 3 << QStringList(3, "Time out");
    }
    void failureCounts()
    {
        QFETCH(bool, remoteAnswers);
        QFETCH(int, writeEcho);
        QFETCH(bool, localAnswers);
        QFETCH(int, failCount);
        QFETCH(QStringList, reasons);
        RuntimeFixture fx;
        configureSwitch(fx, 5, 1, 0);
        setRow(fx.rt.model.editor.tables.SwitchReadTable, 0, {5, 0, 3, 0x10});
        setRow(fx.rt.model.editor.tables.SwitchWriteTable, 0, {4, 0, 6, 0x11});
        fx.line.setResponder([=](const QByteArray &request) -> ScriptedLine::Reply {
            const int functionCode = request.at(1);
            if (functionCode == 3)
                return remoteAnswers ? ScriptedLine::withCrc(request.left(2) + QByteArray::fromHex("020001"))
                                     : ScriptedLine::Reply();
            const int echo = functionCode == 5 ? writeEcho : localAnswers ? 0 : -1;
            if (echo < 0)
                return {};
            return ScriptedLine::withCrc(request.left(4) + char(echo >> 8) + char(echo));
        });
        QStringList counted;
        QObject::connect(&fx.rt.services.alarms, &AlarmBook::failureCounted,
                         [&](AlarmItemKind, int, const QString &reason) { counted << reason; });

        SwitchCommand(fx.rt, fx.prompts, 0, true);
        QCOMPARE(fx.takeRequests(), (QStringList{"05 03 0010 0001", "04 05 0030 ff00", "04 06 0011 0000"}));
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), failCount);
        QCOMPARE(counted, reasons);
    }

    // Neither direction goes out when either write is missing, and nothing is said.
    void notConfigured()
    {
        for (const bool on : {true, false}) {
            RuntimeFixture fx;
            configureSwitch(fx, 5, 1, 0);
            fx.rt.model.editor.tables.SwitchWriteTable.set(0, SwitchSlot::OffRegister, UnusedSlot);
            QCOMPARE(SwitchCommand(fx.rt, fx.prompts, 0, on), CommandOutcome::NotConfigured);
            QVERIFY(fx.line.requests().isEmpty());
            QVERIFY(fx.prompts.asked().isEmpty());
            QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestSwitchCommand)
#include "tst_switchcommand.moc"
