#pragma once

#include <QByteArray>
#include <QString>

namespace telvane {

// The serial line as the Modbus master sees it. The real one drives the port through
// the terminal interface (platform/); tests use a scripted slave that records every
// request byte.
class SerialLine
{
public:
    virtual ~SerialLine() = default;

    // Port: a number (the platform's N-th port) or a device path. Format: the
    // "9600,N,8,1" settings string. False when the format cannot be understood; the
    // previous settings are then kept.
    virtual void setPort(const QString &port) = 0;
    virtual bool setFormat(const QString &format) = 0;

    virtual bool open() = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;

    virtual void write(const QByteArray &bytes) = 0;
    virtual qint64 bytesAvailable() = 0;
    virtual QByteArray readAll() = 0;
    virtual void clearInput() = 0;

    // Lets the event loop run until bytes arrive or `ms` have passed, whichever comes
    // first. Never a busy spin: the window stays responsive and the CPU idle.
    virtual void yield(int ms) = 0;

    // Why the last open failed, for the log.
    virtual QString lastError() const = 0;
};

} // namespace telvane
