#pragma once

#include <QDateTime>
#include <QElapsedTimer>

namespace telvane {

// Wall time for dates shown and written, a monotonic counter for time-outs and periods
// (so midnight and clock changes never cut a wait short). Tests set both by hand.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
    virtual qint64 monotonicMs() const = 0;
};

class SystemClock final : public Clock
{
public:
    SystemClock();
    QDateTime now() const override;
    qint64 monotonicMs() const override;

private:
    QElapsedTimer m_started;
};

// A clock that moves only when told to.
class ManualClock final : public Clock
{
public:
    explicit ManualClock(QDateTime start = QDateTime(QDate(2026, 1, 5), QTime(8, 0)));
    QDateTime now() const override { return m_now; }
    qint64 monotonicMs() const override { return m_monotonicMs; }

    void setNow(const QDateTime &now) { m_now = now; }
    // Moves wall time and the monotonic counter together.
    void advance(qint64 ms);

private:
    QDateTime m_now;
    qint64 m_monotonicMs = 0;
};

} // namespace telvane
