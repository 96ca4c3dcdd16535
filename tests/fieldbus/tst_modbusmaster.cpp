#include "base/clock.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"
#include "support/datarows.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <limits>

using namespace telvane;

using Reply = ScriptedLine::Reply;
using Replies = QList<Reply>;
Q_DECLARE_METATYPE(ScriptedLine::Reply)

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray result;
    for (const int value : values)
        result.append(char(value));
    return result;
}

QByteArray registerReply(int slave, int functionCode, quint16 value)
{
    return ScriptedLine::withCrc(bytes({slave, functionCode, 2, value >> 8, value & 0xFF}));
}

QByteArray exceptionReply(int slave, int functionCode, int code)
{
    return ScriptedLine::withCrc(bytes({slave, functionCode | 0x80, code}));
}

QByteArray badCrc(QByteArray frame)
{
    frame[frame.size() - 1] = char(frame.back() ^ 0x5A);
    return frame;
}

// What a failed transaction says of itself, by its flag.
QString description(QChar flag)
{
    return flag == 'E' ? " (Exception)" : flag == 'T' ? " Time out" : flag == 'B' ? " Broadcast" : "";
}

// A slave, its line and the master, on a clock that moves only while the master waits.
struct Bench
{
    Bench(int attempts = 3)
    {
        master.setReplyTimeout(1.0f);
        master.setAttempts(attempts);
    }
    void script(const Replies &replies)
    {
        for (const Reply &reply : replies)
            line.script(reply);
    }
    // Every request sent, in hexadecimal, "|" between.
    QString requests() const
    {
        QStringList sent;
        for (const QByteArray &request : line.requests())
            sent << request.toHex().toUpper();
        return sent.join('|');
    }

    ManualClock clock;
    ScriptedLine line{clock};
    ModbusMaster master{line, clock};
};

const QByteArray Value215 = registerReply(1, 3, 215);

} // namespace

