#pragma once

#include <QDeadlineTimer>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace telvane {

// A real Modbus RTU slave that we did not write (pymodbus's serial server, run by
// modbus_slave.py) on one end of a socat pseudo-terminal pair; our master opens
// port(). Both processes end with this object, when start() fails, and with the test
// process itself should it die.
class PeerSlave
{
public:
    // One text per slave, as modbus_slave.py takes them: "1 hr:0=1234,1=5 co:0=1".
    // With `wireDelayBaud` each answer comes as late as on a real line at that speed.
    explicit PeerSlave(QStringList slaves, int wireDelayBaud = 0);
    ~PeerSlave();
    PeerSlave(const PeerSlave &) = delete;
    PeerSlave &operator=(const PeerSlave &) = delete;

    // Starts both processes (again, after a stop or a cut line) and waits until the
    // first slave answers a read, for at most `timeoutMs`. False with error() telling
    // why.
    bool start(int timeoutMs = 15000);
    void stop();
    // The far end of the line goes away at once, as an adapter pulled out: socat is
    // killed, so our end of the pty pair is gone.
    void cutLine();

    // Every well-formed request the slave has seen on the line since it was last
    // started, to any slave, in hex ("0103000000018...").
    QStringList requests();
    // How many of requests() went to `slave`.
    int requestsTo(int slave);

    // The device our master opens.
    QString port() const;
    // A device name in the same folder that does not exist.
    QString missingPort() const;
    QString error() const { return m_error; }

private:
    bool startSocat(QDeadlineTimer deadline);
    bool startSlave();
    bool waitUntilAnswering(QDeadlineTimer deadline);
    bool fail(const QString &reason);

    QStringList m_slaves;
    int m_wireDelayBaud = 0;
    QTemporaryDir m_dir;
    QProcess m_socat;
    QProcess m_slave;
    QString m_error;
    QStringList m_requests;
    QByteArray m_partial;
};

} // namespace telvane
