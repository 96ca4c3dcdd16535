#pragma once

#include "alarms/alarmbook.h"
#include "fieldbus/modbusmaster.h"
#include "storage/dailylog.h"
#include "supervisor/itemstates.h"
#include "supervisor/linehold.h"
#include "supervisor/userlevel.h"

namespace telvane {

struct Devices;
struct PlantConfig;
class ProgramFolder;

// The working parts that keep state of their own between rounds: the bus and who holds
// it, the day's log, the failure bookkeeping, the last states read from the items and
// the user logged in.
struct PlantServices
{
    // The alarms name an item by the plant's current configuration, so `plant` must
    // outlive the services.
    PlantServices(const ProgramFolder &folder, const Devices &devices, const PlantConfig &plant);

    ModbusMaster master;
    // Who uses the line beyond one exchange; no monitoring tick starts meanwhile.
    LineHolds lineHolds;
    DailyLog dailyLog;
    AlarmBook alarms;
    ItemStates items;
    UserLevel user;
};

} // namespace telvane
