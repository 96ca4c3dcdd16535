#pragma once

#include "supervisor/cycletask.h"

#include <QDateTime>
#include <QString>

namespace telvane {

class Clock;
class ModbusMaster;
struct PlantModel;

// Keeps the clocks of the instruments on the PC's time in industrial mode
// ("Impostazioni orologio"). Each zone whose section holds the keys `Ora_w`,
// `Minuti_w` and `Giorno_w` ("function,register", each optional) gets the PC's hour
// (0..23), minute (0..59) and weekday (1 Monday .. 7 Sunday) written there, at the
// zone's `Indirizzo`, as plain numbers whatever its decimals.
//
// While acquisition runs the clocks are aligned at its first tick, then whenever the
// hour of the PC clock changes, when its offset from UTC changes (summer time begins or
// ends) and when the PC clock is set (it moved more than a minute away from the time
// elapsed). The keys are read at each alignment, so an edit takes effect at the next.
class ClockAlignment final : public CycleTask
{
public:
    struct Result
    {
        int sent = 0;   // registers written
        int failed = 0; // of which not confirmed by the instrument's echo
    };

    static constexpr qint64 ClockSetThresholdMs = 60 * 1000;

    ClockAlignment(const PlantModel &model, ModbusMaster &master, const Clock &clock);

    // Industrial mode only; in civil mode the chrono-thermostat keeps the time.
    bool runTick() override;
    void acquisitionStarted() override { m_aligned = false; }

    // Aligns every configured instrument now, in either mode.
    Result alignNow();

private:
    bool due(const QDateTime &now, qint64 monotonicMs) const;
    void alignZone(int zone, const QDateTime &now, Result &result);
    void writeClockValue(int zone, int slave, const QString &key, int value, Result &result);

    const PlantModel &m_model;
    ModbusMaster &m_master;
    const Clock &m_clock;
    bool m_aligned = false;
    QDateTime m_alignedAt;
    qint64 m_alignedAtMonotonicMs = 0;
};

} // namespace telvane
