#include "trends/trendset.h"

#include "storage/valuetables.h"

#include <algorithm>

namespace telvane {

bool isInvalidReading(float value)
{
    return value == InvalidValue || !std::isfinite(value);
}

void TrendSet::addPoint(int trace, qint64 ms, float value)
{
    if (trace < 1 || trace > Traces)
        return;
    m_series[trace - 1].append(ms, isInvalidReading(value) ? TrendGap : value);
}

void TrendSet::dropBefore(qint64 ms)
{
    for (TrendSeries &series : m_series)
        series.dropBefore(ms);
}

void TrendSet::clear()
{
    for (TrendSeries &series : m_series)
        series.clear();
}

int TrendSet::usedTraces() const
{
    for (int trace = Traces; trace >= 1; --trace) {
        if (!m_series[trace - 1].isEmpty())
            return trace;
    }
    return 0;
}

qint64 TrendSet::firstMs() const
{
    qint64 first = 0;
    bool any = false;
    for (const TrendSeries &series : m_series) {
        if (series.isEmpty())
            continue;
        first = any ? std::min(first, series.points().front().ms) : series.points().front().ms;
        any = true;
    }
    return first;
}

qint64 TrendSet::lastMs() const
{
    qint64 last = 0;
    bool any = false;
    for (const TrendSeries &series : m_series) {
        if (series.isEmpty())
            continue;
        last = any ? std::max(last, series.points().back().ms) : series.points().back().ms;
        any = true;
    }
    return last;
}

qsizetype TrendSet::pointCount() const
{
    qsizetype count = 0;
    for (const TrendSeries &series : m_series)
        count += series.size();
    return count;
}

qsizetype TrendSet::bytesHeld() const
{
    qsizetype bytes = 0;
    for (const TrendSeries &series : m_series)
        bytes += series.bytesHeld();
    return bytes;
}

} // namespace telvane
