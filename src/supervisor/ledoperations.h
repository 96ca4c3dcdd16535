#pragma once

#include <QtGlobal>

namespace telvane {

struct Runtime;

// The LED instrument's remote/local register, polled every `Base Remoto` ticks after
// the door opener: as for zones, with the LED's own failure counter. The cycle does
// not look at the answers, so a failed exchange also makes the remote state unknown
// here.
bool ledRemoteRead(Runtime &rt, int led);
bool ledLocalWrite(Runtime &rt, int led, int supervisorState);

// The `Base LED` read: each configured LED's `P1_r`, scaled by the LED's decimals
// into the lamp's value, and the lamp lit when the reading satisfies `Condizione`
// against `Val`. A read without a valid answer leaves the lamp dark and counts toward
// the LED's alarm; a good read restarts the count.
void readAllLedLamps(Runtime &rt);

// `Condizione` 1..6: ">=", "<=", "=", ">", "<", "<>"; any other number is ">=", as in
// the communication lists. Both sides are raw register integers.
bool ledConditionHolds(int condition, qint32 reading, qint32 threshold);

} // namespace telvane
