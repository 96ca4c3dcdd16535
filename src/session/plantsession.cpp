#include "session/plantsession.h"

#include "storage/chronofiles.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"

namespace telvane {

PlantSession::PlantSession(Runtime &rt, Supervisor &supervisor, Prompts &prompts)
    : m_rt(rt)
    , m_supervisor(supervisor)
    , m_chrono(rt.model, rt.services.master, rt.devices.clock)
    , m_clockAlignment(rt.model, rt.services.master, rt.devices.clock)
    , m_commands(rt, prompts, supervisor)
{
    // The commands first: the operator's click goes out before the tick's own work.
    m_rt.cycleTasks.append(&m_commands);
    m_rt.cycleTasks.append(&m_chrono);
    m_rt.cycleTasks.append(&m_clockAlignment);
}

PlantSession::~PlantSession()
{
    m_rt.cycleTasks.removeOne(&m_commands);
    m_rt.cycleTasks.removeOne(&m_chrono);
    m_rt.cycleTasks.removeOne(&m_clockAlignment);
}

void PlantSession::startUp()
{
    m_supervisor.startUp();
    loadChronoFiles();
}

void PlantSession::reload()
{
    ReloadEditor(m_rt);
    loadChronoFiles();
    m_chrono.restart();
}

void PlantSession::loadChronoFiles()
{
    // A file that cannot be read is logged by the loader; the schedule then keeps 20.0.
    LoadChronoFiles(m_rt.model.ini.folder(), m_rt.model.chrono, m_rt.model.holidays);
}

} // namespace telvane
