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
    : clock(clock)
    , pause(pause)
    , sound(sound)
    , ini(folder)
    , master(line, clock)
    , dailyLog(folder, clock)
    , alarms(clock, [this](AlarmItemKind kind, int index) { return itemName(plant, kind, index); })
{
}

} // namespace telvane
