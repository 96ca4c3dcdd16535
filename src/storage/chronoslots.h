#pragma once

#include <QString>
#include <QTime>

namespace telvane {

// The quarter-hours of a day as the chrono-thermostat indexes its set points: slot 0 is
// "00:00", slot 95 "23:45". The schedule keeps one slot more (96), never used, so that
// its file keeps the length the plants' files have always had.
inline constexpr int ChronoDaySlots = 96;
inline constexpr int ChronoSlotMinutes = 15;

// "HH:mm" of the slot's start; empty for a slot outside 0..95.
QString chronoSlotLabel(int slot);

// The slot the time of day falls in; -1 for an invalid time.
int chronoSlotAt(const QTime &time);

// When the slot starts.
QTime chronoSlotStart(int slot);

} // namespace telvane
