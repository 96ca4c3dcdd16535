#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "peer/peerslave.h"
#include "platform/qserialline.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

using namespace telvane;

namespace {

// Two instruments on the line. Items not listed do not exist: reading them gets
// exception 2 (illegal data address). Slaves 9 and 10 are absent.
const QStringList Slaves {
    QStringLiteral("1 co:0=1,1=0,4=0,5=1 di:2=1,3=0 hr:0=1234,1=65535,2=32767,3=32768,20=0,21=0,22=0,30=0 ir:3=77,4=65000"),
    QStringLiteral("7 hr:0=5,10=5,30=0 ir:0=9"),
};

constexpr float ReplyTimeout = 0.3f;

} // namespace

class TestPeerMaster : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void reads_data();
    void reads();
    void writesEchoAndStay_data();
    void writesEchoAndStay();
    void addressTheSlaveDoesNotHave_data();
    void addressTheSlaveDoesNotHave();
    void missingSlaveTimesOutAfterEveryAttempt();
    void broadcastIsCarriedOutButNotAnswered();
    void portThatDoesNotExist();
    void slaveWithWireTimingAnswersAsLateAsARealLine();

private:
    std::unique_ptr<PeerSlave> m_peer;
    SystemClock m_clock;
    QSerialLine m_line;
    ModbusMaster m_master {m_line, m_clock};
};

void TestPeerMaster::initTestCase()
{
    m_peer = std::make_unique<PeerSlave>(Slaves);
    QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
}

void TestPeerMaster::init()
{
    m_line.setPort(m_peer->port());
    QVERIFY(m_line.setFormat(QStringLiteral("9600,N,8,1")));
    m_master.setReplyTimeout(ReplyTimeout);
    m_master.setAttempts(1);
}

void TestPeerMaster::cleanupTestCase()
{
    m_peer.reset();
}

void TestPeerMaster::reads_data()
{
    QTest::addColumn<int>("functionCode");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("slave");
    QTest::addColumn<int>("value");

    QTest::newRow("coil on") << 1 << 0 << 1 << 1;
    QTest::newRow("coil off") << 1 << 1 << 1 << 0;
    QTest::newRow("discrete input on") << 2 << 2 << 1 << 1;
    QTest::newRow("discrete input off") << 2 << 3 << 1 << 0;
    QTest::newRow("holding register") << 3 << 0 << 1 << 1234;
    QTest::newRow("holding register, all bits set") << 3 << 1 << 1 << -1;
    QTest::newRow("holding register, over range") << 3 << 2 << 1 << 32767;
    QTest::newRow("holding register, under range") << 3 << 3 << 1 << -32768;
    QTest::newRow("input register") << 4 << 3 << 1 << 77;
    QTest::newRow("input register, negative") << 4 << 4 << 1 << 65000 - 65536;
    QTest::newRow("second slave, holding") << 3 << 10 << 7 << 5;
    QTest::newRow("second slave, input") << 4 << 0 << 7 << 9;
}

void TestPeerMaster::reads()
{
    QFETCH(int, functionCode);
    QFETCH(int, address);
    QFETCH(int, slave);
    QFETCH(int, value);

    QCOMPARE(m_master.ReadRegister(functionCode, address, slave), value);
    QCOMPARE(m_master.failureDescription(), QString());
    QVERIFY(!m_master.ExceptionFlag());
    QVERIFY(!m_master.TimeOutFlag());
    QVERIFY(!m_master.BroadcastFlag());
    const QByteArray reply = m_master.replyBuffer();
    QCOMPARE(reply.size(), functionCode <= 2 ? 6 : 7);
    QCOMPARE(quint8(reply.at(0)), quint8(slave));
    QCOMPARE(quint8(reply.at(1)), quint8(functionCode));
    // The port is open only during an operation.
    QVERIFY(!m_line.isOpen());
}

void TestPeerMaster::writesEchoAndStay_data()
{
    QTest::addColumn<int>("functionCode");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("slave");
    QTest::addColumn<int>("readCode");
    QTest::addColumn<int>("readBack");

    QTest::newRow("coil on") << 5 << 4 << 65280 << 1 << 1 << 1;
    QTest::newRow("coil off") << 5 << 5 << 0 << 1 << 1 << 0;
    QTest::newRow("register") << 6 << 20 << 4321 << 1 << 3 << 4321;
    QTest::newRow("register, negative") << 6 << 21 << -250 << 1 << 3 << -250;
    QTest::newRow("register, unsigned top") << 6 << 22 << 65535 << 1 << 3 << -1;
    QTest::newRow("register, second slave") << 6 << 10 << 600 << 7 << 3 << 600;
}

void TestPeerMaster::writesEchoAndStay()
{
    QFETCH(int, functionCode);
    QFETCH(int, address);
    QFETCH(int, value);
    QFETCH(int, slave);
    QFETCH(int, readCode);
    QFETCH(int, readBack);

    QCOMPARE(m_master.WriteRegister(functionCode, address, value, slave), value);
    QCOMPARE(m_master.failureDescription(), QString());
    QCOMPARE(m_master.replyBuffer().size(), 8);
    QCOMPARE(m_master.ReadRegister(readCode, address, slave), readBack);
}

