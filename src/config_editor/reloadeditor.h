#pragma once

#include "config_editor/commlists.h"
#include "config_editor/commsettings.h"
#include "config_editor/lineprobe.h"
#include "config_editor/registertables.h"
#include "storage/chronoschedule.h"

namespace telvane {

class DisplayResets;
class IniStore;
class ModbusMaster;
class SerialLine;
struct PlantConfig;
struct ValueTables;

// The options of section "Generale" the editor offers as check boxes.
struct GeneralOptions
{
    bool autoStart = false; // "AutoAvvio": acquisition starts by itself 10 s after start-up
    bool chart = false;     // "Grafico"
    bool recipes = false;   // "Ricette"
    bool master = false;    // "Master"
};

// What the configuration editor builds from the settings: everything the monitoring
// cycle and the commands address the plant with, and the editor's own options.
struct EditorState
{
    CommLists lists;
    RegisterTables tables;
    CommSettings comm;
    LineProbe lineProbe;
    bool chronoThermostat = false;         // "Cronotermostato" of "Generale"
    ChronoZoneEnabled chronoZoneEnabled{}; // all false while the chrono-thermostat is off
    int doorPulseMs = 1000;                // "Tempo" of "Apriporta"
    GeneralOptions options;
};

// The objects a reload loads into and talks to, owned by the caller.
struct EditorServices
{
    const IniStore &ini;
    PlantConfig &plant;
    DisplayResets &resets;
    ModbusMaster &master;
    SerialLine &line;
    ValueTables &values;
    ChronoSchedule &schedule;
};

// The full rebuild after start-up and after every confirmed editor page, so every
// change to the settings takes effect at once: the plant, the lists and tables, the
// chrono flags, the door pulse time, the line options and probe, the serial settings
// (which test the port), fresh value tables and set points, the lists' enabled state,
// and the general options.
void ReloadEditor(const EditorServices &services, EditorState &state);

} // namespace telvane
