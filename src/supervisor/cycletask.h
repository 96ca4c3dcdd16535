#pragma once

namespace telvane {

// Timed work that rides on the monitoring cycle, such as the chrono-thermostat: every
// tick runs it after the operator commands and before the polls, so it never shares the
// line with a poll and stops when acquisition stops.
class CycleTask
{
public:
    virtual ~CycleTask() = default;

    // One tick; true when it put something on the line (the tick then skips its
    // activity poll).
    virtual bool runTick() = 0;
    // Acquisition has (re)started: whatever is due now is done again at the next tick.
    virtual void acquisitionStarted() = 0;
};

} // namespace telvane
