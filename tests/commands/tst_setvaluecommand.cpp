#include "support/runtimefixture.h"

#include "commands/setvaluecommand.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

constexpr int Zone = 3;

QList<RecordingPrompts::Prompt> warning(const QString &text)
{
    return {{RecordingPrompts::Kind::Warning, QStringLiteral("Modifica parametro..."), text}};
}

// Zone 4 on slave 12: quantity k is written with `functionCode` to register 0x10 + k.
void configureZone(RuntimeFixture &fx, int decimals, int functionCode = 6)
{
    fx.login(true, false);
    fx.rt.model.plant.zones.resize(Zone + 1);
    const int f = functionCode;
    setRow(fx.rt.model.editor.tables.ZoneWriteTable, Zone,
           {12, decimals, -1, -1, f, 0x10, f, 0x11, f, 0x12, f, 0x13, f, 0x14});
    fx.slaves.insert(12);
}

} // namespace

class TestSetValueCommand : public QObject
{
    Q_OBJECT

private slots:
    // The value goes to the register of the quantity the synoptic shows (`Zone Testo`).
    void written_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("quantity");
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<QString>("request");
        QTest::addColumn<float>("stored");
        QTest::newRow("comma") << "21,5" << 1 << 1 << 6 << "0c 06 0011 00d7" << 21.5f;
        QTest::newRow("code 8") << "2" << 0 << 4 << 8 << "0c 08 0014 0002" << 2.0f;
        QTest::newRow("simulated") << "18.25" << 2 << 1 << 6 << "" << 18.25f;
    }
    void written()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(int, quantity);
        QFETCH(int, functionCode);
        QFETCH(QString, request);
        QFETCH(float, stored);
        RuntimeFixture fx;
        configureZone(fx, decimals, functionCode);
        fx.rt.model.plant.zoneDisplay.textQuantity = qint16(quantity);
        fx.rt.services.master.setCommunicate(!request.isEmpty());
        QSignalSpy refreshes(&fx.rt.display.synoptic, &SynopticRefresh::zoneTextsChanged);

        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, Zone, text), CommandOutcome::Confirmed);
        QCOMPARE(fx.takeRequests(), request.isEmpty() ? QStringList{} : QStringList{request});
        QCOMPARE(fx.rt.model.values.ZoneValues[Zone][quantity], stored);
        QCOMPARE(refreshes.count(), 1);
    }

    // The operator is told; a 0 is never sent in place of a value that could not be used.
    void nothingSent_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::newRow("overflow") << "3276,8" << 1;
        QTest::newRow("letters in the number") << "21x,5" << 1;
    }
    void nothingSent()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        RuntimeFixture fx;
        configureZone(fx, decimals);
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, Zone, text), CommandOutcome::Refused);
        QVERIFY(fx.line.requests().isEmpty());
        const QString box = QStringLiteral("Valore non valido: \"%1\". Nessun valore è stato inviato allo strumento.");
        QCOMPARE(fx.prompts.asked(), warning(box.arg(text)));
        QCOMPARE(fx.rt.model.values.ZoneValues[Zone][1], InvalidValue);
    }

    // A value the instrument did not echo back is not shown.
    void echoNotConfirmed()
    {
        RuntimeFixture fx;
        configureZone(fx, 1);
        fx.rt.model.values.ZoneValues[Zone][1] = 20.0f;
        fx.echoWrites(214);
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, Zone, QStringLiteral("21,5")), CommandOutcome::Doubtful);
        QCOMPARE(fx.takeRequests(), QStringList{"0c 06 0011 00d7"});
        const QString box = QStringLiteral("Attenzione: Il valore potrebbe non essere stato impostato a causa di un "
                                           "errore di comunicazione.");
        QCOMPARE(fx.prompts.asked(), warning(box));
        QCOMPARE(fx.rt.model.values.ZoneValues[Zone][1], 20.0f);
    }

    // A quantity without a write register: the operator is told, nothing is sent.
    void noWriteRegister()
    {
        RuntimeFixture fx;
        configureZone(fx, 1, 3);
        QTest::ignoreMessage(QtWarningMsg, "Zone 4 has no write register for quantity 1: value not sent");
        QCOMPARE(SetValueCommand(fx.rt, fx.prompts, Zone, QStringLiteral("21")), CommandOutcome::NotConfigured);
        QVERIFY(fx.line.requests().isEmpty() && fx.prompts.asked().size() == 1);
    }
};

QTEST_GUILESS_MAIN(TestSetValueCommand)
#include "tst_setvaluecommand.moc"
