// What a technician types for the line: the port, the format, and the probe's command line.

#include "fieldbus/probecommand.h"
#include "fieldbus/serialformat.h"

#include <QProcess>
#include <QTest>

using namespace telvane;

namespace {

ProbeCommandLine parse(const QString &arguments)
{
    return parseProbeCommand(QStringList{"telvane-probe"} + QProcess::splitCommand(arguments));
}

} // namespace

class TestLineSettings : public QObject
{
    Q_OBJECT

private slots:
    // A refusal names the field and the text, so the technician can fix it.
    void format_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::optional<SerialFormat>>("format"); // none: refused
        QTest::addColumn<QString>("field");                       // what the refusal must name
        const std::optional<SerialFormat> refused;
        QTest::newRow("even") << "1200,E,8,1" << std::optional(SerialFormat{1200, Parity::Even, 8, StopBits::One}) << "";
        QTest::newRow("odd, two stop bits") << "4800,O,7,2" << std::optional(SerialFormat{4800, Parity::Odd, 7, StopBits::Two}) << "";
        QTest::newRow("one and a half") << "110,N,5,1.5" << std::optional(SerialFormat{110, Parity::None, 5, StopBits::OneAndHalf}) << "";
        QTest::newRow("blanks, lower case")
            << " 115200 , n , 8 , 2 " << std::optional(SerialFormat{115200, Parity::None, 8, StopBits::Two}) << "";
        QTest::newRow("three fields") << "9600,N,8" << refused << "virgole";
        QTest::newRow("speed 0") << "0,N,8,1" << refused << "velocità";
        QTest::newRow("speed beyond int") << "99999999999,N,8,1" << refused << "velocità";
        QTest::newRow("parity word") << "9600,None,8,1" << refused << "parità";
        QTest::newRow("4 data bits") << "9600,N,4,1" << refused << "dati";
        QTest::newRow("0 stop bits") << "9600,N,8,0" << refused << "stop";
    }
    void format()
    {
        QFETCH(QString, text);
        QFETCH(std::optional<SerialFormat>, format);
        QFETCH(QString, field);
        QString whyNot;
        QCOMPARE(parseSerialFormat(text, &whyNot), format);
        QVERIFY2(format ? whyNot.isEmpty() : whyNot.contains(field) && whyNot.contains(text), qPrintable(whyNot));
    }

    void ports_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("windows"); // empty: refused
        QTest::addColumn<QString>("posix");
        QTest::newRow("blanks, leading zero") << " 02 " << "COM2" << "/dev/ttyS1";
        QTest::newRow("device path") << "/dev/ttyUSB0" << "" << "/dev/ttyUSB0";
        QTest::newRow("COM name, lower case") << "com12" << "COM12" << "";
        QTest::newRow("0") << "0" << "" << "";
        QTest::newRow("relative path") << "dev/ttyUSB0" << "" << "";
        QTest::newRow("blank in the path") << "/dev/tty USB0" << "" << "";
    }
    void ports()
    {
        QFETCH(QString, port);
        QFETCH(QString, windows);
        QFETCH(QString, posix);
        for (const auto &[naming, device] : {std::pair{PortNaming::Windows, windows}, std::pair{PortNaming::Posix, posix}}) {
            QString whyNot;
            const std::optional<QString> resolved = resolveSerialPort(port, &whyNot, naming);
            QCOMPARE(resolved.value_or(QString()), device);
            QVERIFY2(resolved || whyNot.contains("porta"), qPrintable(whyNot));
        }
    }

    void probeCommand_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<ProbeCommand>("expected");
        QTest::addColumn<QString>("named"); // what a refusal must name; empty: accepted
        QTest::newRow("read, defaults") << "--port 1 --slave 5 --fc 3 --address 1"
                                        << ProbeCommand{.port = "1", .slave = 5, .functionCode = 3, .address = 1} << "";
        QTest::newRow("every option")
            << "--port /dev/ttyUSB0 --format 19200,E,8,1 --timeout 250 --retry 3 --slave 247 --fc 4 --address 65535 --repeat 10"
            << ProbeCommand{"/dev/ttyUSB0", "19200,E,8,1", 250, 3, 247, 4, 65535, std::nullopt, 10} << "";
        QTest::newRow("broadcast, lowest value")
            << "--port 2 --slave 0 --fc 6 --address 7 --value -32768"
            << ProbeCommand{.port = "2", .functionCode = 6, .address = 7, .value = -32768} << "";
        const QString read = "--port 1 --slave 1 --fc 3 --address 1";
        const auto refused = [](const char *name, const QString &arguments, const char *named) {
            QTest::newRow(name) << arguments << ProbeCommand{} << QString::fromUtf8(named);
        };
        refused("nothing", "", "--port");
        refused("no slave", "--port 1 --fc 3 --address 1", "--slave");
        refused("unknown code", "--port 1 --slave 1 --fc 7 --address 1", "--fc 7");
        refused("value for a read", read + " --value 5", "--value");
        refused("address too big", "--port 1 --slave 1 --fc 3 --address 70000", "--address 70000");
        refused("slave too big", "--port 1 --slave 256 --fc 3 --address 1", "--slave 256");
        refused("value too big", "--port 1 --slave 1 --fc 6 --address 1 --value 65536", "--value 65536");
        refused("time-out 0", read + " --timeout 0", "--timeout 0");
        refused("no attempt", read + " --retry 0", "--retry 0");
        refused("bad format", read + " --format 9600,N,9,1", "bit di dati");
        refused("unknown option", read + " --baud 9600", "baud");
        refused("option without its value", "--port 1 --slave 1 --fc 3 --address", "address");
    }
    void probeCommand()
    {
        QFETCH(QString, arguments);
        QFETCH(ProbeCommand, expected);
        QFETCH(QString, named);
        const ProbeCommandLine result = parse(arguments);
        const auto outcome = named.isEmpty() ? ProbeCommandLine::Outcome::Run : ProbeCommandLine::Outcome::Error;
        QVERIFY2(result.outcome == outcome && result.message.contains(named), qPrintable(result.message));
        const auto fields = [](const ProbeCommand &c) {
            return std::tuple{c.port, c.format, c.timeoutMs, c.retries, c.slave, c.functionCode, c.address,
                              c.value.value_or(-99999), c.repeat};
        };
        if (named.isEmpty())
            QCOMPARE(fields(result.command), fields(expected));
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

QTEST_GUILESS_MAIN(TestLineSettings)
#include "tst_linesettings.moc"
