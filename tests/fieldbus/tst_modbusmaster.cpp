#include "base/clock.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace telvane;

using Reply = ScriptedLine::Reply;
using Replies = QList<Reply>;
Q_DECLARE_METATYPE(ScriptedLine::Reply)
Q_DECLARE_METATYPE(telvane::BusResult)

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

QByteArray registerReply(int slave, int functionCode, quint16 value)
{
    const char payload[] = {char(slave), char(functionCode), 2, char(value >> 8), char(value & 0xFF)};
    return ScriptedLine::withCrc(QByteArray(payload, sizeof payload));
}

QByteArray exceptionReply(int slave, int functionCode, int code)
{
    const char payload[] = {char(slave), char(functionCode | 0x80), char(code)};
    return ScriptedLine::withCrc(QByteArray(payload, sizeof payload));
}

QByteArray badCrc(QByteArray frame)
{
    frame[frame.size() - 1] = char(frame.back() ^ 0x5A);
    return frame;
}

// A slave, its line and the master, on a clock that moves only while the master waits.
struct Bench
{
    explicit Bench(int attempts = 3)
    {
        master.setReplyTimeout(1.0f);
        master.setAttempts(attempts);
    }
    void script(const Replies &replies)
    {
        for (const Reply &reply : replies)
            line.script(reply);
    }
    // Every request sent is `request`, `count` times.
    void checkRequests(const QByteArray &request, int count) const
    {
        QCOMPARE(line.requests().size(), count);
        for (const QByteArray &sent : line.requests())
            QCOMPARE(sent.toHex(), request.toHex());
    }

    ManualClock clock;
    ScriptedLine line{clock};
    ModbusMaster master{line, clock};
};

const QByteArray Value215 = registerReply(1, 3, 215);
const QByteArray Read0Of1 = hex("010300000001840A");

} // namespace

class TestModbusMaster : public QObject
{
    Q_OBJECT

private slots:
    void read_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("slave");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<int>("value");
        QTest::addColumn<BusResult>("result");
        QTest::addColumn<int>("requests");
        QTest::addColumn<int>("waitedMs");

