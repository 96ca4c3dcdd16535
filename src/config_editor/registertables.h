#pragma once

#include "storage/plantlimits.h"

#include <QtGlobal>
#include <array>

namespace telvane {

// A slot or a whole row not in use.
inline constexpr qint16 UnusedSlot = -1;

// One shared definition of every table's slot layout: the builders that fill the
// tables and the cycle and commands that read them name slots only through these.

enum class ZoneSlot : int {
    Address = 0,
    Decimals = 1,
    RemFunction = 2,
    RemRegister = 3,
    // Quantity k (0 PV, 1 SP, 2 AL1, 3 AL2, 4 AL3) sits at 4 + 2k and 5 + 2k.
    FirstQuantityFunction = 4,
    Count = 14,
};
constexpr int zoneQuantityFunctionSlot(int quantity) { return 4 + 2 * quantity; }
constexpr int zoneQuantityRegisterSlot(int quantity) { return 5 + 2 * quantity; }

// Switches and the door opener share the first eight slots.
enum class SwitchSlot : int {
    Address = 0,
    Decimals = 1,
    RemFunction = 2,
    RemRegister = 3,
    OnFunction = 4,
    OnRegister = 5,
    OffFunction = 6,
    OffRegister = 7,
    ValOn = 8,   // write table only: raw register value written to switch on
    ValOff = 9,  // write table only: raw register value written to switch off
    Count = 12,
};

// The door opener's values sit one slot later than a switch's. Slots 8 and 11 of both
// tables, and 4 to 11 of the read table, stay -1: the door has no state registers to
// read, and its pulse time ("Tempo") is a duration kept beside the tables, not a value
// for a register. Nothing reads them; a builder that filled them would put nothing on
// the wire.
enum class DoorSlot : int {
    Address = 0,
    Decimals = 1,
    RemFunction = 2,
    RemRegister = 3,
    OnFunction = 4,  // write table only
    OnRegister = 5,  // write table only
    OffFunction = 6, // write table only
    OffRegister = 7, // write table only
    ValOn = 9,       // write table only: raw register value written to open
    ValOff = 10,     // write table only: raw register value written to release
    Count = 12,
};

enum class LedSlot : int {
    Address = 0,
    Decimals = 1,
    RemFunction = 2,
    RemRegister = 3,
    P1Function = 4, // read table only: the register whose value lights the lamp
    P1Register = 5,
    Threshold = 6,  // read table only: "Val"
    Colour = 7,     // read table only: "Col"
    Condition = 8,  // read table only: "Condizione", 1..6
    Count = 9,
};

template <typename Slot, int Rows>
class RegisterTable
{
public:
    RegisterTable() { clear(); }

    qint16 at(int row, Slot slot) const { return m_rows[row][static_cast<int>(slot)]; }
    qint16 at(int row, int slot) const { return m_rows[row][slot]; }
    void set(int row, Slot slot, qint16 value) { m_rows[row][static_cast<int>(slot)] = value; }
    void set(int row, int slot, qint16 value) { m_rows[row][slot] = value; }

    void clearRow(int row) { m_rows[row].fill(UnusedSlot); }
    void clear()
    {
        for (auto &row : m_rows)
            row.fill(UnusedSlot);
    }

    static constexpr int rows() { return Rows; }
    // Not "slots": Qt defines that word away in every file that includes QObject.
    static constexpr int slotCount() { return static_cast<int>(Slot::Count); }

private:
    std::array<std::array<qint16, static_cast<int>(Slot::Count)>, Rows> m_rows;
};

using ZoneTable = RegisterTable<ZoneSlot, MaxZones>;
using SwitchTable = RegisterTable<SwitchSlot, MaxSwitches>;
using DoorTable = RegisterTable<DoorSlot, 1>;
using LedTable = RegisterTable<LedSlot, MaxLeds>;

// Built whole by the communication-list builders on every editor reload.
struct RegisterTables
{
    ZoneTable ZoneReadTable;
    ZoneTable ZoneWriteTable;
    SwitchTable SwitchReadTable;
    SwitchTable SwitchWriteTable;
    DoorTable DoorReadTable;
    DoorTable DoorWriteTable;
    LedTable LedReadTable;
    LedTable LedWriteTable;
    // Zone 1 is never a slave; the others are unless their "Slave" key reads "0".
    std::array<bool, MaxZones> zoneSlaveFlags{};
};

} // namespace telvane
