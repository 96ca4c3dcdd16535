#pragma once

#include "commands/commandoutcome.h"
#include "supervisor/operatorcommands.h"

#include <QString>

#include <functional>
#include <optional>

namespace telvane {

class Prompts;
class Supervisor;
struct Runtime;

// The operator's commands as the synoptic panel and the headless mode give them. While
// acquisition stands by, a command acts at once; while it runs, the command waits in
// the `CommandQueue` for the next tick of the monitoring cycle, so that it never cuts
// into a poll. The cycle runs it through the `OperatorCommands` side, so a window or
// the headless mode plugs an instance into `Runtime::operatorCommands`.
class PlantCommands final : public OperatorCommands
{
public:
    // Told how every command that ran ended, at once or from the queue.
    using OutcomeListener = std::function<void(CommandOutcome outcome)>;

    PlantCommands(Runtime &rt, Prompts &prompts, const Supervisor &supervisor);

    void setOutcomeListener(OutcomeListener listener) { m_outcomeListener = std::move(listener); }

    // --- The operator's requests: act now, or queue ------------------------------
    // Each returns the outcome when the command ran at once, nothing when it was queued.
    std::optional<CommandOutcome> requestSwitch(int sw, bool on);
    std::optional<CommandOutcome> requestDoorOpen();
    // A later request for any zone replaces a set value still waiting.
    std::optional<CommandOutcome> requestSetValue(int zone, const QString &valueText);

    // --- OperatorCommands: run by the monitoring cycle -----------------------------
    void DoorOpenCommand() override;
    void SwitchCommand(int sw, bool on) override;
    void runPendingSetValue() override;

private:
    CommandOutcome told(CommandOutcome outcome) const;

    Runtime &m_rt;
    Prompts &m_prompts;
    const Supervisor &m_supervisor;
    OutcomeListener m_outcomeListener;
};

} // namespace telvane
