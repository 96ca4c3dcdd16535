#include "supervisor/monitoringcycle.h"

#include "supervisor/acquisitionstate.h"
#include "supervisor/activitypoll.h"
#include "supervisor/cycletask.h"
#include "supervisor/dooroperations.h"
#include "supervisor/ledoperations.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/runtime.h"
#include "supervisor/switchoperations.h"
#include "supervisor/zoneoperations.h"

#include <algorithm>
#include <optional>

namespace telvane {

MonitoringCycle::MonitoringCycle(Runtime &rt, const AcquisitionState &state, QObject *parent)
    : QObject(parent)
    , m_rt(rt)
    , m_state(state)
{
    m_monitorTimer.setInterval(m_intervalMs);
    connect(&m_monitorTimer, &QTimer::timeout, this, &MonitoringCycle::MonitorCycle);
}

void MonitoringCycle::setMonitorIntervalMs(int ms)
{
    m_intervalMs = std::max(1, ms);
    m_monitorTimer.setInterval(m_intervalMs);
}

bool MonitoringCycle::lineInUse() const
{
    return m_rt.services.lineHolds.held() || m_rt.services.master.busy();
}

// One tick of `Timer_Monitor`. The timer is off for the length of the tick, so a
// slow line never stacks ticks up, and comes back only if acquisition still runs at
// the end: a Stop given while a poll waited for its reply ends the cycle.
void MonitoringCycle::MonitorCycle()
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

    // After a Stop the master sends nothing more; the polls left are skipped so that
    // they neither touch the items' states nor write the day's line.
    const auto stopped = [this] { return m_rt.services.master.exchangesStopped(); };
    for (CycleTask *task : std::as_const(m_rt.cycleTasks)) {
        if (stopped())
            break;
        busy = task->runTick() || busy;
    }

    if (isDue(m_rt.model.editor.comm.remotePeriod) && !stopped()) {
        pollInstruments();
        busy = true;
    }
    if (isDue(m_rt.model.editor.comm.measurementPeriod) && !stopped()) {
        busy = true;
        ReadAllMeasurements(m_rt);
        if (!stopped())
            readAllSwitchStates(m_rt);
    }
    if (isDue(m_rt.model.editor.comm.ledPeriod) && !stopped()) {
        readAllLedLamps(m_rt);
        busy = true;
    }
    if (!busy && m_rt.model.editor.comm.lineActivity && !stopped()) {
        m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Attivita..."));
        activityPoll(m_rt);
        m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
    }

    if (m_cycleCounter >= CycleWrap)
        m_cycleCounter = 0;
    if (m_state.AcquisitionRunning())
        m_monitorTimer.start(m_intervalMs);
    m_inTick = false;

    // Runs a Start or Reload clicked during the tick.
    hold.reset();
    emit tickFinished();
}

// A period of 0 would divide by zero; that poll simply never runs.
bool MonitoringCycle::isDue(int period) const
{
    return period != 0 && m_cycleCounter % period == 0;
}

// Every zone, switch, the door opener and every LED: in remote mode their remote/local
// register is read, otherwise the supervisor's state is written to it.
void MonitoringCycle::pollInstruments()
{
    const bool remote = m_rt.model.editor.comm.remoteEnabled;
    const int supervisorState = m_state.AcquisitionRunning() ? 1 : 0;
    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel,
                            remote ? QStringLiteral("Remoto...") : QStringLiteral("Locale..."));

    const int zones = std::clamp(m_rt.model.plant.zoneCount(), 0, MaxZones);
    for (int zone = 0; zone < zones; ++zone) {
        if (remote ? zoneRemoteRead(m_rt, zone) : zoneLocalWrite(m_rt, zone, supervisorState))
            m_rt.services.alarms.clearFailCount(AlarmItemKind::Zone, zone);
        else
            zoneStatusText(m_rt, zone);
    }

    const int switches = std::clamp(m_rt.model.plant.switchCount(), 0, MaxSwitches);
    for (int sw = 0; sw < switches; ++sw) {
        if (remote ? switchRemoteRead(m_rt, sw) : switchLocalWrite(m_rt, sw, supervisorState))
            m_rt.services.alarms.clearFailCount(AlarmItemKind::Switch, sw);
        else
            switchStatusText(m_rt, sw);
    }

    if (m_rt.model.plant.apriporta.present) {
        if (remote)
            doorRemoteRead(m_rt);
        else
            doorLocalWrite(m_rt, supervisorState);
    }

    const int leds = std::clamp(m_rt.model.plant.ledCount(), 0, MaxLeds);
    for (int led = 0; led < leds; ++led) {
        if (remote)
            ledRemoteRead(m_rt, led);
        else
            ledLocalWrite(m_rt, led, supervisorState);
    }

    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
}

} // namespace telvane
