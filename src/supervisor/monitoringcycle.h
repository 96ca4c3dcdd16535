#pragma once

#include <QObject>
#include <QTimer>

namespace telvane {

class AcquisitionState;
struct Runtime;

// The monitoring cycle on `Timer_Monitor`: each tick runs the cycle tasks (the
// operator's commands first), then whichever polls are due by their periods in ticks.
// A tick may wait for replies in a nested event loop; no tick starts while anybody
// holds the line or the master is in an exchange.
class MonitoringCycle final : public QObject
{
    Q_OBJECT

public:
    static constexpr int MonitorIntervalMs = 1000;
    static constexpr int CycleWrap = 300;

    MonitoringCycle(Runtime &rt, const AcquisitionState &state, QObject *parent = nullptr);

    // One tick; the timer calls it, tests call it directly.
    void MonitorCycle();

    void start() { m_monitorTimer.start(m_intervalMs); }
    void stop() { m_monitorTimer.stop(); }
    // The periods count from the next tick.
    void restartCount() { m_cycleCounter = 0; }

    int CycleCounter() const { return m_cycleCounter; }
    // A tick is under way (perhaps waiting for a reply in a nested loop).
    bool tickInProgress() const { return m_inTick; }
    // Held for more than one exchange, or in an exchange now.
    bool lineInUse() const;
    const QTimer &Timer_Monitor() const { return m_monitorTimer; }

    // The real interval of a tick; the periods stay counted in ticks. For demos and
    // tests of the headless mode; the plant runs on 1000 ms.
    void setMonitorIntervalMs(int ms);

signals:
    // A tick has ended, its timer re-armed or, after a Stop, left off.
    void tickFinished();

private:
    void pollInstruments();
    bool isDue(int period) const;

    Runtime &m_rt;
    const AcquisitionState &m_state;
    QTimer m_monitorTimer;
    int m_intervalMs = MonitorIntervalMs;
    int m_cycleCounter = 0;
    bool m_inTick = false;
};

} // namespace telvane
