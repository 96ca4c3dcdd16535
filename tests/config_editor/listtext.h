#pragma once

#include "config_editor/commlists.h"
#include "config_editor/registertables.h"

#include <QList>
#include <QStringList>

namespace telvane {

// The four lists, one line each entry behind its list's letter: L Lst_Letture,
// S Lst_Scritture, R Lst_RemL, W Lst_RemW.
inline QString listsText(const CommLists &lists)
{
    QStringList text;
    for (const auto &[letter, list] : {std::pair{'L', &lists.Lst_Letture}, std::pair{'S', &lists.Lst_Scritture},
                                       std::pair{'R', &lists.Lst_RemL}, std::pair{'W', &lists.Lst_RemW}}) {
        for (const QString &line : list->lines)
            text << QString(QLatin1Char(letter)) + ' ' + line;
    }
    return text.join('\n');
}

// Every slot of one row of a register table, in slot order.
template <typename Table>
QList<int> tableRow(const Table &table, int row)
{
    QList<int> cells;
    for (int slot = 0; slot < table.slotCount(); ++slot)
        cells << table.at(row, slot);
    return cells;
}

// The zones (from 0) flagged as slaves.
inline QList<int> slaveZones(const RegisterTables &t)
{
    QList<int> zones;
    for (int zone = 0; zone < int(t.zoneSlaveFlags.size()); ++zone) {
        if (t.zoneSlaveFlags[zone])
            zones << zone;
    }
    return zones;
}

} // namespace telvane
