#include "commandrig.h"

#include "commands/dooropencommand.h"

#include <QTest>

using namespace telvane;

namespace {

constexpr int Slave = 9;
constexpr int OnRegister = 40;
constexpr int OffRegister = 41;

const QString WarningTitle = QStringLiteral("Gestione Apriporta");
const QString NotOpened =
    QStringLiteral("Attenzione: La porta potrebbe non essere stata aperta a causa di un errore di comunicazione.");
const QString NotReleased =
    QStringLiteral("Attenzione: L'apriporta potrebbe non essere stato rilasciato a causa di un errore di comunicazione.");

} // namespace

class TestDoorOpenCommand : public QObject
{
    Q_OBJECT

private slots:
    void pulse_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("valOn");
        QTest::addColumn<int>("valOff");
        QTest::addColumn<int>("wireOn");
        QTest::addColumn<int>("wireOff");
        QTest::addColumn<int>("pulseMs");

        QTest::newRow("coil") << 5 << 1 << 0 << 0xFF00 << 0 << 1000;
        QTest::newRow("register") << 6 << 1 << 0 << 1 << 0 << 2500;
        QTest::newRow("register with other values") << 6 << 3 << 2 << 3 << 2 << 300;
    }
    // Open, hold for the pulse time, release, then the door sound.
    void pulse()
    {
        QFETCH(int, functionCode);
        QFETCH(int, valOn);
        QFETCH(int, valOff);
        QFETCH(int, wireOn);
        QFETCH(int, wireOff);
        QFETCH(int, pulseMs);

        CommandRig rig;
        rig.login(true, false);
        rig.configureDoorWrite(Slave, {functionCode, OnRegister}, {functionCode, OffRegister}, valOn, valOff);
        rig.rt.editor.doorPulseMs = pulseMs;
        rig.rt.plant.synoptic.doorSound = QStringLiteral("porta.wav");
        rig.addSlave(Slave);
        QList<qint64> sentAtMs;
        rig.line.setResponder([&](const QByteArray &request) {
            sentAtMs << rig.clock.monotonicMs();
            return ScriptedLine::Reply().at(PlantRig::ReplyDelayMs, request);
        });

        QCOMPARE(DoorOpenCommand(rig.rt, rig.prompts), CommandOutcome::Confirmed);

        QCOMPARE(rig.line.requests(), (QList<QByteArray>{
                                          PlantRig::writeRequest(Slave, functionCode, OnRegister, quint16(wireOn)),
                                          PlantRig::writeRequest(Slave, functionCode, OffRegister, quint16(wireOff)),
                                      }));
        QCOMPARE(rig.pause.pauses(), QList<int>{pulseMs});
        QCOMPARE(sentAtMs.size(), 2);
        QVERIFY(sentAtMs[1] - sentAtMs[0] >= pulseMs);
        QCOMPARE(rig.sound.played(), QStringList{rig.rt.ini.folder().filePath(QStringLiteral("porta.wav"))});
        QVERIFY(rig.prompts.asked().isEmpty());
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QString());
    }

    void doubtful_data()
    {
        QTest::addColumn<int>("openEcho");    // -1: no answer
        QTest::addColumn<int>("releaseEcho"); // -1: no answer
        QTest::addColumn<QString>("warning");

        QTest::newRow("opening not echoed") << -1 << 0 << NotOpened;
        QTest::newRow("opening echoed 0") << 0 << 0 << NotOpened;
        QTest::newRow("release not echoed") << 0xFF00 << -1 << NotReleased;
        QTest::newRow("release echoed FF00") << 0xFF00 << 0xFF00 << NotReleased;
        QTest::newRow("neither") << -1 << -1 << NotOpened;
    }
    // The release goes out whatever became of the opening.
    void doubtful()
    {
        QFETCH(int, openEcho);
        QFETCH(int, releaseEcho);
        QFETCH(QString, warning);

        CommandRig rig;
        rig.login(false, true);
        rig.configureDoorWrite(Slave, {5, OnRegister}, {5, OffRegister}, 1, 0);
        rig.line.setResponder([&](const QByteArray &request) -> ScriptedLine::Reply {
            const int echo = quint8(request[3]) == OnRegister ? openEcho : releaseEcho;
            if (echo < 0)
                return {};
            QByteArray reply = request.left(4);
            reply.append(char(echo >> 8)).append(char(echo & 0xFF));
            return ScriptedLine::withCrc(reply);
        });

        QCOMPARE(DoorOpenCommand(rig.rt, rig.prompts), CommandOutcome::Doubtful);

        QCOMPARE(rig.line.requests(), (QList<QByteArray>{
                                          PlantRig::writeRequest(Slave, 5, OnRegister, 0xFF00),
                                          PlantRig::writeRequest(Slave, 5, OffRegister, 0),
                                      }));
        QCOMPARE(rig.prompts.asked(),
                 (QList<RecordingPrompts::Prompt>{{RecordingPrompts::Kind::Warning, WarningTitle, warning}}));
    }

    void simulated()
    {
        CommandRig rig;
        rig.login(true, false);
        rig.rt.master.setCommunicate(false);
        rig.configureDoorWrite(Slave, {5, OnRegister}, {5, OffRegister}, 1, 0);

        QCOMPARE(DoorOpenCommand(rig.rt, rig.prompts), CommandOutcome::Confirmed);
        QVERIFY(rig.line.requests().isEmpty());
        QCOMPARE(rig.pause.pauses(), QList<int>{1000});
        // No door sound configured: nothing played.
        QVERIFY(rig.sound.played().isEmpty());
    }

    void notConfigured_data()
    {
        QTest::addColumn<int>("missingSlot");
        QTest::newRow("no On_w function") << int(DoorSlot::OnFunction);
        QTest::newRow("no On_w register") << int(DoorSlot::OnRegister);
        QTest::newRow("no Off_w function") << int(DoorSlot::OffFunction);
        QTest::newRow("no Off_w register") << int(DoorSlot::OffRegister);
    }
    void notConfigured()
    {
        QFETCH(int, missingSlot);
        CommandRig rig;
        rig.login(true, false);
        rig.rt.plant.synoptic.doorSound = QStringLiteral("porta.wav");
        rig.configureDoorWrite(Slave, {5, OnRegister}, {5, OffRegister}, 1, 0);
        rig.rt.editor.tables.DoorWriteTable.set(0, missingSlot, UnusedSlot);

        QCOMPARE(DoorOpenCommand(rig.rt, rig.prompts), CommandOutcome::NotConfigured);
        QVERIFY(rig.line.requests().isEmpty());
        QVERIFY(rig.pause.pauses().isEmpty());
        QVERIFY(rig.sound.played().isEmpty());
        QVERIFY(rig.prompts.asked().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDoorOpenCommand)
#include "tst_dooropencommand.moc"
