#include "supervisor/plantservices.h"

#include "storage/plantconfig.h"
#include "supervisor/devices.h"

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

PlantServices::PlantServices(const ProgramFolder &folder, const Devices &devices, const PlantConfig &plant)
    : master(devices.line, devices.clock)
    , dailyLog(folder, devices.clock)
    , alarms(devices.clock, [&plant](AlarmItemKind kind, int index) { return itemName(plant, kind, index); })
{
}

} // namespace telvane
