#pragma once

#include "supervisor/acquisitionstate.h"
#include "supervisor/alarmindication.h"
#include "supervisor/monitoringcycle.h"

#include <QObject>
#include <QTimer>

namespace telvane {

struct Runtime;

// The main window `MainForm` without its widgets: start-up, the automatic start and
// the `Menu...` commands over the acquisition state, the alarm indication and the
// monitoring cycle. The window (or the headless mode) shows their state and turns
// clicks into these calls.
//
// Every handler may be entered while a poll waits for a reply: the master lets the
// event loop run meanwhile. No tick starts while anybody holds the line (a tick, a
// Start's re-read, a command run at once); a Stop given meanwhile ends that work after
// the exchange under way and leaves the timer off, a Start or Reload runs once the line
// is let go.
class Supervisor final : public QObject
{
    Q_OBJECT

public:
    static constexpr int AutoStartDelayMs = 10000;

    explicit Supervisor(Runtime &rt, QObject *parent = nullptr);
    ~Supervisor() override;

    // The start-up of the main window: flags cleared, timers set, "Standby", alarms
    // acknowledged, the folders "Dati", "Crono" and "Ricetta" made, the mode loaded.
    // The plant itself is loaded by the editor's reload, which runs after this.
    void load();

    // The whole start-up: load(), the editor's reload of the plant and the settings,
    // and the automatic start armed as the plant's option `AutoAvvio` says.
    void startUp();

    // Called once at start-up with the option `AutoAvvio` as the editor's first reload
    // read it: when it is on, acquisition starts by itself 10 s later, and until
    // then the acquisition button blinks fast and panel 4 says so.
    void armAutoStart(bool autoAvvio);
    // For a run that must not start acquiring by itself, as a recipe sent from the
    // command line: the armed start is dropped and the button stops blinking.
    void cancelAutoStart();

    // --- Commands ----------------------------------------------------------------
    void SetAcquisitionState(bool on);
    void ResetAlarms();
    void MenuStart();
    void MenuStop();
    void MenuRileggi();
    // Ends the tick, re-read or command under way after its current exchange, with
    // nothing else changed (the headless mode's stop, which then stops as after a tick).
    // A measurement round cut short writes no line in the day's file.
    void endLineWorkEarly();
    // True when the command may go ahead; false after "Operazione non permessa" was
    // shown for half a second because acquisition is running.
    bool MenuFine();
    bool MenuAbout();
    bool MenuStagione();

    // The automatic start's timer handler; tests call it directly.
    void TimerAutoStartTick();

    // --- State -------------------------------------------------------------------
    bool AcquisitionRunning() const { return m_state.AcquisitionRunning(); }
    bool CommunicateWithInstruments() const;
    void setCommunicateWithInstruments(bool communicate);
    bool SerialPortOpen() const;
    bool AlarmPending() const;
    const QTimer &TimerAutoStart() const { return m_autoStartTimer; }

    AcquisitionState &acquisition() { return m_state; }
    const AcquisitionState &acquisition() const { return m_state; }
    AlarmIndication &alarmIndication() { return m_alarmIndication; }
    const AlarmIndication &alarmIndication() const { return m_alarmIndication; }
    MonitoringCycle &monitoring() { return m_cycle; }
    const MonitoringCycle &monitoring() const { return m_cycle; }

signals:
    void acquisitionStateChanged(bool running);
    // The editor's acquisition-sensitive frame must be enabled or disabled.
    void editorFrameEnabledRequested(bool enabled);

private:
    enum class DeferredRead { None, Start, AutomaticStart, Reload };

    // The Start's and the Reload's read of every zone and switch; false when a Stop
    // cut it short.
    bool readEverything();
    void start(bool automatic);
    bool deferWhileLineHeld(DeferredRead read);
    void runDeferredRead();

    Runtime &m_rt;
    AcquisitionState m_state;
    AlarmIndication m_alarmIndication;
    MonitoringCycle m_cycle;
    QTimer m_autoStartTimer;
    DeferredRead m_deferredRead = DeferredRead::None;
};

} // namespace telvane
