#pragma once

#include "commands/commandoutcome.h"
#include "commands/commandqueue.h"
#include "supervisor/cycletask.h"

#include <QString>

#include <functional>

namespace telvane {

class Prompts;
class AcquisitionState;
struct Runtime;

// The operator's commands on the plant, as the synoptic panel's clicks and the headless
// mode give them. A command given while acquisition runs waits in the `CommandQueue` for
// the next tick of the monitoring cycle, which runs it as its first task, before any
// poll; standing by, the clicks that may act do so at once. A command that finds the
// line in use waits in the queue as well, so that it never cuts into somebody's reply.
class PlantCommands final : public CycleTask
{
public:
    // Told how every command that ran ended, at once or from the queue.
    using OutcomeListener = std::function<void(CommandOutcome outcome)>;

    PlantCommands(Runtime &rt, Prompts &prompts, const AcquisitionState &acquisition);

    void setOutcomeListener(OutcomeListener listener) { m_outcomeListener = std::move(listener); }

    // --- The synoptic's clicks ---------------------------------------------------
    // Switches answer only when `SwitchControlMode` is 1. The two pictures of a switch
    // act differently on purpose: a click on `Img_on` (shown on) does nothing standing
    // by; while acquiring it switches off at once and queues the same switch-off for
    // the next tick.
    void switchOnImageClicked(int sw);
    // A click on `Img_off` (shown off): standing by, switches on at once; while
    // acquiring, queues the switch-on.
    void switchOffImageClicked(int sw);
    // Standing by, opens the door at once; while acquiring, queues the opening.
    void doorOpenerClicked();
    // A double-click on a zone's value label: only while acquiring and for a user with
    // rights, and only on a valid reading ("--.-" opens nothing). Asks for the value in
    // a box "Modifica parametro..." and queues it; an empty answer or Cancel sends
    // nothing. Every double-click first drops a set value still waiting.
    void zoneValueDoubleClicked(int zone, const QString &shownText);

    // --- Queued as they are, for the headless mode ---------------------------------
    void queueSwitch(int sw, bool on);
    void queueDoorOpen();
    // A later value for any zone replaces one still waiting.
    void queueSetValue(int zone, const QString &valueText);

    const CommandQueue &queue() const { return m_queue; }

    // --- CycleTask ---------------------------------------------------------------
    // Door, switch-off, switch-on, set value, each once; true when a door or switch
    // command went out.
    bool runTick() override;
    // A Start drops the door and switch commands left over from before; a set value
    // still waiting is kept.
    void acquisitionStarting() override;
    void acquisitionStarted() override {}

private:
    bool acquiring() const;
    // False when somebody else is using the line.
    bool runNow(const QString &what, const std::function<CommandOutcome()> &command);
    void runPendingSetValue();
    // Journals the command `what` with its outcome and tells the listener.
    CommandOutcome told(const QString &what, CommandOutcome outcome) const;

    Runtime &m_rt;
    Prompts &m_prompts;
    const AcquisitionState &m_acquisition;
    CommandQueue m_queue;
    OutcomeListener m_outcomeListener;
};

} // namespace telvane
