#pragma once

#include "config_editor/pagemodel.h"

namespace telvane {

// The editor's pages of settings keys, each ready to load. Every page confirms with
// index 0 of its close-button array and closes without saving with any other index.

// `Pic_RS232`: the serial line (section "COM") and the alarm sound.
PageModel rs232Page();
// The options of section "Generale": automatic start, chart, recipes, chrono-thermostat, master.
PageModel generalOptionsPage();
// The zones: their count and display choices, the synoptic's field names, and per zone
// every key the plant, the lists and the synoptic read.
PageModel zonesPage();
// The switches and the LED outputs.
PageModel switchesAndLedsPage();
// The door opener and the webcam.
PageModel doorAndWebcamPage();
// The instruments' clock registers of each zone (industrial plants).
PageModel clockPage();

// The seven lamp colours of an LED, by the index "Col" holds.
QStringList lampColourNames();

} // namespace telvane
