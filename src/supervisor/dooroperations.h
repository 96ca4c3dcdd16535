#pragma once

namespace telvane {

struct Runtime;

// The door opener's remote/local register, polled every `Base Remoto` ticks after the
// switches. The door opener has no alarm entry: a failure only makes its remote state
// unknown.
bool doorRemoteRead(Runtime &rt);
bool doorLocalWrite(Runtime &rt, int supervisorState);

} // namespace telvane
