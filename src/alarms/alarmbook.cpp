#include "alarms/alarmbook.h"

#include "alarms/alarmslog.h"
#include "base/clock.h"
#include "base/datetimetext.h"

#include <limits>

namespace telvane {

namespace {

const char *kindName(AlarmItemKind kind)
{
    switch (kind) {
    case AlarmItemKind::Zone:
        return "zone";
    case AlarmItemKind::Switch:
        return "switch";
    case AlarmItemKind::Led:
        return "LED";
    }
    return "item";
}

// The counters were 16-bit: a count that would pass the top stays there.
constexpr int MaxFailCount = std::numeric_limits<qint16>::max();

} // namespace

AlarmBook::AlarmBook(const Clock &clock, ItemNameLookup nameOf, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
    , m_nameOf(std::move(nameOf))
{
}

AlarmBook::ItemAlarm *AlarmBook::item(AlarmItemKind kind, int index)
{
    return const_cast<ItemAlarm *>(std::as_const(*this).item(kind, index));
}

const AlarmBook::ItemAlarm *AlarmBook::item(AlarmItemKind kind, int index) const
{
    const ItemAlarm *first = nullptr;
    int count = 0;
    switch (kind) {
    case AlarmItemKind::Zone:
        first = m_zones.data();
        count = int(m_zones.size());
        break;
    case AlarmItemKind::Switch:
        first = m_switches.data();
        count = int(m_switches.size());
        break;
    case AlarmItemKind::Led:
        first = m_leds.data();
        count = int(m_leds.size());
        break;
    }
    if (index < 0 || index >= count) {
        qCWarning(lcAlarms, "No %s with index %d (the plant has at most %d)", kindName(kind), index, count);
        return nullptr;
    }
    return first + index;
}

void AlarmBook::ReportZoneFailure(int zone, const QString &reason)
{
    reportFailure(AlarmItemKind::Zone, zone, reason);
}

void AlarmBook::ReportSwitchFailure(int sw, const QString &reason)
{
    reportFailure(AlarmItemKind::Switch, sw, reason);
}

void AlarmBook::ReportLedFailure(int led, const QString &reason)
{
    reportFailure(AlarmItemKind::Led, led, reason);
}

void AlarmBook::reportFailure(AlarmItemKind kind, int index, const QString &reason)
{
    ItemAlarm *alarm = item(kind, index);
    if (!alarm)
        return;
    if (alarm->FailCount < MaxFailCount)
        ++alarm->FailCount;
    emit failureCounted(kind, index, reason);
    if (alarm->FailCount < AlarmThreshold || alarm->AlarmReported)
        return;

    const QString name = m_nameOf ? m_nameOf(kind, index) : QString();
    const QString text = name + QStringLiteral(" (")
                         + m_clock.now().toString(QLatin1String(DateTimeTextFormat)).trimmed()
                         + QLatin1Char(')');
    QStringListModel &list = kind == AlarmItemKind::Zone ? m_zoneList : m_switchList;
    const int row = list.rowCount();
    list.insertRows(row, 1);
    list.setData(list.index(row), text);

    alarm->AlarmReported = true;
    m_alarmPending = true;
    emit entryAdded(kind, index, text);
    emit alarmBlinkRequested(true);
}

void AlarmBook::clearFailCount(AlarmItemKind kind, int index)
{
    ItemAlarm *alarm = item(kind, index);
    if (!alarm || alarm->FailCount == 0)
        return;
    alarm->FailCount = 0;
    emit failCountCleared(kind, index);
}

void AlarmBook::ResetAlarms()
{
    m_alarmPending = false;
    for (ItemAlarm &zone : m_zones)
        zone = ItemAlarm{};
    for (ItemAlarm &sw : m_switches)
        sw = ItemAlarm{};
    emit alarmBlinkRequested(false);
    m_zoneList.setStringList({});
    m_switchList.setStringList({});
    emit alarmsReset();
}

int AlarmBook::FailCount(AlarmItemKind kind, int index) const
{
    const ItemAlarm *alarm = item(kind, index);
    return alarm ? alarm->FailCount : 0;
}

bool AlarmBook::AlarmReported(AlarmItemKind kind, int index) const
{
    const ItemAlarm *alarm = item(kind, index);
    return alarm && alarm->AlarmReported;
}

} // namespace telvane
