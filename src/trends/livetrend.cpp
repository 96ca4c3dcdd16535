#include "trends/livetrend.h"

#include "trends/historyrange.h"

namespace telvane {

LiveTrend::LiveTrend(qint64 windowMs)
    : m_windowMs(windowMs)
{
}

void LiveTrend::addPoint(int trace, const QDateTime &at, double value)
{
    m_points.addPoint(trace, at.toMSecsSinceEpoch(), static_cast<float>(value));
}

void LiveTrend::roundFinished()
{
    dropOld();
    if (onRound)
        onRound();
}

void LiveTrend::loadLogged(const DailyLog &log, const QDateTime &now)
{
    m_points.clear();
    const qint64 windowDays = m_windowMs / (24LL * 60 * 60 * 1000) + 1;
    readDays(log, now.date().addDays(-windowDays), now.date(), m_points);
    m_points.dropBefore(now.toMSecsSinceEpoch() - m_windowMs);
}

void LiveTrend::setWindowMs(qint64 windowMs)
{
    m_windowMs = windowMs;
    dropOld();
}

void LiveTrend::dropOld()
{
    if (m_points.pointCount() > 0)
        m_points.dropBefore(m_points.lastMs() - m_windowMs);
}

} // namespace telvane
