#pragma once

#include <QtGlobal>

#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace telvane {

// One sample of a trace: milliseconds since the epoch and the value; a NaN value marks
// a reading that failed, so the line breaks there instead of diving to the invalid marker.
struct TrendPoint
{
    qint64 ms;
    float value;

    bool isGap() const { return std::isnan(value); }
};

inline constexpr float TrendGap = std::numeric_limits<float>::quiet_NaN();

// What a trace did over a span of time; count is 0 when it holds no valid reading there.
struct TrendStats
{
    int count = 0;
    float min = 0;
    float max = 0;
    double mean = 0;
};

// The samples of one trace in time order. Old samples are dropped from the front
// without moving the rest every time, so a sliding window costs nothing per round.
class TrendSeries
{
public:
    // Samples arrive in time order; one older than the last is dropped (a clock set
    // back would otherwise fold the line over itself).
    void append(qint64 ms, float value);
    // Forgets every sample older than `ms`.
    void dropBefore(qint64 ms);
    void clear();

    std::span<const TrendPoint> points() const;
    qsizetype size() const { return static_cast<qsizetype>(m_points.size()) - m_first; }
    bool isEmpty() const { return size() == 0; }
    // Bytes held, spare capacity included.
    qsizetype bytesHeld() const { return static_cast<qsizetype>(m_points.capacity() * sizeof(TrendPoint)); }

    // The reading shown at `ms`: the last sample at or before it, unless that sample is
    // a gap or lies more than `maxAge` ms before it (the trace stopped there).
    std::optional<float> valueAt(qint64 ms, qint64 maxAge) const;
    // Minimum, maximum and mean of the valid samples within [from, to].
    TrendStats stats(qint64 from, qint64 to) const;

private:
    std::vector<TrendPoint> m_points;
    qsizetype m_first = 0;
};

// The first sample at or after `ms` in a time-ordered span.
std::span<const TrendPoint>::iterator firstAtOrAfter(std::span<const TrendPoint> points, qint64 ms);

} // namespace telvane
