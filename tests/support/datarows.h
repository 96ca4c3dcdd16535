#pragma once

#include <QStringList>
#include <QTest>

// Test data written one row a string, its cells split by "|". The string also names the
// row, so a failure shows the whole row.
inline void addRows(std::initializer_list<QString> rows)
{
    QTest::addColumn<QString>("row");
    for (const QString &row : rows)
        QTest::newRow(qPrintable(row)) << row;
}

inline QStringList rowCells()
{
    QFETCH(QString, row);
    return row.split(QLatin1Char('|'));
}
