#include "fieldbus/probecommand.h"

#include <QProcess>
#include <QTest>

using namespace telvane;

namespace {

ProbeCommandLine parse(const QString &arguments)
{
    return parseProbeCommand(QStringList{"telvane-probe"} + QProcess::splitCommand(arguments));
}

} // namespace

class TestProbeCommand : public QObject
{
    Q_OBJECT

private slots:
    void accepted_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<ProbeCommand>("expected");
        QTest::newRow("read, defaults") << "--port 1 --slave 5 --fc 3 --address 1"
                                        << ProbeCommand{.port = "1", .slave = 5, .functionCode = 3, .address = 1};
        QTest::newRow("every option")
            << "--port /dev/ttyUSB0 --format 19200,E,8,1 --timeout 250 --retry 3 --slave 247 --fc 4 --address 65535 --repeat 10"
            << ProbeCommand{"/dev/ttyUSB0", "19200,E,8,1", 250, 3, 247, 4, 65535, std::nullopt, 10};
        QTest::newRow("broadcast, lowest value") << "--port 2 --slave 0 --fc 6 --address 7 --value -32768"
                                                 << ProbeCommand{.port = "2", .functionCode = 6, .address = 7, .value = -32768};
    }
    void accepted()
    {
        QFETCH(QString, arguments);
        QFETCH(ProbeCommand, expected);
        const ProbeCommandLine result = parse(arguments);
        QVERIFY2(result.outcome == ProbeCommandLine::Outcome::Run, qPrintable(result.message));
        const ProbeCommand &c = result.command;
        QCOMPARE(c.port, expected.port);
        QCOMPARE(c.format, expected.format);
        QCOMPARE(c.timeoutMs, expected.timeoutMs);
        QCOMPARE(c.retries, expected.retries);
        QCOMPARE(c.slave, expected.slave);
        QCOMPARE(c.functionCode, expected.functionCode);
        QCOMPARE(c.address, expected.address);
        QCOMPARE(c.value, expected.value);
        QCOMPARE(c.repeat, expected.repeat);
    }

    void refused_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("named"); // what the message must name
        const QString read = "--port 1 --slave 1 --fc 3 --address 1";
        QTest::newRow("nothing") << "" << "--port";
        QTest::newRow("no slave") << "--port 1 --fc 3 --address 1" << "--slave";
        QTest::newRow("unknown code") << "--port 1 --slave 1 --fc 7 --address 1" << "--fc 7";
        QTest::newRow("value for a read") << read + " --value 5" << "--value";
        QTest::newRow("address too big") << "--port 1 --slave 1 --fc 3 --address 70000" << "--address 70000";
        QTest::newRow("slave too big") << "--port 1 --slave 256 --fc 3 --address 1" << "--slave 256";
        QTest::newRow("value too big") << "--port 1 --slave 1 --fc 6 --address 1 --value 65536" << "--value 65536";
        QTest::newRow("time-out 0") << read + " --timeout 0" << "--timeout 0";
        QTest::newRow("no attempt") << read + " --retry 0" << "--retry 0";
        QTest::newRow("bad format") << read + " --format 9600,N,9,1" << "bit di dati";
        QTest::newRow("unknown option") << read + " --baud 9600" << "baud";
        QTest::newRow("option without its value") << "--port 1 --slave 1 --fc 3 --address" << "address";
    }
    void refused()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, named);
        const ProbeCommandLine result = parse(arguments);
        QCOMPARE(result.outcome, ProbeCommandLine::Outcome::Error);
        QVERIFY2(result.message.contains(named), qPrintable(result.message));
    }

    void helpDocumentsEveryOption()
    {
        for (const char *arguments : {"--help", "--port 1 --fc 7 -h"}) {
            const ProbeCommandLine result = parse(arguments);
            QCOMPARE(result.outcome, ProbeCommandLine::Outcome::Help);
            for (const char *option : {"--port", "--format", "--timeout", "--retry", "--slave", "--fc", "--address", "--value",
                                       "--repeat", "-99999"})
                QVERIFY2(result.message.contains(QLatin1String(option)), option);
        }
    }
};

QTEST_GUILESS_MAIN(TestProbeCommand)
#include "tst_probecommand.moc"
