#pragma once

#include "commands/commandoutcome.h"

#include <QString>

namespace telvane {

class Prompts;
struct Runtime;

// Writes the operator's value to zone `zone`, now: the quantity the synoptic shows as the
// zone's text (`Zone Testo`), through the zone's write register of that quantity.
//
// Needs a user with rights. The text takes "," or "." as decimal separator and is scaled
// by the zone's decimals ("21,5" with 1 decimal is 215); text that is not a number, or a
// value that does not fit a register, sends nothing and the operator is told so. The
// echo must be the value written; otherwise the operator is warned. On success the zone's
// value in `ZoneValues` is the one written, and the synoptic shows it at once. Every box
// is titled "Modifica parametro...", like the input box the value was typed in.
CommandOutcome SetValueCommand(Runtime &rt, Prompts &prompts, int zone, const QString &valueText);

} // namespace telvane
