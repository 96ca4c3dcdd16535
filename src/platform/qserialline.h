#pragma once

#include "fieldbus/serialformat.h"
#include "fieldbus/serialline.h"

#include <QSerialPort>

namespace telvane {

// The serial line over a real port (a COM port, a USB adapter, a pseudo-terminal).
// A port that is missing, busy or misnamed makes open() answer false and leaves the
// reason in lastError() and in the platform log; nothing else happens.
class QSerialLine final : public SerialLine
{
public:
    QSerialLine();
    ~QSerialLine() override;

    void setPort(const QString &port) override;
    bool setFormat(const QString &format) override;

    bool open() override;
    void close() override;
    bool isOpen() const override;

    void write(const QByteArray &bytes) override;
    qint64 bytesAvailable() override;
    QByteArray readAll() override;
    void clearInput() override;

    void yield(int ms) override;

    QString lastError() const override;

    // The device open() uses, once setPort has been given a valid port.
    QString deviceName() const { return m_device; }
    SerialFormat format() const { return m_format; }

private:
    void applyFormat();
    void fail(const QString &reason);

    QSerialPort m_port;
    QString m_device;
    QString m_portProblem;
    SerialFormat m_format;
    QString m_lastError;
};

} // namespace telvane
