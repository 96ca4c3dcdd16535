#pragma once

namespace telvane {

// Operator commands given while acquiring wait here for the next tick of the
// monitoring cycle, which runs them between two polls so that they never share the
// line with a poll.
struct CommandQueue
{
    static constexpr int NoSwitch = -1;

    bool PendingDoorOpen = false;
    int PendingSwitchOff = NoSwitch;
    int PendingSwitchOn = NoSwitch;
    // The value itself is kept by the set-value command until the tick runs it.
    bool PendingSetValue = false;
};

} // namespace telvane
