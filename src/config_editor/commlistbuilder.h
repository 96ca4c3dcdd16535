#pragma once

#include "config_editor/commlists.h"
#include "config_editor/registertables.h"

namespace telvane {

class IniStore;

// The list builders: each reads the keys of its objects from the current settings file,
// appends one line per register in use to the lists and fills the objects' rows of its
// register table. Rows beyond the count hold -1 in every slot.
//
// An object whose "Indirizzo" is not an address 1..255 is left out whole (row all -1, no
// lines); a register key that is empty or not "function,register" leaves out that
// register only. Whatever was left out for a reason other than an empty key is logged.
//
// Line format: code ">" address ":" key text [" @ " value] " [" decimals "]", for example
// "100>5:3,40001 [1]" or "300>7:3,40010 @ >=25 [0]". Bit reads (function codes 1 and 2)
// carry 0 decimals whatever "Decimali" says.

// Zones also get their slave flags: zone 1 never, the others unless "Slave" reads "0".
void BuildZoneReadList(const IniStore &ini, int zoneCount, CommLists &lists, RegisterTables &tables);
// The "P1_r" line carries the lamp's condition and threshold; the row holds them as
// well: the threshold "Val" as a raw register value of "P1_r", the colour "Col" and
// the condition "Condizione" (1..6, anything else counts as 1).
void BuildLedReadList(const IniStore &ini, int ledCount, CommLists &lists, RegisterTables &tables);
void BuildDoorReadList(const IniStore &ini, bool doorPresent, CommLists &lists, RegisterTables &tables);
void BuildSwitchReadList(const IniStore &ini, int switchCount, CommLists &lists, RegisterTables &tables);

void BuildZoneWriteList(const IniStore &ini, int zoneCount, CommLists &lists, RegisterTables &tables);
void BuildLedWriteList(const IniStore &ini, int ledCount, CommLists &lists, RegisterTables &tables);
// "Val_on" and "Val_off" go with the "On_w" and "Off_w" lines and into the row as raw
// register values of the register that receives them (-1 when that register is not used).
void BuildDoorWriteList(const IniStore &ini, bool doorPresent, CommLists &lists, RegisterTables &tables);
void BuildSwitchWriteList(const IniStore &ini, int switchCount, CommLists &lists, RegisterTables &tables);

} // namespace telvane
