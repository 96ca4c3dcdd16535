#include "platform/terminationsignals.h"

#include "platform/platformlog.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace telvane {

namespace {

// [0] is written by the handler, [1] read by the event loop.
int signalSockets[2] = {-1, -1};

constexpr int CaughtSignals[] = {SIGINT, SIGTERM};

extern "C" void writeSignalNumber(int signalNumber)
{
    const int savedErrno = errno;
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    // A full buffer means stops are already waiting to be read; one more adds nothing.
    [[maybe_unused]] const ssize_t written = ::write(signalSockets[0], &byte, 1);
    errno = savedErrno;
}

bool setHandler(int signalNumber, void (*handler)(int))
{
    struct sigaction action{};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    // A read or write interrupted by the signal carries on.
    action.sa_flags = SA_RESTART;
    return ::sigaction(signalNumber, &action, nullptr) == 0;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    if (signalSockets[0] != -1) {
        qCWarning(lcPlatform, "SIGINT and SIGTERM are already caught elsewhere in this process");
        return;
    }
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, signalSockets) != 0) {
        qCWarning(lcPlatform, "Cannot catch SIGINT and SIGTERM: %s", std::strerror(errno));
        signalSockets[0] = signalSockets[1] = -1;
        return;
    }
    m_notifier = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readSignal);
    for (const int signalNumber : CaughtSignals) {
        if (!setHandler(signalNumber, writeSignalNumber))
            qCWarning(lcPlatform, "Cannot catch signal %d: %s", signalNumber, std::strerror(errno));
    }
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    for (const int signalNumber : CaughtSignals)
        setHandler(signalNumber, SIG_DFL);
    delete m_notifier;
    ::close(signalSockets[0]);
    ::close(signalSockets[1]);
    signalSockets[0] = signalSockets[1] = -1;
}

void TerminationSignals::readSignal()
{
    unsigned char byte = 0;
    while (::read(signalSockets[1], &byte, 1) == 1)
        emit received(byte);
}

} // namespace telvane
