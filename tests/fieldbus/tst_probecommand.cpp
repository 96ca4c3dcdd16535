#include "fieldbus/probecommand.h"

#include <QProcess>
#include <QTest>

using namespace telvane;

namespace {

ProbeCommandLine parse(const QString &arguments)
{
    return parseProbeCommand(QStringList {QStringLiteral("telvane-probe")} + QProcess::splitCommand(arguments));
}

} // namespace

class TestProbeCommand : public QObject
{
    Q_OBJECT

private slots:
    void accepted_data();
    void accepted();
    void refused_data();
    void refused();
    void helpDocumentsEveryOption();
};

void TestProbeCommand::accepted_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("timeoutMs");
    QTest::addColumn<int>("retries");
    QTest::addColumn<int>("slave");
    QTest::addColumn<int>("functionCode");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("value");  // -1000000: none
    QTest::addColumn<int>("repeat");

    QTest::newRow("read, defaults") << "--port 1 --slave 5 --fc 3 --address 1"
                                    << "1" << "9600,N,8,1" << 500 << 1 << 5 << 3 << 1 << -1000000 << 1;
    QTest::newRow("everything given") << "--port /dev/ttyUSB0 --format 19200,E,8,1 --timeout 250 --retry 3 "
                                         "--slave 247 --fc 4 --address 65535 --repeat 10"
                                      << "/dev/ttyUSB0" << "19200,E,8,1" << 250 << 3 << 247 << 4 << 65535 << -1000000 << 10;
    QTest::newRow("coil on") << "--port 2 --slave 1 --fc 5 --address 0 --value 65280"
                             << "2" << "9600,N,8,1" << 500 << 1 << 1 << 5 << 0 << 65280 << 1;
    QTest::newRow("negative register") << "--port 2 --slave 1 --fc 6 --address 7 --value -32768"
                                       << "2" << "9600,N,8,1" << 500 << 1 << 1 << 6 << 7 << -32768 << 1;
    QTest::newRow("diagnostics") << "--port 2 --slave 1 --fc 8 --address 0 --value 4660"
                                 << "2" << "9600,N,8,1" << 500 << 1 << 1 << 8 << 0 << 4660 << 1;
    QTest::newRow("broadcast") << "--port 1 --slave 0 --fc 6 --address 3 --value 1"
                               << "1" << "9600,N,8,1" << 500 << 1 << 0 << 6 << 3 << 1 << 1;
    QTest::newRow("equals signs") << "--port=/dev/pts/3 --slave=9 --fc=1 --address=12"
                                  << "/dev/pts/3" << "9600,N,8,1" << 500 << 1 << 9 << 1 << 12 << -1000000 << 1;
}

void TestProbeCommand::accepted()
{
    QFETCH(QString, arguments);
    QFETCH(QString, port);
    QFETCH(QString, format);
    QFETCH(int, timeoutMs);
    QFETCH(int, retries);
    QFETCH(int, slave);
    QFETCH(int, functionCode);
    QFETCH(int, address);
    QFETCH(int, value);
    QFETCH(int, repeat);

    const ProbeCommandLine result = parse(arguments);
    QVERIFY2(result.outcome == ProbeCommandLine::Outcome::Run, qPrintable(result.message));
    const ProbeCommand &command = result.command;
    QCOMPARE(command.port, port);
    QCOMPARE(command.format, format);
    QCOMPARE(command.timeoutMs, timeoutMs);
    QCOMPARE(command.retries, retries);
    QCOMPARE(command.slave, slave);
    QCOMPARE(command.functionCode, functionCode);
    QCOMPARE(command.address, address);
    QCOMPARE(command.value, value == -1000000 ? std::nullopt : std::optional<int>(value));
    QCOMPARE(command.repeat, repeat);
}

