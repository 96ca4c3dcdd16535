#pragma once

#include <QDateTime>

namespace telvane {

// Where a measurement round puts its points: the live trend chart.
class ChartSink
{
public:
    virtual ~ChartSink() = default;

    // Trace numbers start at 1 (zone 1 is trace 1).
    virtual void addPoint(int trace, const QDateTime &at, double value) = 0;
    // Every zone of the round is in: redraw and update the statistics.
    virtual void roundFinished() = 0;
};

} // namespace telvane
