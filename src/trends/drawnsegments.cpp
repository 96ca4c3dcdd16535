#include "trends/drawnsegments.h"

#include <algorithm>
#include <array>

namespace telvane {

namespace {

// Up to four samples worth drawing of one pixel column.
class ColumnReducer
{
public:
    ColumnReducer(qint64 from, qint64 to, int columns)
        : m_from(from)
        , m_width(std::max<qint64>(1, (to - from) / std::max(1, columns)))
    {
    }

    void add(const TrendPoint &point, std::vector<TrendPoint> &out)
    {
        const qint64 column = point.ms < m_from ? -1 : (point.ms - m_from) / m_width;
        if (m_count > 0 && column != m_column)
            flush(out);
        if (m_count == 0) {
            m_column = column;
            m_first = m_min = m_max = point;
        } else {
            if (point.value < m_min.value)
                m_min = point;
            if (point.value > m_max.value)
                m_max = point;
        }
        m_last = point;
        ++m_count;
    }

    void flush(std::vector<TrendPoint> &out)
    {
        if (m_count == 0)
            return;
        std::array<TrendPoint, 4> kept = {m_first, m_min, m_max, m_last};
        std::sort(kept.begin(), kept.end(), [](const TrendPoint &a, const TrendPoint &b) { return a.ms < b.ms; });
        for (const TrendPoint &point : kept) {
            if (out.empty() || out.back().ms != point.ms || out.back().value != point.value)
                out.push_back(point);
        }
        m_count = 0;
    }

private:
    qint64 m_from;
    qint64 m_width;
    qint64 m_column = 0;
    int m_count = 0;
    TrendPoint m_first{}, m_min{}, m_max{}, m_last{};
};

} // namespace

std::vector<std::vector<TrendPoint>> drawnSegments(std::span<const TrendPoint> points, qint64 from, qint64 to,
                                                   int columns)
{
    auto begin = firstAtOrAfter(points, from);
    if (begin != points.begin())
        --begin;
    auto end = firstAtOrAfter(points, to);
    if (end != points.end())
        ++end;
    const std::span<const TrendPoint> shown(begin, end);
    const bool reduce = static_cast<qint64>(shown.size()) > 4LL * std::max(1, columns);

    std::vector<std::vector<TrendPoint>> segments;
    std::vector<TrendPoint> current;
    ColumnReducer reducer(from, to, columns);
    auto closeSegment = [&] {
        reducer.flush(current);
        if (!current.empty())
            segments.push_back(std::move(current));
        current = {};
    };
    for (const TrendPoint &point : shown) {
        if (point.isGap())
            closeSegment();
        else if (reduce)
            reducer.add(point, current);
        else
            current.push_back(point);
    }
    closeSegment();
    return segments;
}

} // namespace telvane
