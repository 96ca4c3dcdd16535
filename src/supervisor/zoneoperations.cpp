#include "supervisor/zoneoperations.h"

#include "alarms/alarmbook.h"
#include "supervisor/itemexchange.h"

namespace telvane {

namespace {

bool zoneValid(int zone)
{
    return itemIndexValid("zone", zone, MaxZones);
}

} // namespace

bool ZoneRemoteRead(Runtime &rt, int zone)
{
    return zoneValid(zone)
           && countFailure(rt, AlarmItemKind::Zone, zone,
                           remoteRead(rt, rt.model.editor.tables.ZoneReadTable, zone, rt.services.items.zoneRemote[zone]));
}

bool ZoneLocalWrite(Runtime &rt, int zone, int supervisorState)
{
    return zoneValid(zone)
           && countFailure(rt, AlarmItemKind::Zone, zone,
                           localWrite(rt, rt.model.editor.tables.ZoneWriteTable, zone, supervisorState));
}

void ZoneStatusText(Runtime &rt, int zone)
{
    if (zoneValid(zone))
        forgetRemoteState(rt, rt.services.items.zoneRemote[zone]);
}

} // namespace telvane
