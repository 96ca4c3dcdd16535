#include "supervisor/switchoperations.h"

#include "alarms/alarmbook.h"
#include "supervisor/itemexchange.h"
#include "supervisor/registerreading.h"

namespace telvane {

namespace {

bool switchValid(int sw)
{
    return itemIndexValid("switch", sw, MaxSwitches);
}

// Reads one state register into `SwitchValues`; false when it is not configured.
bool readStateRegister(Runtime &rt, int sw, SwitchSlot functionSlot, SwitchSlot registerSlot, float &value)
{
    const SwitchTable &table = rt.model.editor.tables.SwitchReadTable;
    const ScaledReading reading =
        readScaledRegister(rt.services.master, table.at(sw, SwitchSlot::Address), table.at(sw, functionSlot),
                           table.at(sw, registerSlot), table.at(sw, SwitchSlot::Decimals));
    value = reading.value;
    if (reading.bus.result == BusResult::NotConfigured)
        return false;
    if (countFailure(rt, AlarmItemKind::Switch, sw, reading.bus))
        rt.services.alarms.clearFailCount(AlarmItemKind::Switch, sw);
    return true;
}

} // namespace

bool SwitchRemoteRead(Runtime &rt, int sw)
{
    return switchValid(sw)
           && countFailure(rt, AlarmItemKind::Switch, sw,
                           remoteRead(rt, rt.model.editor.tables.SwitchReadTable, sw, rt.services.items.switchRemote[sw]));
}

bool SwitchLocalWrite(Runtime &rt, int sw, int supervisorState)
{
    return switchValid(sw)
           && countFailure(rt, AlarmItemKind::Switch, sw,
                           localWrite(rt, rt.model.editor.tables.SwitchWriteTable, sw, supervisorState));
}

void SwitchStatusText(Runtime &rt, int sw)
{
    if (switchValid(sw))
        forgetRemoteState(rt, rt.services.items.switchRemote[sw]);
}

SwitchState SwitchStateFrom(bool onUsed, float onValue, bool offUsed, float offValue)
{
    if (!onUsed && !offUsed)
        return SwitchState::Undetermined;
    if ((onUsed && onValue == InvalidValue) || (offUsed && offValue == InvalidValue))
        return SwitchState::Undetermined;
    if (onUsed && offUsed) {
        if (onValue != 0 && offValue == 0)
            return SwitchState::On;
        if (onValue == 0 && offValue != 0)
            return SwitchState::Off;
        return SwitchState::Undetermined;
    }
    if (onUsed)
        return onValue != 0 ? SwitchState::On : SwitchState::Off;
    return offValue != 0 ? SwitchState::Off : SwitchState::On;
}

void ReadAllSwitchStates(Runtime &rt)
{
    const int switches = std::clamp(rt.model.plant.switchCount(), 0, MaxSwitches);
    for (int sw = 0; sw < switches; ++sw) {
        auto &values = rt.model.values.SwitchValues[sw];
        const bool onUsed = readStateRegister(rt, sw, SwitchSlot::OnFunction, SwitchSlot::OnRegister, values[0]);
        const bool offUsed = readStateRegister(rt, sw, SwitchSlot::OffFunction, SwitchSlot::OffRegister, values[1]);
        rt.services.items.switches[sw] = SwitchStateFrom(onUsed, values[0], offUsed, values[1]);
    }
    emit rt.display.synoptic.switchStatesChanged();
}

} // namespace telvane
