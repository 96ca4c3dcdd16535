#pragma once

#include <QString>

namespace telvane {

// Operator commands given while acquiring wait here for the next tick of the
// monitoring cycle, which runs them before its polls so that they never share the line
// with a poll. One cell of each kind: a later request replaces an earlier one.
struct CommandQueue
{
    static constexpr int NoSwitch = -1;

    bool PendingDoorOpen = false;
    int PendingSwitchOff = NoSwitch;
    int PendingSwitchOn = NoSwitch;
    bool PendingSetValue = false;
    // What the pending set value writes: the zone and the operator's text, converted
    // only when the tick runs it.
    int PendingSetValueZone = -1;
    QString PendingSetValueText;
};

} // namespace telvane
