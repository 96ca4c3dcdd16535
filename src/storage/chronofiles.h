#pragma once

#include "storage/chronoschedule.h"

namespace telvane {

class HolidayList;
class IniStore;
class ProgramFolder;

// The chrono-thermostat's two files in the folder "Crono": the schedule, one set point a
// line with one decimal (slot outermost, then zone, then day), and the holiday list, one
// date a line. Every operation goes on past a failure, so the editor keeps working; each
// returns false when something could not be read or written, and says why in lcStorage.

inline constexpr char ChronoFolderName[] = "Crono";
inline constexpr char ChronoScheduleFileName[] = "Crono/Cronotermostato.cts";
inline constexpr char HolidayFileName[] = "Crono/Festivita.cts";

// Creates a missing schedule file from `schedule` and a missing holiday file with one
// blank line; an existing file is left as it is.
bool EnsureChronoFiles(const ProgramFolder &folder, const ChronoSchedule &schedule);

// Creates missing files, then reads both. A schedule line that is not a number leaves
// its set point unchanged; a short file repeats its last line up to the end of the table;
// lines beyond the table are ignored. Blank holiday lines are skipped.
bool LoadChronoFiles(const ProgramFolder &folder, ChronoSchedule &schedule, HolidayList &holidays);

// An empty list is written as one line of ten blanks.
bool SaveHolidays(const ProgramFolder &folder, const HolidayList &holidays);

// The schedule, then the holidays, then key "Cronotermostato" ("1"/"0") of the sections
// "Zona 01" .. "Zona 30" of the current settings file.
bool SaveChronoSchedule(IniStore &ini, const ChronoSchedule &schedule, const ChronoZoneEnabled &zoneEnabled,
                        const HolidayList &holidays);

} // namespace telvane
