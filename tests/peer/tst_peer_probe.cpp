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
    void initTestCase()
    {
        m_peer = std::make_unique<PeerSlave>(QStringList{QStringLiteral("3 co:0=1 di:1=0 hr:0=215,1=65526,40=0 ir:2=1000")});
        QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
    }
    void cleanupTestCase() { m_peer.reset(); }

    // The rows run in order: a write is read back.
    // Missing items are refused with exception 2; slave 4 is absent.
    void answers_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("output");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("coil") << "--slave 3 --fc 1 --address 0" << "1\n" << 0;
        QTest::newRow("discrete input") << "--slave 3 --fc 2 --address 1" << "0\n" << 0;
        QTest::newRow("coil off") << "--slave 3 --fc 5 --address 0 --value 0" << "0\n" << 0;
        QTest::newRow("coil read back") << "--slave 3 --fc 1 --address 0" << "0\n" << 0;
        QTest::newRow("negative register") << "--slave 3 --fc 3 --address 1" << "-10\n" << 0;
        QTest::newRow("repeated") << "--slave 3 --fc 4 --address 2 --repeat 3" << "1000\n1000\n1000\n" << 0;
        QTest::newRow("diagnostics") << "--slave 3 --fc 8 --address 0 --value 4660" << "4660\n" << 0;
        QTest::newRow("write") << "--slave 3 --fc 6 --address 40 --value -123" << "-123\n" << 0;
        QTest::newRow("written value read back") << "--slave 3 --fc 3 --address 40" << "-123\n" << 0;
        QTest::newRow("exception") << "--slave 3 --fc 3 --address 99" << "2 (Exception)\n" << 0;
        QTest::newRow("refused write") << "--slave 3 --fc 6 --address 99 --value 1" << "-99999 (Exception)\n" << 1;
        QTest::newRow("missing slave") << "--slave 4 --fc 3 --address 0" << "-99999 Time out\n" << 1;
        QTest::newRow("broadcast") << "--slave 0 --fc 6 --address 40 --value 9" << "-99999 Broadcast\n" << 1;
        QTest::newRow("broadcast carried out") << "--slave 3 --fc 3 --address 40" << "9\n" << 0;
        QTest::newRow("wrong argument") << "--slave 3 --fc 7 --address 0" << "" << 2;
    }
    void answers()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, output);
        QFETCH(int, exitCode);
        QProcess probe;
        probe.start(QStringLiteral(TELVANE_PROBE), QStringList{QStringLiteral("--port"), m_peer->port(),
                                                               QStringLiteral("--timeout"), QStringLiteral("300")}
                                                       + QProcess::splitCommand(arguments));
        QVERIFY(probe.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(probe.readAllStandardOutput()), output);
        QCOMPARE(probe.exitCode(), exitCode);
        const QString err = QString::fromUtf8(probe.readAllStandardError());
        QVERIFY2(exitCode == 2 ? err.contains(QStringLiteral("--help")) : err.isEmpty(), qPrintable(err));
    }

    void portThatDoesNotExist()
    {
        QProcess probe;
        probe.start(QStringLiteral(TELVANE_PROBE), {QStringLiteral("--port"), m_peer->missingPort(), QStringLiteral("--slave"),
                                                    QStringLiteral("3"), QStringLiteral("--fc"), QStringLiteral("3"),
                                                    QStringLiteral("--address"), QStringLiteral("0")});
        QVERIFY(probe.waitForFinished(30000));
        QCOMPARE(probe.exitCode(), 1);
        QCOMPARE(probe.readAllStandardOutput(), QByteArray());
        QVERIFY(QString::fromUtf8(probe.readAllStandardError()).contains(m_peer->missingPort()));
    }

private:
    std::unique_ptr<PeerSlave> m_peer;
};

QTEST_GUILESS_MAIN(TestPeerProbe)
#include "tst_peer_probe.moc"
