#pragma once

namespace telvane {

class PlantCommands;
class Sinottico;

// The operator's clicks on the plan become the plant's commands; the rules on when a
// click acts at once, waits in the queue or does nothing live with the commands.
void connectSynopticCommands(Sinottico &synoptic, PlantCommands &commands);

} // namespace telvane
