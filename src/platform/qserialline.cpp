#include "platform/qserialline.h"

#include "platform/platformlog.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>

namespace telvane {

namespace {

QSerialPort::Parity toQt(Parity parity)
{
    switch (parity) {
    case Parity::None: return QSerialPort::NoParity;
    case Parity::Even: return QSerialPort::EvenParity;
    case Parity::Odd: return QSerialPort::OddParity;
    case Parity::Mark: return QSerialPort::MarkParity;
    case Parity::Space: return QSerialPort::SpaceParity;
    }
    return QSerialPort::NoParity;
}

QSerialPort::StopBits toQt(StopBits stopBits)
{
    switch (stopBits) {
    case StopBits::One: return QSerialPort::OneStop;
    case StopBits::OneAndHalf: return QSerialPort::OneAndHalfStop;
    case StopBits::Two: return QSerialPort::TwoStop;
    }
    return QSerialPort::OneStop;
}

} // namespace

QSerialLine::QSerialLine()
    : m_portProblem(QStringLiteral("nessuna porta impostata"))
{
    applyFormat();
    // An adapter pulled out or the far end of a pseudo-terminal gone: the port is
    // useless until it is opened again, which the master does for every operation.
    // Left open, it would report the same read error in a tight loop. Closed from the
    // event loop, never from inside the signal that reports it.
    QObject::connect(&m_port, &QSerialPort::errorOccurred, &m_port, [this](QSerialPort::SerialPortError error) {
        if ((error != QSerialPort::ResourceError && error != QSerialPort::ReadError) || !m_port.isOpen())
            return;
        qCWarning(lcPlatform).noquote() << QStringLiteral("Porta seriale %1 persa: %2").arg(m_device, m_port.errorString());
        m_port.close();
    }, Qt::QueuedConnection);
}

QSerialLine::~QSerialLine() = default;

void QSerialLine::setPort(const QString &port)
{
    QString problem;
    const QString device = resolveSerialPort(port, &problem).value_or(QString());
    if (device != m_device && m_port.isOpen())
        m_port.close();
    m_device = device;
    m_portProblem = problem;
}

bool QSerialLine::setFormat(const QString &format)
{
    QString problem;
    const std::optional<SerialFormat> parsed = parseSerialFormat(format, &problem);
    if (!parsed) {
        qCWarning(lcPlatform).noquote() << QStringLiteral("Impostazioni della porta seriale non cambiate: %1").arg(problem);
        return false;
    }
    m_format = *parsed;
    applyFormat();
    return true;
}

void QSerialLine::applyFormat()
{
    // Before open() these only record the settings; on an open port they take effect
    // at once, and a device that refuses one says so in the log.
    bool applied = m_port.setBaudRate(m_format.baudRate);
    applied = m_port.setDataBits(static_cast<QSerialPort::DataBits>(m_format.dataBits)) && applied;
    applied = m_port.setParity(toQt(m_format.parity)) && applied;
    applied = m_port.setStopBits(toQt(m_format.stopBits)) && applied;
    if (!applied) {
        qCWarning(lcPlatform).noquote()
            << QStringLiteral("Porta seriale %1: impostazioni rifiutate: %2").arg(m_device, m_port.errorString());
    }
}

bool QSerialLine::open()
{
    if (m_port.isOpen())
        return true;
    if (m_device.isEmpty()) {
        fail(QStringLiteral("Porta seriale non aperta: %1").arg(m_portProblem));
        return false;
    }
    m_port.setPortName(m_device);
    if (!m_port.open(QIODevice::ReadWrite)) {
        fail(QStringLiteral("Porta seriale %1 non aperta: %2").arg(m_device, m_port.errorString()));
        return false;
    }
    m_lastError.clear();
    return true;
}

void QSerialLine::close()
{
    m_port.close();
}

bool QSerialLine::isOpen() const
{
    return m_port.isOpen();
}

void QSerialLine::write(const QByteArray &bytes)
{
    if (!m_port.isOpen())
        return;
    m_port.write(bytes);
    // Hands the request to the driver now instead of at the next event-loop pass.
    m_port.flush();
}

qint64 QSerialLine::bytesAvailable()
{
    return m_port.isOpen() ? m_port.bytesAvailable() : 0;
}

QByteArray QSerialLine::readAll()
{
    return m_port.isOpen() ? m_port.readAll() : QByteArray();
}

void QSerialLine::clearInput()
{
    if (m_port.isOpen())
        m_port.clear(QSerialPort::Input);
}

void QSerialLine::yield(int ms)
{
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.setTimerType(Qt::PreciseTimer);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&m_port, &QIODevice::readyRead, &loop, &QEventLoop::quit);
    QObject::connect(&m_port, &QIODevice::aboutToClose, &loop, &QEventLoop::quit);
    deadline.start(std::max(ms, 0));
    loop.exec();
}

QString QSerialLine::lastError() const
{
    return m_lastError;
}

void QSerialLine::fail(const QString &reason)
{
    // A missing port fails again at every poll; the log says it once per new reason.
    if (reason == m_lastError)
        qCDebug(lcPlatform).noquote() << reason;
    else
        qCWarning(lcPlatform).noquote() << reason;
    m_lastError = reason;
}

} // namespace telvane
