#pragma once

#include "storage/inistore.h"

#include <QString>

namespace telvane {

// What the mode selector decides: which of the two plant setups is current and the
// captions of the two main-window entries whose meaning depends on it.
struct ModeSettings
{
    bool CivilMode = false;
    QString CurrentIniName;
    QString seasonCaption;   // toolbar button of the season or recipe window
    QString scheduleCaption; // menu entry of the schedule settings
};

// Reads `Modo` of `Generale` from the mode file ("0" when absent: any other value is the
// civil plant) and makes the matching settings file the store's current one.
ModeSettings LoadSettings(IniStore &store);

// Switches to the other plant setup: stores the opposite mode and loads it. A mode that
// cannot be written leaves the current setup in force.
ModeSettings changeSettingsFile(IniStore &store, bool currentlyCivil);

} // namespace telvane
