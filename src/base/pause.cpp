#include "base/pause.h"

#include "base/clock.h"

namespace telvane {

RecordingPause::RecordingPause(ManualClock *clock)
    : m_clock(clock)
{
}

void RecordingPause::pause(int ms)
{
    m_pauses.append(ms);
    if (m_clock)
        m_clock->advance(ms);
}

} // namespace telvane
