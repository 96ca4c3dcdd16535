#pragma once

namespace telvane {

// The operator commands the monitoring cycle runs from the `CommandQueue`. They act on
// the instruments at once; queueing is the caller's business.
class OperatorCommands
{
public:
    virtual ~OperatorCommands() = default;

    virtual void DoorOpenCommand() = 0;
    virtual void SwitchCommand(int sw, bool on) = 0;
    // Writes the value that the set-value command queued.
    virtual void runPendingSetValue() = 0;
};

} // namespace telvane
