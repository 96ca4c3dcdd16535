#include "fieldbus/modbusmaster.h"

#include "base/clock.h"
#include "fieldbus/fieldbuslog.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/serialline.h"

#include <climits>
#include <cmath>
#include <random>

namespace telvane {

namespace {

const QString ExceptionText = QStringLiteral(" (Exception)");
const QString TimeOutText = QStringLiteral(" Time out");
const QString BroadcastText = QStringLiteral(" Broadcast");

constexpr float LongestReplyTimeout = 3600.0f;

std::function<double()> clockSeededRandom(const Clock &clock)
{
    std::mt19937_64 engine(static_cast<quint64>(clock.now().toMSecsSinceEpoch()));
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    return [engine, uniform]() mutable { return uniform(engine); };
}

// Values travel as singles and reach the callers as integers, rounded half to even.
qint32 toInteger(float value)
{
    return static_cast<qint32>(std::nearbyint(value));
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

qint32 ModbusMaster::ReadRegister(int functionCode, int address, int slave)
{
    if (refuseWhileBusy("ReadRegister")
        || !acceptRequest("ReadRegister", isReadFunction(functionCode), functionCode, address, slave))
        return InvalidValue;
    if (!m_communicate)
        return simulatedRead(functionCode);

    const Raise busy(m_busy);
    const AddressBytes item = splitAddress(static_cast<quint16>(address));
    OpenPort();
    // Nobody answers a broadcast, so asking again would only wait again.
    const int tries = slave == 0 ? 1 : m_attempts;
    qint32 result = InvalidValue;
    for (int attempt = 0; attempt < tries && result == InvalidValue; ++attempt)
        result = toInteger(ReadItem(functionCode, item.high, item.low, 0, slave));
    ClosePort();
    return result;
}

qint32 ModbusMaster::WriteRegister(int functionCode, int address, qint32 value, int slave)
{
    if (refuseWhileBusy("WriteRegister")
        || !acceptRequest("WriteRegister", isWriteFunction(functionCode), functionCode, address, slave))
        return InvalidValue;
    if (value < -32768 || value > 0xFFFF) {
        qCWarning(lcFieldbus) << "WriteRegister refused: value" << value << "does not fit a register";
        return InvalidValue;
    }
    if (!m_communicate)
        return value;

    const Raise busy(m_busy);
    const AddressBytes item = splitAddress(static_cast<quint16>(address));
    const QString text = QString::number(value);
    OpenPort();
    // A broadcast write is carried out by every slave and answered by none: sending it
    // again would carry it out again.
    const int tries = slave == 0 ? 1 : m_attempts;
    qint32 result = InvalidValue;
    for (int attempt = 0; attempt < tries && result == InvalidValue; ++attempt)
        result = toInteger(WriteItem(functionCode, item.high, item.low, text, 0, slave));
    ClosePort();
    return result;
}

bool ModbusMaster::TestPort(const QString &port)
{
    if (refuseWhileBusy("TestPort"))
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

bool ModbusMaster::Transact(int slave, int expectedLength, const QByteArray &frame)
{
    if (refuseWhileWaiting("Transact"))
        return false;

    // A port that would not open still costs the time-out, as a silent line does: the
    // cycle keeps its pace and the items are counted as not answering.
    const bool open = m_line.isOpen();
    if (open)
        m_line.clearInput();
    m_exceptionFlag = false;
    m_timeOutFlag = false;
    m_broadcastFlag = slave == 0;
    m_failureDescription.clear();
    if (open)
        m_line.write(frame);

    // On the monotonic counter, so a wait across midnight or a clock change lasts what
    // it should. Bytes that arrive by the deadline itself still count.
    const qint64 deadline = m_clock.monotonicMs() + qRound64(double(m_replyTimeoutSeconds) * 1000.0);
    bool complete = false;
    QByteArray received;
    {
        const Raise waiting(m_waiting);
        for (;;) {
            if (open && m_line.bytesAvailable() >= expectedLength) {
                received = m_line.readAll();
                complete = true;
                break;
            }
            const qint64 remaining = deadline - m_clock.monotonicMs();
            if (remaining < 0)
                break;
            m_line.yield(static_cast<int>(qMin<qint64>(remaining + 1, INT_MAX)));
        }
    }

    if (!complete) {
        if (open)
            received = m_line.readAll();
        if (received.isEmpty()) {
            if (slave == 0) {
                m_failureDescription = BroadcastText;
            } else {
                m_timeOutFlag = true;
                m_failureDescription = TimeOutText;
            }
            m_reply.clear();
            return false;
        }
        // A short reply: an exception answer is shorter than the data answer.
        m_exceptionFlag = true;
        m_failureDescription = ExceptionText;
    }
    m_reply = received;
    return complete;
}

float ModbusMaster::exceptionOrInvalid(const char *operation, int functionCode, int slave) const
{
    // The exception code stands in for the value: callers have always treated it as a
    // reading, and the plant's history depends on that.
    if (m_exceptionFlag && m_reply.size() >= 3) {
        logFailure(operation, functionCode, slave,
                   QStringLiteral("short reply, exception code %1").arg(static_cast<quint8>(m_reply[2])));
        return static_cast<quint8>(m_reply[2]);
    }
    logFailure(operation, functionCode, slave, m_failureDescription.trimmed());
    return InvalidValue;
}

void ModbusMaster::logFailure(const char *operation, int functionCode, int slave, const QString &reason) const
{
    qCDebug(lcFieldbus).nospace() << operation << " slave " << slave << " code " << functionCode << ": "
                                  << reason << " [" << m_reply.toHex(' ') << "]";
}

float ModbusMaster::ReadItem(int functionCode, quint8 addressHigh, quint8 addressLow, int decimals, int slave)
{
    if (!acceptRequest("ReadItem", isReadFunction(functionCode), functionCode, 0, slave))
        return InvalidValue;
    const int expected = expectedReplyLength(functionCode);
    // One item is always read.
    const char data[] = {static_cast<char>(addressHigh), static_cast<char>(addressLow), 0, 1};
    const QByteArray request = BuildFrame(8, static_cast<quint8>(slave), static_cast<quint8>(functionCode),
                                          QByteArray(data, sizeof data));
    if (!Transact(slave, expected, request))
        return exceptionOrInvalid("ReadItem", functionCode, slave);
    // The reply's slave and function code are deliberately not compared with the
    // request: instruments that answer with another address have always been accepted.
    if (!CheckReplyCrc(m_reply, expected)) {
        logFailure("ReadItem", functionCode, slave, QStringLiteral("bad CRC"));
        return InvalidValue;
    }
    const auto byte = [this](int index) { return static_cast<quint8>(m_reply[index]); };
    if (functionCode <= 2)
        return byte(3);
    return DecodeValue(byte(3), byte(4), decimals);
}

float ModbusMaster::WriteItem(int functionCode, quint8 addressHigh, quint8 addressLow, const QString &value,
                              int decimals, int slave)
{
    if (!acceptRequest("WriteItem", isWriteFunction(functionCode), functionCode, 0, slave))
        return InvalidValue;
    quint8 valueHigh = 0;
    quint8 valueLow = 0;
    if (!EncodeValue(value, decimals, &valueHigh, &valueLow)) {
        qCWarning(lcFieldbus) << "WriteItem refused: value" << value << "with" << decimals
                              << "decimals does not fit a register";
        return InvalidValue;
    }
    const int expected = expectedReplyLength(functionCode);
    const char data[] = {static_cast<char>(addressHigh), static_cast<char>(addressLow),
                         static_cast<char>(valueHigh), static_cast<char>(valueLow)};
    const QByteArray request = BuildFrame(8, static_cast<quint8>(slave), static_cast<quint8>(functionCode),
                                          QByteArray(data, sizeof data));
    if (!Transact(slave, expected, request))
        return exceptionOrInvalid("WriteItem", functionCode, slave);
    if (!CheckReplyCrc(m_reply, expected)) {
        logFailure("WriteItem", functionCode, slave, QStringLiteral("bad CRC"));
        return InvalidValue;
    }
    const quint8 echoHigh = static_cast<quint8>(m_reply[4]);
    const quint8 echoLow = static_cast<quint8>(m_reply[5]);
    if (value.trimmed().startsWith(QLatin1Char('-')))
        return DecodeValue(echoHigh, echoLow, decimals);
    return decodeUnsignedValue(echoHigh, echoLow, decimals);
}

} // namespace telvane
