#include "supervisor/dooroperations.h"

#include "supervisor/itemexchange.h"

namespace telvane {

bool DoorRemoteRead(Runtime &rt)
{
    if (remoteRead(rt, rt.model.editor.tables.DoorReadTable, 0, rt.services.items.doorRemote).answered())
        return true;
    forgetRemoteState(rt, rt.services.items.doorRemote);
    return false;
}

bool DoorLocalWrite(Runtime &rt, int supervisorState)
{
    return localWrite(rt, rt.model.editor.tables.DoorWriteTable, 0, supervisorState).answered();
}

} // namespace telvane
