#pragma once

#include "base/pause.h"

namespace telvane {

// Waits in a local event loop, so the window repaints the message it just showed
// (and timers keep their rhythm) while the program holds still.
class EventLoopPause final : public Pause
{
public:
    void pause(int ms) override;
};

} // namespace telvane
