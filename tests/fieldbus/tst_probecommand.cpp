#include "fieldbus/probecommand.h"
#include "support/datarows.h"

#include <QProcess>

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
    // arguments | port format time-out retries slave code address value ("-": none) repeat
    void accepted_data()
    {
        addRows({"--port 1 --slave 5 --fc 3 --address 1|1 9600,N,8,1 500 1 5 3 1 - 1",
                 "--port /dev/ttyUSB0 --format 19200,E,8,1 --timeout 250 --retry 3 --slave 247 --fc 4 --address 65535 --repeat 10"
                 "|/dev/ttyUSB0 19200,E,8,1 250 3 247 4 65535 - 10",
                 "--port 2 --slave 1 --fc 5 --address 0 --value 65280|2 9600,N,8,1 500 1 1 5 0 65280 1",
                 "--port 2 --slave 0 --fc 6 --address 7 --value -32768|2 9600,N,8,1 500 1 0 6 7 -32768 1",
                 "--port 2 --slave 1 --fc 8 --address 0 --value 4660|2 9600,N,8,1 500 1 1 8 0 4660 1",
                 "--port=/dev/pts/3 --slave=9 --fc=1 --address=12|/dev/pts/3 9600,N,8,1 500 1 9 1 12 - 1"});
    }
    void accepted()
    {
        const QStringList cells = rowCells();
        const ProbeCommandLine result = parse(cells[0]);
        QVERIFY2(result.outcome == ProbeCommandLine::Outcome::Run, qPrintable(result.message));
        const ProbeCommand &c = result.command;
        QCOMPARE(QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8 %9").arg(c.port, c.format).arg(c.timeoutMs).arg(c.retries).arg(c.slave)
                     .arg(c.functionCode).arg(c.address).arg(c.value ? QString::number(*c.value) : "-").arg(c.repeat), cells[1]);
    }

    // arguments | what the message must name
    void refused_data()
    {
        const QString read = "--port 1 --slave 1 --fc 3 --address 1";
        addRows({"|--port", "--port 1 --fc 3 --address 1|--slave", "--port 1 --slave 1 --address 1|--fc",
                 "--port 1 --slave 1 --fc 3|--address", "--port 1 --slave 1 --fc 7 --address 1|--fc 7",
                 read + " --value 5|--value", "--port 1 --slave 1 --fc 6 --address 1|--value",
                 "--port 1 --slave 1 --fc 3 --address 70000|--address 70000",
                 "--port 1 --slave 256 --fc 3 --address 1|--slave 256", "--port 1 --slave uno --fc 3 --address 1|uno",
                 "--port 1 --slave 1 --fc 6 --address 1 --value 65536|--value 65536",
                 "--port 1 --slave 1 --fc 6 --address 1 --value 1e3|1e3", read + " --timeout 0|--timeout 0",
                 read + " --retry 0|--retry 0", read + " --repeat -2|--repeat -2",
                 read + " --format 9600,N,9,1|bit di dati", "--port seriale --slave 1 --fc 3 --address 1|seriale",
                 "--port 0 --slave 1 --fc 3 --address 1|--port", read + " --baud 9600|baud", read + " subito|subito",
                 "--port 1 --slave 1 --fc 3 --address|address"});
    }
    void refused()
    {
        const QStringList cells = rowCells();
        const ProbeCommandLine result = parse(cells[0]);
        QCOMPARE(result.outcome, ProbeCommandLine::Outcome::Error);
        QVERIFY2(result.message.contains(cells[1]), qPrintable(result.message));
    }

    void helpDocumentsEveryOption()
    {
        for (const char *arguments : {"--help", "-h", "--port 1 --fc 7 --help"}) {
            const ProbeCommandLine result = parse(arguments);
            QCOMPARE(result.outcome, ProbeCommandLine::Outcome::Help);
            for (const char *option : {"--port", "--format", "--timeout", "--retry", "--slave", "--fc", "--address", "--value",
                                       "--repeat", "9600,N,8,1", "-99999"})
                QVERIFY2(result.message.contains(QLatin1String(option)), option);
        }
    }
};

QTEST_GUILESS_MAIN(TestProbeCommand)
#include "tst_probecommand.moc"
