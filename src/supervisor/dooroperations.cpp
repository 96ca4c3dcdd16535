#include "supervisor/dooroperations.h"

#include "supervisor/itemexchange.h"

namespace telvane {

bool DoorRemoteRead(Runtime &rt)
{
    if (remoteRead(rt, rt.editor.tables.DoorReadTable, 0, rt.items.doorRemote).answered())
        return true;
    forgetRemoteState(rt, rt.items.doorRemote);
    return false;
}

bool DoorLocalWrite(Runtime &rt, int supervisorState)
{
    return localWrite(rt, rt.editor.tables.DoorWriteTable, 0, supervisorState).answered();
}

} // namespace telvane
