#pragma once

#include "alarms/alarmbook.h"
#include "supervisor/remoteexchange.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisorlog.h"
#include "supervisor/synopticrefresh.h"

namespace telvane {

// The remote read and local write every item kind shares; the item files give the
// table, the state to keep and the failure counter to feed.

inline bool itemIndexValid(const char *kind, int index, int count)
{
    if (index >= 0 && index < count)
        return true;
    qCWarning(lcSupervisor, "No %s with index %d", kind, index);
    return false;
}

// Reads the item's `REM_r` into `state`. The caller counts the outcome.
template <typename Slot, int Rows>
BusOutcome remoteRead(Runtime &rt, const RegisterTable<Slot, Rows> &readTable, int row, RemoteState &state)
{
    const BusOutcome reading = readRemoteRegister(rt.services.master, remoteRegister(readTable, row));
    if (!reading.answered())
        return reading;
    const RemoteState now = remoteStateFrom(reading.value);
    if (state != now) {
        state = now;
        emit rt.display.synoptic.remoteStatesChanged();
    }
    return reading;
}

// Writes the supervisor's state to the item's `REM_w`. The caller counts the outcome.
template <typename Slot, int Rows>
BusOutcome localWrite(Runtime &rt, const RegisterTable<Slot, Rows> &writeTable, int row, int supervisorState)
{
    return writeRemoteRegister(rt.services.master, remoteRegister(writeTable, row), supervisorState);
}

// Counts a failed exchange toward the item's alarm, with its reason; a refusal for a
// busy line and an exchange that is not configured count for nothing. True when the
// instrument answered.
inline bool countFailure(Runtime &rt, AlarmItemKind kind, int index, const BusOutcome &outcome)
{
    if (outcome.instrumentFailed())
        rt.services.alarms.reportFailure(kind, index, outcome.reason());
    return outcome.answered();
}

inline void forgetRemoteState(Runtime &rt, RemoteState &state)
{
    if (state == RemoteState::Unknown)
        return;
    state = RemoteState::Unknown;
    emit rt.display.synoptic.remoteStatesChanged();
}

} // namespace telvane
