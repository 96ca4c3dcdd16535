#pragma once

#include "alarms/alarmbook.h"
#include "config_editor/commsettings.h"
#include "config_editor/lineprobe.h"
#include "config_editor/registertables.h"
#include "fieldbus/modbusmaster.h"
#include "storage/chronoschedule.h"
#include "storage/dailylog.h"
#include "storage/displayresets.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/modesettings.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"
#include "supervisor/commandqueue.h"
#include "supervisor/itemstates.h"
#include "supervisor/statusbar.h"
#include "supervisor/synopticrefresh.h"
#include "supervisor/userlevel.h"

namespace telvane {

class ChartSink;
class Clock;
class CycleTask;
class OperatorCommands;
class Pause;
class SerialLine;
class SoundPlayer;

// Everything the supervisor knows about the plant and itself, made once by main and
// handed by reference to whoever needs it; a test makes a fresh one. The devices come
// in through their seams and stay owned by the caller.
struct Runtime
{
    Runtime(const ProgramFolder &folder, SerialLine &line, const Clock &clock, Pause &pause, SoundPlayer &sound);
    Runtime(const Runtime &) = delete;
    Runtime &operator=(const Runtime &) = delete;

    const Clock &clock;
    Pause &pause;
    SoundPlayer &sound;

    IniStore ini;
    ModeSettings mode;
    PlantConfig plant;
    ValueTables values;
    ChronoSchedule chrono;
    // The holiday dates (`Lst_Festa`), on which the chrono-thermostat runs Sunday's
    // schedule; loaded with the schedule from the "Crono" files.
    HolidayList holidays;
    RegisterTables registers;
    CommSettings comm;
    LineProbe lineProbe;
    ModbusMaster master;
    DailyLog dailyLog;
    AlarmBook alarms;
    CommandQueue commands;
    ItemStates items;
    UserLevel user;

    // The main window's status bar and the synoptic's refreshes, as the core sees them.
    StatusBar statusBar;
    SynopticRefresh synoptic;
    DisplayResets displayResets;

    // The configuration editor is loaded.
    bool EditorOpen = false;
    // Measurement rounds add chart points and write the daily log.
    bool ChartLoggingOption = false;
    // The activity poll's last answer, so that a silent line is logged once.
    bool lineAnswering = true;

    // Loaded by the editor's reload: the option "Cronotermostato" of "Generale", the
    // zones that follow the chrono-thermostat (all off while the option is off) and the
    // door opener's pulse "Tempo" in milliseconds.
    bool chronoThermostatOn = false;
    ChronoZoneEnabled chronoZoneEnabled{};
    int doorPulseMs = 1000;

    // Plugged in by the window when it exists; without them a round feeds no chart and
    // the queued commands are dropped.
    ChartSink *chart = nullptr;
    OperatorCommands *operatorCommands = nullptr;
    // Run by every monitoring tick, in this order (the chrono-thermostat, the clock
    // alignment); owned by the caller.
    QList<CycleTask *> cycleTasks;
};

} // namespace telvane
