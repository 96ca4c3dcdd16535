#include "trends/trendseries.h"

#include <algorithm>

namespace telvane {

std::span<const TrendPoint>::iterator firstAtOrAfter(std::span<const TrendPoint> points, qint64 ms)
{
    return std::lower_bound(points.begin(), points.end(), ms,
                            [](const TrendPoint &point, qint64 at) { return point.ms < at; });
}

void TrendSeries::append(qint64 ms, float value)
{
    if (!isEmpty() && ms < m_points.back().ms)
        return;
    m_points.push_back({ms, value});
}

void TrendSeries::dropBefore(qint64 ms)
{
    const auto view = points();
    m_first += firstAtOrAfter(view, ms) - view.begin();
    // Move the kept samples down once the dropped ones outnumber them; each sample is
    // moved at most once per window, and the capacity stays that of one window.
    if (m_first > 0 && m_first >= size()) {
        m_points.erase(m_points.begin(), m_points.begin() + m_first);
        m_first = 0;
    }
}

void TrendSeries::clear()
{
    m_points.clear();
    m_first = 0;
}

std::span<const TrendPoint> TrendSeries::points() const
{
    return std::span<const TrendPoint>(m_points).subspan(static_cast<size_t>(m_first));
}

std::optional<float> TrendSeries::valueAt(qint64 ms, qint64 maxAge) const
{
    const auto view = points();
    auto after = std::upper_bound(view.begin(), view.end(), ms,
                                  [](qint64 at, const TrendPoint &point) { return at < point.ms; });
    if (after == view.begin())
        return std::nullopt;
    const TrendPoint &last = *(after - 1);
    if (last.isGap() || ms - last.ms > maxAge)
        return std::nullopt;
    return last.value;
}

TrendStats TrendSeries::stats(qint64 from, qint64 to) const
{
    TrendStats stats;
    const auto view = points();
    double sum = 0;
    for (auto it = firstAtOrAfter(view, from); it != view.end() && it->ms <= to; ++it) {
        if (it->isGap())
            continue;
        if (stats.count == 0) {
            stats.min = stats.max = it->value;
        } else {
            stats.min = std::min(stats.min, it->value);
            stats.max = std::max(stats.max, it->value);
        }
        sum += it->value;
        ++stats.count;
    }
    if (stats.count > 0)
        stats.mean = sum / stats.count;
    return stats;
}

} // namespace telvane
