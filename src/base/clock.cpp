#include "base/clock.h"

namespace telvane {

SystemClock::SystemClock()
{
    m_started.start();
}

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTime();
}

qint64 SystemClock::monotonicMs() const
{
    return m_started.elapsed();
}

ManualClock::ManualClock(QDateTime start)
    : m_now(std::move(start))
{
}

void ManualClock::advance(qint64 ms)
{
    m_now = m_now.addMSecs(ms);
    m_monotonicMs += ms;
}

} // namespace telvane
