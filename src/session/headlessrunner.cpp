#include "session/headlessrunner.h"

#include "commands/users.h"
#include "config_editor/commsettings.h"
#include "fieldbus/serialline.h"
#include "season/headlessrecipe.h"
#include "session/plantsession.h"
#include "supervisor/runtime.h"

#include <QTextStream>

namespace telvane {

HeadlessRunner::HeadlessRunner(Runtime &rt, Supervisor &supervisor, PlantSession &session, Prompts &prompts,
                               QTextStream &out, HeadlessOptions options)
    : m_rt(rt)
    , m_supervisor(supervisor)
    , m_session(session)
    , m_prompts(prompts)
    , m_out(out)
    , m_options(std::move(options))
{
    connect(&m_rt.display.statusBar, &StatusBar::panelChanged, this, &HeadlessRunner::printPanel);
    connect(&m_rt.services.alarms, &AlarmBook::entryAdded, this,
            [this](AlarmItemKind, int, const QString &text) { printAlarm(text); });
    connect(&m_supervisor.monitoring(), &MonitoringCycle::tickFinished, this, &HeadlessRunner::tickFinished);
    connect(&m_rt.services.journal, &OperatorJournal::recorded, this,
            [this](const JournalEntry &entry) { m_out << "Giornale: " << journalLine(entry) << Qt::endl; });
    m_session.commands().setOutcomeListener([this](CommandOutcome outcome) { printOutcome(outcome); });
}

HeadlessRunner::~HeadlessRunner()
{
    m_session.commands().setOutcomeListener({});
}

void HeadlessRunner::start()
{
    if (m_stopRequested) {
        finish(0);
        return;
    }
    m_starting = true;
    m_supervisor.setCommunicateWithInstruments(m_options.communicate);
    m_supervisor.monitoring().setMonitorIntervalMs(m_options.tickMs);
    m_session.startUp();

    if (m_options.communicate && !m_supervisor.SerialPortOpen()) {
        m_out << CommSettings::NoPortText << Qt::endl;
        m_starting = false;
        finish(1);
        return;
    }
    if (m_options.login)
        logInUser(m_options.login->name, m_options.login->password, m_rt.services.user, m_rt.display.statusBar, m_prompts,
              m_rt.services.journal);
    if (!m_options.recipe.isEmpty()) {
        m_supervisor.cancelAutoStart();
        m_starting = false;
        finish(sendRecipeHeadless(m_rt, m_prompts, m_out, m_options.recipe));
        return;
    }

    // As the automatic start would, without its ten seconds: a box in a cabinet has
    // nobody to give it a last look.
    m_supervisor.TimerAutoStartTick();
    m_starting = false;

    if (m_stopRequested || !m_supervisor.AcquisitionRunning()) {
        finish(0);
        return;
    }
    requestNextCommand();
}

void HeadlessRunner::requestStop()
{
    m_stopRequested = true;
    // During the start's first round or a tick, the exchange under way ends (no request
    // is cut off on the wire) and the round stops there; the run finishes when the tick
    // or the start returns.
    if (!m_starting && !m_supervisor.monitoring().tickInProgress())
        finish(0);
    else
        m_supervisor.endLineWorkEarly();
}

void HeadlessRunner::tickFinished()
{
    if (m_finished)
        return;
    ++m_ticksRun;
    if (m_stopRequested || (m_options.ticks > 0 && m_ticksRun >= m_options.ticks)) {
        finish(0);
        return;
    }
    requestNextCommand();
}

// One command a tick: the queue holds one request of each kind, and a later one would
// replace the earlier.
void HeadlessRunner::requestNextCommand()
{
    if (m_nextCommand >= m_options.commands.size())
        return;
    const HeadlessCommand &command = m_options.commands[m_nextCommand++];
    m_commandRunning = command.text;
    PlantCommands &commands = m_session.commands();
    switch (command.kind) {
    case HeadlessCommand::Kind::Switch:
        commands.queueSwitch(command.item, command.on);
        break;
    case HeadlessCommand::Kind::DoorOpen:
        commands.queueDoorOpen();
        break;
    case HeadlessCommand::Kind::SetValue:
        commands.queueSetValue(command.item, command.value);
        break;
    }
}

void HeadlessRunner::finish(int exitCode)
{
    if (m_finished)
        return;
    m_finished = true;
    if (m_supervisor.AcquisitionRunning())
        m_supervisor.MenuStop();
    if (m_rt.devices.line.isOpen())
        m_rt.services.master.ClosePort();
    emit finished(exitCode);
}

void HeadlessRunner::printPanel(int number, const QString &text)
{
    m_out << "Pannello " << number << ':';
    if (!text.isEmpty())
        m_out << ' ' << text;
    m_out << Qt::endl;
}

void HeadlessRunner::printAlarm(const QString &text)
{
    m_out << "Allarme: " << text << Qt::endl;
}

void HeadlessRunner::printOutcome(CommandOutcome outcome)
{
    m_out << "Comando \"" << m_commandRunning << "\": " << commandOutcomeText(outcome) << Qt::endl;
}

} // namespace telvane
