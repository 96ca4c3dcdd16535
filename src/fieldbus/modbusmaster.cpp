#include "fieldbus/modbusmaster.h"

#include "base/clock.h"
#include "fieldbus/fieldbuslog.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/serialline.h"

#include <climits>
#include <cmath>
#include <random>
#include <utility>

namespace telvane {

namespace {

constexpr float LongestReplyTimeout = 3600.0f;

std::function<double()> clockSeededRandom(const Clock &clock)
{
    std::mt19937_64 engine(static_cast<quint64>(clock.now().toMSecsSinceEpoch()));
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    return [engine, uniform]() mutable { return uniform(engine); };
}

// Sets a flag for the lifetime of a scope.
class Raise
{
public:
    explicit Raise(bool &flag) : m_flag(flag) { m_flag = true; }
    ~Raise() { m_flag = false; }
    Raise(const Raise &) = delete;
    Raise &operator=(const Raise &) = delete;

private:
    bool &m_flag;
};

} // namespace

ModbusMaster::ModbusMaster(SerialLine &line, const Clock &clock)
    : m_line(line)
    , m_clock(clock)
    , m_random(clockSeededRandom(clock))
{
}

void ModbusMaster::setReplyTimeout(float seconds)
{
    if (!(seconds >= 0.0f)) {
        qCWarning(lcFieldbus) << "reply time-out" << seconds << "s is not usable; using 0 s";
        seconds = 0.0f;
    } else if (seconds > LongestReplyTimeout) {
        qCWarning(lcFieldbus) << "reply time-out" << seconds << "s is too long; using" << LongestReplyTimeout << "s";
        seconds = LongestReplyTimeout;
    }
    m_replyTimeoutSeconds = seconds;
}

void ModbusMaster::setAttempts(int attempts)
{
    const int bounded = qBound(1, attempts, 32767);
    if (bounded != attempts)
        qCWarning(lcFieldbus) << "attempts" << attempts << "out of range; using" << bounded;
    m_attempts = bounded;
}

void ModbusMaster::setRandomSource(std::function<double()> random)
{
    m_random = random ? std::move(random) : clockSeededRandom(m_clock);
}

bool ModbusMaster::refuseWhileBusy(const char *operation) const
{
    if (!busy())
        return false;
    qCWarning(lcFieldbus) << operation << "refused: another transaction is waiting for its reply";
    return true;
}

bool ModbusMaster::refuseWhileWaiting(const char *operation) const
{
    if (!m_waiting)
        return false;
    qCWarning(lcFieldbus) << operation << "refused: a transaction is waiting for its reply";
    return true;
}

bool ModbusMaster::acceptRequest(const char *operation, bool knownFunction, int functionCode, int address,
                                 int slave) const
{
    if (!knownFunction) {
        qCWarning(lcFieldbus) << operation << "refused: function code" << functionCode << "not supported";
        return false;
    }
    if (address < 0 || address > 0xFFFF) {
        qCWarning(lcFieldbus) << operation << "refused: address" << address << "outside 0..65535";
        return false;
    }
    if (slave < 0 || slave > 0xFF) {
        qCWarning(lcFieldbus) << operation << "refused: slave" << slave << "outside 0..255";
        return false;
    }
    return true;
}

BusOutcome ModbusMaster::read(int functionCode, int address, int slave)
{
    if (refuseWhileBusy("ReadRegister"))
        return BusOutcome::failure(BusResult::LineBusy);
    if (!acceptRequest("ReadRegister", isReadFunction(functionCode), functionCode, address, slave))
        return BusOutcome::failure(BusResult::NotConfigured);
    if (!m_communicate)
        return BusOutcome::of(simulatedRead(functionCode));

    const WordBytes item = splitAddress(static_cast<quint16>(address));
    return withAttempts(slave, [&] { return ReadItem(functionCode, item.high, item.low, slave); });
}

BusOutcome ModbusMaster::write(int functionCode, int address, qint32 value, int slave)
{
    if (refuseWhileBusy("WriteRegister"))
        return BusOutcome::failure(BusResult::LineBusy);
    if (!acceptRequest("WriteRegister", isWriteFunction(functionCode), functionCode, address, slave))
        return BusOutcome::failure(BusResult::NotConfigured);
    if (!EncodeValue(value)) {
        qCWarning(lcFieldbus) << "WriteRegister refused: value" << value << "does not fit a register";
        return BusOutcome::failure(BusResult::NotConfigured);
    }
    if (!m_communicate)
        return BusOutcome::of(value);

    const WordBytes item = splitAddress(static_cast<quint16>(address));
    return withAttempts(slave, [&] { return WriteItem(functionCode, item.high, item.low, value, slave); });
}

BusOutcome ModbusMaster::withAttempts(int slave, const std::function<BusOutcome()> &attempt)
{
    if (m_stopped)
        return BusOutcome::failure(BusResult::Stopped);
    const Raise busy(m_busy);
    OpenPort();
    // Nobody answers a broadcast, so asking again would only wait again; and a write
    // would be carried out again by every slave.
    const int tries = slave == 0 ? 1 : m_attempts;
    BusOutcome outcome;
    for (int i = 0; i < tries && !outcome.answered() && !m_stopped; ++i)
        outcome = attempt();
    ClosePort();
    return outcome;
}

bool ModbusMaster::testPort(const QString &port)
{
    if (refuseWhileBusy("testPort"))
        return false;
    const Raise busy(m_busy);
    m_line.setPort(port);
    const bool opened = OpenPort();
    ClosePort();
    return opened;
}

qint32 ModbusMaster::simulatedRead(int functionCode)
{
    const double random = m_random();
    if (functionCode == 1 || functionCode == 2)
        return random > 0.5 ? 1 : 0;
    return static_cast<qint32>(std::abs(std::nearbyint(random * 500.0) - 100.0));
}

bool ModbusMaster::OpenPort()
{
    if (refuseWhileWaiting("OpenPort"))
        return false;
    if (m_line.open()) {
        m_lastOpenFailed = false;
        return true;
    }
    // A missing port fails every operation of every cycle: say it once, then quietly.
    if (m_lastOpenFailed)
        qCDebug(lcFieldbus) << "serial port still cannot be opened:" << m_line.lastError();
    else
        qCWarning(lcFieldbus) << "serial port cannot be opened:" << m_line.lastError();
    m_lastOpenFailed = true;
    return false;
}

void ModbusMaster::ClosePort()
{
    if (refuseWhileWaiting("ClosePort"))
        return;
    DrainInput();
    m_line.close();
}

void ModbusMaster::DrainInput()
{
    if (refuseWhileWaiting("DrainInput"))
        return;
    // A line that claims bytes but hands none over must not hold us here.
    while (m_line.bytesAvailable() > 0) {
        if (m_line.readAll().isEmpty())
            break;
    }
}

BusResult ModbusMaster::Transact(int slave, int expectedLength, const QByteArray &frame)
{
    if (refuseWhileWaiting("Transact"))
        return BusResult::LineBusy;

    // A port that would not open still costs the time-out, as a silent line does: the
    // cycle keeps its pace and the items are counted as not answering.
    const bool open = m_line.isOpen();
    bool askedAgain = false;
    if (open) {
        askedAgain = letLateReplyPass(frame);
        m_line.clearInput();
        m_line.write(frame);
    }

    // On the monotonic counter, so a wait across midnight or a clock change lasts what
    // it should. Bytes that arrive by the deadline itself still count.
    const qint64 deadline = m_clock.monotonicMs() + qRound64(double(m_replyTimeoutSeconds) * 1000.0);
    {
        const Raise waiting(m_waiting);
        for (;;) {
            if (open && m_line.bytesAvailable() >= expectedLength) {
                m_reply = m_line.readAll();
                rememberUnanswered(frame, BusResult::Value, askedAgain);
                return BusResult::Value;
            }
            const qint64 remaining = deadline - m_clock.monotonicMs();
            if (remaining < 0)
                break;
            m_line.yield(static_cast<int>(qMin<qint64>(remaining + 1, INT_MAX)));
        }
    }

    m_reply = open ? m_line.readAll() : QByteArray();
    BusResult result = slave == 0 ? BusResult::Broadcast : BusResult::TimeOut;
    if (!m_reply.isEmpty())
        result = BusResult::Exception; // an exception answer is shorter than the data answer
    else if (!open)
        result = BusResult::NoPort;
    rememberUnanswered(frame, result, askedAgain);
    return result;
}

void ModbusMaster::rememberUnanswered(const QByteArray &frame, BusResult result, bool askedAgain)
{
    // A whole exception frame is an answer; fewer bytes, or garbage, may be the head of
    // a reply whose tail is still coming. A request asked again may have been answered
    // by the first one's late reply, and its own may still come.
    const bool partial = result == BusResult::Exception && !(m_reply.size() == 5 && CheckReplyCrc(m_reply, 5));
    if (result != BusResult::TimeOut && !partial && !askedAgain)
        return;
    m_unanswered = frame;
    m_unansweredAtMs = m_clock.monotonicMs();
}

bool ModbusMaster::letLateReplyPass(const QByteArray &frame)
{
    if (m_unanswered.isEmpty())
        return false;
    // The same request again (the next attempt): a late reply answers it just as well.
    if (std::exchange(m_unanswered, QByteArray()) == frame)
        return true;
    const qint64 quietUntil = m_unansweredAtMs + LateReplyQuietMs;
    const Raise waiting(m_waiting);
    for (;;) {
        m_line.readAll();
        const qint64 remaining = quietUntil - m_clock.monotonicMs();
        if (remaining <= 0 || !m_line.isOpen())
            break;
        m_line.yield(static_cast<int>(remaining));
    }
    return false;
}

BusOutcome ModbusMaster::failed(const char *operation, int functionCode, int slave, BusOutcome outcome) const
{
    qCDebug(lcFieldbus).nospace() << operation << " slave " << slave << " code " << functionCode << ": "
                                  << outcome.reason() << " " << outcome.exceptionCode << " ["
                                  << m_reply.toHex(' ') << "]";
    return outcome;
}

BusOutcome ModbusMaster::ReadItem(int functionCode, quint8 addressHigh, quint8 addressLow, int slave)
{
    if (!acceptRequest("ReadItem", isReadFunction(functionCode), functionCode, 0, slave))
        return BusOutcome::failure(BusResult::NotConfigured);
    const int expected = expectedReplyLength(functionCode);
    // One item is always read.
    const char data[] = {static_cast<char>(addressHigh), static_cast<char>(addressLow), 0, 1};
    const QByteArray request = BuildFrame(8, static_cast<quint8>(slave), static_cast<quint8>(functionCode),
                                          QByteArray(data, sizeof data));
    const BusResult result = Transact(slave, expected, request);
    if (result == BusResult::Exception && m_reply.size() >= 3) {
        // The exception code stands in for the value: callers have always treated it as
        // a reading, and the plant's history depends on that.
        const int code = static_cast<quint8>(m_reply[2]);
        return failed("ReadItem", functionCode, slave, {BusResult::Exception, code, code});
    }
    if (result != BusResult::Value)
        return failed("ReadItem", functionCode, slave, BusOutcome::failure(result));
    // The reply's slave and function code are deliberately not compared with the
    // request: instruments that answer with another address have always been accepted.
    if (!CheckReplyCrc(m_reply, expected))
        return failed("ReadItem", functionCode, slave, BusOutcome::failure(BusResult::BadCrc));
    const auto byte = [this](int index) { return static_cast<quint8>(m_reply[index]); };
    if (functionCode <= 2)
        return BusOutcome::of(byte(3));
    return BusOutcome::of(DecodeValue(byte(3), byte(4)));
}

BusOutcome ModbusMaster::WriteItem(int functionCode, quint8 addressHigh, quint8 addressLow, qint32 value, int slave)
{
    if (!acceptRequest("WriteItem", isWriteFunction(functionCode), functionCode, 0, slave))
        return BusOutcome::failure(BusResult::NotConfigured);
    const std::optional<WordBytes> word = EncodeValue(value);
    if (!word) {
        qCWarning(lcFieldbus) << "WriteItem refused: value" << value << "does not fit a register";
        return BusOutcome::failure(BusResult::NotConfigured);
    }
    const int expected = expectedReplyLength(functionCode);
    const char data[] = {static_cast<char>(addressHigh), static_cast<char>(addressLow),
                         static_cast<char>(word->high), static_cast<char>(word->low)};
    const QByteArray request = BuildFrame(8, static_cast<quint8>(slave), static_cast<quint8>(functionCode),
                                          QByteArray(data, sizeof data));
    const BusResult result = Transact(slave, expected, request);
    // A refused write did not happen: its exception code is no echo.
    if (result == BusResult::Exception && m_reply.size() >= 3) {
        const int code = static_cast<quint8>(m_reply[2]);
        return failed("WriteItem", functionCode, slave, {BusResult::Exception, InvalidValue, code});
    }
    if (result != BusResult::Value)
        return failed("WriteItem", functionCode, slave, BusOutcome::failure(result));
    if (!CheckReplyCrc(m_reply, expected))
        return failed("WriteItem", functionCode, slave, BusOutcome::failure(BusResult::BadCrc));
    const quint8 echoHigh = static_cast<quint8>(m_reply[4]);
    const quint8 echoLow = static_cast<quint8>(m_reply[5]);
    if (value < 0)
        return BusOutcome::of(DecodeValue(echoHigh, echoLow));
    return BusOutcome::of(decodeUnsignedValue(echoHigh, echoLow));
}

} // namespace telvane
