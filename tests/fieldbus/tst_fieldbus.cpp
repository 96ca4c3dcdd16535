// The Modbus master on its line, and what a technician types for the line: the port,
// the format, and the probe's command line.

#include "base/clock.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/probecommand.h"
#include "fieldbus/scriptedline.h"
#include "fieldbus/serialformat.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace telvane;

using Reply = ScriptedLine::Reply;
using Replies = QList<Reply>;

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

// A slave, its line and the master, on a clock that moves only while the master waits.
struct Bench
{
    explicit Bench(int attempts = 3)
    {
        master.setReplyTimeout(1.0f);
        master.setAttempts(attempts);
    }

    ManualClock clock;
    ScriptedLine line{clock};
    ModbusMaster master{line, clock};
};

const QByteArray Value215 = registerReply(1, 3, 215);
const QByteArray Read0Of1 = hex("010300000001840A");
const QByteArray Set1234 = ScriptedLine::withCrc(hex("0106000004D2"));

// One read or write as its caller sees it, and what went on the wire meanwhile.
struct Exchange
{
    bool write = false;
    int functionCode = 3, address = 0, value = 0 /* written */, slave = 1;
    float timeout = 1.0f;
    int attempts = 3;
    bool warned = false; // the settings are out of range
    Replies replies;
    QByteArray request = Read0Of1; // every request sent
    int requests = 1, answer = -99999;
    BusResult result = BusResult::TimeOut;
    int waitedMs = 0; // for reads
};

ProbeCommandLine parse(const QString &arguments)
{
    return parseProbeCommand(QStringList{"telvane-probe"} + QProcess::splitCommand(arguments));
}

} // namespace

Q_DECLARE_METATYPE(Exchange)

class TestFieldbus : public QObject
{
    Q_OBJECT

private slots:
    void exchange_data()
    {
        QTest::addColumn<Exchange>("x");
        QTest::newRow("holding register") << Exchange{.replies = {Value215}, .answer = 215, .result = BusResult::Value};
        QTest::newRow("input register, high address, negative value")
            << Exchange{.functionCode = 4, .address = 0x1234, .slave = 17, .replies = {registerReply(17, 4, 0xFFFB)},
                        .request = hex("11041234000177EC"), .answer = -5, .result = BusResult::Value};
        QTest::newRow("reply split across reads")
            << Exchange{.replies = {Reply().at(3, Value215.left(2)).at(6, Value215.mid(2, 2)).at(9, Value215.mid(4, 2))
                                        .at(12, Value215.mid(6))},
                        .answer = 215, .result = BusResult::Value, .waitedMs = 12};
        // Instruments that answer with another address have always been accepted.
        QTest::newRow("reply from another slave accepted")
            << Exchange{.replies = {registerReply(9, 4, 215)}, .answer = 215, .result = BusResult::Value};
        QTest::newRow("missing slave") << Exchange{.requests = 3, .waitedMs = 3003};
        // The exception code stands in for the value, after waiting out the time-out for
        // the two bytes that never come.
        QTest::newRow("five-byte exception") << Exchange{.replies = {Reply().at(5, exceptionReply(1, 3, 2))},
                                                         .answer = 2, .result = BusResult::Exception, .waitedMs = 1001};
        QTest::newRow("two bytes are not an answer") << Exchange{.replies = {hex("0103"), hex("0103"), hex("0103")},
                                                                 .requests = 3, .result = BusResult::Exception,
                                                                 .waitedMs = 3003};
        QByteArray badCrc = Value215;
        badCrc[6] = char(badCrc[6] ^ 0x5A);
        QTest::newRow("wrong CRC then a good one")
            << Exchange{.replies = {badCrc, Value215}, .requests = 2, .answer = 215, .result = BusResult::Value};
        QTest::newRow("broadcast waits one time-out only") << Exchange{.address = 5, .slave = 0,
                                                                       .request = hex("00030005000195DA"),
                                                                       .result = BusResult::Broadcast, .waitedMs = 1001};
        QTest::newRow("fraction of a second") << Exchange{.timeout = 0.25f, .attempts = 2, .requests = 2, .waitedMs = 502};
        QTest::newRow("far too long") << Exchange{.timeout = 1e30f, .attempts = 1, .warned = true, .waitedMs = 3600001};
        QTest::newRow("negative attempts mean one") << Exchange{.attempts = -4, .warned = true, .waitedMs = 1001};

        const QByteArray coilOn = ScriptedLine::withCrc(hex("01050000FF00")), minus5 = ScriptedLine::withCrc(hex("01060000FFFB"));
        QTest::newRow("coil on") << Exchange{.write = true, .functionCode = 5, .value = 65280, .replies = {coilOn},
                                             .request = coilOn, .answer = 65280, .result = BusResult::Value};
        QTest::newRow("negative register reads back signed") << Exchange{
            .write = true, .functionCode = 6, .value = -5, .replies = {minus5}, .request = minus5, .answer = -5,
            .result = BusResult::Value};
        QTest::newRow("the instrument's echo is what counts") << Exchange{
            .write = true, .functionCode = 6, .value = 1234, .replies = {ScriptedLine::withCrc(hex("0106000003E8"))},
            .request = Set1234, .answer = 1000, .result = BusResult::Value};
        QTest::newRow("write to a missing slave")
            << Exchange{.write = true, .functionCode = 6, .value = 1234, .request = Set1234, .requests = 3};
        // A refused write did not happen: its exception code is no echo.
        const Reply refused = exceptionReply(1, 6, 2);
        QTest::newRow("refused write") << Exchange{.write = true, .functionCode = 6, .value = 1234,
                                                   .replies = {refused, refused, refused}, .request = Set1234,
                                                   .requests = 3, .result = BusResult::Exception};
        // Every slave carries a broadcast out: sending it again would do it again.
        QTest::newRow("broadcast is sent once")
            << Exchange{.write = true, .functionCode = 6, .value = 42, .slave = 0,
                        .request = ScriptedLine::withCrc(hex("00060000002A")), .result = BusResult::Broadcast};

        // Requests that cannot be encoded never reach the line.
        QTest::newRow("read with a write code")
            << Exchange{.functionCode = 6, .requests = 0, .result = BusResult::NotConfigured};
        QTest::newRow("address past 65535")
            << Exchange{.address = 65536, .requests = 0, .result = BusResult::NotConfigured};
        QTest::newRow("value past 65535") << Exchange{.write = true, .functionCode = 6, .value = 65536, .requests = 0,
                                                      .result = BusResult::NotConfigured};
    }
    void exchange()
    {
        QFETCH(Exchange, x);
        Bench bench;
        QTest::failOnWarning(QRegularExpression("."));
        if (x.warned || x.result == BusResult::NotConfigured)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("."));
        bench.master.setReplyTimeout(x.timeout);
        bench.master.setAttempts(x.attempts);
        for (const Reply &reply : x.replies)
            bench.line.script(reply);
        // The wall clock may jump (midnight, daylight saving, an operator fixing the
        // time); the time-out follows the monotonic counter only.
        bench.clock.setNow(QDateTime(QDate(2026, 1, 5), QTime(23, 59, 59, 500)));
        bench.line.setDuringYield([&] { bench.clock.setNow(bench.clock.now().addMSecs(-3600000)); });

