// The built telvane-probe: help, and wrong arguments that touch no line, so no slave is
// needed.

#include <QProcess>
#include <QTest>

class TestProbeUsage : public QObject
{
    Q_OBJECT

private slots:
    // A port that does not even name a device is a wrong argument, not a missing port.
    void commandLine_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("named"); // in the help on standard output, or the message on standard error
        QTest::newRow("help") << "--help" << 0 << "--repeat";
        QTest::newRow("port naming no device") << "--port ?? --slave 1 --fc 3 --address 1" << 2 << "??";
    }
    void commandLine()
    {
        QFETCH(QString, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, named);
        const bool help = exitCode == 0;
        QProcess probe;
        probe.start(TELVANE_PROBE, QProcess::splitCommand(arguments));
        QVERIFY(probe.waitForFinished(10000));
        QCOMPARE(probe.exitCode(), exitCode);
        const QString text = QString::fromUtf8(help ? probe.readAllStandardOutput() : probe.readAllStandardError());
        QVERIFY2(text.contains(named) && (help || text.contains("--help")), qPrintable(text));
        QCOMPARE(help ? probe.readAllStandardError() : probe.readAllStandardOutput(), QByteArray());
    }
};

QTEST_GUILESS_MAIN(TestProbeUsage)
#include "tst_probe_usage.moc"
