#pragma once

#include "storage/plantlimits.h"
#include "trends/trendseries.h"

#include <QDateTime>

#include <array>

namespace telvane {

// One trace per zone position, trace 1 being the first zone.
class TrendSet
{
public:
    static constexpr int Traces = MaxZones;

    // A failed reading (the invalid marker, or no number at all) becomes a gap. Traces
    // outside 1..Traces are ignored.
    void addPoint(int trace, qint64 ms, float value);
    void addPoint(int trace, const QDateTime &at, float value) { addPoint(trace, at.toMSecsSinceEpoch(), value); }
    // Forgets every sample older than `ms` in every trace.
    void dropBefore(qint64 ms);
    void clear();

    // Trace 1..Traces.
    const TrendSeries &trace(int trace) const { return m_series[trace - 1]; }
    // The highest trace that holds a sample; 0 when none does.
    int usedTraces() const;

    // The span the samples cover; both 0 when there are none.
    qint64 firstMs() const;
    qint64 lastMs() const;
    qsizetype pointCount() const;
    qsizetype bytesHeld() const;

private:
    std::array<TrendSeries, Traces> m_series;
};

// True for the acquisition's marker of a reading that failed, and for values that are
// no number at all.
bool isInvalidReading(float value);

} // namespace telvane
