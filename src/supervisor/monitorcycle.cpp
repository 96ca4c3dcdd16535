#include "supervisor/supervisor.h"

#include "supervisor/activitypoll.h"
#include "supervisor/cycletask.h"
#include "supervisor/dooroperations.h"
#include "supervisor/ledoperations.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/runtime.h"
#include "supervisor/switchoperations.h"
#include "supervisor/zoneoperations.h"

#include <optional>

namespace telvane {

// One tick of `Timer_Monitor`. The timer is off for the length of the tick, so a
// slow line never stacks ticks up, and comes back only if acquisition still runs at
// the end: a Stop given while a poll waited for its reply ends the cycle.
void Supervisor::MonitorCycle()
{
    // The timer keeps running through a Start's re-read or a command run at once, and
    // may fire in one of their reply waits; that tick is skipped, the next one comes.
    if (lineInUse())
        return;
    std::optional<LineHold> hold(std::in_place, m_rt.services.lineHolds);
    m_inTick = true;

    m_monitorTimer.stop();
    ++m_cycleCounter;
    bool busy = false;

    for (CycleTask *task : std::as_const(m_rt.cycleTasks))
        busy = task->runTick() || busy;

    if (isDue(m_rt.model.editor.comm.remotePeriod)) {
        pollInstruments();
        busy = true;
    }
    if (isDue(m_rt.model.editor.comm.measurementPeriod)) {
        busy = true;
        ReadAllMeasurements(m_rt);
        ReadAllSwitchStates(m_rt);
    }
    if (isDue(m_rt.model.editor.comm.ledPeriod)) {
        ReadAllLedLamps(m_rt);
        busy = true;
    }
    if (!busy && m_rt.model.editor.comm.lineActivity) {
        m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Attivita..."));
        ActivityPoll(m_rt);
        m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
    }

    if (m_cycleCounter >= CycleWrap)
        m_cycleCounter = 0;
    if (m_acquisitionRunning)
        m_monitorTimer.start(m_monitorIntervalMs);
    m_inTick = false;

    // Runs a Start or Reload clicked during the tick.
    hold.reset();
    emit tickFinished();
}

// A period of 0 would divide by zero; that poll simply never runs.
bool Supervisor::isDue(int period) const
{
    return period != 0 && m_cycleCounter % period == 0;
}

// Every zone, switch, the door opener and every LED: in remote mode their remote/local
// register is read, otherwise the supervisor's state is written to it.
void Supervisor::pollInstruments()
{
    const bool remote = m_rt.model.editor.comm.remoteEnabled;
    const int supervisorState = m_acquisitionRunning ? 1 : 0;
    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel,
                            remote ? QStringLiteral("Remoto...") : QStringLiteral("Locale..."));

    const int zones = std::clamp(m_rt.model.plant.zoneCount(), 0, MaxZones);
    for (int zone = 0; zone < zones; ++zone) {
        if (remote ? ZoneRemoteRead(m_rt, zone) : ZoneLocalWrite(m_rt, zone, supervisorState))
            m_rt.services.alarms.clearFailCount(AlarmItemKind::Zone, zone);
        else
            ZoneStatusText(m_rt, zone);
    }

    const int switches = std::clamp(m_rt.model.plant.switchCount(), 0, MaxSwitches);
    for (int sw = 0; sw < switches; ++sw) {
        if (remote ? SwitchRemoteRead(m_rt, sw) : SwitchLocalWrite(m_rt, sw, supervisorState))
            m_rt.services.alarms.clearFailCount(AlarmItemKind::Switch, sw);
        else
            SwitchStatusText(m_rt, sw);
    }

    if (m_rt.model.plant.apriporta.present) {
        if (remote)
            DoorRemoteRead(m_rt);
        else
            DoorLocalWrite(m_rt, supervisorState);
    }

    const int leds = std::clamp(m_rt.model.plant.ledCount(), 0, MaxLeds);
    for (int led = 0; led < leds; ++led) {
        if (remote)
            LedRemoteRead(m_rt, led);
        else
            LedLocalWrite(m_rt, led, supervisorState);
    }

    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
}

} // namespace telvane
