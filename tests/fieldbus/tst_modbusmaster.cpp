#include "base/clock.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"

#include <QLoggingCategory>
#include <QSet>
#include <QTest>

#include <limits>

using namespace telvane;

using Replies = QList<ScriptedLine::Reply>;
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

QByteArray statusReply(int slave, int functionCode, int status)
{
    return ScriptedLine::withCrc(bytes({slave, functionCode, 1, status}));
}

QByteArray exceptionReply(int slave, int functionCode, int code)
{
    return ScriptedLine::withCrc(bytes({slave, functionCode | 0x80, code}));
}

QByteArray badCrc(QByteArray frame)
{
    frame[frame.size() - 1] = char(frame.at(frame.size() - 1) ^ 0x5A);
    return frame;
}

// A slave, its line and the master, on a clock that moves only while the master waits.
struct Bench
{
    Bench()
    {
        master.setReplyTimeout(1.0f);
        master.setAttempts(3);
    }
    qint64 elapsedSince(qint64 startMs) const { return clock.monotonicMs() - startMs; }

    ManualClock clock;
    ScriptedLine line{clock};
    ModbusMaster master{line, clock};
};

// Collects what the field bus logs while it lives.
class LogCapture
{
public:
    LogCapture()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=true"));
        s_current = this;
        m_previous = qInstallMessageHandler(&LogCapture::handle);
    }
    ~LogCapture()
    {
        qInstallMessageHandler(m_previous);
        s_current = nullptr;
    }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    int count(QtMsgType type, const QString &containing = QString()) const
    {
        int found = 0;
        for (const auto &[entryType, text] : m_entries)
            found += entryType == type && text.contains(containing) ? 1 : 0;
        return found;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        if (s_current && qstrcmp(context.category, "telvane.fieldbus") == 0)
            s_current->m_entries.append({type, text});
    }

    static inline LogCapture *s_current = nullptr;
    QtMessageHandler m_previous = nullptr;
    QList<std::pair<QtMsgType, QString>> m_entries;
};

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
        QTest::addColumn<int>("attempts");
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("requests");
        QTest::addColumn<int>("elapsedMs");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("flags"); // E exception, T time-out, B broadcast
        QTest::addColumn<QByteArray>("replyBuffer");

        const QByteArray request = hex("010300000001840A");
        const QByteArray value215 = registerReply(1, 3, 215);

        QTest::newRow("holding register")
            << 3 << 0 << 1 << 3 << Replies{value215} << request << 215 << 1 << 0 << "" << "" << value215;
        QTest::newRow("input register, high address, negative value")
            << 4 << 0x1234 << 17 << 3 << Replies{registerReply(17, 4, 0xFFFB)} << hex("11041234000177EC") << -5
            << 1 << 0 << "" << "" << registerReply(17, 4, 0xFFFB);
        QTest::newRow("coil on")
            << 1 << 0x13 << 5 << 3 << Replies{statusReply(5, 1, 1)} << hex("0501001300010D8B") << 1 << 1 << 0 << ""
            << "" << statusReply(5, 1, 1);
        QTest::newRow("discrete input off")
            << 2 << 0x13 << 5 << 3 << Replies{statusReply(5, 2, 0)} << hex("050200130001498B") << 0 << 1 << 0 << ""
            << "" << statusReply(5, 2, 0);
        QTest::newRow("over range marker") << 3 << 0 << 1 << 3 << Replies{registerReply(1, 3, 0x7FFF)} << request
                                           << 32767 << 1 << 0 << "" << "" << registerReply(1, 3, 0x7FFF);
        QTest::newRow("under range marker") << 3 << 0 << 1 << 3 << Replies{registerReply(1, 3, 0x8000)} << request
                                            << -32768 << 1 << 0 << "" << "" << registerReply(1, 3, 0x8000);
        QTest::newRow("reply split across reads")
            << 3 << 0 << 1 << 3 << Replies{ScriptedLine::Reply::split(value215, 2, 3, 3)} << request << 215 << 1
            << 12 << "" << "" << value215;
        QTest::newRow("reply at the deadline still counts")
            << 3 << 0 << 1 << 3 << Replies{ScriptedLine::Reply().at(1000, value215)} << request << 215 << 1 << 1000
            << "" << "" << value215;
        QTest::newRow("trailing bytes kept but not looked at")
            << 3 << 0 << 1 << 3 << Replies{value215 + hex("FFFF")} << request << 215 << 1 << 0 << "" << ""
            << value215 + hex("FFFF");
        // The reply's address and function code were never compared with the request.
        QTest::newRow("reply from another slave accepted")
            << 3 << 0 << 1 << 3 << Replies{registerReply(9, 3, 215)} << request << 215 << 1 << 0 << "" << ""
            << registerReply(9, 3, 215);
        QTest::newRow("reply with another function code accepted")
            << 3 << 0 << 1 << 3 << Replies{registerReply(1, 4, 215)} << request << 215 << 1 << 0 << "" << ""
            << registerReply(1, 4, 215);

        QTest::newRow("missing slave") << 3 << 0 << 1 << 3 << Replies{} << request << -99999 << 3 << 3003
                                       << " Time out" << "T" << QByteArray();
        QTest::newRow("missing slave, one attempt")
            << 3 << 0 << 1 << 1 << Replies{} << request << -99999 << 1 << 1001 << " Time out" << "T" << QByteArray();
        // The exception code stands in for the value, after waiting out the time-out
        // for the two bytes that never come.
        QTest::newRow("five-byte exception")
            << 3 << 0 << 1 << 3 << Replies{ScriptedLine::Reply().at(5, exceptionReply(1, 3, 2))} << request << 2 << 1
            << 1001 << " (Exception)" << "E" << exceptionReply(1, 3, 2);
        QTest::newRow("reply cut short gives its third byte")
            << 3 << 0 << 1 << 3 << Replies{value215.left(4)} << request << 2 << 1 << 1001 << " (Exception)" << "E"
            << value215.left(4);
        QTest::newRow("two bytes are not an answer")
            << 3 << 0 << 1 << 3 << Replies{hex("0103"), hex("0103"), hex("0103")} << request << -99999 << 3 << 3003
            << " (Exception)" << "E" << hex("0103");
        QTest::newRow("wrong CRC then a good one")
            << 3 << 0 << 1 << 3 << Replies{badCrc(value215), value215} << request << 215 << 2 << 0 << "" << ""
            << value215;
        QTest::newRow("wrong CRC every time")
            << 3 << 0 << 1 << 3 << Replies{badCrc(value215), badCrc(value215), badCrc(value215)} << request << -99999
            << 3 << 0 << "" << "" << badCrc(value215);
        // Noise shifts the reply: the first seven bytes fail the CRC and cost an attempt.
        QTest::newRow("noise before the reply")
            << 3 << 0 << 1 << 3 << Replies{ScriptedLine::Reply().at(0, hex("FF00")).at(5, value215), value215}
            << request << 215 << 2 << 5 << "" << "" << value215;
        QTest::newRow("noise before the reply, one attempt")
            << 3 << 0 << 1 << 1 << Replies{ScriptedLine::Reply().at(0, hex("FF00")).at(5, value215)} << request
            << -99999 << 1 << 5 << "" << "" << hex("FF00") + value215;
        // Late bytes are not told apart from the answer to the next request.
        QTest::newRow("reply after the time-out answers the next attempt")
            << 3 << 0 << 1 << 3 << Replies{ScriptedLine::Reply().at(1500, value215)} << request << 215 << 2 << 1500
            << "" << "" << value215;
        QTest::newRow("reply after the time-out, one attempt")
            << 3 << 0 << 1 << 1 << Replies{ScriptedLine::Reply().at(1500, value215)} << request << -99999 << 1
            << 1001 << " Time out" << "T" << QByteArray();

        QTest::newRow("broadcast waits one time-out only")
            << 3 << 5 << 0 << 3 << Replies{} << hex("00030005000195DA") << -99999 << 1 << 1001 << " Broadcast" << "B"
            << QByteArray();
    }
    void read()
    {
        QFETCH(int, functionCode);
        QFETCH(int, address);
        QFETCH(int, slave);
        QFETCH(int, attempts);
        QFETCH(Replies, replies);
        QFETCH(QByteArray, request);
        QFETCH(int, value);
        QFETCH(int, requests);
        QFETCH(int, elapsedMs);
        QFETCH(QString, description);
        QFETCH(QString, flags);
        QFETCH(QByteArray, replyBuffer);

        Bench bench;
        bench.master.setAttempts(attempts);
        for (const auto &reply : replies)
            bench.line.script(reply);

        const qint64 start = bench.clock.monotonicMs();
        QCOMPARE(bench.master.ReadRegister(functionCode, address, slave), value);
        QCOMPARE(bench.elapsedSince(start), elapsedMs);

        QCOMPARE(bench.line.requests().size(), requests);
        for (const QByteArray &sent : bench.line.requests())
            QCOMPARE(sent.toHex(' '), request.toHex(' '));
        QCOMPARE(bench.master.failureDescription(), description);
        QCOMPARE(bench.master.ExceptionFlag(), flags.contains('E'));
        QCOMPARE(bench.master.TimeOutFlag(), flags.contains('T'));
        QCOMPARE(bench.master.BroadcastFlag(), flags.contains('B'));
        QCOMPARE(bench.master.replyBuffer().toHex(' '), replyBuffer.toHex(' '));

        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QVERIFY(!bench.line.isOpen());
        QVERIFY(!bench.master.busy());
    }

    void write_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("slave");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("requests");
        QTest::addColumn<QString>("description");

        const QByteArray coilOn = hex("01050010FF008DFF");
        const QByteArray set1234 = hex("0706010204D2AB0D");
        QTest::newRow("coil on") << 5 << 0x10 << 65280 << 1 << coilOn << Replies{coilOn} << 65280 << 1 << "";
        QTest::newRow("coil off") << 5 << 0x10 << 0 << 1 << hex("010500100000CC0F")
                                  << Replies{hex("010500100000CC0F")} << 0 << 1 << "";
        QTest::newRow("register") << 6 << 0x0102 << 1234 << 7 << set1234 << Replies{set1234} << 1234 << 1 << "";
        QTest::newRow("negative register") << 6 << 0x0102 << -5 << 7 << hex("07060102FFFB29E3")
                                           << Replies{hex("07060102FFFB29E3")} << -5 << 1 << "";
        QTest::newRow("register above the signed range")
            << 6 << 0x0102 << 40000 << 7 << hex("070601029C404160") << Replies{hex("070601029C404160")} << 40000 << 1
            << "";
        QTest::newRow("diagnostics") << 8 << 0 << 0xA537 << 7 << hex("07080000A537DAEB")
                                     << Replies{hex("07080000A537DAEB")} << 0xA537 << 1 << "";
        QTest::newRow("the instrument's echo is what counts")
            << 6 << 0x0102 << 1234 << 7 << set1234 << Replies{ScriptedLine::withCrc(hex("0706010203E8"))} << 1000 << 1
            << "";
        QTest::newRow("echo split across reads")
            << 6 << 0x0102 << 1234 << 7 << set1234 << Replies{ScriptedLine::Reply::split(set1234, 3, 2, 2)} << 1234
            << 1 << "";
        QTest::newRow("exception") << 6 << 0x0102 << 1234 << 7 << set1234 << Replies{exceptionReply(7, 6, 2)} << 2
                                   << 1 << " (Exception)";
        QTest::newRow("wrong CRC then a good echo")
            << 6 << 0x0102 << 1234 << 7 << set1234 << Replies{badCrc(set1234), set1234} << 1234 << 2 << "";
        QTest::newRow("missing slave") << 6 << 0x0102 << 1234 << 7 << set1234 << Replies{} << -99999 << 3
                                       << " Time out";
        // Every slave carries a broadcast out: sending it again would do it again.
        QTest::newRow("broadcast is sent once") << 6 << 0x10 << 42 << 0 << hex("00060010002A0801") << Replies{}
                                                << -99999 << 1 << " Broadcast";
    }
    void write()
    {
        QFETCH(int, functionCode);
        QFETCH(int, address);
        QFETCH(int, value);
        QFETCH(int, slave);
        QFETCH(QByteArray, request);
        QFETCH(Replies, replies);
        QFETCH(int, result);
        QFETCH(int, requests);
        QFETCH(QString, description);

        Bench bench;
        for (const auto &reply : replies)
            bench.line.script(reply);
        QCOMPARE(bench.master.WriteRegister(functionCode, address, value, slave), result);
        QCOMPARE(bench.line.requests().size(), requests);
        for (const QByteArray &sent : bench.line.requests())
            QCOMPARE(sent.toHex(' '), request.toHex(' '));
        QCOMPARE(bench.master.failureDescription(), description);
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QVERIFY(!bench.line.isOpen());
    }

    // Decimals are applied by the lower layer, which the per-item operations use.
    void readItemScales_data()
    {
        QTest::addColumn<quint16>("raw");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<float>("value");
        QTest::newRow("one decimal") << quint16(215) << 1 << 21.5f;
        QTest::newRow("negative, two decimals") << quint16(0xFF9C) << 2 << -1.0f;
        QTest::newRow("over range unscaled") << quint16(0x7FFF) << 1 << 32767.0f;
        QTest::newRow("under range unscaled") << quint16(0x8000) << 3 << -32768.0f;
    }
    void readItemScales()
    {
        QFETCH(quint16, raw);
        QFETCH(int, decimals);
        QFETCH(float, value);
        Bench bench;
        bench.line.script(registerReply(1, 3, raw));
        QVERIFY(bench.master.OpenPort());
        QCOMPARE(bench.master.ReadItem(3, 0, 0, decimals, 1), value);
        bench.master.ClosePort();
    }

    void writeItemEncodesDecimals()
    {
        Bench bench;
        bench.line.setResponder([](const QByteArray &request) { return request; });
        QVERIFY(bench.master.OpenPort());
        QCOMPARE(bench.master.WriteItem(6, 0, 4, QStringLiteral("21,57"), 1, 2), 21.5f);
        QCOMPARE(bench.master.WriteItem(6, 0, 4, QStringLiteral("-0.5"), 1, 2), -0.5f);
        {
            LogCapture log;
            QCOMPARE(bench.master.WriteItem(6, 0, 4, QStringLiteral("1.234,5"), 1, 2), -99999.0f);
            QCOMPARE(log.count(QtWarningMsg, QStringLiteral("does not fit")), 1);
        }
        bench.master.ClosePort();
        QCOMPARE(bench.line.requests().size(), 2);
        QCOMPARE(bench.line.requests().at(0).mid(4, 2), hex("00D7"));
        QCOMPARE(bench.line.requests().at(1).mid(4, 2), hex("FFFB"));
    }

    void inputDrainedBeforeClosing()
    {
        Bench bench;
        // A driver that hands over one reply's worth at a time leaves the junk behind.
        bench.line.setReadLimit(7);
        bench.line.script(registerReply(1, 3, 215) + hex("A1A2A3A4A5A6A7A8A9"));
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        QCOMPARE(bench.line.bytesLeftAtClose(), 0);
    }

    void portThatCannotOpen()
    {
        Bench bench;
        LogCapture log;
        bench.line.setOpenRefused(true, QStringLiteral("No such file or directory"));
        bench.line.setResponder([](const QByteArray &) { return registerReply(1, 3, 215); });

        const qint64 start = bench.clock.monotonicMs();
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(bench.elapsedSince(start), 3003);
        QCOMPARE(bench.master.failureDescription(), QStringLiteral(" Time out"));
        QVERIFY(bench.line.requests().isEmpty());
        QCOMPARE(bench.line.writesWhileClosed(), 0);
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QCOMPARE(log.count(QtWarningMsg, QStringLiteral("No such file or directory")), 1);

        // Said once, not on every poll of every cycle.
        QCOMPARE(bench.master.WriteRegister(6, 0, 1, 1), -99999);
        QCOMPARE(log.count(QtWarningMsg, QStringLiteral("cannot be opened")), 1);

        bench.line.setOpenRefused(false);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        bench.line.setOpenRefused(true);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(log.count(QtWarningMsg, QStringLiteral("cannot be opened")), 2);
    }

    void testPort_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<bool>("refused");
        QTest::newRow("number") << "2" << false;
        QTest::newRow("device path") << "/dev/ttyUSB0" << false;
        QTest::newRow("absent") << "/dev/ttyUSB9" << true;
    }
    void testPort()
    {
        QFETCH(QString, port);
        QFETCH(bool, refused);
        Bench bench;
        LogCapture log;
        bench.line.setOpenRefused(refused);
        QCOMPARE(bench.master.TestPort(port), !refused);
        QCOMPARE(bench.line.port(), port);
        QCOMPARE(bench.line.openCalls(), 1);
        QCOMPARE(bench.line.closeCalls(), 1);
        QVERIFY(!bench.line.isOpen());
        QVERIFY(bench.line.requests().isEmpty());
        QCOMPARE(log.count(QtWarningMsg, QStringLiteral("cannot be opened")), refused ? 1 : 0);
    }

    void simulation_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<double>("random");
        QTest::addColumn<int>("value");
        QTest::newRow("coil above one half") << 1 << 0.7 << 1;
        QTest::newRow("coil at one half") << 1 << 0.5 << 0;
        QTest::newRow("input below one half") << 2 << 0.2 << 0;
        QTest::newRow("input just above") << 2 << 0.5000001 << 1;
        QTest::newRow("register at zero") << 3 << 0.0 << 100;
        QTest::newRow("register at the bottom of the fold") << 3 << 0.2 << 0;
        QTest::newRow("register half rounds to even, down") << 3 << 0.125 << 38;
        QTest::newRow("register half rounds to even, up") << 4 << 0.375 << 88;
        QTest::newRow("register half rounds to even, down again") << 4 << 0.625 << 212;
        QTest::newRow("register near one") << 4 << 0.9999 << 400;
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
        QCOMPARE(bench.master.WriteRegister(5, 7, 65280, 3), 65280);
        QCOMPARE(bench.line.openCalls(), 0);
        QCOMPARE(bench.line.closeCalls(), 0);
        QVERIFY(bench.line.requests().isEmpty());
        QCOMPARE(bench.line.yieldCalls(), 0);
        QCOMPARE(bench.clock.monotonicMs(), 0);
    }

    void simulationByDefaultStaysInRange()
    {
        Bench bench;
        bench.master.setCommunicate(false);
        QSet<int> bits;
        QSet<int> registers;
        for (int i = 0; i < 2000; ++i) {
            const int bit = bench.master.ReadRegister(1 + i % 2, 0, 1);
            const int value = bench.master.ReadRegister(3 + i % 2, 0, 1);
            QVERIFY2(bit == 0 || bit == 1, qPrintable(QString::number(bit)));
            QVERIFY2(value >= 0 && value <= 400, qPrintable(QString::number(value)));
            bits.insert(bit);
            registers.insert(value);
        }
        QCOMPARE(bits.size(), 2);
        QVERIFY(registers.size() > 200);
        QCOMPARE(bench.line.openCalls(), 0);
    }

    // A handler run by the event loop while a reply is awaited must not start a second
    // transaction on the same wire, nor close the port under the first one.
    void reentrantCallsAreRefused()
    {
        Bench bench;
        LogCapture log;
        bench.line.script(ScriptedLine::Reply().at(20, registerReply(1, 3, 215)));
        qint32 nestedRead = 0;
        qint32 nestedWrite = 0;
        bool nestedTest = true;
        float nestedItem = 0;
        bool nestedBusy = false;
        int handlerRuns = 0;
        bench.line.setDuringYield([&] {
            if (handlerRuns++ > 0)
                return;
            nestedBusy = bench.master.busy();
            nestedRead = bench.master.ReadRegister(3, 1, 2);
            nestedWrite = bench.master.WriteRegister(6, 1, 5, 2);
            nestedTest = bench.master.TestPort(QStringLiteral("/dev/ttyS1"));
            nestedItem = bench.master.ReadItem(3, 0, 1, 0, 2);
            bench.master.ClosePort();
        });

        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 215);
        QCOMPARE(handlerRuns, 1);
        QVERIFY(nestedBusy);
        QCOMPARE(nestedRead, -99999);
        QCOMPARE(nestedWrite, -99999);
        QVERIFY(!nestedTest);
        QCOMPARE(nestedItem, -99999.0f);
        QCOMPARE(log.count(QtWarningMsg, QStringLiteral("refused")), 5);

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
        QTest::addColumn<int>("requests");
        QTest::addColumn<int>("elapsedMs");
        QTest::addColumn<int>("warnings");
        QTest::newRow("fraction of a second") << 0.25f << 2 << 2 << 502 << 0;
        QTest::newRow("no time-out still looks once") << 0.0f << 1 << 1 << 1 << 0;
        QTest::newRow("negative time-out") << -3.0f << 1 << 1 << 1 << 1;
        QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN() << 1 << 1 << 1 << 1;
        QTest::newRow("far too long") << 1e30f << 1 << 1 << 3600001 << 1;
        QTest::newRow("no attempts means one") << 1.0f << 0 << 1 << 1001 << 1;
        QTest::newRow("negative attempts") << 1.0f << -4 << 1 << 1001 << 1;
        QTest::newRow("many attempts") << 0.01f << 50 << 50 << 550 << 0;
    }
    void settings()
    {
        QFETCH(float, timeout);
        QFETCH(int, attempts);
        QFETCH(int, requests);
        QFETCH(int, elapsedMs);
        QFETCH(int, warnings);
        Bench bench;
        LogCapture log;
        bench.master.setReplyTimeout(timeout);
        bench.master.setAttempts(attempts);
        QCOMPARE(log.count(QtWarningMsg), warnings);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(bench.line.requests().size(), requests);
        QCOMPARE(bench.clock.monotonicMs(), elapsedMs);
    }

    // The wait sleeps until data or the deadline: one wake-up per arrival, never a
    // polling quantum.
    void waitWakesOnlyOnDataOrDeadline_data()
    {
        QTest::addColumn<Replies>("replies");
        QTest::addColumn<int>("yields");
        QTest::newRow("immediate reply") << Replies{registerReply(1, 3, 1)} << 0;
        QTest::newRow("silent slave, three attempts") << Replies{} << 3;
        QTest::newRow("reply in four pieces")
            << Replies{ScriptedLine::Reply::split(registerReply(1, 3, 1), 2, 10, 10)} << 4;
        QTest::newRow("exception") << Replies{ScriptedLine::Reply().at(30, exceptionReply(1, 3, 2))} << 2;
    }
    void waitWakesOnlyOnDataOrDeadline()
    {
        QFETCH(Replies, replies);
        QFETCH(int, yields);
        Bench bench;
        for (const auto &reply : replies)
            bench.line.script(reply);
        bench.master.ReadRegister(3, 0, 1);
        QCOMPARE(bench.line.yieldCalls(), yields);
    }

    // The wall clock may jump (midnight, daylight saving, an operator fixing the time);
    // the time-out follows the monotonic counter only.
    void wallClockJumpsDoNotCutTheWait_data()
    {
        QTest::addColumn<QDateTime>("start");
        QTest::addColumn<qint64>("jumpMs");
        QTest::newRow("across midnight") << QDateTime(QDate(2026, 1, 5), QTime(23, 59, 59, 500)) << qint64(0);
        QTest::newRow("set back an hour") << QDateTime(QDate(2026, 3, 29), QTime(3, 0)) << qint64(-3600000);
        QTest::newRow("set forward a day") << QDateTime(QDate(2026, 3, 29), QTime(3, 0)) << qint64(86400000);
    }
    void wallClockJumpsDoNotCutTheWait()
    {
        QFETCH(QDateTime, start);
        QFETCH(qint64, jumpMs);
        Bench bench;
        bench.clock.setNow(start);
        bench.line.setDuringYield([&] { bench.clock.setNow(bench.clock.now().addMSecs(jumpMs)); });
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QCOMPARE(bench.clock.monotonicMs(), 3003);
        QCOMPARE(bench.line.requests().size(), 3);
    }

    void flagsDescribeTheLastTransactionOnly()
    {
        Bench bench;
        bench.master.setAttempts(1);
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), -99999);
        QVERIFY(bench.master.TimeOutFlag());

        bench.line.script(exceptionReply(1, 3, 3));
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 3);
        QVERIFY(bench.master.ExceptionFlag());
        QVERIFY(!bench.master.TimeOutFlag());

        QCOMPARE(bench.master.ReadRegister(3, 0, 0), -99999);
        QVERIFY(bench.master.BroadcastFlag());
        QVERIFY(!bench.master.ExceptionFlag());
        QCOMPARE(bench.master.failureDescription(), QStringLiteral(" Broadcast"));

        bench.line.script(registerReply(1, 3, 9));
        QCOMPARE(bench.master.ReadRegister(3, 0, 1), 9);
        QVERIFY(!bench.master.BroadcastFlag());
        QVERIFY(!bench.master.ExceptionFlag());
        QVERIFY(!bench.master.TimeOutFlag());
        QVERIFY(bench.master.failureDescription().isEmpty());
        QCOMPARE(bench.master.replyBuffer(), registerReply(1, 3, 9));
    }

    // Bytes left in the input by an earlier operation are flushed before the request.
    void staleInputIsFlushedBeforeTheRequest()
    {
        Bench bench;
        QVERIFY(bench.master.OpenPort());
        bench.line.script(ScriptedLine::Reply().at(0, registerReply(1, 3, 500)).at(1, registerReply(1, 3, 215)));
        QVERIFY(bench.master.Transact(1, 1, BuildFrame(8, 1, 3, hex("00000001"))));
        bench.clock.advance(5); // the second reply is now waiting in the input
        bench.line.script(registerReply(1, 3, 42));
        QCOMPARE(bench.master.ReadItem(3, 0, 0, 0, 1), 42.0f);
        bench.master.ClosePort();
    }

    void badRequestsNeverReachTheLine_data()
    {
        QTest::addColumn<bool>("write");
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("slave");
        QTest::newRow("read with a write code") << false << 6 << 0 << 0 << 1;
        QTest::newRow("read with an unknown code") << false << 7 << 0 << 0 << 1;
        QTest::newRow("write with a read code") << true << 3 << 0 << 1 << 1;
        QTest::newRow("address too high") << false << 3 << 65536 << 0 << 1;
        QTest::newRow("negative address") << true << 6 << -1 << 1 << 1;
        QTest::newRow("slave too high") << false << 3 << 0 << 0 << 256;
        QTest::newRow("negative slave") << true << 6 << 0 << 1 << -1;
        QTest::newRow("value too large") << true << 6 << 0 << 65536 << 1;
        QTest::newRow("value too small") << true << 6 << 0 << -32769 << 1;
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
            LogCapture log;
            bench.master.setCommunicate(communicate);
            const qint32 result = write ? bench.master.WriteRegister(functionCode, address, value, slave)
                                        : bench.master.ReadRegister(functionCode, address, slave);
            QCOMPARE(result, -99999);
            QCOMPARE(log.count(QtWarningMsg, QStringLiteral("refused")), 1);
            QCOMPARE(bench.line.openCalls(), 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestModbusMaster)
#include "tst_modbusmaster.moc"
