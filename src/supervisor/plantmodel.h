#pragma once

#include "config_editor/reloadeditor.h"
#include "storage/chronoschedule.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/modesettings.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"

namespace telvane {

class ProgramFolder;

// What the program knows of the plant: its files, the configuration read from them, the
// register tables the editor built and the values the polls brought in. Plain data; the
// services and windows read and fill it.
struct PlantModel
{
    explicit PlantModel(const ProgramFolder &folder)
        : ini(folder)
    {
    }

    IniStore ini;
    ModeSettings mode;
    PlantConfig plant;
    ValueTables values;
    ChronoSchedule chrono;
    // The holiday dates (`Lst_Festa`), on which the chrono-thermostat runs Sunday's
    // schedule; loaded with the schedule from the "Crono" files.
    HolidayList holidays;
    // The register tables, serial settings, line probe and options the editor built.
    EditorState editor;
};

} // namespace telvane