void TestPeerMaster::addressTheSlaveDoesNotHave_data()
{
    QTest::addColumn<int>("functionCode");
    QTest::addColumn<int>("address");
    QTest::addColumn<int>("value");

    // 2 is the slave's "illegal data address"; it comes back as if it were the value.
    QTest::newRow("coil") << 1 << 500 << -1;
    QTest::newRow("discrete input") << 2 << 0 << -1;
    QTest::newRow("holding register") << 3 << 9 << -1;
    QTest::newRow("input register, last address") << 4 << 65535 << -1;
    QTest::newRow("write coil") << 5 << 9 << 65280;
    QTest::newRow("write register") << 6 << 99 << 1;
}

void TestPeerMaster::addressTheSlaveDoesNotHave()
{
    QFETCH(int, functionCode);
    QFETCH(int, address);
    QFETCH(int, value);

    const qint32 result = functionCode <= 4 ? m_master.ReadRegister(functionCode, address, 1)
                                            : m_master.WriteRegister(functionCode, address, value, 1);
    QCOMPARE(result, 2);
    QVERIFY(m_master.ExceptionFlag());
    QVERIFY(!m_master.TimeOutFlag());
    QCOMPARE(m_master.failureDescription(), QStringLiteral(" (Exception)"));
    const QByteArray reply = m_master.replyBuffer();
    QCOMPARE(reply.size(), 5);
    QCOMPARE(quint8(reply.at(0)), quint8(1));
    QCOMPARE(quint8(reply.at(1)), quint8(functionCode | 0x80));
    QCOMPARE(quint8(reply.at(2)), quint8(2));
}

void TestPeerMaster::missingSlaveTimesOutAfterEveryAttempt()
{
    m_master.setAttempts(2);
    QElapsedTimer took;
    took.start();
    QCOMPARE(m_master.ReadRegister(3, 0, 9), ModbusMaster::InvalidValue);
    const qint64 elapsed = took.elapsed();
    QVERIFY(m_master.TimeOutFlag());
    QVERIFY(!m_master.ExceptionFlag());
    QCOMPARE(m_master.failureDescription(), QStringLiteral(" Time out"));
    QVERIFY(m_master.replyBuffer().isEmpty());
    // Two attempts, each waiting out the time-out, and not much more.
    QVERIFY2(elapsed >= 2 * 300 && elapsed < 2 * 300 + 1000, qPrintable(QString::number(elapsed)));

    QCOMPARE(m_master.WriteRegister(6, 0, 1, 10), ModbusMaster::InvalidValue);
    QCOMPARE(m_master.failureDescription(), QStringLiteral(" Time out"));

    // The slave that exists is not disturbed by what went before.
    QCOMPARE(m_master.ReadRegister(3, 0, 1), 1234);
}

void TestPeerMaster::broadcastIsCarriedOutButNotAnswered()
{
    m_master.setAttempts(3);
    QElapsedTimer took;
    took.start();
    QCOMPARE(m_master.WriteRegister(6, 30, 777, 0), ModbusMaster::InvalidValue);
    QVERIFY2(took.elapsed() < 3 * 300, "a broadcast is sent once");
    QVERIFY(m_master.BroadcastFlag());
    QVERIFY(!m_master.TimeOutFlag());
    QCOMPARE(m_master.failureDescription(), QStringLiteral(" Broadcast"));

    // Every slave carried it out.
    QCOMPARE(m_master.ReadRegister(3, 30, 1), 777);
    QCOMPARE(m_master.ReadRegister(3, 30, 7), 777);

    QCOMPARE(m_master.ReadRegister(3, 0, 0), ModbusMaster::InvalidValue);
    QVERIFY(m_master.BroadcastFlag());
    QCOMPARE(m_master.failureDescription(), QStringLiteral(" Broadcast"));
}

void TestPeerMaster::portThatDoesNotExist()
{
    QVERIFY(m_master.TestPort(m_peer->port()));
    QVERIFY(!m_master.TestPort(m_peer->missingPort()));
    QVERIFY(m_line.lastError().contains(m_peer->missingPort()));

    // The operations still end normally: time-out and the error value, no crash.
    QCOMPARE(m_master.ReadRegister(3, 0, 1), ModbusMaster::InvalidValue);
    QVERIFY(m_master.TimeOutFlag());
    QCOMPARE(m_master.failureDescription(), QStringLiteral(" Time out"));
    QVERIFY(!m_line.isOpen());
}

void TestPeerMaster::slaveWithWireTimingAnswersAsLateAsARealLine()
{
    // What the bench relies on: at 9600 baud a one-register read is 8 + 7 bytes of ten
    // bits plus 3.5 characters of silence, 19.3 ms, however fast the pty is.
    PeerSlave timed({QStringLiteral("1 hr:0=42")}, 9600);
    QVERIFY2(timed.start(), qPrintable(timed.error()));
    m_line.setPort(timed.port());
    constexpr int Reads = 20;
    constexpr double LineMs = (8 + 7 + 3.5) * 10 * 1000.0 / 9600;
    QElapsedTimer took;
    took.start();
    for (int i = 0; i < Reads; ++i)
        QCOMPARE(m_master.ReadRegister(3, 0, 1), 42);
    const double perRead = double(took.elapsed()) / Reads;
    QVERIFY2(perRead >= LineMs - 0.5 && perRead < 2 * LineMs, qPrintable(QStringLiteral("%1 ms per read").arg(perRead)));
}

QTEST_GUILESS_MAIN(TestPeerMaster)
#include "tst_peer_master.moc"
