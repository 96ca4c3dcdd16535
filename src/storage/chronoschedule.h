#pragma once

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace telvane {

// The weekly chrono-thermostat: one set point per quarter-hour slot, zone and day.
// Day 0 is Monday. The table always holds every zone, configured or not, and is laid
// out in the order of the schedule file (slot outermost, day innermost), so reading and
// writing the file is one pass over entries().
class ChronoSchedule
{
public:
    static constexpr int Slots = 97;
    static constexpr int Zones = 30;
    static constexpr int Days = 7;
    static constexpr int EntryCount = Slots * Zones * Days;
    static constexpr float DefaultSetPoint = 20.0f;

    ChronoSchedule() : m_setPoints(EntryCount, DefaultSetPoint) {}

    float &operator()(int slot, int zone, int day) { return m_setPoints[index(slot, zone, day)]; }
    float operator()(int slot, int zone, int day) const { return m_setPoints[index(slot, zone, day)]; }

    void fill(float setPoint) { std::fill(m_setPoints.begin(), m_setPoints.end(), setPoint); }

    std::span<float> entries() { return m_setPoints; }
    std::span<const float> entries() const { return m_setPoints; }

private:
    static std::size_t index(int slot, int zone, int day)
    {
        Q_ASSERT(slot >= 0 && slot < Slots && zone >= 0 && zone < Zones && day >= 0 && day < Days);
        return static_cast<std::size_t>((slot * Zones + zone) * Days + day);
    }

    std::vector<float> m_setPoints;
};

// Which zones follow the chrono-thermostat; index 0 is "Zona 01".
using ChronoZoneEnabled = std::array<bool, ChronoSchedule::Zones>;

} // namespace telvane
