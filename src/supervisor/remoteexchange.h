#pragma once

#include "config_editor/registertables.h"
#include "fieldbus/busoutcome.h"
#include "supervisor/itemstates.h"

#include <QtGlobal>

namespace telvane {

class ModbusMaster;

// The `REM_r` or `REM_w` register of one item: every register table keeps the
// instrument address and that register in the same three slots.
struct RemoteRegister
{
    int slave = UnusedSlot;
    int functionCode = UnusedSlot;
    int address = UnusedSlot;
};

template <typename Slot, int Rows>
RemoteRegister remoteRegister(const RegisterTable<Slot, Rows> &table, int row)
{
    return {table.at(row, Slot::Address), table.at(row, Slot::RemFunction),
            // Registers above 32767 sit in the 16-bit table as negative numbers.
            int(quint16(table.at(row, Slot::RemRegister)))};
}

// Reads the register with a read function code (1..4). Without an address or such a
// code nothing is sent and the outcome is NotConfigured.
BusOutcome readRemoteRegister(ModbusMaster &master, const RemoteRegister &reg);

// Writes `state` (0 or 1) with a write function code (5, 6 or 8); a coil is written
// 65280 for 1, as instruments expect. Answered when the instrument echoed anything
// valid; NotConfigured, with nothing sent, as for the read.
BusOutcome writeRemoteRegister(ModbusMaster &master, const RemoteRegister &reg, int state);

// 0 is local, anything else remote.
RemoteState remoteStateFrom(qint32 value);

} // namespace telvane
