#include "alarms/commerrortable.h"

#include "base/clock.h"
#include "base/datetimetext.h"
#include "config_editor/registertables.h"
#include "storage/plantconfig.h"

#include <algorithm>

namespace telvane {

namespace {

constexpr std::array<AlarmItemKind, 3> Kinds{AlarmItemKind::Zone, AlarmItemKind::Switch, AlarmItemKind::Led};

int kindSlot(AlarmItemKind kind)
{
    return kind == AlarmItemKind::Zone ? 0 : kind == AlarmItemKind::Switch ? 1 : 2;
}

QString kindText(AlarmItemKind kind)
{
    switch (kind) {
    case AlarmItemKind::Zone:
        return QStringLiteral("Zona");
    case AlarmItemKind::Switch:
        return QStringLiteral("Interruttore");
    case AlarmItemKind::Led:
        return QStringLiteral("LED");
    }
    return {};
}

template <typename Item>
QString nameAt(const QList<Item> &items, int index)
{
    return index >= 0 && index < items.size() ? items[index].name : QString();
}

QString timeText(const QDateTime &at)
{
    return at.toString(QLatin1String(DateTimeTextFormat));
}

} // namespace

CommErrorTable::CommErrorTable(const AlarmBook &alarms, const PlantConfig &plant, const RegisterTables &tables,
                               const Clock &clock, QObject *parent)
    : QAbstractTableModel(parent)
    , m_alarms(alarms)
    , m_plant(plant)
    , m_tables(tables)
    , m_clock(clock)
{
    connect(&alarms, &AlarmBook::failureCounted, this, &CommErrorTable::failureCounted);
    connect(&alarms, &AlarmBook::failCountCleared, this, &CommErrorTable::countChanged);
    connect(&alarms, &AlarmBook::alarmsReset, this, &CommErrorTable::acknowledged);
    refresh();
}

void CommErrorTable::refresh()
{
    beginResetModel();
    m_rowCounts = {std::clamp(m_plant.zoneCount(), 0, MaxZones), std::clamp(m_plant.switchCount(), 0, MaxSwitches),
                   std::clamp(m_plant.ledCount(), 0, MaxLeds)};
    endResetModel();
}

QString CommErrorTable::lastLineFailure() const
{
    if (!m_lineFailed)
        return QStringLiteral("Nessun errore dall'ultimo riconoscimento");
    const ItemErrors *errors = errorsOf(m_lastKind, m_lastIndex);
    QString text = kindText(m_lastKind) + QLatin1Char(' ') + nameOf(m_lastKind, m_lastIndex) + QStringLiteral(", ")
                   + timeText(errors->lastAt);
    if (!errors->lastReason.isEmpty())
        text += QStringLiteral(": ") + errors->lastReason;
    return text;
}

int CommErrorTable::totalFailures(AlarmItemKind kind, int index) const
{
    const ItemErrors *errors = errorsOf(kind, index);
    return errors ? errors->total : 0;
}

int CommErrorTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rowCounts[0] + m_rowCounts[1] + m_rowCounts[2];
}

int CommErrorTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CommErrorTable::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row row = rowAt(index.row());
    if (role == Qt::TextAlignmentRole) {
        const bool number = index.column() == AddressColumn || index.column() == ConsecutiveColumn
                            || index.column() == TotalColumn;
        return QVariant::fromValue(Qt::Alignment(number ? Qt::AlignRight | Qt::AlignVCenter
                                                        : Qt::AlignLeft | Qt::AlignVCenter));
    }
    if (role != Qt::DisplayRole)
        return {};
    const ItemErrors *errors = errorsOf(row.kind, row.index);
    switch (index.column()) {
    case KindColumn:
        return kindText(row.kind);
    case NameColumn:
        return nameOf(row.kind, row.index);
    case AddressColumn: {
        const int address = addressOf(row.kind, row.index);
        return address > 0 ? QVariant(address) : QVariant(QString());
    }
    case ConsecutiveColumn:
        return m_alarms.FailCount(row.kind, row.index);
    case TotalColumn:
        return errors->total;
    case LastFailureColumn:
        if (!errors->lastAt.isValid())
            return QString();
        return errors->lastReason.isEmpty() ? timeText(errors->lastAt)
                                            : timeText(errors->lastAt) + QStringLiteral("  ") + errors->lastReason;
    }
    return {};
}

