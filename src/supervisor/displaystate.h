#pragma once

#include "storage/displayresets.h"
#include "supervisor/statusbar.h"
#include "supervisor/synopticrefresh.h"

namespace telvane {

class ChartSink;

// What the windows show of the core, kept in the core so that the window and the
// headless mode see the same thing.
struct DisplayState
{
    // The main window's status bar and the synoptic's refreshes, as the core sees them.
    StatusBar statusBar;
    SynopticRefresh synoptic;
    DisplayResets displayResets;

    // The configuration editor is loaded.
    bool EditorOpen = false;
    // Measurement rounds add chart points and write the daily log. Each reload sets it
    // from the option "Grafico"; the editor's menu entry toggles it in between.
    bool ChartLoggingOption = false;
    // The activity poll's last answer, so that a silent line is logged once and
    // `Allarmi` can say the line is silent.
    bool lineAnswering = true;

    // Plugged in by the window when it exists; without it a round feeds no chart.
    ChartSink *chart = nullptr;
};

} // namespace telvane