class TestModbusMaster : public QObject
{
    Q_OBJECT

private slots:
    void read_data()
    {
        QTest::addColumn<QString>("request"); // function code, address, slave, the request sent
        QTest::addColumn<int>("attempts");
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("outcome"); // requests sent, ms waited, flag (E, T, B or -)
        const auto row = [](const char *name, const Replies &replies, int value, const char *outcome, int attempts = 3,
                            const char *request = "3 0 1 010300000001840A") {
            QTest::newRow(name) << request << attempts << replies << value << outcome;
        };
        row("holding register", {Value215}, 215, "1 0 -");
        row("input register, high address, negative value", {registerReply(17, 4, 0xFFFB)}, -5, "1 0 -", 3,
            "4 4660 17 11041234000177EC");
        row("coil on", {ScriptedLine::withCrc(hex("05010101"))}, 1, "1 0 -", 3, "1 19 5 0501001300010D8B");
        row("reply split across reads", {Reply::split(Value215, 2, 3, 3)}, 215, "1 12 -");
        row("reply at the deadline still counts", {Reply().at(1000, Value215)}, 215, "1 1000 -");
        // The reply's address and function code were never compared with the request.
        row("reply from another slave accepted", {registerReply(9, 4, 215)}, 215, "1 0 -");
        row("missing slave", {}, -99999, "3 3003 T");
        // The exception code stands in for the value, after waiting out the time-out for
        // the two bytes that never come.
        row("five-byte exception", {Reply().at(5, exceptionReply(1, 3, 2))}, 2, "1 1001 E");
        row("reply cut short gives its third byte", {Value215.left(4)}, 2, "1 1001 E");
        row("two bytes are not an answer", {hex("0103"), hex("0103"), hex("0103")}, -99999, "3 3003 E");
        row("wrong CRC then a good one", {badCrc(Value215), Value215}, 215, "2 0 -");
        row("wrong CRC every time", {badCrc(Value215), badCrc(Value215), badCrc(Value215)}, -99999, "3 0 -");
        // Noise shifts the reply: the first seven bytes fail the CRC and cost an attempt.
        row("noise before the reply", {Reply().at(0, hex("FF00")).at(5, Value215), Value215}, 215, "2 5 -");
        row("noise before the reply, one attempt", {Reply().at(0, hex("FF00")).at(5, Value215)}, -99999, "1 5 -", 1);
        // Late bytes are not told apart from the answer to the next request.
        row("reply after the time-out answers the next attempt", {Reply().at(1500, Value215)}, 215, "2 1500 -");
        row("broadcast waits one time-out only", {}, -99999, "1 1001 B", 3, "3 5 0 00030005000195DA");
    }
    void read()
    {
        QFETCH(QString, request);
        QFETCH(int, attempts);
        QFETCH(Replies, replies);
        QFETCH(int, value);
        QFETCH(QString, outcome);
        const QStringList call = request.split(' ');
        Bench bench(attempts);
        bench.script(replies);

        QCOMPARE(bench.master.ReadRegister(call[0].toInt(), call[1].toInt(), call[2].toInt()), value);
        const QChar flag = outcome.back();
        const QString flags = QStringLiteral("%1%2%3").arg(bench.master.ExceptionFlag() ? "E" : "")
                                  .arg(bench.master.TimeOutFlag() ? "T" : "").arg(bench.master.BroadcastFlag() ? "B" : "");
        QCOMPARE(QStringLiteral("%1 %2 %3").arg(bench.line.requests().size()).arg(bench.clock.monotonicMs())
                     .arg(flags.isEmpty() ? "-" : flags), outcome);
        QCOMPARE(bench.requests(), QStringList(bench.line.requests().size(), call[3]).join('|'));
        QCOMPARE(bench.master.failureDescription(), description(flag));
        // The reply buffer holds what came for the last attempt.
        QByteArray last;
        for (const ScriptedLine::Chunk &chunk : replies.isEmpty() ? QList<ScriptedLine::Chunk>() : replies.last().chunks())
            last += chunk.bytes;
        QCOMPARE(bench.master.replyBuffer().toHex(), last.toHex());
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QVERIFY(!bench.line.isOpen() && !bench.master.busy());
    }

    void write_data()
    {
        QTest::addColumn<QString>("call"); // function code, address, value, slave, the request sent
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("outcome"); // requests sent, flag
        const QByteArray set1234 = hex("0706010204D2AB0D");
        const QString register1234 = "6 258 1234 7 0706010204D2AB0D";
        QTest::newRow("coil on") << "5 16 65280 1 01050010FF008DFF" << Replies{hex("01050010FF008DFF")} << 65280 << "1 -";
        QTest::newRow("negative register") << "6 258 -5 7 07060102FFFB29E3" << Replies{hex("07060102FFFB29E3")} << -5 << "1 -";
        QTest::newRow("above the signed range") << "6 258 40000 7 070601029C404160" << Replies{hex("070601029C404160")}
                                                << 40000 << "1 -";
        QTest::newRow("diagnostics") << "8 0 42295 7 07080000A537DAEB" << Replies{hex("07080000A537DAEB")} << 42295 << "1 -";
        QTest::newRow("the instrument's echo is what counts") << register1234 << Replies{ScriptedLine::withCrc(hex("0706010203E8"))}
                                                              << 1000 << "1 -";
        QTest::newRow("exception") << register1234 << Replies{exceptionReply(7, 6, 2)} << 2 << "1 E";
        QTest::newRow("wrong CRC then a good echo") << register1234 << Replies{badCrc(set1234), set1234} << 1234 << "2 -";
        QTest::newRow("missing slave") << register1234 << Replies{} << -99999 << "3 T";
        // Every slave carries a broadcast out: sending it again would do it again.
        QTest::newRow("broadcast is sent once") << "6 16 42 0 00060010002A0801" << Replies{} << -99999 << "1 B";
    }
    void write()
    {
        QFETCH(QString, call);
        QFETCH(Replies, replies);
        QFETCH(int, result);
        QFETCH(QString, outcome);
        const QStringList cells = call.split(' ');
        Bench bench;
        bench.script(replies);
        QCOMPARE(bench.master.WriteRegister(cells[0].toInt(), cells[1].toInt(), cells[2].toInt(), cells[3].toInt()), result);
        QCOMPARE(bench.requests(), QStringList(outcome.left(1).toInt(), cells[4]).join('|'));
        QCOMPARE(bench.master.failureDescription(), description(outcome.back()));
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
    }

