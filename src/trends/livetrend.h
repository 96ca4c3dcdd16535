#pragma once

#include "storage/dailylog.h"
#include "supervisor/chartsink.h"
#include "trends/trendset.h"

#include <functional>

namespace telvane {

// The live chart's memory: the points of the measurement rounds over a sliding window
// (the last 24 hours unless told otherwise), so the program can run for months without
// growing. The window is measured back from the newest point, not from the wall clock,
// so a stopped acquisition keeps showing its last day.
class LiveTrend final : public ChartSink
{
public:
    static constexpr qint64 DefaultWindowMs = 24LL * 60 * 60 * 1000;

    explicit LiveTrend(qint64 windowMs = DefaultWindowMs);

    void addPoint(int trace, const QDateTime &at, double value) override;
    void roundFinished() override;

    qint64 windowMs() const { return m_windowMs; }
    // Takes effect at once: a shorter window forgets what lies before it.
    void setWindowMs(qint64 windowMs);

    // The window's worth of points already logged before `now`, from the day files of
    // yesterday and today, so that a restart does not start from an empty chart.
    void loadLogged(const DailyLog &log, const QDateTime &now);

    const TrendSet &points() const { return m_points; }
    void clear() { m_points.clear(); }

    // Called after each round, once the old points are gone: the chart redraws.
    std::function<void()> onRound;

private:
    void dropOld();

    qint64 m_windowMs;
    TrendSet m_points;
};

} // namespace telvane
