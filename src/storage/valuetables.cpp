#include "storage/valuetables.h"

namespace telvane {

ValueTables::ValueTables()
{
    for (auto &zone : ZoneValues)
        zone.fill(InvalidValue);
    for (auto &switchValues : SwitchValues)
        switchValues.fill(InvalidValue);
}

void InitValueTables(ValueTables &tables, ChronoSchedule &schedule)
{
    tables = ValueTables();
    schedule.fill(ChronoSchedule::DefaultSetPoint);
}

} // namespace telvane
