// telvane-probe as a technician uses it, against pymodbus's slave on a pty pair.

#include "peer/peerslave.h"
#include "support/datarows.h"

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

    // arguments|standard output|exit status. The rows run in order: a write is read back,
    // and arguments refused touch nothing on the line.
    void answers_data()
    {
        addRows({"--slave 3 --fc 1 --address 0|1\n|0", "--slave 3 --fc 2 --address 1|0\n|0",
                 "--slave 3 --fc 3 --address 1|-10\n|0", "--slave 3 --fc 4 --address 2 --repeat 3|1000\n1000\n1000\n|0",
                 "--slave 3 --fc 8 --address 0 --value 4660|4660\n|0",
                 "--slave 3 --fc 6 --address 40 --value -123|-123\n|0", "--slave 3 --fc 3 --address 40|-123\n|0",
                 "--slave 3 --fc 3 --address 99|2 (Exception)\n|0", "--slave 4 --fc 3 --address 0|-99999 Time out\n|1",
                 "--slave 4 --fc 6 --address 0 --value 1 --retry 2|-99999 Time out\n|1",
                 "--slave 0 --fc 6 --address 40 --value 9|-99999 Broadcast\n|1",
                 "--slave 3 --fc 5 --address 0 --value 0 --repeat 0||2", "--slave 3 --fc 7 --address 0||2",
                 "--slave 3 --fc 1 --address 0|1\n|0"});
    }
    void answers()
    {
        const QStringList cells = rowCells();
        QProcess probe;
        probe.start(QStringLiteral(TELVANE_PROBE), QStringList{QStringLiteral("--port"), m_peer->port(),
                                                               QStringLiteral("--timeout"), QStringLiteral("300")}
                                                       + QProcess::splitCommand(cells[0]));
        QVERIFY(probe.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(probe.readAllStandardOutput()), cells[1]);
        QCOMPARE(probe.exitCode(), cells[2].toInt());
        const QString err = QString::fromUtf8(probe.readAllStandardError());
        QVERIFY2(cells[2] == QLatin1String("2") ? err.contains(QStringLiteral("--help")) : err.isEmpty(), qPrintable(err));
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
