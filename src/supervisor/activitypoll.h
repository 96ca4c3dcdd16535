#pragma once

namespace telvane {

struct Runtime;

// The read of an idle tick: the `LineProbe` register, the first register of the
// reading list. True when the instrument answered. It feeds no alarm counter (the
// measurement rounds count that instrument's failures); a line that stops or starts
// answering again is noted in the log once.
bool activityPoll(Runtime &rt);

} // namespace telvane
