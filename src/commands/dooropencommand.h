#pragma once

#include "commands/commandoutcome.h"

namespace telvane {

class Prompts;
struct Runtime;

// Opens the door, now: one pulse on the door opener's instrument.
//
// Needs a user with rights, as a switch does. Writes `Val_on` to `On_w`, waits the pulse
// time `Tempo`, writes `Val_off` to `Off_w` (a coil's 1 as 0xFF00, both echoes checked
// as a switch's), then plays the door sound `SuonoPorta` when one is set. The release is
// written even when the opening was not confirmed, so that a lost echo never leaves the
// door strike energised. The operator is warned in a box "Gestione Apriporta" when the
// door may not have opened, or may not have been released. A door opener without
// `On_w` or `Off_w` sends nothing and says nothing.
CommandOutcome DoorOpenCommand(Runtime &rt, Prompts &prompts);

} // namespace telvane
