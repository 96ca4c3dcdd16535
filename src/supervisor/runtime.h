#pragma once

#include "supervisor/devices.h"
#include "supervisor/displaystate.h"
#include "supervisor/plantmodel.h"
#include "supervisor/plantservices.h"

#include <QList>

namespace telvane {

class CycleTask;

// The whole running plant, made once by whoever assembles the program and handed to
// the few places that need every piece (the session, the supervisor, the editor's
// reload); everything else takes the piece it uses. A test makes a fresh one.
struct Runtime
{
    Runtime(const ProgramFolder &folder, SerialLine &line, const Clock &clock, Pause &pause, SoundPlayer &sound);
    Runtime(const Runtime &) = delete;
    Runtime &operator=(const Runtime &) = delete;

    Devices devices;
    PlantModel model;
    PlantServices services;
    DisplayState display;

    // Run by every monitoring tick, in this order (the operator's commands, the
    // chrono-thermostat, the clock alignment); owned by the caller.
    QList<CycleTask *> cycleTasks;
};

// The editor's full rebuild over this runtime: plant, lists, tables, serial settings
// and options; like the values, the item states start again unknown. The port's text
// goes to the first status-bar panel, and measurement rounds log as the option
// "Grafico" says.
void ReloadEditor(Runtime &rt);

} // namespace telvane
