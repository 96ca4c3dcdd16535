#include "supervisor/supervisor.h"

#include "supervisor/cycletask.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/runtime.h"
#include "supervisor/switchoperations.h"

#include "base/pause.h"
#include "base/soundplayer.h"

#include <utility>

namespace telvane {

Supervisor::Supervisor(Runtime &rt, QObject *parent)
    : QObject(parent)
    , m_rt(rt)
{
    m_autoStartTimer.setSingleShot(true);
    connect(&m_monitorTimer, &QTimer::timeout, this, &Supervisor::MonitorCycle);
    connect(&m_blinkTimer, &QTimer::timeout, this, &Supervisor::Timer_LampeggioTick);
    connect(&m_autoStartTimer, &QTimer::timeout, this, &Supervisor::TimerAutoStartTick);
    connect(&m_rt.services.alarms, &AlarmBook::alarmBlinkRequested, this, &Supervisor::SetAlarmBlink);
    m_rt.services.lineHolds.setReleasedHandler([this] { runDeferredRead(); });
}

Supervisor::~Supervisor()
{
    m_rt.services.lineHolds.setReleasedHandler({});
}

void Supervisor::load()
{
    m_cycleCounter = 0;
    m_acquisitionRunning = false;
    m_autoStartPending = true;

    m_monitorTimer.stop();
    m_monitorTimer.setInterval(m_monitorIntervalMs);
    m_blinkTimer.stop();
    m_blinkTimer.setInterval(BlinkIntervalMs);
    m_autoStartTimer.stop();
    m_autoStartTimer.setInterval(AutoStartDelayMs);

    m_rt.display.statusBar.setPanel(StatusBar::StatePanel, QStringLiteral("Standby"));
    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
    m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
    SetAlarmBlink(false);

    ResetAlarms();

    for (const char *folder : {"Dati", "Crono", "Ricetta"})
        m_rt.model.ini.EnsureFolder(QLatin1String(folder));
    m_rt.model.mode = LoadSettings(m_rt.model.ini);

    setButtonImage(StandbyImage);
}

void Supervisor::startUp()
{
    load();
    ReloadEditor(m_rt);
    armAutoStart(m_rt.model.editor.options.autoStart);
}

void Supervisor::armAutoStart(bool autoAvvio)
{
    if (!autoAvvio)
        return;
    m_autoStartTimer.start(AutoStartDelayMs);
    if (m_autoStartPending) {
        m_blinkTimer.setInterval(AutoStartBlinkIntervalMs);
        SetAlarmBlink(true);
        m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Avvio in corso..."));
    }
}

void Supervisor::cancelAutoStart()
{
    m_autoStartTimer.stop();
    m_autoStartPending = false;
    SetAlarmBlink(false);
}

void Supervisor::SetAcquisitionState(bool on)
{
    const bool changed = m_acquisitionRunning != on;
    m_acquisitionRunning = on;
    if (on) {
        setButtonImage(AcquiringImage);
        m_rt.display.statusBar.setPanel(StatusBar::StatePanel, QStringLiteral("Acquisizione"));
        m_monitorTimer.start(m_monitorIntervalMs);
        for (CycleTask *task : std::as_const(m_rt.cycleTasks))
            task->acquisitionStarted();
    } else {
        setButtonImage(StandbyImage);
        m_rt.display.statusBar.setPanel(StatusBar::StatePanel, QStringLiteral("Standby"));
        m_monitorTimer.stop();
        m_blinkTimer.stop();
    }
    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
    m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
    if (changed)
        emit acquisitionStateChanged(on);
}

void Supervisor::SetAlarmBlink(bool on)
{
    m_alarmBlinkActive = on;
    if (on) {
        // Keeps the rhythm when several alarms arrive in one round.
        if (!m_blinkTimer.isActive())
            m_blinkTimer.start();
    } else {
        setButtonImage(m_acquisitionRunning ? AcquiringImage : StandbyImage);
    }
}

void Supervisor::ResetAlarms()
{
    m_rt.services.alarms.ResetAlarms();
}

void Supervisor::MenuStart()
{
    if (deferWhileLineHeld(DeferredRead::Start))
        return;
    m_cycleCounter = 0;
    for (CycleTask *task : std::as_const(m_rt.cycleTasks))
        task->acquisitionStarting();

    if (CommunicateWithInstruments() && !SerialPortOpen())
        return;

    // While acquiring, the timer keeps running through the re-read.
    const LineHold hold(m_rt.services.lineHolds);
    ReadAllMeasurements(m_rt);
    ReadAllSwitchStates(m_rt);
    SetAcquisitionState(true);
    if (AlarmPending())
        SetAlarmBlink(true);
    if (EditorOpen())
        emit editorFrameEnabledRequested(false);
}

void Supervisor::MenuStop()
{
    SetAcquisitionState(false);
    m_rt.services.items.reset();
    m_rt.display.displayResets.resetAll();
    SetAlarmBlink(false);
    if (EditorOpen() && IsAdministrator())
        emit editorFrameEnabledRequested(true);
}

void Supervisor::MenuRileggi()
{
    if (deferWhileLineHeld(DeferredRead::Reload))
        return;
    if (!m_acquisitionRunning)
        return;
    if (CommunicateWithInstruments() && !SerialPortOpen())
        return;
    const LineHold hold(m_rt.services.lineHolds);
    SetAcquisitionState(false);
    ReadAllMeasurements(m_rt);
    ReadAllSwitchStates(m_rt);
    SetAcquisitionState(true);
}

bool Supervisor::lineInUse() const
{
    return m_rt.services.lineHolds.held() || m_rt.services.master.busy();
}

// A Start or Reload clicked while the line is held would read every zone with the line
// taken: each read refused, each zone a step nearer a false alarm. It runs when the
// line is let go instead.
bool Supervisor::deferWhileLineHeld(DeferredRead read)
{
    if (!m_rt.services.lineHolds.held())
        return false;
    if (m_deferredRead != DeferredRead::Start)
        m_deferredRead = read;
    return true;
}

void Supervisor::runDeferredRead()
{
    const DeferredRead deferred = std::exchange(m_deferredRead, DeferredRead::None);
    if (deferred == DeferredRead::Start)
        MenuStart();
    else if (deferred == DeferredRead::Reload)
        MenuRileggi();
}

bool Supervisor::refuseWhileAcquiring()
{
    if (!m_acquisitionRunning)
        return false;
    m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Operazione non permessa"));
    m_rt.devices.pause.pause(RefusalMs);
    m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
    return true;
}

bool Supervisor::MenuFine()
{
    return !refuseWhileAcquiring();
}

bool Supervisor::MenuAbout()
{
    return !refuseWhileAcquiring();
}

bool Supervisor::MenuStagione()
{
    return !refuseWhileAcquiring();
}

void Supervisor::Timer_LampeggioTick()
{
    m_blinkTimer.stop();
    if (!m_alarmBlinkActive)
        return;
    m_blinkPhase = !m_blinkPhase;
    if (m_blinkPhase) {
        setButtonImage(StandbyImage);
        const QString sound = m_rt.model.plant.synoptic.alarmSound;
        if (!sound.isEmpty())
            m_rt.devices.sound.play(m_rt.model.ini.folder().filePath(sound));
    } else {
        setButtonImage(AcquiringImage);
    }
    if (m_acquisitionRunning || m_autoStartPending)
        m_blinkTimer.start();
}

void Supervisor::TimerAutoStartTick()
{
    m_autoStartTimer.stop();
    m_blinkTimer.setInterval(BlinkIntervalMs);
    SetAlarmBlink(false);
    m_autoStartPending = false;
    MenuStart();
    m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
}

bool Supervisor::CommunicateWithInstruments() const
{
    return m_rt.services.master.communicate();
}

void Supervisor::setCommunicateWithInstruments(bool communicate)
{
    m_rt.services.master.setCommunicate(communicate);
}

bool Supervisor::SerialPortOpen() const
{
    return m_rt.model.editor.comm.portAvailable;
}

bool Supervisor::AlarmPending() const
{
    return m_rt.services.alarms.AlarmPending();
}

bool Supervisor::EditorOpen() const
{
    return m_rt.display.EditorOpen;
}

bool Supervisor::IsAdministrator() const
{
    return m_rt.services.user.IsAdministrator;
}

bool Supervisor::IsTechnician() const
{
    return m_rt.services.user.IsTechnician;
}

void Supervisor::setMonitorIntervalMs(int ms)
{
    m_monitorIntervalMs = std::max(1, ms);
    m_monitorTimer.setInterval(m_monitorIntervalMs);
}

void Supervisor::setButtonImage(int image)
{
    if (m_buttonImage == image)
        return;
    m_buttonImage = image;
    emit acquisitionButtonImageChanged(image);
}

} // namespace telvane
