#pragma once

#include <QStringList>

namespace telvane {

// One communication list of the editor: its lines, and whether the window lets the
// technician use it (a list without lines is shown disabled).
struct CommList
{
    QStringList lines;
    bool enabled = false;
};

// The four communication lists, rebuilt whole on every editor reload. Every line starts
// with the object code ("100".."129" zones, "200".."209" switches, "300".."309" LEDs,
// "400" the door opener) followed by ">", the instrument address, ":" and the register.
struct CommLists
{
    CommList Lst_Letture;   // measured values and states the cycle reads
    CommList Lst_Scritture; // registers written by commands
    CommList Lst_RemL;      // remote-state registers read
    CommList Lst_RemW;      // remote-state registers written
};

// Which list a register key feeds.
enum class CommListId { Letture, Scritture, RemL, RemW };

CommList &commList(CommLists &lists, CommListId id);
const CommList &commList(const CommLists &lists, CommListId id);

// Empties the four lists; their enabled state is left for EnableCommLists.
void ClearCommLists(CommLists &lists);

// A list is enabled when it holds at least one line.
void EnableCommLists(CommLists &lists);

} // namespace telvane