        const auto row = [](const char *name, const Replies &replies, int value, BusResult result, int requests,
                            int waitedMs) {
            QTest::newRow(name) << 3 << 0 << 1 << Read0Of1 << replies << value << result << requests << waitedMs;
        };
        row("holding register", {Value215}, 215, BusResult::Value, 1, 0);
        QTest::newRow("input register, high address, negative value")
            << 4 << 0x1234 << 17 << hex("11041234000177EC") << Replies{registerReply(17, 4, 0xFFFB)} << -5
            << BusResult::Value << 1 << 0;
        row("reply split across reads", {Reply::split(Value215, 2, 3, 3)}, 215, BusResult::Value, 1, 12);
        // Instruments that answer with another address have always been accepted.
        row("reply from another slave accepted", {registerReply(9, 4, 215)}, 215, BusResult::Value, 1, 0);
        row("missing slave", {}, -99999, BusResult::TimeOut, 3, 3003);
        // The exception code stands in for the value, after waiting out the time-out for
        // the two bytes that never come.
        row("five-byte exception", {Reply().at(5, exceptionReply(1, 3, 2))}, 2, BusResult::Exception, 1, 1001);
        row("two bytes are not an answer", {hex("0103"), hex("0103"), hex("0103")}, -99999, BusResult::Exception, 3,
            3003);
        row("wrong CRC then a good one", {badCrc(Value215), Value215}, 215, BusResult::Value, 2, 0);
        QTest::newRow("broadcast waits one time-out only")
            << 3 << 5 << 0 << hex("00030005000195DA") << Replies{} << -99999 << BusResult::Broadcast << 1 << 1001;
    }
    void read()
    {
        QFETCH(int, functionCode);
        QFETCH(int, address);
        QFETCH(int, slave);
        QFETCH(QByteArray, request);
        QFETCH(Replies, replies);
        QFETCH(int, value);
        QFETCH(BusResult, result);
        QFETCH(int, requests);
        QFETCH(int, waitedMs);
        Bench bench;
        bench.script(replies);

        const BusOutcome outcome = bench.master.read(functionCode, address, slave);
        QCOMPARE(outcome.value, value);
        QCOMPARE(outcome.result, result);
        QCOMPARE(bench.clock.monotonicMs(), waitedMs);
        bench.checkRequests(request, requests);
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QVERIFY(!bench.line.isOpen() && !bench.master.busy());
    }

    void write_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("slave");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<int>("echo");
        QTest::addColumn<BusResult>("result");
        QTest::addColumn<int>("requests");

        const QByteArray coilOn = hex("01050102FF002C06");
        const QByteArray set1234 = hex("0706010204D2AB0D");
        QTest::newRow("coil on") << 5 << 65280 << 1 << coilOn << Replies{coilOn} << 65280 << BusResult::Value << 1;
        QTest::newRow("negative register reads back signed")
            << 6 << -5 << 7 << hex("07060102FFFB29E3") << Replies{hex("07060102FFFB29E3")} << -5 << BusResult::Value
            << 1;
        QTest::newRow("the instrument's echo is what counts")
            << 6 << 1234 << 7 << set1234 << Replies{ScriptedLine::withCrc(hex("0706010203E8"))} << 1000
            << BusResult::Value << 1;
        QTest::newRow("missing slave") << 6 << 1234 << 7 << set1234 << Replies{} << -99999 << BusResult::TimeOut << 3;
        // A refused write did not happen: its exception code is no echo.
        const Reply refused = exceptionReply(7, 6, 2);
        QTest::newRow("refused write") << 6 << 1234 << 7 << set1234 << Replies{refused, refused, refused} << -99999
                                       << BusResult::Exception << 3;
        // Every slave carries a broadcast out: sending it again would do it again.
        QTest::newRow("broadcast is sent once") << 6 << 42 << 0 << hex("00060102002AA9F8") << Replies{} << -99999
                                                << BusResult::Broadcast << 1;
    }
    void write()
    {
        QFETCH(int, functionCode);
        QFETCH(int, value);
        QFETCH(int, slave);
        QFETCH(QByteArray, request);
        QFETCH(Replies, replies);
        QFETCH(int, echo);
        QFETCH(BusResult, result);
        QFETCH(int, requests);
        Bench bench;
        bench.script(replies);

        const BusOutcome outcome = bench.master.write(functionCode, 0x102, value, slave);
        QCOMPARE(outcome.value, echo);
        QCOMPARE(outcome.result, result);
        bench.checkRequests(request, requests);
        QCOMPARE(bench.line.closeCalls(), 1);
    }

    // Bytes left in the input by an earlier exchange are flushed before the request.
    void staleInputIsFlushedBeforeTheRequest()
    {
        Bench bench;
        QVERIFY(bench.master.OpenPort());
        bench.line.script(Reply().at(0, registerReply(1, 3, 500)).at(1, Value215));
        QCOMPARE(bench.master.Transact(1, 1, Read0Of1), BusResult::Value);
        bench.clock.advance(5); // the second reply is now waiting in the input
        bench.line.script(registerReply(1, 3, 42));
        QCOMPARE(bench.master.ReadItem(3, 0, 0, 1).value, 42);
        bench.master.ClosePort();
    }

    void portThatCannotOpen()
    {
        Bench bench;
        bench.line.setOpenRefused(true, "No such file or directory");
        bench.line.setResponder([](const QByteArray &) { return Value215; });
        // Said once, not on every poll of every cycle; said again after the port was back.
        const QRegularExpression warning("cannot be opened.*No such file or directory");
        QTest::failOnWarning(warning);
        QTest::ignoreMessage(QtWarningMsg, warning);
        const BusOutcome outcome = bench.master.read(3, 0, 1);
        QCOMPARE(outcome.value, -99999);
        QCOMPARE(outcome.result, BusResult::NoPort);
        // The wait is spent as on a silent line, so the cycle keeps its pace.
        QCOMPARE(bench.clock.monotonicMs(), 3003);
        QCOMPARE(bench.line.writesWhileClosed(), 0);
        QCOMPARE(bench.master.WriteRegister(6, 0, 1, 1), -99999);

        bench.line.setOpenRefused(false);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        bench.line.setOpenRefused(true, "No such file or directory");
        QTest::ignoreMessage(QtWarningMsg, warning);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
    }

    void simulation_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<double>("random");
        QTest::addColumn<int>("value");
        QTest::newRow("coil above one half") << 1 << 0.7 << 1;
        QTest::newRow("input at one half") << 2 << 0.5 << 0;
        QTest::newRow("register rounds half to even") << 3 << 0.125 << 38;
    }
    void simulation()
    {
        QFETCH(int, functionCode);
        QFETCH(double, random);
        QFETCH(int, value);
        Bench bench;
        bench.master.setCommunicate(false);
        bench.master.setRandomSource([random] { return random; });
        QCOMPARE(bench.master.ReadRegister(functionCode, 7, 3), value);
        QCOMPARE(bench.master.WriteRegister(6, 7, -1234, 3), -1234);
        QCOMPARE(bench.line.openCalls() + bench.clock.monotonicMs(), 0);
    }

    // A handler run by the event loop while a reply is awaited must not start a second
    // transaction on the same wire, nor close the port under the first one; what it
    // asked for is refused as "line busy", which callers never count against an item.
    void reentrantCallsAreRefused()
    {
        Bench bench;
        bench.line.script(Reply().at(20, Value215));
        QList<BusOutcome> nested;
        bool testPortAnswer = true;
        bench.line.setDuringYield([&] {
            if (!nested.isEmpty())
                return;
            QVERIFY(bench.master.busy());
            nested << bench.master.read(3, 1, 2) << bench.master.write(6, 1, 5, 2) << bench.master.ReadItem(3, 0, 1, 2);
            testPortAnswer = bench.master.TestPort("/dev/ttyS1");
            bench.master.ClosePort();
        });
        QTest::failOnWarning(QRegularExpression("refused"));
        for (int i = 0; i < 5; ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused"));

        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        QCOMPARE(nested.size(), 3);
        for (const BusOutcome &outcome : nested) {
            QCOMPARE(outcome.result, BusResult::LineBusy);
            QVERIFY(!outcome.answered() && !outcome.instrumentFailed());
        }
        QVERIFY(!testPortAnswer);
        QCOMPARE(bench.line.requests().size(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QVERIFY(bench.line.port().isEmpty());
        QVERIFY(!bench.master.busy());

        // Once the first is over, the next one goes through.
        bench.line.script(registerReply(2, 3, 7));
        QCOMPARE(bench.master.ReadRegister(3, 1, 2), 7);
    }

    // Three zones in a round, the first one's reply 10 ms past its time-out; every reply
    // takes 20 ms. Taken as the answer to the next request, it would shift every later
    // value of the round by one zone, each with a good CRC.
    void lateReplyIsNeverTheNextAnswer()
    {
        Bench bench(1);
        bench.line.setResponder([](const QByteArray &request) {
            const int address = request[3];
            return Reply().at(address == 1 ? 1010 : 20, registerReply(1, 3, quint16(100 * address)));
        });
        QList<qint32> round;
        for (int address = 1; address <= 3; ++address)
            round << bench.master.ReadRegister(3, address, 1);
        QCOMPARE(round, (QList<qint32>{-99999, 200, 300}));
        QCOMPARE(bench.line.requests().size(), 3);
    }

    // The quiet interval is waited only when the next request would start within it.
    void quietIntervalAfterATimeOut_data()
    {
        QTest::addColumn<int>("gapMs");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("waitedMs");
        const int quiet = ModbusMaster::LateReplyQuietMs;
        QTest::newRow("another request 40 ms later") << 40 << 1 << quiet - 40;
        QTest::newRow("the same request at once") << 0 << 0 << 0;
    }
    void quietIntervalAfterATimeOut()
    {
        QFETCH(int, gapMs);
        QFETCH(int, address);
        QFETCH(int, waitedMs);
        Bench bench(1);
        QCOMPARE(bench.master.read(3, 0, 1).result, BusResult::TimeOut);
        bench.clock.advance(gapMs);
        const qint64 asked = bench.clock.monotonicMs();
        bench.line.script(Value215);
        QCOMPARE(bench.master.ReadRegister(3, address, 1), 215);
        QCOMPARE(bench.clock.monotonicMs() - asked, waitedMs);
    }

    // The next attempt asks the same thing, so the first one's late reply answers it;
    // that attempt's own reply, still on its way, must not answer the next item.
    void lateReplyAnsweringTheNextAttempt()
    {
        Bench bench(2);
        bench.line.script(Reply().at(1005, Value215));
        bench.line.script(Reply().at(50, Value215));
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        bench.line.script(Reply().at(60, registerReply(1, 3, 42)));
        QCOMPARE(bench.master.ReadRegister(3, 1, 1), 42);
        QCOMPARE(bench.line.requests().size(), 3);
    }

    // A stop asked while a try waits for its reply: that try ends as it would, no
    // other is sent, and nothing more goes on the wire until the work is resumed.
    void stopEndsTheOperationAfterTheTryUnderWay()
    {
        Bench bench(3);
        bench.line.setDuringYield([&] { bench.master.stopExchanges(); });
        QCOMPARE(bench.master.read(3, 0, 1).result, BusResult::TimeOut);
        QCOMPARE(bench.line.requests().size(), 1);
        QVERIFY(!bench.line.isOpen());

        const BusOutcome refused = bench.master.write(6, 0, 1, 1);
        QCOMPARE(refused.result, BusResult::Stopped);
        QVERIFY(!refused.instrumentFailed());
        QCOMPARE(bench.line.requests().size(), 1);
        QCOMPARE(bench.line.openCalls(), 1);

        bench.line.setDuringYield({});
        bench.master.resumeExchanges();
        bench.line.script(Value215);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
    }

    void settings_data()
    {
        QTest::addColumn<float>("timeout");
        QTest::addColumn<int>("attempts");
        QTest::addColumn<int>("requests");
        QTest::addColumn<int>("waitedMs");
        QTest::addColumn<bool>("warned");
        QTest::newRow("fraction of a second") << 0.25f << 2 << 2 << 502 << false;
        QTest::newRow("far too long") << 1e30f << 1 << 1 << 3600001 << true;
        QTest::newRow("negative attempts mean one") << 1.0f << -4 << 1 << 1001 << true;
    }
    void settings()
    {
        QFETCH(float, timeout);
        QFETCH(int, attempts);
        QFETCH(int, requests);
        QFETCH(int, waitedMs);
        QFETCH(bool, warned);
        Bench bench;
        QTest::failOnWarning(QRegularExpression("."));
        if (warned)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("."));
        bench.master.setReplyTimeout(timeout);
        bench.master.setAttempts(attempts);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(bench.line.requests().size(), requests);
        QCOMPARE(bench.clock.monotonicMs(), waitedMs);
    }

    // The wall clock may jump (midnight, daylight saving, an operator fixing the time);
    // the time-out follows the monotonic counter only.
    void wallClockJumpsDoNotCutTheWait()
    {
        Bench bench;
        bench.clock.setNow(QDateTime(QDate(2026, 1, 5), QTime(23, 59, 59, 500)));
        bench.line.setDuringYield([&] { bench.clock.setNow(bench.clock.now().addMSecs(-3600000)); });
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(bench.clock.monotonicMs(), 3003);
    }

    void badRequestsNeverReachTheLine_data()
    {
        QTest::addColumn<bool>("write");
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("slave");
        QTest::newRow("read with a write code") << false << 6 << 0 << 0 << 1;
        QTest::newRow("address past 65535") << false << 3 << 65536 << 0 << 1;
        QTest::newRow("value past 65535") << true << 6 << 0 << 65536 << 1;
    }
    void badRequestsNeverReachTheLine()
    {
        QFETCH(bool, write);
        QFETCH(int, functionCode);
        QFETCH(int, address);
        QFETCH(int, value);
        QFETCH(int, slave);
        for (const bool communicate : {true, false}) {
            Bench bench;
            bench.master.setCommunicate(communicate);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused"));
            const BusOutcome outcome = write ? bench.master.write(functionCode, address, value, slave)
                                             : bench.master.read(functionCode, address, slave);
            QCOMPARE(outcome.value, -99999);
            QCOMPARE(outcome.result, BusResult::NotConfigured);
            QCOMPARE(bench.line.openCalls(), 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestModbusMaster)
#include "tst_modbusmaster.moc"
