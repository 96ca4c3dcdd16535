#pragma once

#include "fieldbus/busoutcome.h"

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
// wait is refused as "line busy" instead of mixing two requests on the wire.
//
// Not thread-safe: it lives on the user-interface thread with the line it drives.
class ModbusMaster
{
public:
    // Every read or write that got no valid answer returns this.
    static constexpr qint32 InvalidValue = InvalidRegisterValue;

    // Default settings: one second, three attempts, talking to the instruments.
    ModbusMaster(SerialLine &line, const Clock &clock);

    // --- Operations -------------------------------------------------------------

    // Function code 1 or 2 (one bit), 3 or 4 (one register); `address` 0..65535,
    // `slave` 0..255 (0 is broadcast: sent once, and since nobody answers it ends in
    // a failure after one time-out).
    // An exception reply gives its exception code as the value: callers have always
    // seen it that way and rely on it.
    BusOutcome read(int functionCode, int address, int slave);
    // The value, or -99999.
    qint32 ReadRegister(int functionCode, int address, int slave) { return read(functionCode, address, slave).value; }

    // Function code 5 (`value` 65280 = on, 0 = off), 6 or 8; `value` -32768..65535.
    // The outcome's value is the one echoed by the instrument.
    BusOutcome write(int functionCode, int address, qint32 value, int slave);
    // The echo, or -99999.
    qint32 WriteRegister(int functionCode, int address, qint32 value, int slave)
    {
        return write(functionCode, address, value, slave).value;
    }

    // Points the line at `port` (a number or a device path) and tries to open and close
    // it. The port stays selected whatever the answer.
    bool testPort(const QString &port);

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

    // True while an operation is under way (also seen by handlers run during its wait).
    bool busy() const { return m_busy || m_waiting; }

    // A stop (the operator's, or the system's at shut-down) asked while a round runs:
    // the try waiting for its reply ends as it would, and from then on nothing more is
    // sent; every operation answers Stopped at once, until resumeExchanges().
    void stopExchanges() { m_stopped = true; }
    void resumeExchanges() { m_stopped = false; }
    bool exchangesStopped() const { return m_stopped; }

    // --- Lower layers -----------------------------------------------------------
    // Public for the probe tool, the fuzzer and tests; the plant goes through the
    // operations above.

    // False when the line refused to open (the reason goes to the log).
    bool OpenPort();
    // Drains the input first.
    void ClosePort();
    void DrainInput();

    // Sends `frame` and waits up to the reply time-out for `expectedLength` bytes.
    // Value with a full reply; Exception when fewer bytes came (they
    // are kept); TimeOut, Broadcast or NoPort when none did; LineBusy when called while
    // another transaction waits.
    BusResult Transact(int slave, int expectedLength, const QByteArray &frame);

    // One try each.
    BusOutcome ReadItem(int functionCode, quint8 addressHigh, quint8 addressLow, int slave);
    BusOutcome WriteItem(int functionCode, quint8 addressHigh, quint8 addressLow, qint32 value, int slave);

    // After a request went unanswered, its reply may still come, late, and would be
    // taken for the answer to the next request. So a different request is not sent
    // until the line has been quiet this long since the time-out (what arrives
    // meanwhile is thrown away); a request sent later than that never waits.
    static constexpr int LateReplyQuietMs = 100;

private:
    bool refuseWhileBusy(const char *operation) const;
    // Waits out what is left of the quiet interval after an unanswered request, when
    // `frame` is another request, throwing away whatever arrives meanwhile. True when
    // `frame` is that same request asked again.
    bool letLateReplyPass(const QByteArray &frame);
    void rememberUnanswered(const QByteArray &frame, BusResult result, bool askedAgain);
    bool refuseWhileWaiting(const char *operation) const;
    bool acceptRequest(const char *operation, bool knownFunction, int functionCode, int address,
                       int slave) const;
    qint32 simulatedRead(int functionCode);
    // Up to `attempts()` tries of `attempt` between opening and closing the port.
    BusOutcome withAttempts(int slave, const std::function<BusOutcome()> &attempt);
    BusOutcome failed(const char *operation, int functionCode, int slave, BusOutcome outcome) const;

    SerialLine &m_line;
    const Clock &m_clock;
    std::function<double()> m_random;

    float m_replyTimeoutSeconds = 1.0f;
    int m_attempts = 3;
    bool m_communicate = true;

    QByteArray m_reply;

    bool m_busy = false;    // inside ReadRegister, WriteRegister or testPort
    bool m_waiting = false; // inside Transact's wait for the reply
    bool m_lastOpenFailed = false;
    bool m_stopped = false;

    // The last request whose reply may still be on its way, and when its wait ended.
    QByteArray m_unanswered;
    qint64 m_unansweredAtMs = 0;
};

} // namespace telvane
