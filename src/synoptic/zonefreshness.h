#pragma once

#include "storage/plantlimits.h"

#include <QDateTime>

#include <array>

namespace telvane {

struct ValueTables;

// When each zone last brought a good reading, so that a marker can say how old its
// value is and look stale when the readings stopped coming: three measurement periods
// without one, counted from the last good reading or from the start of acquisition.
class ZoneFreshness
{
public:
    static constexpr int StalePeriods = 3;

    // Acquisition (re)started: nothing is stale yet, and the old times are kept for the
    // tool tips.
    void start(qint64 monotonicMs);
    // Acquisition stopped: nothing is stale while nothing is expected.
    void stop();

    // After a measurement round: every zone among the first `zoneCount` whose
    // `quantity` holds a valid value takes these times.
    void noteRound(const ValueTables &values, int zoneCount, int quantity, const QDateTime &now,
                   qint64 monotonicMs);

    // Invalid when the zone never had a good reading.
    QDateTime lastGoodReading(int zone) const { return m_wallTime[zone]; }
    bool isStale(int zone, qint64 monotonicMs, int measurementPeriodSeconds) const;

private:
    bool m_running = false;
    qint64 m_startMs = 0;
    std::array<QDateTime, MaxZones> m_wallTime{};
    std::array<qint64, MaxZones> m_goodMs{};
};

} // namespace telvane
