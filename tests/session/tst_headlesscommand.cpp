#include "session/headlesscommand.h"

#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(HeadlessCommand::Kind)

class TestHeadlessCommand : public QObject
{
    Q_OBJECT

private slots:
    void accepted_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<HeadlessCommand::Kind>("kind");
        QTest::addColumn<int>("item");
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("tidied");

        using Kind = HeadlessCommand::Kind;
        QTest::newRow("switch off, last") << "switch 10 off" << Kind::Switch << 9 << false << "" << "switch 10 off";
        QTest::newRow("upper case, blanks") << "  SWITCH   3  On " << Kind::Switch << 2 << true << ""
                                            << "SWITCH 3 On";
        QTest::newRow("door") << "door" << Kind::DoorOpen << -1 << false << "" << "door";
        QTest::newRow("set, point, last zone") << "set 30 -3.25" << Kind::SetValue << 29 << false << "-3.25"
                                               << "set 30 -3.25";
        // The value is the command's business: it tells the operator what is wrong.
        QTest::newRow("set, not a number") << "set 1 caldo" << Kind::SetValue << 0 << false << "caldo"
                                           << "set 1 caldo";
    }

    void accepted()
    {
        QFETCH(QString, text);
        QFETCH(HeadlessCommand::Kind, kind);
        QFETCH(int, item);
        QFETCH(bool, on);
        QFETCH(QString, value);
        QFETCH(QString, tidied);

        QString error;
        const std::optional<HeadlessCommand> command = parseHeadlessCommand(text, error);
        QVERIFY2(command, qPrintable(error));
        QCOMPARE(command->kind, kind);
        QCOMPARE(command->item, item);
        QCOMPARE(command->on, on);
        QCOMPARE(command->value, value);
        QCOMPARE(command->text, tidied);
    }

    void refused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("named");

        QTest::newRow("empty") << "" << "sconosciuto";
        QTest::newRow("unknown verb") << "open 1" << "open 1";
        QTest::newRow("door with an item") << "door 1" << "door 1";
        QTest::newRow("switch zero") << "switch 0 on" << "da 1 a 10";
        QTest::newRow("switch not a number") << "switch uno on" << "\"uno\"";
        QTest::newRow("switch state") << "switch 1 acceso" << "\"acceso\"";
        QTest::newRow("switch without state") << "switch 1" << "sconosciuto";
        QTest::newRow("zone 31") << "set 31 20" << "da 1 a 30";
        QTest::newRow("set, value in two words") << "set 1 21 5" << "sconosciuto";
    }

    void refused()
    {
        QFETCH(QString, text);
        QFETCH(QString, named);

        QString error;
        QCOMPARE(parseHeadlessCommand(text, error), std::nullopt);
        QVERIFY2(error.contains(named), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(TestHeadlessCommand)
#include "tst_headlesscommand.moc"