    // Decimals are applied by the lower layer, which the per-item operations use.
    void itemsScaleByDecimals()
    {
        Bench bench;
        bench.line.setResponder([](const QByteArray &request) {
            return request.at(1) == 3 ? QByteArray(registerReply(1, 3, request.at(3) == 0 ? 0xFF9C : 0x7FFF)) : request;
        });
        QVERIFY(bench.master.OpenPort());
        QCOMPARE(bench.master.ReadItem(3, 0, 0, 2, 1), -1.0f);
        QCOMPARE(bench.master.ReadItem(3, 0, 1, 1, 1), 32767.0f);
        QCOMPARE(bench.master.WriteItem(6, 0, 4, "21,57", 1, 2), 21.5f);
        QCOMPARE(bench.master.WriteItem(6, 0, 4, "-0.5", 1, 2), -0.5f);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("does not fit"));
        QCOMPARE(bench.master.WriteItem(6, 0, 4, "1.234,5", 1, 2), -99999.0f);
        bench.master.ClosePort();
        QCOMPARE(bench.requests(), QStringLiteral("010300000001840A|010300010001D5CA|0206000400D78866|02060004FFFBC84B"));
    }

    void inputDrainedBeforeClosing()
    {
        Bench bench;
        // A driver that hands over one reply's worth at a time leaves the junk behind.
        bench.line.setReadLimit(7);
        bench.line.script(Value215 + hex("A1A2A3A4A5A6A7A8A9"));
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        QCOMPARE(bench.line.bytesLeftAtClose(), 0);
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
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(bench.clock.monotonicMs(), 3003);
        QCOMPARE(bench.master.failureDescription(), QStringLiteral(" Time out"));
        QCOMPARE(bench.line.writesWhileClosed(), 0);
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.master.WriteRegister(6, 0, 1, 1), -99999);

        bench.line.setOpenRefused(false);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        bench.line.setOpenRefused(true, "No such file or directory");
        QTest::ignoreMessage(QtWarningMsg, warning);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
    }

    void testPort()
    {
        for (const bool refused : {false, true}) {
            Bench bench;
            bench.line.setOpenRefused(refused);
            if (refused)
                QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot be opened"));
            QCOMPARE(bench.master.TestPort("/dev/ttyUSB0"), !refused);
            QCOMPARE(bench.line.port(), QStringLiteral("/dev/ttyUSB0"));
            QCOMPARE(bench.line.openCalls(), 1);
            QVERIFY(!bench.line.isOpen() && bench.line.requests().isEmpty());
        }
    }

    // function code | the random number | the value read
    void simulation_data() { addRows({"1|0.7|1", "2|0.5|0", "3|0|100", "3|0.2|0", "3|0.125|38", "4|0.375|88", "4|0.9999|400"}); }
    void simulation()
    {
        const QStringList cells = rowCells();
        Bench bench;
        bench.master.setCommunicate(false);
        bench.master.setRandomSource([random = cells[1].toDouble()] { return random; });
        QCOMPARE(bench.master.ReadRegister(cells[0].toInt(), 7, 3), cells[2].toInt());
        QCOMPARE(bench.master.WriteRegister(6, 7, -1234, 3), -1234);
        QCOMPARE(bench.master.WriteRegister(5, 7, 65280, 3), 65280);
        QCOMPARE(bench.line.openCalls() + bench.line.yieldCalls() + bench.clock.monotonicMs(), 0);
    }

    void simulationByDefaultStaysInRange()
    {
        Bench bench;
        bench.master.setCommunicate(false);
        QSet<int> bits;
        QSet<int> registers;
        for (int i = 0; i < 2000; ++i) {
            bits.insert(bench.master.ReadRegister(1 + i % 2, 0, 1));
            registers.insert(bench.master.ReadRegister(3 + i % 2, 0, 1));
        }
        QCOMPARE(bits, QSet<int>({0, 1}));
        QVERIFY(registers.size() > 200);
        QVERIFY(std::ranges::all_of(registers, [](int value) { return value >= 0 && value <= 400; }));
    }

    // A handler run by the event loop while a reply is awaited must not start a second
    // transaction on the same wire, nor close the port under the first one.
    void reentrantCallsAreRefused()
    {
        Bench bench;
        bench.line.script(Reply().at(20, Value215));
        QStringList nested;
        bench.line.setDuringYield([&] {
            if (!nested.isEmpty())
                return;
            nested << QString::number(bench.master.busy()) << QString::number(bench.master.ReadRegister(3, 1, 2))
                   << QString::number(bench.master.WriteRegister(6, 1, 5, 2))
                   << QString::number(bench.master.TestPort("/dev/ttyS1"))
                   << QString::number(bench.master.ReadItem(3, 0, 1, 0, 2));
            bench.master.ClosePort();
        });
        const QRegularExpression refused("refused");
        QTest::failOnWarning(refused);
        for (int i = 0; i < 5; ++i)
            QTest::ignoreMessage(QtWarningMsg, refused);

        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        QCOMPARE(nested.join(' '), QStringLiteral("1 -99999 -99999 0 -99999"));
        QCOMPARE(bench.line.requests().size(), 1);
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QVERIFY(bench.line.port().isEmpty());
        QCOMPARE(bench.master.failureDescription(), QString());
        QVERIFY(!bench.master.busy());

        // Once the first is over, the next one goes through.
        bench.line.script(registerReply(2, 3, 7));
        QCOMPARE(bench.master.ReadRegister(3, 1, 2), 7);
    }

    void settings_data()
    {
        QTest::addColumn<float>("timeout");
        QTest::addColumn<int>("attempts");
        QTest::addColumn<QString>("expected"); // requests sent, ms waited, warnings
        QTest::newRow("fraction of a second") << 0.25f << 2 << "2 502 0";
        QTest::newRow("no time-out still looks once") << 0.0f << 1 << "1 1 0";
        QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN() << 1 << "1 1 1";
        QTest::newRow("far too long") << 1e30f << 1 << "1 3600001 1";
        QTest::newRow("negative attempts mean one") << 1.0f << -4 << "1 1001 1";
        QTest::newRow("many attempts") << 0.01f << 50 << "50 550 0";
    }
    void settings()
    {
        QFETCH(float, timeout);
        QFETCH(int, attempts);
        QFETCH(QString, expected);
        Bench bench;
        QTest::failOnWarning(QRegularExpression("."));
        for (int i = 0; i < expected.back().digitValue(); ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("."));
        bench.master.setReplyTimeout(timeout);
        bench.master.setAttempts(attempts);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(QStringLiteral("%1 %2 ").arg(bench.line.requests().size()).arg(bench.clock.monotonicMs()), expected.chopped(1));
    }

    // The wait sleeps until data or the deadline: one wake-up per arrival, never a
    // polling quantum.
    void waitWakesOnlyOnDataOrDeadline_data()
    {
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<int>("yields");
        QTest::newRow("immediate reply") << Replies{registerReply(1, 3, 1)} << 0;
        QTest::newRow("silent slave, three attempts") << Replies{} << 3;
        QTest::newRow("reply in four pieces") << Replies{Reply::split(registerReply(1, 3, 1), 2, 10, 10)} << 4;
    }
    void waitWakesOnlyOnDataOrDeadline()
    {
        QFETCH(Replies, replies);
        QFETCH(int, yields);
        Bench bench;
        bench.script(replies);
        bench.master.ReadRegister(3, 0, 1);
        QCOMPARE(bench.line.yieldCalls(), yields);
    }

    // The wall clock may jump (midnight, daylight saving, an operator fixing the time);
    // the time-out follows the monotonic counter only.
    void wallClockJumpsDoNotCutTheWait()
    {
        for (const qint64 jumpMs : {0, -3600000}) {
            Bench bench;
            bench.clock.setNow(QDateTime(QDate(2026, 1, 5), QTime(23, 59, 59, 500)));
            bench.line.setDuringYield([&] { bench.clock.setNow(bench.clock.now().addMSecs(jumpMs)); });
            QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
            QCOMPARE(bench.clock.monotonicMs(), 3003);
            QCOMPARE(bench.line.requests().size(), 3);
        }
    }

    void flagsDescribeTheLastTransactionOnly()
    {
        Bench bench(1);
        const auto flags = [&] {
            return QStringLiteral("%1%2%3 '%4'").arg(bench.master.ExceptionFlag()).arg(bench.master.TimeOutFlag())
                .arg(bench.master.BroadcastFlag()).arg(bench.master.failureDescription());
        };
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(flags(), QStringLiteral("010 ' Time out'"));
        bench.line.script(exceptionReply(1, 3, 3));
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 3);
        QCOMPARE(flags(), QStringLiteral("100 ' (Exception)'"));
        QCOMPARE(bench.master.ReadRegister(3, 0, 0), -99999);
        QCOMPARE(flags(), QStringLiteral("001 ' Broadcast'"));
        bench.line.script(registerReply(1, 3, 9));
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 9);
        QCOMPARE(flags(), QStringLiteral("000 ''"));
    }

    // Bytes left in the input by an earlier operation are flushed before the request.
    void staleInputIsFlushedBeforeTheRequest()
    {
        Bench bench;
        QVERIFY(bench.master.OpenPort());
        bench.line.script(Reply().at(0, registerReply(1, 3, 500)).at(1, Value215));
        QVERIFY(bench.master.Transact(1, 1, BuildFrame(8, 1, 3, hex("00000001"))));
        bench.clock.advance(5); // the second reply is now waiting in the input
        bench.line.script(registerReply(1, 3, 42));
        QCOMPARE(bench.master.ReadItem(3, 0, 0, 0, 1), 42.0f);
        bench.master.ClosePort();
    }

    // read or write | function code | address | value | slave
    void badRequestsNeverReachTheLine_data()
    {
        QTest::addColumn<QString>("call");
        for (const char *call : {"read 6 0 0 1", "read 7 0 0 1", "write 3 0 1 1", "read 3 65536 0 1", "write 6 -1 1 1",
                                 "read 3 0 0 256", "write 6 0 1 -1", "write 6 0 65536 1", "write 6 0 -32769 1"})
            QTest::newRow(call) << QString(call);
    }
    void badRequestsNeverReachTheLine()
    {
        QFETCH(QString, call);
        const QStringList c = call.split(' ');
        for (const bool communicate : {true, false}) {
            Bench bench;
            bench.master.setCommunicate(communicate);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused"));
            const qint32 result = c[0] == "write" ? bench.master.WriteRegister(c[1].toInt(), c[2].toInt(), c[3].toInt(), c[4].toInt())
                                                  : bench.master.ReadRegister(c[1].toInt(), c[2].toInt(), c[4].toInt());
            QCOMPARE(result, -99999);
            QCOMPARE(bench.line.openCalls(), 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestModbusMaster)
#include "tst_modbusmaster.moc"
