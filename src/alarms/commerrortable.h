#pragma once

#include "alarms/alarmbook.h"
#include "storage/plantlimits.h"

#include <QAbstractTableModel>
#include <QDateTime>

#include <array>

namespace telvane {

class Clock;
struct PlantConfig;
struct RegisterTables;

// The communication-error view for technicians: every configured zone, switch and LED
// with its slave address, its consecutive failed reads (the count that lists it at six),
// its failures since the last acknowledgement and when and why the last one happened;
// and the line's last failure. An instrument that fails now and then never reaches six
// in a row, yet shows here before it is listed.
//
// The reason is the one the failed exchange reported with the failure ("Time out",
// "(Exception)", "Risposta non valida", ...).
class CommErrorTable final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { KindColumn, NameColumn, AddressColumn, ConsecutiveColumn, TotalColumn, LastFailureColumn, ColumnCount };

    CommErrorTable(const AlarmBook &alarms, const PlantConfig &plant, const RegisterTables &tables,
                   const Clock &clock, QObject *parent = nullptr);

    // The rows follow the plant's items: called when the view opens, since a reload may
    // have added or removed items.
    void refresh();

    // "Nessun errore dall'ultimo riconoscimento", or the item, the time and the reason of
    // the line's last failure.
    QString lastLineFailure() const;
    int totalFailures(AlarmItemKind kind, int index) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

signals:
    void lastLineFailureChanged(const QString &text);

private:
    struct ItemErrors
    {
        int total = 0;
        QDateTime lastAt;
        QString lastReason;
    };

    struct Row
    {
        AlarmItemKind kind;
        int index;
    };

    // Null for an index outside the plant's limits.
    ItemErrors *errorsOf(AlarmItemKind kind, int index);
    const ItemErrors *errorsOf(AlarmItemKind kind, int index) const;
    Row rowAt(int row) const;
    int rowOf(AlarmItemKind kind, int index) const;
    int countOf(AlarmItemKind kind) const;
    QString nameOf(AlarmItemKind kind, int index) const;
    int addressOf(AlarmItemKind kind, int index) const;
    void failureCounted(AlarmItemKind kind, int index, const QString &reason);
    void countChanged(AlarmItemKind kind, int index);
    void acknowledged();

    const AlarmBook &m_alarms;
    const PlantConfig &m_plant;
    const RegisterTables &m_tables;
    const Clock &m_clock;

    std::array<ItemErrors, MaxZones> m_zones{};
    std::array<ItemErrors, MaxSwitches> m_switches{};
    std::array<ItemErrors, MaxLeds> m_leds{};
    // The rows as the view last counted them.
    std::array<int, 3> m_rowCounts{};

    bool m_lineFailed = false;
    AlarmItemKind m_lastKind = AlarmItemKind::Zone;
    int m_lastIndex = 0;
};

} // namespace telvane
