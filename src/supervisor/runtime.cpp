#include "supervisor/runtime.h"

namespace telvane {

namespace {

template <typename Item>
QString nameAt(const QList<Item> &items, int index)
{
    return index >= 0 && index < items.size() ? items[index].name : QString();
}

QString itemName(const PlantConfig &plant, AlarmItemKind kind, int index)
{
    switch (kind) {
    case AlarmItemKind::Zone:
        return nameAt(plant.zones, index);
    case AlarmItemKind::Switch:
        return nameAt(plant.switches, index);
    case AlarmItemKind::Led:
        return nameAt(plant.leds, index);
    }
    return {};
}

} // namespace

Runtime::Runtime(const ProgramFolder &folder, SerialLine &line, const Clock &clock, Pause &pause, SoundPlayer &sound)
    : line(line)
    , clock(clock)
    , pause(pause)
    , sound(sound)
    , ini(folder)
    , master(line, clock)
    , dailyLog(folder, clock)
    , journal(folder, clock)
    , alarms(clock, [this](AlarmItemKind kind, int index) { return itemName(plant, kind, index); })
{
}

void ReloadEditor(Runtime &rt)
{
    ReloadEditor(EditorServices{rt.ini, rt.plant, rt.displayResets, rt.master, rt.line, rt.values, rt.chrono},
                 rt.editor);
    rt.items.reset();
    rt.statusBar.setPanel(StatusBar::PortPanel, rt.editor.comm.statusText);
    rt.ChartLoggingOption = rt.editor.options.chart;
}

} // namespace telvane
