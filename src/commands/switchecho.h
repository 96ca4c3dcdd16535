#pragma once

#include <QtGlobal>

namespace telvane {

// The writes of switches and the door opener: a coil (function code 5) switched with the
// value 1 is sent 0xFF00, as Modbus coils expect; any other value goes as it is.
inline constexpr qint32 CoilOnValue = 0xFF00;
qint32 switchWriteValue(int functionCode, qint32 value);

// Whether an instrument's echo of a switch or door write confirms it.
// A register write (code 6) is confirmed only by the very value written. Coil and other
// writes (5, 8) are confirmed by 0 for 0 and by 0xFF00 for 0xFF00, and by nothing else:
// some instruments echo a coil's previous state or garbage. 0xFF00 may come back as
// 65280 (the master reads a non-negative write's echo unsigned, and the simulation
// echoes the value written) or as -256 (read signed); both are the same echo. No valid
// answer (-99999) never confirms.
bool switchEchoConfirms(int functionCode, qint32 written, qint32 echo);

} // namespace telvane