void TestProbeCommand::refused_data()
{
    // Each message must name what is wrong.
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("named");

    const QString read = QStringLiteral("--port 1 --slave 1 --fc 3 --address 1");
    QTest::newRow("nothing") << "" << "--port";
    QTest::newRow("missing slave") << "--port 1 --fc 3 --address 1" << "--slave";
    QTest::newRow("missing code") << "--port 1 --slave 1 --address 1" << "--fc";
    QTest::newRow("missing address") << "--port 1 --slave 1 --fc 3" << "--address";
    QTest::newRow("code 7") << "--port 1 --slave 1 --fc 7 --address 1" << "--fc 7";
    QTest::newRow("code 0") << "--port 1 --slave 1 --fc 0 --address 1" << "--fc 0";
    QTest::newRow("code 16") << "--port 1 --slave 1 --fc 16 --address 1" << "--fc 16";
    QTest::newRow("value with a read") << read + " --value 5" << "--value";
    QTest::newRow("write without value") << "--port 1 --slave 1 --fc 6 --address 1" << "--value";
    QTest::newRow("address 70000") << "--port 1 --slave 1 --fc 3 --address 70000" << "--address 70000";
    QTest::newRow("address negative") << "--port 1 --slave 1 --fc 3 --address -1" << "--address -1";
    QTest::newRow("slave 256") << "--port 1 --slave 256 --fc 3 --address 1" << "--slave 256";
    QTest::newRow("slave not a number") << "--port 1 --slave uno --fc 3 --address 1" << "uno";
    QTest::newRow("address with decimals") << "--port 1 --slave 1 --fc 3 --address 1.5" << "1.5";
    QTest::newRow("code not a number") << "--port 1 --slave 1 --fc tre --address 1" << "tre";
    QTest::newRow("value too big") << "--port 1 --slave 1 --fc 6 --address 1 --value 65536" << "--value 65536";
    QTest::newRow("value too small") << "--port 1 --slave 1 --fc 6 --address 1 --value -32769" << "--value -32769";
    QTest::newRow("value not a number") << "--port 1 --slave 1 --fc 6 --address 1 --value 1e3" << "1e3";
    QTest::newRow("timeout zero") << read + " --timeout 0" << "--timeout 0";
    QTest::newRow("timeout not a number") << read + " --timeout mezzo" << "mezzo";
    QTest::newRow("retry zero") << read + " --retry 0" << "--retry 0";
    QTest::newRow("repeat negative") << read + " --repeat -2" << "--repeat -2";
    QTest::newRow("bad format") << read + " --format 9600,N,9,1" << "bit di dati";
    QTest::newRow("format missing a field") << read + " --format 9600,N,8" << "--format";
    QTest::newRow("garbage port") << "--port seriale --slave 1 --fc 3 --address 1" << "seriale";
    QTest::newRow("port zero") << "--port 0 --slave 1 --fc 3 --address 1" << "--port";
    QTest::newRow("unknown option") << read + " --baud 9600" << "baud";
    QTest::newRow("stray word") << read + " subito" << "subito";
    QTest::newRow("option without value") << "--port 1 --slave 1 --fc 3 --address" << "address";
}

void TestProbeCommand::refused()
{
    QFETCH(QString, arguments);
    QFETCH(QString, named);

    const ProbeCommandLine result = parse(arguments);
    QCOMPARE(result.outcome, ProbeCommandLine::Outcome::Error);
    QVERIFY2(result.message.contains(named), qPrintable(result.message));
}

void TestProbeCommand::helpDocumentsEveryOption()
{
    for (const QString &arguments : {QStringLiteral("--help"), QStringLiteral("-h"),
                                     QStringLiteral("--port 1 --fc 7 --help")}) {
        const ProbeCommandLine result = parse(arguments);
        QCOMPARE(result.outcome, ProbeCommandLine::Outcome::Help);
        for (const char *option : {"--port", "--format", "--timeout", "--retry", "--slave", "--fc", "--address",
                                   "--value", "--repeat", "9600,N,8,1", "-99999"}) {
            QVERIFY2(result.message.contains(QLatin1String(option)), option);
        }
    }
}

QTEST_GUILESS_MAIN(TestProbeCommand)
#include "tst_probecommand.moc"
