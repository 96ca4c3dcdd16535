#pragma once

#include "supervisor/cycletask.h"

#include <QDateTime>

namespace telvane {

class Clock;
class ModbusMaster;
struct PlantModel;

// Runs the weekly chrono-thermostat: at each quarter-hour of the PC clock, every zone
// that follows it gets the set point of the current slot and weekday, written to the
// zone's write register of the quantity `Zone Crono` selects and scaled by the zone's
// decimals. A date in the holiday list runs Sunday's schedule.
//
// Each slot is sent once, on the first tick inside it. After a start, a restart of
// acquisition, or the option "Cronotermostato" being switched on, the current slot is
// sent at the first tick, so instruments never wait up to a quarter of an hour for their
// set point. A write that is not confirmed is logged and not repeated: the next slot
// sends again.
class ChronoThermostat final : public CycleTask
{
public:
    ChronoThermostat(const PlantModel &model, ModbusMaster &master, const Clock &clock);

    bool runTick() override;
    void acquisitionStarted() override { restart(); }

    // The current slot goes out again at the next tick, for example after the schedule
    // was edited.
    void restart() { m_lastSlotStart = QDateTime(); }

private:
    // True when something was written.
    bool sendSlot(const QDate &date, int slot);

    const PlantModel &m_model;
    ModbusMaster &m_master;
    const Clock &m_clock;
    // When the slot last sent began; invalid when nothing was sent since a restart.
    QDateTime m_lastSlotStart;
};

} // namespace telvane
