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

    // Starts both processes and waits until the first slave answers a read, for at
    // most `timeoutMs`. False with error() telling why.
    bool start(int timeoutMs = 15000);
    void stop();

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
};

} // namespace telvane
