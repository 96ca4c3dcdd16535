#pragma once

#include "commands/commandoutcome.h"

namespace telvane {

class Prompts;
struct Runtime;

// Turns switch `sw` (0..9) on or off on its instrument, now.
//
// Needs a user with rights. Writes `Val_on` to `On_w` or `Val_off` to `Off_w` (a coil's 1
// as 0xFF00), between the switch's remote-state read and a local-state write of 0, and
// checks the echo. Each of the three steps counts toward the switch's alarm: a good
// answer clears its failure count, a bad one adds a failure, so a command that was not
// confirmed counts up to three. The operator is warned in a box "Gestione Interruttore"
// when the switch may not have switched; on success the synoptic shows the new state at
// once. A switch without `On_w` or `Off_w` sends nothing and says nothing.
CommandOutcome SwitchCommand(Runtime &rt, Prompts &prompts, int sw, bool on);

} // namespace telvane
