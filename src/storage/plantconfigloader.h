#pragma once

#include "storage/plantconfig.h"

namespace telvane {

class DisplayResets;
class IniStore;

// Replaces `config` with the plant described by the current settings file: door
// opener, webcam, zone display choices, zones, chart settings, switches, LEDs and the
// synoptic's picture and sounds. Absent keys take their defaults; counts are clamped
// to the maxima. Once zones, switches and LEDs are in place the displays are told to
// reset (`resets`), before the synoptic's picture and sounds are read.
// The per-zone field values are left empty: the synoptic loads them with
// LoadSynopticFields when it shows the zones.
void LoadPlantConfig(const IniStore &store, PlantConfig &config, DisplayResets &resets);

// Reads the names of the synoptic's text fields and, for zones 0 .. zoneCount - 1, each
// zone's values; the values of the other zones are cleared.
void LoadSynopticFields(const IniStore &store, SynopticFields &fields, int zoneCount);

} // namespace telvane
