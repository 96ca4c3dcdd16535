#pragma once

#include "supervisor/remoteexchange.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisorlog.h"
#include "supervisor/synopticrefresh.h"

#include <functional>

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

template <typename Slot, int Rows>
bool remoteRead(Runtime &rt, const RegisterTable<Slot, Rows> &readTable, int row, RemoteState &state,
                const std::function<void()> &reportFailure)
{
    const RemoteReading reading = readRemoteRegister(rt.master, remoteRegister(readTable, row));
    switch (reading.outcome) {
    case ExchangeOutcome::NotConfigured:
        return false;
    case ExchangeOutcome::Failed:
        if (reportFailure)
            reportFailure();
        return false;
    case ExchangeOutcome::Done:
        break;
    }
    const RemoteState now = remoteStateFrom(reading.value);
    if (state != now) {
        state = now;
        emit rt.synoptic.remoteStatesChanged();
    }
    return true;
}

template <typename Slot, int Rows>
bool localWrite(Runtime &rt, const RegisterTable<Slot, Rows> &writeTable, int row, int supervisorState,
                const std::function<void()> &reportFailure)
{
    const ExchangeOutcome outcome = writeRemoteRegister(rt.master, remoteRegister(writeTable, row), supervisorState);
    if (outcome == ExchangeOutcome::Failed && reportFailure)
        reportFailure();
    return outcome == ExchangeOutcome::Done;
}

inline void forgetRemoteState(Runtime &rt, RemoteState &state)
{
    if (state == RemoteState::Unknown)
        return;
    state = RemoteState::Unknown;
    emit rt.synoptic.remoteStatesChanged();
}

} // namespace telvane
