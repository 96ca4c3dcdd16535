#pragma once

#include "commands/commandoutcome.h"
#include "session/headlesscommand.h"
#include "supervisor/supervisor.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

class QTextStream;

namespace telvane {

class PlantSession;
class Prompts;
struct Runtime;

// How the headless mode runs a plant.
struct HeadlessOptions
{
    struct Credentials
    {
        QString name;
        QString password;
    };

    bool communicate = false;
    // Monitoring ticks to run before stopping; 0 runs until asked to stop.
    int ticks = 0;
    // The real length of a tick; every period stays counted in ticks.
    int tickMs = MonitoringCycle::MonitorIntervalMs;
    // Logged in before acquisition starts.
    std::optional<Credentials> login;
    // Queued one a tick from the start on, in this order.
    QList<HeadlessCommand> commands;
    // Sends this recipe (a season or a file in "Ricetta") after the start-up in place
    // of acquiring, and finishes with its outcome.
    QString recipe;
};

// The plant without a display: the main window's start-up, acquisition at once, and
// everything the window would show as one line of text on `out`:
//
//   Pannello 2: Acquisizione          a status-bar panel changed ("Pannello 3:" emptied)
//   Allarme: Soggiorno (14/11/2026 10:15:00)     a new entry in the alarms window
//   Comando "switch 1 on": confermato             how an operator command ended
//   Giornale: 14/11/2026 10:15:00;Tecnico;Login;Tecnico;     a line of the operator journal
//
// plus the message boxes, as `HeadlessPrompts` prints them. Stops after the ticks asked
// for, or after the exchange under way when asked to stop, and then closes the port.
class HeadlessRunner final : public QObject
{
    Q_OBJECT

public:
    HeadlessRunner(Runtime &rt, Supervisor &supervisor, PlantSession &session, Prompts &prompts, QTextStream &out,
                   HeadlessOptions options);
    ~HeadlessRunner() override;

    // Starts up and starts acquiring. Talking to the instruments with no port to use,
    // prints "Nessuna COM" and finishes with 1.
    void start();
    // Finishes at once between ticks, otherwise after the exchange under way, which
    // ends the tick. Safe to call from a handler run while a poll waits for its reply.
    void requestStop();

    int ticksRun() const { return m_ticksRun; }

signals:
    // The run is over: 0 after the ticks or a stop, 1 when no port could be used.
    void finished(int exitCode);

private:
    void printPanel(int number, const QString &text);
    void printAlarm(const QString &text);
    void printOutcome(CommandOutcome outcome);
    void tickFinished();
    void requestNextCommand();
    void finish(int exitCode);

    Runtime &m_rt;
    Supervisor &m_supervisor;
    PlantSession &m_session;
    Prompts &m_prompts;
    QTextStream &m_out;
    HeadlessOptions m_options;

    int m_ticksRun = 0;
    int m_nextCommand = 0;
    QString m_commandRunning;
    bool m_starting = false;
    bool m_stopRequested = false;
    bool m_finished = false;
};

} // namespace telvane
