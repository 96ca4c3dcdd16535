#include "trends/livetrend.h"

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
