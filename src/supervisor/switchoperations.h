#pragma once

#include "supervisor/itemstates.h"

namespace telvane {

struct Runtime;

// The switch instrument's remote/local register, polled every `Base Remoto` ticks:
// as for zones, with the switch's own failure counter.
bool switchRemoteRead(Runtime &rt, int sw);
bool switchLocalWrite(Runtime &rt, int sw, int supervisorState);
void switchStatusText(Runtime &rt, int sw);

// The second read of a measurement round: each configured switch's `On_r` into
// `SwitchValues` slot 0 and `Off_r` into slot 1 (registers scaled by the switch's
// decimals, bits as read), then the state the synoptic shows. Every read register
// counts toward the switch's alarm: a failure adds one, a good read restarts the count.
void readAllSwitchStates(Runtime &rt);

// The state read from `On_r` and `Off_r`, either of which may be absent. With both:
// on when `On_r` is non-zero and `Off_r` zero, off the other way round, undetermined
// when they agree. With one, it decides alone (`Off_r` non-zero means off). A register
// that did not answer, or none at all, leaves the switch undetermined.
SwitchState switchStateFrom(bool onUsed, float onValue, bool offUsed, float offValue);

} // namespace telvane
