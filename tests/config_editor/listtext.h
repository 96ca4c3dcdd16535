#pragma once

#include "config_editor/commlists.h"
#include "config_editor/registertables.h"

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

// The rows in use of the eight tables, as "ZR0: 5 1 ..." for row 0 of ZoneReadTable
// (ZW, SR, SW, DR, DW, LR, LW for the others); rows not shown hold -1 in every slot.
// A register above 32767 shows as the negative number the 16-bit slot holds.
inline QString tablesText(const RegisterTables &t)
{
    QStringList text;
    const auto appendRowsInUse = [&text](const char *name, const auto &table) {
        for (int row = 0; row < table.rows(); ++row) {
            QStringList cells;
            for (int slot = 0; slot < table.slotCount(); ++slot)
                cells << QString::number(table.at(row, slot));
            if (cells.count("-1") < cells.size())
                text << QStringLiteral("%1%2: %3").arg(name).arg(row).arg(cells.join(' '));
        }
    };
    appendRowsInUse("ZR", t.ZoneReadTable);
    appendRowsInUse("ZW", t.ZoneWriteTable);
    appendRowsInUse("SR", t.SwitchReadTable);
    appendRowsInUse("SW", t.SwitchWriteTable);
    appendRowsInUse("DR", t.DoorReadTable);
    appendRowsInUse("DW", t.DoorWriteTable);
    appendRowsInUse("LR", t.LedReadTable);
    appendRowsInUse("LW", t.LedWriteTable);
    QString slaves;
    for (const bool slave : t.zoneSlaveFlags)
        slaves += slave ? '1' : '0';
    return text.join('\n') + "\nslaves " + slaves;
}

} // namespace telvane
