#pragma once

namespace telvane {

struct Runtime;

// The zone instrument's remote/local register, polled every `Base Remoto` ticks.

// Reads `REM_r` into the zone's remote state. True when the instrument answered; a
// read without a valid answer counts toward the zone's alarm. False without traffic
// when the zone has no `REM_r`.
bool zoneRemoteRead(Runtime &rt, int zone);

// Writes the supervisor's state (1 acquiring, 0 standing by) to `REM_w`. True when
// the instrument echoed; a write without an echo counts toward the zone's alarm.
// False without traffic when the zone has no `REM_w`.
bool zoneLocalWrite(Runtime &rt, int zone, int supervisorState);

// After a failed remote read or local write: the zone's remote state is no longer
// known, and the synoptic shows "--.-" for it.
void zoneStatusText(Runtime &rt, int zone);

} // namespace telvane
