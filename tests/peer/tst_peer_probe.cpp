// telvane-probe as a technician uses it, against pymodbus's slave on a pty pair.

#include "peer/peerslave.h"

#include <QProcess>
#include <QTest>

#include <memory>

using namespace telvane;

class TestPeerProbe : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void answers_data();
    void answers();
    void writeStays();
    void repeatPrintsOneLineEach();
    void portThatDoesNotExist();
    void wrongArgumentsTouchNothing();

private:
    struct Run
    {
        int exitCode = -1;
        QString out;
        QString err;
    };
    Run probe(const QStringList &arguments);

    std::unique_ptr<PeerSlave> m_peer;
};

void TestPeerProbe::initTestCase()
{
    m_peer = std::make_unique<PeerSlave>(QStringList {
        QStringLiteral("3 co:0=1 di:1=0 hr:0=215,1=65526,40=0 ir:2=1000"),
    });
    QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
}

void TestPeerProbe::cleanupTestCase()
{
    m_peer.reset();
}

TestPeerProbe::Run TestPeerProbe::probe(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(TELVANE_PROBE),
                  QStringList {QStringLiteral("--port"), m_peer->port(), QStringLiteral("--timeout"), QStringLiteral("300")}
                      + arguments);
    Run run;
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

void TestPeerProbe::answers_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("printed");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("coil") << "--slave 3 --fc 1 --address 0" << "1\n" << 0;
    QTest::newRow("discrete input") << "--slave 3 --fc 2 --address 1" << "0\n" << 0;
    QTest::newRow("holding register") << "--slave 3 --fc 3 --address 0" << "215\n" << 0;
    QTest::newRow("negative register") << "--slave 3 --fc 3 --address 1" << "-10\n" << 0;
    QTest::newRow("input register") << "--slave 3 --fc 4 --address 2" << "1000\n" << 0;
    QTest::newRow("write coil") << "--slave 3 --fc 5 --address 0 --value 0" << "0\n" << 0;
    QTest::newRow("diagnostic echo") << "--slave 3 --fc 8 --address 0 --value 4660" << "4660\n" << 0;
    QTest::newRow("absent address") << "--slave 3 --fc 3 --address 99" << "2 (Exception)\n" << 0;
    QTest::newRow("missing slave") << "--slave 4 --fc 3 --address 0" << "-99999 Time out\n" << 1;
    QTest::newRow("missing slave, two tries") << "--slave 4 --fc 6 --address 0 --value 1 --retry 2"
                                              << "-99999 Time out\n" << 1;
    QTest::newRow("broadcast") << "--slave 0 --fc 6 --address 40 --value 9" << "-99999 Broadcast\n" << 1;
}

void TestPeerProbe::answers()
{
    QFETCH(QString, arguments);
    QFETCH(QString, printed);
    QFETCH(int, exitCode);

    const Run run = probe(QProcess::splitCommand(arguments));
    QCOMPARE(run.out, printed);
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(run.err, QString());
}

void TestPeerProbe::writeStays()
{
    Run run = probe({QStringLiteral("--slave"), QStringLiteral("3"), QStringLiteral("--fc"), QStringLiteral("6"),
                     QStringLiteral("--address"), QStringLiteral("40"), QStringLiteral("--value"), QStringLiteral("-123")});
    QCOMPARE(run.out, QStringLiteral("-123\n"));
    QCOMPARE(run.exitCode, 0);

    run = probe({QStringLiteral("--slave"), QStringLiteral("3"), QStringLiteral("--fc"), QStringLiteral("3"),
                 QStringLiteral("--address"), QStringLiteral("40")});
    QCOMPARE(run.out, QStringLiteral("-123\n"));
    QCOMPARE(run.exitCode, 0);
}

void TestPeerProbe::repeatPrintsOneLineEach()
{
    const Run run = probe(QProcess::splitCommand(QStringLiteral("--slave 3 --fc 4 --address 2 --repeat 5")));
    QCOMPARE(run.out, QStringLiteral("1000\n").repeated(5));
    QCOMPARE(run.exitCode, 0);
}

void TestPeerProbe::portThatDoesNotExist()
{
    QProcess process;
    process.start(QStringLiteral(TELVANE_PROBE),
                  {QStringLiteral("--port"), m_peer->missingPort(), QStringLiteral("--slave"), QStringLiteral("3"),
                   QStringLiteral("--fc"), QStringLiteral("3"), QStringLiteral("--address"), QStringLiteral("0")});
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    const QString message = QString::fromUtf8(process.readAllStandardError());
    QVERIFY2(message.contains(m_peer->missingPort()), qPrintable(message));
}

void TestPeerProbe::wrongArgumentsTouchNothing()
{
    // Refused before the line is opened: the slave's coil keeps its value.
    Run run = probe(QProcess::splitCommand(QStringLiteral("--slave 3 --fc 5 --address 0 --value 0")));
    QCOMPARE(run.out, QStringLiteral("0\n"));
    run = probe(QProcess::splitCommand(QStringLiteral("--slave 3 --fc 5 --address 0 --value 65280 --repeat 0")));
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QString());
    QVERIFY2(run.err.contains(QStringLiteral("--repeat")), qPrintable(run.err));

    run = probe(QProcess::splitCommand(QStringLiteral("--slave 3 --fc 7 --address 0")));
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(QStringLiteral("--fc 7")), qPrintable(run.err));

    run = probe(QProcess::splitCommand(QStringLiteral("--slave 3 --fc 1 --address 0")));
    QCOMPARE(run.out, QStringLiteral("0\n"));
}

QTEST_GUILESS_MAIN(TestPeerProbe)
#include "tst_peer_probe.moc"
