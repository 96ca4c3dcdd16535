#pragma once

#include <QObject>

class QSocketNotifier;

namespace telvane {

// SIGINT and SIGTERM turned into a Qt signal, delivered by the event loop like any
// other event, so that a service manager or Ctrl+C stops the supervisor between two
// ticks instead of in the middle of a frame. The handler only writes one byte to a
// socket pair (the one thing a signal handler may safely do); the event loop reads it.
// One instance at a time; the default handlers come back when it is destroyed.
class TerminationSignals final : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

    // False, with the reason in the platform log, when the signals could not be caught.
    bool isActive() const { return m_notifier != nullptr; }

signals:
    void received(int signalNumber);

private:
    void readSignal();

    QSocketNotifier *m_notifier = nullptr;
};

} // namespace telvane
