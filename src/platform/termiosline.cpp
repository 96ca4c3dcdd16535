#include "platform/termiosline.h"

#include "platform/platformlog.h"

#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace telvane {

namespace {

std::optional<speed_t> speedFor(int baudRate)
{
    switch (baudRate) {
    case 50: return B50;
    case 75: return B75;
    case 110: return B110;
    case 134: return B134;
    case 150: return B150;
    case 200: return B200;
    case 300: return B300;
    case 600: return B600;
    case 1200: return B1200;
    case 1800: return B1800;
    case 2400: return B2400;
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 115200: return B115200;
    case 230400: return B230400;
    case 460800: return B460800;
    case 921600: return B921600;
    default: return std::nullopt;
    }
}

tcflag_t dataBitsFlag(int dataBits)
{
    switch (dataBits) {
    case 5: return CS5;
    case 6: return CS6;
    case 7: return CS7;
    default: return CS8;
    }
}

tcflag_t parityFlags(Parity parity)
{
    switch (parity) {
    case Parity::None: return 0;
    case Parity::Even: return PARENB;
    case Parity::Odd: return PARENB | PARODD;
    case Parity::Mark: return PARENB | PARODD | CMSPAR;
    case Parity::Space: return PARENB | CMSPAR;
    }
    return 0;
}

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

TermiosLine::TermiosLine()
    : m_portProblem(QStringLiteral("nessuna porta impostata"))
{
}

TermiosLine::~TermiosLine()
{
    close();
}

void TermiosLine::setPort(const QString &port)
{
    QString problem;
    const QString device = resolveSerialPort(port, &problem).value_or(QString());
    if (device != m_device)
        close();
    m_device = device;
    m_portProblem = problem;
}

bool TermiosLine::setFormat(const QString &format)
{
    QString problem;
    const std::optional<SerialFormat> parsed = parseSerialFormat(format, &problem);
    if (!parsed) {
        qCWarning(lcPlatform).noquote() << QStringLiteral("Impostazioni della porta seriale non cambiate: %1").arg(problem);
        return false;
    }
    m_format = *parsed;
    // Before open() this only records the settings; on an open port they take effect at
    // once.
    if (isOpen())
        applyFormat();
    return true;
}

bool TermiosLine::applyFormat()
{
    termios settings{};
    if (::tcgetattr(m_fd, &settings) != 0) {
        qCWarning(lcPlatform).noquote()
            << QStringLiteral("Porta seriale %1: impostazioni non lette: %2").arg(m_device, systemError(errno));
        return false;
    }
    ::cfmakeraw(&settings);
    settings.c_cflag &= ~(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
    settings.c_cflag |= CLOCAL | CREAD | dataBitsFlag(m_format.dataBits) | parityFlags(m_format.parity);
    // A terminal knows one or two stop bits; one and a half is sent as two, which every
    // receiver accepts.
    if (m_format.stopBits != StopBits::One)
        settings.c_cflag |= CSTOPB;
    settings.c_iflag &= ~(IXON | IXOFF | IXANY);
    if (m_format.parity != Parity::None)
        settings.c_iflag |= INPCK;
    // Reads never block: the wait for a reply happens in the event loop.
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    const std::optional<speed_t> speed = speedFor(m_format.baudRate);
    if (!speed) {
        qCWarning(lcPlatform).noquote() << QStringLiteral("Porta seriale %1: velocità %2 non disponibile; uso 9600")
                                               .arg(m_device)
                                               .arg(m_format.baudRate);
    }
    ::cfsetispeed(&settings, speed.value_or(B9600));
    ::cfsetospeed(&settings, speed.value_or(B9600));
    if (::tcsetattr(m_fd, TCSANOW, &settings) != 0) {
        qCWarning(lcPlatform).noquote()
            << QStringLiteral("Porta seriale %1: impostazioni rifiutate: %2").arg(m_device, systemError(errno));
        return false;
    }
    return true;
}

bool TermiosLine::open()
{
    if (isOpen())
        return true;
    if (m_device.isEmpty()) {
        fail(QStringLiteral("Porta seriale non aperta: %1").arg(m_portProblem));
        return false;
    }
    const int fd = ::open(m_device.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        fail(QStringLiteral("Porta seriale %1 non aperta: %2").arg(m_device, systemError(errno)));
        return false;
    }
    QString problem;
    if (!::isatty(fd))
        problem = QStringLiteral("non è una porta seriale");
    else if (::flock(fd, LOCK_EX | LOCK_NB) != 0)
        problem = errno == EWOULDBLOCK ? QStringLiteral("in uso da un altro programma") : systemError(errno);
    if (!problem.isEmpty()) {
        ::close(fd);
        fail(QStringLiteral("Porta seriale %1 non aperta: %2").arg(m_device, problem));
        return false;
    }
    // Programs that do not take the lock are kept out by the terminal itself.
    ::ioctl(fd, TIOCEXCL);
    m_fd = fd;
    if (!applyFormat()) {
        close();
        fail(QStringLiteral("Porta seriale %1 non aperta: impostazioni rifiutate").arg(m_device));
        return false;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { readPending(); });
    m_input.clear();
    m_lastError.clear();
    return true;
}

void TermiosLine::close()
{
    if (m_notifier) {
        m_notifier->setEnabled(false);
        // Closed from inside its own signal when the port goes away.
        m_notifier.release()->deleteLater();
    }
    if (m_fd >= 0) {
        ::ioctl(m_fd, TIOCNXCL);
        ::close(std::exchange(m_fd, -1));
    }
    m_input.clear();
}

void TermiosLine::write(const QByteArray &bytes)
{
    qsizetype sent = 0;
    while (isOpen() && sent < bytes.size()) {
        const ssize_t n = ::write(m_fd, bytes.constData() + sent, size_t(bytes.size() - sent));
        if (n > 0) {
            sent += n;
        } else if (n < 0 && errno == EAGAIN) {
            // The driver's buffer is full: a request is a few bytes, so this is a line
            // held by flow control; wait a little for room, never forever.
            pollfd room{m_fd, POLLOUT, 0};
            if (::poll(&room, 1, 100) <= 0) {
                qCWarning(lcPlatform).noquote() << QStringLiteral("Porta seriale %1: richiesta non inviata").arg(m_device);
                return;
            }
        } else if (n < 0 && errno != EINTR) {
            lost(systemError(errno));
        }
    }
}

void TermiosLine::readPending()
{
    if (!isOpen())
        return;
    char buffer[512];
    for (;;) {
        const ssize_t n = ::read(m_fd, buffer, sizeof buffer);
        if (n > 0) {
            m_input.append(buffer, n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno != EAGAIN) {
            lost(systemError(errno));
            return;
        }
        break;
    }
    // Nothing more to read. A hang-up (a pseudo-terminal's far end closed, an adapter
    // unplugged) would otherwise wake the event loop again and again.
    pollfd state{m_fd, POLLIN, 0};
    if (::poll(&state, 1, 0) > 0 && (state.revents & (POLLHUP | POLLERR | POLLNVAL)))
        lost(QStringLiteral("collegamento interrotto"));
}

qint64 TermiosLine::bytesAvailable()
{
    readPending();
    return m_input.size();
}

QByteArray TermiosLine::readAll()
{
    readPending();
    return std::exchange(m_input, QByteArray());
}

void TermiosLine::clearInput()
{
    if (isOpen())
        ::tcflush(m_fd, TCIFLUSH);
    m_input.clear();
}

void TermiosLine::yield(int ms)
{
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.setTimerType(Qt::PreciseTimer);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    if (m_notifier)
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &loop, &QEventLoop::quit);
    deadline.start(std::max(ms, 0));
    QEventLoop *outer = std::exchange(m_waiting, &loop);
    loop.exec();
    m_waiting = outer;
}

void TermiosLine::fail(const QString &reason)
{
    // A missing port fails again at every poll; the log says it once per new reason.
    if (reason == m_lastError)
        qCDebug(lcPlatform).noquote() << reason;
    else
        qCWarning(lcPlatform).noquote() << reason;
    m_lastError = reason;
}

void TermiosLine::lost(const QString &reason)
{
    qCWarning(lcPlatform).noquote() << QStringLiteral("Porta seriale %1 persa: %2").arg(m_device, reason);
    close();
    // Whoever waits for a reply learns at once that none can come.
    if (m_waiting)
        m_waiting->quit();
}

} // namespace telvane
