#pragma once

namespace telvane {

struct Runtime;

// The editor's menu entry `MenuVediGraf`: measurement rounds stop or start adding chart
// points and log lines. The choice is the option "Grafico" itself and is saved to it, so
// the reload after every confirmed editor page, and the next start, read it back.
void MenuVediGraf(Runtime &rt);

} // namespace telvane
