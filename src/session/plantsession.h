#pragma once

#include "commands/chronothermostat.h"
#include "commands/clockalignment.h"
#include "commands/plantcommands.h"

namespace telvane {

class Prompts;
class Supervisor;
struct Runtime;

// What the main window and the headless mode add to a Runtime to run a plant: the
// operator's commands, the chrono-thermostat and the clock alignment as the monitoring
// cycle's tasks, in that order. It plugs them into the Runtime for as long as it
// lives, and owns the start-up and the reload, which must both load the chrono files
// after the editor's rebuild (the rebuild starts every set point again at 20.0).
class PlantSession
{
public:
    PlantSession(Runtime &rt, Supervisor &supervisor, Prompts &prompts);
    ~PlantSession();
    PlantSession(const PlantSession &) = delete;
    PlantSession &operator=(const PlantSession &) = delete;

    // The main window's start-up (mode, folders, plant, tables, port, and the automatic
    // start as `AutoAvvio` says), then the schedule and holidays from "Crono".
    void startUp();
    // The editor's rebuild after a confirmed page, then the schedule and holidays again;
    // the chrono-thermostat sends the current slot once more at its next tick.
    void reload();

    PlantCommands &commands() { return m_commands; }
    ChronoThermostat &chronoThermostat() { return m_chrono; }
    ClockAlignment &clockAlignment() { return m_clockAlignment; }

private:
    void loadChronoFiles();

    Runtime &m_rt;
    Supervisor &m_supervisor;
    ChronoThermostat m_chrono;
    ClockAlignment m_clockAlignment;
    PlantCommands m_commands;
};

} // namespace telvane
