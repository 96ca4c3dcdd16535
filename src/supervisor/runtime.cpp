#include "supervisor/runtime.h"

namespace telvane {

Runtime::Runtime(const ProgramFolder &folder, SerialLine &line, const Clock &clock, Pause &pause, SoundPlayer &sound)
    : devices{line, clock, pause, sound}
    , model(folder)
    , services(folder, devices, model.plant)
{
}

void ReloadEditor(Runtime &rt)
{
    PlantModel &model = rt.model;
    ReloadEditor(EditorServices{model.ini, model.plant, rt.display.displayResets, rt.services.master, rt.devices.line,
                                model.values, model.chrono},
                 model.editor);
    rt.services.items.reset();
    rt.display.statusBar.setPanel(StatusBar::PortPanel, model.editor.comm.statusText);
    rt.display.ChartLoggingOption = model.editor.options.chart;
}

} // namespace telvane