QVariant CommErrorTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case KindColumn:
        return QStringLiteral("Tipo");
    case NameColumn:
        return QStringLiteral("Nome");
    case AddressColumn:
        return QStringLiteral("Indirizzo");
    case ConsecutiveColumn:
        return QStringLiteral("Errori consecutivi");
    case TotalColumn:
        return QStringLiteral("Errori dal riconoscimento");
    case LastFailureColumn:
        return QStringLiteral("Ultimo errore");
    }
    return {};
}

CommErrorTable::ItemErrors *CommErrorTable::errorsOf(AlarmItemKind kind, int index)
{
    return const_cast<ItemErrors *>(std::as_const(*this).errorsOf(kind, index));
}

const CommErrorTable::ItemErrors *CommErrorTable::errorsOf(AlarmItemKind kind, int index) const
{
    if (index < 0)
        return nullptr;
    switch (kind) {
    case AlarmItemKind::Zone:
        return index < MaxZones ? &m_zones[index] : nullptr;
    case AlarmItemKind::Switch:
        return index < MaxSwitches ? &m_switches[index] : nullptr;
    case AlarmItemKind::Led:
        return index < MaxLeds ? &m_leds[index] : nullptr;
    }
    return nullptr;
}

CommErrorTable::Row CommErrorTable::rowAt(int row) const
{
    for (AlarmItemKind kind : Kinds) {
        const int count = m_rowCounts[kindSlot(kind)];
        if (row < count)
            return {kind, row};
        row -= count;
    }
    return {AlarmItemKind::Led, MaxLeds};
}

int CommErrorTable::rowOf(AlarmItemKind kind, int index) const
{
    if (index < 0 || index >= m_rowCounts[kindSlot(kind)])
        return -1;
    int row = index;
    for (AlarmItemKind before : Kinds) {
        if (before == kind)
            break;
        row += m_rowCounts[kindSlot(before)];
    }
    return row;
}

QString CommErrorTable::nameOf(AlarmItemKind kind, int index) const
{
    switch (kind) {
    case AlarmItemKind::Zone:
        return nameAt(m_plant.zones, index);
    case AlarmItemKind::Switch:
        return nameAt(m_plant.switches, index);
    case AlarmItemKind::Led:
        return nameAt(m_plant.leds, index);
    }
    return {};
}

int CommErrorTable::addressOf(AlarmItemKind kind, int index) const
{
    switch (kind) {
    case AlarmItemKind::Zone:
        return index < MaxZones ? m_tables.ZoneReadTable.at(index, ZoneSlot::Address) : 0;
    case AlarmItemKind::Switch:
        return index < MaxSwitches ? m_tables.SwitchReadTable.at(index, SwitchSlot::Address) : 0;
    case AlarmItemKind::Led:
        return index < MaxLeds ? m_tables.LedReadTable.at(index, LedSlot::Address) : 0;
    }
    return 0;
}

void CommErrorTable::failureCounted(AlarmItemKind kind, int index, const QString &reason)
{
    ItemErrors *errors = errorsOf(kind, index);
    if (!errors)
        return;
    ++errors->total;
    errors->lastAt = m_clock.now();
    errors->lastReason = reason;
    m_lineFailed = true;
    m_lastKind = kind;
    m_lastIndex = index;
    countChanged(kind, index);
    emit lastLineFailureChanged(lastLineFailure());
}

void CommErrorTable::countChanged(AlarmItemKind kind, int index)
{
    const int row = rowOf(kind, index);
    if (row >= 0)
        emit dataChanged(this->index(row, ConsecutiveColumn), this->index(row, LastFailureColumn));
}

// The acknowledgement starts the technician's count afresh, LEDs included: their alarm
// counts stay, but the failures seen so far have been looked at.
void CommErrorTable::acknowledged()
{
    beginResetModel();
    m_zones.fill({});
    m_switches.fill({});
    m_leds.fill({});
    m_lineFailed = false;
    endResetModel();
    emit lastLineFailureChanged(lastLineFailure());
}

} // namespace telvane
