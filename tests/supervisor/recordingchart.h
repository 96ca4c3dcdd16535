#pragma once

#include "supervisor/chartsink.h"

#include <QList>

namespace telvane {

class RecordingChart final : public ChartSink
{
public:
    struct Point
    {
        int trace;
        QDateTime at;
        double value;
        bool operator==(const Point &) const = default;
    };

    void addPoint(int trace, const QDateTime &at, double value) override { points.append({trace, at, value}); }
    void roundFinished() override { ++rounds; }

    QList<Point> points;
    int rounds = 0;
};

} // namespace telvane
