#include "supervisor/supervisor.h"

#include "supervisor/cycletask.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/runtime.h"
#include "supervisor/switchoperations.h"

#include <utility>

namespace telvane {

namespace {

void journal(Runtime &rt, const QString &event, const QString &detail = QString(), const QString &outcome = QString())
{
    rt.services.journal.record(rt.services.user.levelName(), event, detail, outcome);
}

} // namespace

Supervisor::Supervisor(Runtime &rt, QObject *parent)
    : QObject(parent)
    , m_rt(rt)
    , m_state(rt.display.statusBar, rt.devices.pause)
    , m_alarmIndication(m_state, rt.model, rt.devices.sound)
    , m_cycle(rt, m_state)
{
    m_autoStartTimer.setSingleShot(true);
    m_autoStartTimer.setInterval(AutoStartDelayMs);
    connect(&m_autoStartTimer, &QTimer::timeout, this, &Supervisor::TimerAutoStartTick);
    connect(&m_rt.services.alarms, &AlarmBook::alarmBlinkRequested, &m_alarmIndication,
            &AlarmIndication::SetAlarmBlink);
    m_rt.services.lineHolds.setReleasedHandler([this] {
        m_rt.services.master.resumeExchanges();
        runDeferredRead();
    });
}

Supervisor::~Supervisor()
{
    m_rt.services.lineHolds.setReleasedHandler({});
}

void Supervisor::load()
{
    m_cycle.restartCount();
    m_state.setAutoStartPending(true);

    m_cycle.stop();
    m_alarmIndication.pause();
    m_alarmIndication.setAutoStartPace(false);
    m_autoStartTimer.stop();

    m_state.setRunning(false);
    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
    m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
    m_alarmIndication.SetAlarmBlink(false);

    // Not the operator's acknowledgement: nothing to journal.
    m_rt.services.alarms.ResetAlarms();

    for (const char *folder : {"Dati", "Crono", "Ricetta"})
        m_rt.model.ini.EnsureFolder(QLatin1String(folder));
    m_rt.model.mode = LoadSettings(m_rt.model.ini);
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
    m_autoStartTimer.start();
    if (m_state.AutoStartPending()) {
        m_alarmIndication.setAutoStartPace(true);
        m_alarmIndication.SetAlarmBlink(true);
        m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Avvio in corso..."));
    }
}

void Supervisor::cancelAutoStart()
{
    m_autoStartTimer.stop();
    m_state.setAutoStartPending(false);
    m_alarmIndication.SetAlarmBlink(false);
}

void Supervisor::SetAcquisitionState(bool on)
{
    const bool changed = m_state.AcquisitionRunning() != on;
    m_state.setRunning(on);
    if (on) {
        m_cycle.start();
        for (CycleTask *task : std::as_const(m_rt.cycleTasks))
            task->acquisitionStarted();
    } else {
        m_cycle.stop();
        m_alarmIndication.pause();
    }
    m_rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
    m_rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
    if (changed)
        emit acquisitionStateChanged(on);
}

void Supervisor::ResetAlarms()
{
    // Closing the window acknowledges too; only an acknowledgement of listed alarms is
    // worth a journal line.
    AlarmBook &alarms = m_rt.services.alarms;
    const int listed = alarms.Lst_AllarmiZ()->rowCount() + alarms.Lst_AllarmiI()->rowCount();
    alarms.ResetAlarms();
    if (listed > 0)
        journal(m_rt, QStringLiteral("Riconoscimento allarmi"), QStringLiteral("%1 in elenco").arg(listed));
}

void Supervisor::MenuStart()
{
    start(false);
}

void Supervisor::start(bool automatic)
{
    if (deferWhileLineHeld(automatic ? DeferredRead::AutomaticStart : DeferredRead::Start))
        return;
    m_cycle.restartCount();
    for (CycleTask *task : std::as_const(m_rt.cycleTasks))
        task->acquisitionStarting();

    const QString how = automatic ? QStringLiteral("automatico") : QString();
    if (CommunicateWithInstruments() && !SerialPortOpen()) {
        journal(m_rt, QStringLiteral("Start"), how, QStringLiteral("porta seriale non disponibile"));
        return;
    }
    journal(m_rt, QStringLiteral("Start"), how);

    // While acquiring, the timer keeps running through the re-read.
    const LineHold hold(m_rt.services.lineHolds);
    if (!readEverything())
        return;
    SetAcquisitionState(true);
    if (AlarmPending())
        m_alarmIndication.SetAlarmBlink(true);
    if (m_rt.display.EditorOpen)
        emit editorFrameEnabledRequested(false);
}

void Supervisor::endLineWorkEarly()
{
    if (m_rt.services.lineHolds.held())
        m_rt.services.master.stopExchanges();
}

void Supervisor::MenuStop()
{
    endLineWorkEarly();
    if (m_state.AcquisitionRunning())
        journal(m_rt, QStringLiteral("Stop"));
    SetAcquisitionState(false);
    m_rt.services.items.reset();
    m_rt.display.displayResets.resetAll();
    m_alarmIndication.SetAlarmBlink(false);
    if (m_rt.display.EditorOpen && m_rt.services.user.IsAdministrator)
        emit editorFrameEnabledRequested(true);
}

void Supervisor::MenuRileggi()
{
    if (deferWhileLineHeld(DeferredRead::Reload))
        return;
    if (!m_state.AcquisitionRunning())
        return;
    if (CommunicateWithInstruments() && !SerialPortOpen()) {
        journal(m_rt, QStringLiteral("Rileggi"), QString(), QStringLiteral("porta seriale non disponibile"));
        return;
    }
    journal(m_rt, QStringLiteral("Rileggi"));
    const LineHold hold(m_rt.services.lineHolds);
    SetAcquisitionState(false);
    if (readEverything())
        SetAcquisitionState(true);
}

bool Supervisor::readEverything()
{
    ReadAllMeasurements(m_rt);
    if (!m_rt.services.master.exchangesStopped())
        readAllSwitchStates(m_rt);
    return !m_rt.services.master.exchangesStopped();
}

// A Start or Reload clicked while the line is held would read every zone with the line
// taken: each read refused, each zone a step nearer a false alarm. It runs when the
// line is let go instead.
bool Supervisor::deferWhileLineHeld(DeferredRead read)
{
    if (!m_rt.services.lineHolds.held())
        return false;
    if (m_deferredRead != DeferredRead::Start && m_deferredRead != DeferredRead::AutomaticStart)
        m_deferredRead = read;
    return true;
}

void Supervisor::runDeferredRead()
{
    const DeferredRead deferred = std::exchange(m_deferredRead, DeferredRead::None);
    if (deferred == DeferredRead::Start || deferred == DeferredRead::AutomaticStart)
        start(deferred == DeferredRead::AutomaticStart);
    else if (deferred == DeferredRead::Reload)
        MenuRileggi();
}

bool Supervisor::MenuFine()
{
    return !m_state.refuseWhileAcquiring();
}

bool Supervisor::MenuAbout()
{
    return !m_state.refuseWhileAcquiring();
}

bool Supervisor::MenuStagione()
{
    return !m_state.refuseWhileAcquiring();
}

void Supervisor::TimerAutoStartTick()
{
    m_autoStartTimer.stop();
    m_alarmIndication.setAutoStartPace(false);
    m_alarmIndication.SetAlarmBlink(false);
    m_state.setAutoStartPending(false);
    start(true);
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

} // namespace telvane