        const BusOutcome outcome = x.write ? bench.master.write(x.functionCode, x.address, x.value, x.slave)
                                           : bench.master.read(x.functionCode, x.address, x.slave);
        QCOMPARE(outcome.value, x.answer);
        QCOMPARE(outcome.result, x.result);
        if (!x.write)
            QCOMPARE(bench.clock.monotonicMs(), x.waitedMs);
        QCOMPARE(bench.line.requests().size(), x.requests);
        for (const QByteArray &sent : bench.line.requests())
            QCOMPARE(sent.toHex(), x.request.toHex());
        QCOMPARE(bench.line.openCalls(), x.requests ? 1 : 0);
        QCOMPARE(bench.line.closeCalls(), x.requests ? 1 : 0);
        QVERIFY(!bench.line.isOpen() && !bench.master.busy());
    }

    // The frames on the wire are checked through the exchanges; these are the edges
    // they do not reach. A value goes on the wire as two bytes and comes back the same,
    // signed or unsigned; nothing outside 16 bits is encoded.
    void frames()
    {
        QCOMPARE(BuildFrame(8, 1, 3, hex("0000")).toHex(), QByteArray("01030000000045ca"));
        QVERIFY(CheckReplyCrc(hex("01030200D7F81A"), 7));
        QVERIFY(!CheckReplyCrc(hex("01030200D7F8"), 7));
        for (qint32 value = -32768; value <= 65535; value += 97) {
            const std::optional<WordBytes> word = EncodeValue(value);
            QVERIFY(word);
            QCOMPARE(value < 0 ? qint32(DecodeValue(word->high, word->low))
                               : qint32(decodeUnsignedValue(word->high, word->low)),
                     value);
        }
        QVERIFY(!EncodeValue(65536));
        QVERIFY(!EncodeValue(-32769));
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
        QVERIFY(bench.line.requests().isEmpty());
        QCOMPARE(bench.master.WriteRegister(6, 0, 1, 1), -99999);

        bench.line.setOpenRefused(false);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        bench.line.setOpenRefused(true, "No such file or directory");
        QTest::ignoreMessage(QtWarningMsg, warning);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
    }

    // Without communication a coil or input is on above one half, a register is a
    // random value rounded half to even, a write is its own echo; a bad request is
    // refused all the same.
    void simulation()
    {
        Bench bench;
        bench.master.setCommunicate(false);
        double random = 0.7;
        bench.master.setRandomSource([&random] { return random; });
        QCOMPARE(bench.master.ReadRegister(1, 7, 3), 1);
        random = 0.5;
        QCOMPARE(bench.master.ReadRegister(2, 7, 3), 0);
        random = 0.125;
        QCOMPARE(bench.master.ReadRegister(3, 7, 3), 38);
        QCOMPARE(bench.master.WriteRegister(6, 7, -1234, 3), -1234);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("refused"));
        QCOMPARE(bench.master.write(6, 0, 65536, 1).result, BusResult::NotConfigured);
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
            testPortAnswer = bench.master.testPort("/dev/ttyS1");
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
    // value of the round by one zone, each with a good CRC. The quiet interval is waited
    // only when the next request would start within it.
    void lateAndStaleBytesAnswerNothingElse()
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
        QCOMPARE(bench.clock.monotonicMs(), 1001 + ModbusMaster::LateReplyQuietMs + 20 + 20);

        Bench again(1);
        QCOMPARE(again.master.read(3, 0, 1).result, BusResult::TimeOut);
        again.line.script(Value215);
        QCOMPARE(again.master.ReadRegister(3, 0, 1), 215); // the same request: no wait
        QCOMPARE(again.clock.monotonicMs(), 1001);
        QCOMPARE(again.master.read(3, 0, 1).result, BusResult::TimeOut);
        again.clock.advance(40);
        again.line.script(Value215);
        QCOMPARE(again.master.ReadRegister(3, 1, 1), 215);
        QCOMPARE(again.clock.monotonicMs(), 2002 + ModbusMaster::LateReplyQuietMs);

        // The next attempt asks the same thing, so the first one's late reply answers it;
        // that attempt's own reply, still on its way, must not answer the next item.
        Bench twice(2);
        twice.line.script(Reply().at(1005, Value215));
        twice.line.script(Reply().at(50, Value215));
        QCOMPARE(twice.master.ReadRegister(3, 0, 1), 215);
        twice.line.script(Reply().at(60, registerReply(1, 3, 42)));
        QCOMPARE(twice.master.ReadRegister(3, 1, 1), 42);
        QCOMPARE(twice.line.requests().size(), 3);

        // Bytes left in the input by an earlier exchange are flushed before the request.
        Bench stale;
        QVERIFY(stale.master.OpenPort());
        stale.line.script(Reply().at(0, registerReply(1, 3, 500)).at(1, Value215));
        QCOMPARE(stale.master.Transact(1, 1, Read0Of1), BusResult::Value);
        stale.clock.advance(5); // the second reply is now waiting in the input
        stale.line.script(registerReply(1, 3, 42));
        QCOMPARE(stale.master.ReadItem(3, 0, 0, 1).value, 42);
        stale.master.ClosePort();
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

    // A refusal names the field and the text, so the technician can fix it.
    void format_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::optional<SerialFormat>>("format"); // none: refused
        QTest::addColumn<QString>("field");                       // what the refusal must name
        const std::optional<SerialFormat> refused;
        QTest::newRow("even") << "1200,E,8,1" << std::optional(SerialFormat{1200, Parity::Even, 8, StopBits::One}) << "";
        QTest::newRow("odd, two stop bits") << "4800,O,7,2" << std::optional(SerialFormat{4800, Parity::Odd, 7, StopBits::Two}) << "";
        QTest::newRow("one and a half") << "110,N,5,1.5" << std::optional(SerialFormat{110, Parity::None, 5, StopBits::OneAndHalf}) << "";
        QTest::newRow("blanks, lower case")
            << " 115200 , n , 8 , 2 " << std::optional(SerialFormat{115200, Parity::None, 8, StopBits::Two}) << "";
        QTest::newRow("three fields") << "9600,N,8" << refused << "virgole";
        QTest::newRow("speed 0") << "0,N,8,1" << refused << "velocità";
        QTest::newRow("speed beyond int") << "99999999999,N,8,1" << refused << "velocità";
        QTest::newRow("parity word") << "9600,None,8,1" << refused << "parità";
        QTest::newRow("4 data bits") << "9600,N,4,1" << refused << "dati";
        QTest::newRow("0 stop bits") << "9600,N,8,0" << refused << "stop";
    }
    void format()
    {
        QFETCH(QString, text);
        QFETCH(std::optional<SerialFormat>, format);
        QFETCH(QString, field);
        QString whyNot;
        QCOMPARE(parseSerialFormat(text, &whyNot), format);
        QVERIFY2(format ? whyNot.isEmpty() : whyNot.contains(field) && whyNot.contains(text), qPrintable(whyNot));
    }

    void ports_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("windows"); // empty: refused
        QTest::addColumn<QString>("posix");
        QTest::newRow("blanks, leading zero") << " 02 " << "COM2" << "/dev/ttyS1";
        QTest::newRow("device path") << "/dev/ttyUSB0" << "" << "/dev/ttyUSB0";
        QTest::newRow("COM name, lower case") << "com12" << "COM12" << "";
        QTest::newRow("0") << "0" << "" << "";
        QTest::newRow("relative path") << "dev/ttyUSB0" << "" << "";
        QTest::newRow("blank in the path") << "/dev/tty USB0" << "" << "";
    }
    void ports()
    {
        QFETCH(QString, port);
        QFETCH(QString, windows);
        QFETCH(QString, posix);
        for (const auto &[naming, device] : {std::pair{PortNaming::Windows, windows}, std::pair{PortNaming::Posix, posix}}) {
            QString whyNot;
            const std::optional<QString> resolved = resolveSerialPort(port, &whyNot, naming);
            QCOMPARE(resolved.value_or(QString()), device);
            QVERIFY2(resolved || whyNot.contains("porta"), qPrintable(whyNot));
        }
    }

    void probeCommand_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<ProbeCommand>("expected");
        QTest::addColumn<QString>("named"); // what a refusal must name; empty: accepted
        QTest::newRow("read, defaults") << "--port 1 --slave 5 --fc 3 --address 1"
                                        << ProbeCommand{.port = "1", .slave = 5, .functionCode = 3, .address = 1} << "";
        QTest::newRow("every option")
            << "--port /dev/ttyUSB0 --format 19200,E,8,1 --timeout 250 --retry 3 --slave 247 --fc 4 --address 65535 --repeat 10"
            << ProbeCommand{"/dev/ttyUSB0", "19200,E,8,1", 250, 3, 247, 4, 65535, std::nullopt, 10} << "";
        QTest::newRow("broadcast, lowest value")
            << "--port 2 --slave 0 --fc 6 --address 7 --value -32768"
            << ProbeCommand{.port = "2", .functionCode = 6, .address = 7, .value = -32768} << "";
        const QString read = "--port 1 --slave 1 --fc 3 --address 1";
        const auto refused = [](const char *name, const QString &arguments, const char *named) {
            QTest::newRow(name) << arguments << ProbeCommand{} << QString::fromUtf8(named);
        };
        refused("nothing", "", "--port");
        refused("no slave", "--port 1 --fc 3 --address 1", "--slave");
        refused("unknown code", "--port 1 --slave 1 --fc 7 --address 1", "--fc 7");
        refused("value for a read", read + " --value 5", "--value");
        refused("address too big", "--port 1 --slave 1 --fc 3 --address 70000", "--address 70000");
        refused("slave too big", "--port 1 --slave 256 --fc 3 --address 1", "--slave 256");
        refused("value too big", "--port 1 --slave 1 --fc 6 --address 1 --value 65536", "--value 65536");
        refused("time-out 0", read + " --timeout 0", "--timeout 0");
        refused("no attempt", read + " --retry 0", "--retry 0");
        refused("bad format", read + " --format 9600,N,9,1", "bit di dati");
        refused("unknown option", read + " --baud 9600", "baud");
        refused("option without its value", "--port 1 --slave 1 --fc 3 --address", "address");
    }
    void probeCommand()
    {
        QFETCH(QString, arguments);
        QFETCH(ProbeCommand, expected);
        QFETCH(QString, named);
        const ProbeCommandLine result = parse(arguments);
        const auto outcome = named.isEmpty() ? ProbeCommandLine::Outcome::Run : ProbeCommandLine::Outcome::Error;
        QVERIFY2(result.outcome == outcome && result.message.contains(named), qPrintable(result.message));
        const auto fields = [](const ProbeCommand &c) {
            return std::tuple{c.port, c.format, c.timeoutMs, c.retries, c.slave, c.functionCode, c.address,
                              c.value.value_or(-99999), c.repeat};
        };
        if (named.isEmpty())
            QCOMPARE(fields(result.command), fields(expected));
    }

    void helpDocumentsEveryOption()
    {
        for (const char *arguments : {"--help", "--port 1 --fc 7 -h"}) {
            const ProbeCommandLine result = parse(arguments);
            QCOMPARE(result.outcome, ProbeCommandLine::Outcome::Help);
            for (const char *option : {"--port", "--format", "--timeout", "--retry", "--slave", "--fc", "--address", "--value",
                                       "--repeat", "-99999"})
                QVERIFY2(result.message.contains(QLatin1String(option)), option);
        }
    }
};

QTEST_GUILESS_MAIN(TestFieldbus)
#include "tst_fieldbus.moc"
