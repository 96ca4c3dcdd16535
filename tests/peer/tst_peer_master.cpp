#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "peer/peerslave.h"
#include "platform/termiosline.h"
#include "support/datarows.h"

#include <QTest>

#include <memory>

using namespace telvane;

class TestPeerMaster : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Items not listed get exception 2 (illegal data address); slaves 9 and 10 are absent.
        m_peer = std::make_unique<PeerSlave>(QStringList{
            QStringLiteral("1 co:0=1,1=0,4=0 di:2=1 hr:0=1234,1=65535,3=32768,20=0,21=0,30=0 ir:4=65000"),
            QStringLiteral("7 hr:0=5,10=5,30=0 ir:0=9")});
        QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
    }
    void init()
    {
        m_line.setPort(m_peer->port());
        QVERIFY(m_line.setFormat(QStringLiteral("9600,N,8,1")));
        m_master.setReplyTimeout(0.3f);
        m_master.setAttempts(1);
    }
    void cleanupTestCase() { m_peer.reset(); }

    // function|address|slave|value
    void reads_data()
    {
        addRows({"1|0|1|1", "1|1|1|0", "2|2|1|1", "3|0|1|1234", "3|1|1|-1", "3|3|1|-32768", "4|4|1|-536",
                 "4|0|7|9"});
    }
    void reads()
    {
        const QStringList c = rowCells();
        const int function = c[0].toInt();
        const BusOutcome outcome = m_master.read(function, c[1].toInt(), c[2].toInt());
        QCOMPARE(outcome.value, c[3].toInt());
        QCOMPARE(outcome.result, BusResult::Value);
        QCOMPARE(m_master.replyBuffer().size(), function <= 2 ? 6 : 7);
        QVERIFY(!m_line.isOpen()); // open only during an operation
    }

    // function|address|value|slave|read back with 1 or 3
    void writesEchoAndStay_data() { addRows({"5|4|65280|1|1", "6|20|4321|1|4321", "6|21|-250|1|-250", "6|10|600|7|600"}); }
    void writesEchoAndStay()
    {
        const QStringList c = rowCells();
        const int function = c[0].toInt(), address = c[1].toInt(), slave = c[3].toInt();
        QCOMPARE(m_master.WriteRegister(function, address, c[2].toInt(), slave), c[2].toInt());
        QCOMPARE(m_master.replyBuffer().size(), 8);
        QCOMPARE(m_master.ReadRegister(function == 5 ? 1 : 3, address, slave), c[4].toInt());
    }

    // An illegal data address comes back as if it were the value of a read: function|address
    void addressTheSlaveDoesNotHave_data() { addRows({"1|500", "2|0", "3|9", "4|65535", "5|9", "6|99"}); }
    void addressTheSlaveDoesNotHave()
    {
        const int function = rowCells()[0].toInt(), address = rowCells()[1].toInt();
        const BusOutcome outcome = function <= 4 ? m_master.read(function, address, 1)
                                                 : m_master.write(function, address, 1, 1);
        // A refused write did not happen, so it has no echo.
        QCOMPARE(outcome.value, function <= 4 ? 2 : ModbusMaster::InvalidValue);
        QCOMPARE(outcome.result, BusResult::Exception);
        QCOMPARE(outcome.exceptionCode, 2);
        QCOMPARE(m_master.replyBuffer().size(), 5);
        QCOMPARE(quint8(m_master.replyBuffer().at(1)), quint8(function | 0x80));
    }

    void missingSlaveTimesOutAfterEveryAttempt()
    {
        m_master.setAttempts(2);
        const int before = m_peer->requestsTo(9);
        const BusOutcome outcome = m_master.read(3, 0, 9);
        QCOMPARE(outcome.value, ModbusMaster::InvalidValue);
        QCOMPARE(outcome.result, BusResult::TimeOut);
        QCOMPARE(m_peer->requestsTo(9) - before, 2);
        QCOMPARE(m_master.ReadRegister(3, 0, 1), 1234); // the slave that exists is undisturbed
    }

    void broadcastIsCarriedOutButNotAnswered()
    {
        m_master.setAttempts(3);
        const int before = m_peer->requestsTo(0);
        const BusOutcome outcome = m_master.write(6, 30, 777, 0); // every slave carries it out
        QCOMPARE(outcome.result, BusResult::Broadcast);
        QCOMPARE(m_peer->requestsTo(0) - before, 1);
        QCOMPARE(m_master.ReadRegister(3, 30, 1), 777);
        QCOMPARE(m_master.ReadRegister(3, 30, 7), 777);
    }

    void portThatDoesNotExist()
    {
        QVERIFY(m_master.TestPort(m_peer->port()));
        QVERIFY(!m_master.TestPort(m_peer->missingPort()));
        QVERIFY(m_line.lastError().contains(m_peer->missingPort()));
        QCOMPARE(m_master.read(3, 0, 1).result, BusResult::NoPort);
    }

    // A slave answering as late as a 9600-baud line (8 + 7 bytes and 3.5 characters of
    // silence: 19.3 ms) cannot answer within 5 ms, and can within 300 ms. Its late
    // answer to the first read must not be taken for the answer to the second.
    void lateAnswerIsNotTheNextOne()
    {
        PeerSlave timed({QStringLiteral("1 hr:0=42,1=43")}, 9600);
        QVERIFY2(timed.start(), qPrintable(timed.error()));
        m_line.setPort(timed.port());
        m_master.setReplyTimeout(0.005f);
        QCOMPARE(m_master.read(3, 0, 1).result, BusResult::TimeOut);
        m_master.setReplyTimeout(0.3f);
        QCOMPARE(m_master.ReadRegister(3, 1, 1), 43);
        QCOMPARE(m_master.ReadRegister(3, 0, 1), 42);
        QCOMPARE(timed.requestsTo(1) - 1, 3); // the first is the start's check
    }

private:
    std::unique_ptr<PeerSlave> m_peer;
    SystemClock m_clock;
    TermiosLine m_line;
    ModbusMaster m_master{m_line, m_clock};
};

QTEST_GUILESS_MAIN(TestPeerMaster)
#include "tst_peer_master.moc"
