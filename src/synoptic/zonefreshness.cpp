#include "synoptic/zonefreshness.h"

#include "storage/valuetables.h"

#include <algorithm>

namespace telvane {

void ZoneFreshness::start(qint64 monotonicMs)
{
    m_running = true;
    m_startMs = monotonicMs;
}

void ZoneFreshness::stop()
{
    m_running = false;
}

void ZoneFreshness::noteRound(const ValueTables &values, int zoneCount, int quantity, const QDateTime &now,
                              qint64 monotonicMs)
{
    const int quantityIndex = std::clamp(quantity, 0, ValueTables::Quantities - 1);
    for (int zone = 0; zone < std::min(zoneCount, MaxZones); ++zone) {
        if (values.ZoneValues[zone][quantityIndex] == InvalidValue)
            continue;
        m_wallTime[zone] = now;
        m_goodMs[zone] = monotonicMs;
    }
}

// A period of 0 switches the measurement rounds off: then nothing is expected and
// nothing goes stale.
bool ZoneFreshness::isStale(int zone, qint64 monotonicMs, int measurementPeriodSeconds) const
{
    if (!m_running || measurementPeriodSeconds <= 0 || zone < 0 || zone >= MaxZones)
        return false;
    const qint64 since = std::max(m_goodMs[zone], m_startMs);
    return monotonicMs - since >= qint64(StalePeriods) * measurementPeriodSeconds * 1000;
}

} // namespace telvane
