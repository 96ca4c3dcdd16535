#include "support/runtimefixture.h"

#include "commands/dooropencommand.h"

#include <QTest>

using namespace telvane;

namespace {

const QString NotOpened =
    QStringLiteral("Attenzione: La porta potrebbe non essere stata aperta a causa di un errore di comunicazione.");
const QString NotReleased = QStringLiteral(
    "Attenzione: L'apriporta potrebbe non essere stato rilasciato a causa di un errore di comunicazione.");

// The door opener of slave 9 opens through register 0x40 and is released through 0x41.
void configureDoor(RuntimeFixture &fx, int functionCode, int valOn, int valOff)
{
    fx.login(false, true);
    const int f = functionCode;
    setRow(fx.rt.model.editor.tables.DoorWriteTable, 0, {9, 0, -1, -1, f, 0x40, f, 0x41, -1, valOn, valOff});
    fx.rt.model.plant.synoptic.doorSound = QStringLiteral("porta.wav");
}

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
        QTest::addColumn<QStringList>("requests");
        QTest::addColumn<int>("pulseMs");
        QTest::newRow("register") << 6 << 3 << 2 << QStringList{"09 06 0040 0003", "09 06 0041 0002"} << 300;
        QTest::newRow("simulated") << 5 << 1 << 0 << QStringList{} << 1000;
    }
    // Open, hold for the pulse time, release, then the door sound; simulated, the pulse
    // still takes its time. (The coil pulse goes through the plant's commands.)
    void pulse()
    {
        QFETCH(int, functionCode);
        QFETCH(int, valOn);
        QFETCH(int, valOff);
        QFETCH(QStringList, requests);
        QFETCH(int, pulseMs);
        RuntimeFixture fx;
        configureDoor(fx, functionCode, valOn, valOff);
        fx.rt.model.editor.doorPulseMs = pulseMs;
        fx.rt.services.master.setCommunicate(!requests.isEmpty());
        fx.slaves.insert(9);
        QList<qint64> sentAtMs;
        fx.line.setResponder([&](const QByteArray &request) {
            sentAtMs << fx.clock.monotonicMs();
            return ScriptedLine::Reply().at(RuntimeFixture::ReplyDelayMs, request);
        });

        QCOMPARE(DoorOpenCommand(fx.rt, fx.prompts), CommandOutcome::Confirmed);
        QCOMPARE(fx.takeRequests(), requests);
        QCOMPARE(fx.pause.pauses(), QList<int>{pulseMs});
        QVERIFY(requests.isEmpty() || (sentAtMs.size() == 2 && sentAtMs[1] - sentAtMs[0] >= pulseMs));
        QCOMPARE(fx.sound.played(), QStringList{fx.dir.filePath(QStringLiteral("porta.wav"))});
        QCOMPARE(fx.panelTexts[StatusBar::MessagePanel], (QStringList{"Apertura porta...", ""}));
    }

    // The release goes out whatever became of the opening.
    void doubtful_data()
    {
        QTest::addColumn<int>("openEcho");    // -1: no answer
        QTest::addColumn<int>("releaseEcho"); // -1: no answer
        QTest::addColumn<QString>("warning");
        QTest::newRow("opening not echoed") << -1 << 0 << NotOpened;
        QTest::newRow("release not echoed") << 0xFF00 << -1 << NotReleased;
    }
    void doubtful()
    {
        QFETCH(int, openEcho);
        QFETCH(int, releaseEcho);
        QFETCH(QString, warning);
        RuntimeFixture fx;
        configureDoor(fx, 5, 1, 0);
        fx.rt.model.plant.synoptic.doorSound.clear();
        fx.line.setResponder([&](const QByteArray &request) -> ScriptedLine::Reply {
            const int echo = request[3] == 0x40 ? openEcho : releaseEcho;
            if (echo < 0)
                return {};
            return ScriptedLine::withCrc(request.left(4) + char(echo >> 8) + char(echo));
        });

        QCOMPARE(DoorOpenCommand(fx.rt, fx.prompts), CommandOutcome::Doubtful);
        QCOMPARE(fx.takeRequests(), (QStringList{"09 05 0040 ff00", "09 05 0041 0000"}));
        QCOMPARE(fx.prompts.asked(), (QList<RecordingPrompts::Prompt>{
                                         {RecordingPrompts::Kind::Warning, "Gestione Apriporta", warning}}));
        QVERIFY(fx.sound.played().isEmpty());
    }

    void notConfigured()
    {
        RuntimeFixture fx;
        configureDoor(fx, 5, 1, 0);
        fx.rt.model.editor.tables.DoorWriteTable.set(0, DoorSlot::OffFunction, UnusedSlot);
        QCOMPARE(DoorOpenCommand(fx.rt, fx.prompts), CommandOutcome::NotConfigured);
        QVERIFY(fx.line.requests().isEmpty() && fx.pause.pauses().isEmpty() && fx.sound.played().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDoorOpenCommand)
#include "tst_dooropencommand.moc"
