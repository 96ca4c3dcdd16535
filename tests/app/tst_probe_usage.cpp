// The built telvane-probe with wrong arguments: no line is touched, so no slave is needed.

#include <QProcess>
#include <QTest>

class TestProbeUsage : public QObject
{
    Q_OBJECT

private slots:
    void wrongArguments_data();
    void wrongArguments();
    void help();
};

void TestProbeUsage::wrongArguments_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("named");

    QTest::newRow("missing slave") << "--port 1 --fc 3 --address 1" << "--slave";
    QTest::newRow("code 7") << "--port 1 --slave 1 --fc 7 --address 1" << "--fc 7";
    QTest::newRow("value with a read") << "--port 1 --slave 1 --fc 4 --address 1 --value 3" << "--value";
    QTest::newRow("address 70000") << "--port 1 --slave 1 --fc 3 --address 70000" << "70000";
    QTest::newRow("not a number") << "--port 1 --slave 1 --fc 3 --address dieci" << "dieci";
    QTest::newRow("bad format") << "--port 1 --slave 1 --fc 3 --address 1 --format 9600,N,8,3" << "bit di stop";
    // A port that does not even name a device is a wrong argument, not a missing port.
    QTest::newRow("garbage port") << "--port ?? --slave 1 --fc 3 --address 1" << "??";
}

void TestProbeUsage::wrongArguments()
{
    QFETCH(QString, arguments);
    QFETCH(QString, named);

    QProcess probe;
    probe.start(QStringLiteral(TELVANE_PROBE), QProcess::splitCommand(arguments));
    QVERIFY(probe.waitForFinished(10000));
    QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
    QCOMPARE(probe.exitCode(), 2);
    QCOMPARE(probe.readAllStandardOutput(), QByteArray());
    const QString message = QString::fromUtf8(probe.readAllStandardError());
    QVERIFY2(message.contains(named), qPrintable(message));
    QVERIFY2(message.contains(QStringLiteral("--help")), qPrintable(message));
}

void TestProbeUsage::help()
{
    QProcess probe;
    probe.start(QStringLiteral(TELVANE_PROBE), {QStringLiteral("--help")});
    QVERIFY(probe.waitForFinished(10000));
    QCOMPARE(probe.exitCode(), 0);
    const QString text = QString::fromUtf8(probe.readAllStandardOutput());
    for (const char *option : {"--port", "--format", "--timeout", "--retry", "--slave", "--fc", "--address",
                               "--value", "--repeat"})
        QVERIFY2(text.contains(QLatin1String(option)), option);
}

QTEST_GUILESS_MAIN(TestProbeUsage)
#include "tst_probe_usage.moc"
