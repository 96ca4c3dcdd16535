#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace telvane {

class Clock;
class SerialLine;

// The Modbus RTU master: single-item reads and writes on the one serial line.
//
// Each operation opens the port, makes up to `attempts()` tries of one transaction and
// closes the port again, so a technician can unplug the line between polls. While a
// reply is awaited the master yields to the event loop (through the line), so the
// window stays responsive; an operation requested from an event handler during that
// wait is refused with -99999 instead of mixing two requests on the wire.
//
// Not thread-safe: it lives on the user-interface thread with the line it drives.
class ModbusMaster
{
public:
    // Every read or write that got no valid answer returns this.
    static constexpr qint32 InvalidValue = -99999;

    // Default settings: one second, three attempts, talking to the instruments.
    ModbusMaster(SerialLine &line, const Clock &clock);

    // --- Operations -------------------------------------------------------------

    // Function code 1 or 2 (one bit), 3 or 4 (one register); `address` 0..65535,
    // `slave` 0..255 (0 is broadcast: sent once, and since nobody answers it ends in
    // -99999 with " Broadcast" after one time-out).
    // Returns the value or -99999. An exception reply gives its exception code as the
    // value: callers have always seen it that way and rely on it.
    qint32 ReadRegister(int functionCode, int address, int slave);

    // Function code 5 (`value` 65280 = on, 0 = off), 6 or 8; `value` -32768..65535.
    // Returns the value echoed by the instrument, or -99999.
    qint32 WriteRegister(int functionCode, int address, qint32 value, int slave);

    // Points the line at `port` (a number or a device path) and tries to open and close
    // it. The port stays selected whatever the answer.
    bool TestPort(const QString &port);

    // --- Settings ---------------------------------------------------------------

    // Reply time-out in seconds (fractions allowed). Negative or not a number: 0.
    void setReplyTimeout(float seconds);
    float replyTimeout() const { return m_replyTimeoutSeconds; }

    // Tries per operation, 1..32767 (out-of-range values are clamped, with a warning).
    void setAttempts(int attempts);
    int attempts() const { return m_attempts; }

    // False: simulation. Reads answer random values, writes echo, the port is never
    // touched.
    void setCommunicate(bool communicate) { m_communicate = communicate; }
    bool communicate() const { return m_communicate; }

    // The simulation's source of uniform numbers in [0, 1). By default a generator
    // seeded from the clock's wall time.
    void setRandomSource(std::function<double()> random);

    // --- The last transaction ---------------------------------------------------

    // Bytes arrived, but fewer than a full reply.
    bool ExceptionFlag() const { return m_exceptionFlag; }
    // Nothing arrived from an addressed slave.
    bool TimeOutFlag() const { return m_timeOutFlag; }
    // Addressed to slave 0.
    bool BroadcastFlag() const { return m_broadcastFlag; }
    // " (Exception)", " Time out", " Broadcast" (leading blank included, ready to be
    // appended to a message), or empty. A reply with a bad CRC leaves it empty.
    const QString &failureDescription() const { return m_failureDescription; }
    // Every byte received by the last transaction, in arrival order.
    const QByteArray &replyBuffer() const { return m_reply; }

    // True while an operation is under way (also seen by handlers run during its wait).
    bool busy() const { return m_busy || m_waiting; }

    // --- Lower layers -----------------------------------------------------------
    // Public for the probe tool, the fuzzer and tests; the plant goes through the
    // operations above.

    // False when the line refused to open (the reason goes to the log).
    bool OpenPort();
    // Drains the input first.
    void ClosePort();
    void DrainInput();

    // Sends `frame` and waits up to the reply time-out for `expectedLength` bytes.
    // True with a full reply in `replyBuffer()`; false after a time-out, with the
    // flags and description telling what happened (a short reply is kept).
    bool Transact(int slave, int expectedLength, const QByteArray &frame);

    // One try. -99999 when nothing valid came back.
    float ReadItem(int functionCode, quint8 addressHigh, quint8 addressLow, int decimals, int slave);
    // `value` as text, either "." or "," as decimal separator (see EncodeValue).
    float WriteItem(int functionCode, quint8 addressHigh, quint8 addressLow, const QString &value,
                    int decimals, int slave);

private:
    bool refuseWhileBusy(const char *operation) const;
    bool refuseWhileWaiting(const char *operation) const;
    bool acceptRequest(const char *operation, bool knownFunction, int functionCode, int address,
                       int slave) const;
    qint32 simulatedRead(int functionCode);
    float exceptionOrInvalid(const char *operation, int functionCode, int slave) const;
    void logFailure(const char *operation, int functionCode, int slave, const QString &reason) const;

    SerialLine &m_line;
    const Clock &m_clock;
    std::function<double()> m_random;

    float m_replyTimeoutSeconds = 1.0f;
    int m_attempts = 3;
    bool m_communicate = true;

    bool m_exceptionFlag = false;
    bool m_timeOutFlag = false;
    bool m_broadcastFlag = false;
    QString m_failureDescription;
    QByteArray m_reply;

    bool m_busy = false;    // inside ReadRegister, WriteRegister or TestPort
    bool m_waiting = false; // inside Transact's wait for the reply
    bool m_lastOpenFailed = false;
};

} // namespace telvane
