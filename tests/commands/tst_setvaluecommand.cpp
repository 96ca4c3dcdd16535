#include "commandrig.h"

#include "commands/setvaluecommand.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

constexpr int Zone = 3;
constexpr int Slave = 12;

const QString BoxTitle = QStringLiteral("Modifica parametro...");

} // namespace

class TestSetValueCommand : public QObject
{
    Q_OBJECT

private slots:
    void written_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("quantity"); // Zone Testo
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("wire");
        QTest::addColumn<float>("stored");

        QTest::newRow("comma") << "21,5" << 1 << 1 << 6 << 215 << 21.5f;
        QTest::newRow("point") << "21.5" << 1 << 1 << 6 << 215 << 21.5f;
        QTest::newRow("blanks around") << " 21,5 " << 1 << 1 << 6 << 215 << 21.5f;
        QTest::newRow("extra decimals cut") << "21,57" << 1 << 1 << 6 << 215 << 21.5f;
        QTest::newRow("whole number, two decimals") << "7" << 2 << 1 << 6 << 700 << 7.0f;
        QTest::newRow("negative") << "-0,5" << 1 << 1 << 6 << 0xFFFB << -0.5f;
        QTest::newRow("no decimals") << "45" << 0 << 1 << 6 << 45 << 45.0f;
        QTest::newRow("zero") << "0" << 1 << 1 << 6 << 0 << 0.0f;
        QTest::newRow("largest register") << "3276,7" << 1 << 1 << 6 << 32767 << 3276.7f;
        QTest::newRow("Zone Testo selects AL1") << "30" << 0 << 2 << 6 << 30 << 30.0f;
        QTest::newRow("Zone Testo selects PV") << "19,0" << 1 << 0 << 6 << 190 << 19.0f;
        QTest::newRow("code 8") << "2" << 0 << 4 << 8 << 2 << 2.0f;
    }
    void written()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(int, quantity);
        QFETCH(int, functionCode);
        QFETCH(int, wire);
        QFETCH(float, stored);

        CommandRig rig;
        rig.login(true, false);
        rig.rt.plant.zoneDisplay.textQuantity = qint16(quantity);
        // Every quantity has its own register: 100 + quantity.
        for (int k = 0; k < ValueTables::Quantities; ++k)
            rig.configureZoneWrite(Zone, Slave, decimals, k, functionCode, 100 + k);
        rig.addSlave(Slave);
        QSignalSpy refreshes(&rig.rt.synoptic, &SynopticRefresh::zoneTextsChanged);

        QCOMPARE(SetValueCommand(rig.rt, rig.prompts, Zone, text), CommandOutcome::Confirmed);

        QCOMPARE(rig.line.requests(),
                 QList<QByteArray>{PlantRig::writeRequest(Slave, functionCode, 100 + quantity, quint16(wire))});
        for (int k = 0; k < ValueTables::Quantities; ++k)
            QCOMPARE(rig.rt.values.ZoneValues[Zone][k], k == quantity ? stored : InvalidValue);
        QCOMPARE(refreshes.count(), 1);
        QVERIFY(rig.prompts.asked().isEmpty());
    }

    void nothingSent_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::newRow("overflow") << "3276,8" << 1;
        QTest::newRow("negative overflow") << "-3276,9" << 1;
        QTest::newRow("overflow by the decimals") << "400" << 2;
        QTest::newRow("not a number") << "abc" << 1;
        QTest::newRow("letters in the number") << "21x,5" << 1;
        QTest::newRow("empty") << "" << 1;
        QTest::newRow("separator alone") << "," << 1;
    }
    // The operator is told; a 0 is never sent in place of a value that could not be used.
    void nothingSent()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);

        CommandRig rig;
        rig.login(false, true);
        rig.configureZoneWrite(Zone, Slave, decimals, 1, 6, 101);
        rig.addSlave(Slave);

        QCOMPARE(SetValueCommand(rig.rt, rig.prompts, Zone, text), CommandOutcome::Refused);

        QVERIFY(rig.line.requests().isEmpty());
        QCOMPARE(rig.prompts.asked().size(), 1);
        const RecordingPrompts::Prompt warning = rig.prompts.asked().first();
        QCOMPARE(warning.kind, RecordingPrompts::Kind::Warning);
        QCOMPARE(warning.title, BoxTitle);
        QCOMPARE(warning.text, QStringLiteral("Valore non valido: \"%1\". Nessun valore è stato inviato allo strumento.")
                                   .arg(text.trimmed()));
        QCOMPARE(rig.rt.values.ZoneValues[Zone][1], InvalidValue);
    }

    void echoNotConfirmed_data()
    {
        QTest::addColumn<int>("echo"); // -1: no answer
        QTest::newRow("no answer") << -1;
        QTest::newRow("other value") << 214;
        QTest::newRow("zero") << 0;
    }
    void echoNotConfirmed()
    {
        QFETCH(int, echo);
        CommandRig rig;
        rig.login(true, false);
        rig.configureZoneWrite(Zone, Slave, 1, 1, 6, 101);
        rig.rt.values.ZoneValues[Zone][1] = 20.0f;
        if (echo < 0)
            rig.line.setResponder({});
        else
            rig.echoWrites(quint16(echo));

        QCOMPARE(SetValueCommand(rig.rt, rig.prompts, Zone, QStringLiteral("21,5")), CommandOutcome::Doubtful);

        QCOMPARE(rig.line.requests(), QList<QByteArray>{PlantRig::writeRequest(Slave, 6, 101, 215)});
        QCOMPARE(rig.prompts.asked(),
                 (QList<RecordingPrompts::Prompt>{
                     {RecordingPrompts::Kind::Warning, BoxTitle,
                      "Attenzione: Il valore potrebbe non essere stato impostato a causa di un errore di "
                      "comunicazione."}}));
        QCOMPARE(rig.rt.values.ZoneValues[Zone][1], 20.0f);
    }

    void simulated()
    {
        CommandRig rig;
        rig.login(true, false);
        rig.rt.master.setCommunicate(false);
        rig.configureZoneWrite(Zone, Slave, 2, 1, 6, 101);

        QCOMPARE(SetValueCommand(rig.rt, rig.prompts, Zone, QStringLiteral("18.25")), CommandOutcome::Confirmed);
        QVERIFY(rig.line.requests().isEmpty());
        QCOMPARE(rig.rt.values.ZoneValues[Zone][1], 18.25f);
    }

    void noWriteRegister_data()
    {
        QTest::addColumn<int>("slave");
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("address");
        QTest::newRow("zone not in use") << -1 << -1 << -1;
        QTest::newRow("quantity without register") << Slave << -1 << -1;
        QTest::newRow("read function code") << Slave << 3 << 101;
    }
    void noWriteRegister()
    {
        QFETCH(int, slave);
        QFETCH(int, functionCode);
        QFETCH(int, address);
        CommandRig rig;
        rig.login(true, false);
        rig.configureZoneWrite(Zone, slave, 1, 1, functionCode, address);

        QTest::ignoreMessage(QtWarningMsg, "Zone 4 has no write register for quantity 1: value not sent");
        QCOMPARE(SetValueCommand(rig.rt, rig.prompts, Zone, QStringLiteral("21")), CommandOutcome::NotConfigured);
        QVERIFY(rig.line.requests().isEmpty());
        QCOMPARE(rig.prompts.asked().size(), 1);
        QCOMPARE(rig.prompts.asked().first().title, BoxTitle);
    }
};

QTEST_GUILESS_MAIN(TestSetValueCommand)
#include "tst_setvaluecommand.moc"
