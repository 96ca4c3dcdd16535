#pragma once

#include "fieldbus/serialformat.h"
#include "fieldbus/serialline.h"

#include <QByteArray>

#include <memory>

class QEventLoop;
class QSocketNotifier;

namespace telvane {

// The serial line over a real port (a COM port, a USB adapter, a pseudo-terminal),
// driven through the terminal interface directly.
//
// The master opens and closes the port around every operation, so opening must cost
// next to nothing: no lock file is written. A second program is kept off the port by an
// exclusive lock on the device (flock) and the terminal's exclusive mode; a port in use
// fails to open, as it always did. A port that is missing, busy or misnamed makes
// open() answer false and leaves the reason in lastError() and in the platform log.
// A port that goes away while open (an adapter pulled out, the far end of a
// pseudo-terminal closed) is closed at once, so the next open tells whether it is back.
class TermiosLine final : public SerialLine
{
public:
    TermiosLine();
    ~TermiosLine() override;

    void setPort(const QString &port) override;
    bool setFormat(const QString &format) override;

    bool open() override;
    void close() override;
    bool isOpen() const override { return m_fd >= 0; }

    void write(const QByteArray &bytes) override;
    qint64 bytesAvailable() override;
    QByteArray readAll() override;
    void clearInput() override;

    void yield(int ms) override;

    QString lastError() const override { return m_lastError; }

    QString deviceName() const { return m_device; }

private:
    // Reads what the driver holds into the buffer; closes the port if it is gone.
    void readPending();
    bool applyFormat();
    void fail(const QString &reason);
    void lost(const QString &reason);

    int m_fd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QEventLoop *m_waiting = nullptr; // the loop of yield(), while it runs
    QByteArray m_input;
    QString m_device;
    QString m_portProblem;
    SerialFormat m_format;
    QString m_lastError;
};

} // namespace telvane
