#pragma once

#include <QObject>
#include <QTimer>

namespace telvane {

struct Runtime;

// The acquisition state of the main window `MainForm`: standing by or acquiring, the
// three timers, the monitoring cycle, the alarm blink and sound, the automatic start
// and the refusals of commands that are not allowed while acquiring. The window (or
// the headless mode) shows its state and turns clicks into the `Menu...` calls.
//
// Every handler may be entered while a poll waits for a reply: the master lets the
// event loop run meanwhile. No tick starts while anybody holds the line (a tick, a
// Start's re-read, a command run at once); a Stop given during a tick leaves the timer
// off at its end, a Start or Reload runs once the line is let go.
class Supervisor final : public QObject
{
    Q_OBJECT

public:
    // Image-list entries of the acquisition button "8".
    static constexpr int StandbyImage = 3;
    static constexpr int AcquiringImage = 4;

    static constexpr int MonitorIntervalMs = 1000;
    static constexpr int BlinkIntervalMs = 700;
    static constexpr int AutoStartBlinkIntervalMs = 350;
    static constexpr int AutoStartDelayMs = 10000;
    static constexpr int RefusalMs = 500;
    static constexpr int CycleWrap = 300;

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
    void SetAlarmBlink(bool on);
    void ResetAlarms();
    void MenuStart();
    void MenuStop();
    void MenuRileggi();
    // True when the command may go ahead; false after "Operazione non permessa" was
    // shown for half a second because acquisition is running.
    bool MenuFine();
    bool MenuAbout();
    bool MenuStagione();

    // --- Timer handlers (the timers call them; tests call them directly) -------------
    void MonitorCycle();
    void Timer_LampeggioTick();
    void TimerAutoStartTick();

    // --- State -------------------------------------------------------------------
    bool AcquisitionRunning() const { return m_acquisitionRunning; }
    bool CommunicateWithInstruments() const;
    void setCommunicateWithInstruments(bool communicate);
    bool SerialPortOpen() const;
    bool AlarmPending() const;
    bool AlarmBlinkActive() const { return m_alarmBlinkActive; }
    bool BlinkPhase() const { return m_blinkPhase; }
    bool AutoStartPending() const { return m_autoStartPending; }
    bool EditorOpen() const;
    bool IsAdministrator() const;
    bool IsTechnician() const;
    int CycleCounter() const { return m_cycleCounter; }
    // A monitoring tick is under way (perhaps waiting for a reply in a nested loop).
    bool tickInProgress() const { return m_inTick; }
    int acquisitionButtonImage() const { return m_buttonImage; }

    const QTimer &Timer_Monitor() const { return m_monitorTimer; }
    const QTimer &Timer_Lampeggio() const { return m_blinkTimer; }
    const QTimer &TimerAutoStart() const { return m_autoStartTimer; }

    // The real interval of a tick; the periods stay counted in ticks. For demos and
    // tests of the headless mode; the plant runs on 1000 ms.
    void setMonitorIntervalMs(int ms);

signals:
    void acquisitionStateChanged(bool running);
    void acquisitionButtonImageChanged(int image);
    // The editor's acquisition-sensitive frame must be enabled or disabled.
    void editorFrameEnabledRequested(bool enabled);
    // A monitoring tick has ended, its timer re-armed or, after a Stop, left off.
    void tickFinished();

private:
    enum class DeferredRead { None, Start, AutomaticStart, Reload };

    void start(bool automatic);
    bool lineInUse() const;
    bool deferWhileLineHeld(DeferredRead read);
    void runDeferredRead();
    bool refuseWhileAcquiring();
    void setButtonImage(int image);
    void pollInstruments();
    bool isDue(int period) const;

    Runtime &m_rt;
    QTimer m_monitorTimer;
    QTimer m_blinkTimer;
    QTimer m_autoStartTimer;
    int m_monitorIntervalMs = MonitorIntervalMs;

    bool m_acquisitionRunning = false;
    bool m_alarmBlinkActive = false;
    bool m_blinkPhase = false;
    bool m_autoStartPending = false;
    bool m_inTick = false;
    DeferredRead m_deferredRead = DeferredRead::None;
    int m_cycleCounter = 0;
    int m_buttonImage = StandbyImage;
};

} // namespace telvane
