// The built telvane-probe: help, and wrong arguments that touch no line, so no slave is
// needed.

#include "support/datarows.h"

#include <QProcess>

class TestProbeUsage : public QObject
{
    Q_OBJECT

private slots:
    // arguments|exit status|named in the help on standard output, or the message on standard error.
    // A port that does not even name a device is a wrong argument, not a missing port.
    void commandLine_data()
    {
        addRows({"--help|0|--repeat", "--port 1 --fc 3 --address 1|2|--slave",
                 "--port 1 --slave 1 --fc 3 --address 1 --format 9600,N,8,3|2|bit di stop",
                 "--port ?? --slave 1 --fc 3 --address 1|2|??"});
    }
    void commandLine()
    {
        const QStringList cells = rowCells();
        const bool help = cells[1] == QLatin1String("0");
        QProcess probe;
        probe.start(TELVANE_PROBE, QProcess::splitCommand(cells[0]));
        QVERIFY(probe.waitForFinished(10000));
        QCOMPARE(probe.exitCode(), cells[1].toInt());
        const QString text = QString::fromUtf8(help ? probe.readAllStandardOutput() : probe.readAllStandardError());
        QVERIFY2(text.contains(cells[2]) && (help || text.contains("--help")), qPrintable(text));
        QCOMPARE(help ? probe.readAllStandardError() : probe.readAllStandardOutput(), QByteArray());
    }
};

QTEST_GUILESS_MAIN(TestProbeUsage)
#include "tst_probe_usage.moc"
