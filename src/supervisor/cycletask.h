#pragma once

namespace telvane {

// Work that rides on the monitoring cycle: the operator's queued commands, the
// chrono-thermostat, the clock alignment. Every tick runs the tasks in their order
// before the polls, so they never share the line with a poll and stop when acquisition
// stops.
class CycleTask
{
public:
    virtual ~CycleTask() = default;

    // One tick; true when it put something on the line (the tick then skips its
    // activity poll).
    virtual bool runTick() = 0;
    // Start was given: whatever was left waiting from before must not run.
    virtual void acquisitionStarting() {}
    // Acquisition has (re)started: whatever is due now is done again at the next tick.
    virtual void acquisitionStarted() = 0;
};

} // namespace telvane
