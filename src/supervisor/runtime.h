#pragma once

#include "alarms/alarmbook.h"
#include "config_editor/reloadeditor.h"
#include "fieldbus/modbusmaster.h"
#include "journal/operatorjournal.h"
#include "storage/chronoschedule.h"
#include "storage/dailylog.h"
#include "storage/displayresets.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/modesettings.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"
#include "supervisor/itemstates.h"
#include "supervisor/linehold.h"
#include "supervisor/statusbar.h"
#include "supervisor/synopticrefresh.h"
#include "supervisor/userlevel.h"

namespace telvane {

class ChartSink;
class Clock;
class CycleTask;
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

    SerialLine &line;
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
    // The register tables, serial settings, line probe and options the editor built.
    EditorState editor;
    ModbusMaster master;
    // Who uses the line beyond one exchange; no monitoring tick starts meanwhile.
    LineHolds lineHolds;
    DailyLog dailyLog;
    // Every operator action, with the user level it was taken with.
    OperatorJournal journal;
    AlarmBook alarms;
    ItemStates items;
    UserLevel user;

    // The main window's status bar and the synoptic's refreshes, as the core sees them.
    StatusBar statusBar;
    SynopticRefresh synoptic;
    DisplayResets displayResets;

    // The configuration editor is loaded.
    bool EditorOpen = false;
    // Measurement rounds add chart points and write the daily log. Each reload sets it
    // from the option "Grafico"; the editor's menu entry toggles it in between.
    bool ChartLoggingOption = false;
    // The activity poll's last answer, so that a silent line is logged once.
    bool lineAnswering = true;

    // Plugged in by the window when it exists; without it a round feeds no chart.
    ChartSink *chart = nullptr;
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
