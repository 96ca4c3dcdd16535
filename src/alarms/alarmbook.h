#pragma once

#include "storage/plantlimits.h"

#include <QObject>
#include <QString>
#include <QStringListModel>

#include <array>
#include <functional>

namespace telvane {

class Clock;

enum class AlarmItemKind { Zone, Switch, Led };

// The count of consecutive failed reads of every zone, switch and LED instrument, and
// the two lists of items that reached the sixth failure: zones in `Lst_AllarmiZ`,
// switches and LEDs together in `Lst_AllarmiI`. An item is listed once until the
// operator acknowledges with `ResetAlarms`.
class AlarmBook final : public QObject
{
    Q_OBJECT

public:
    static constexpr int AlarmThreshold = 6;

    // The item's name as the synoptic shows it, looked up when an entry is written so
    // that a renamed item is listed under its new name.
    using ItemNameLookup = std::function<QString(AlarmItemKind kind, int index)>;

    AlarmBook(const Clock &clock, ItemNameLookup nameOf, QObject *parent = nullptr);

    // One failed exchange with the item's instrument; `reason` says why ("Time out",
    // "(Exception)", ...) for the communication-error view.
    void ReportZoneFailure(int zone, const QString &reason = QString());
    void ReportSwitchFailure(int sw, const QString &reason = QString());
    void ReportLedFailure(int led, const QString &reason = QString());
    void reportFailure(AlarmItemKind kind, int index, const QString &reason = QString());

    // A good read: the count starts again.
    void clearFailCount(AlarmItemKind kind, int index);

    // The operator's acknowledgement, also run once at start-up. LEDs keep their counts
    // and their reported mark: a LED listed once is not listed again until the program
    // restarts. Plants have relied on this to silence a lamp that is known to be dead.
    void ResetAlarms();

    bool AlarmPending() const { return m_alarmPending; }
    int FailCount(AlarmItemKind kind, int index) const;
    bool AlarmReported(AlarmItemKind kind, int index) const;

    // The lists as the alarms window shows them.
    QStringListModel *Lst_AllarmiZ() { return &m_zoneList; }
    QStringListModel *Lst_AllarmiI() { return &m_switchList; }
    QStringList zoneEntries() const { return m_zoneList.stringList(); }
    QStringList switchEntries() const { return m_switchList.stringList(); }

signals:
    // Each failed read, counted or not (the count stops at the 16-bit top).
    void failureCounted(telvane::AlarmItemKind kind, int index, const QString &reason);
    // A good read cleared a count that was not zero.
    void failCountCleared(telvane::AlarmItemKind kind, int index);
    // A new entry at the end of its list.
    void entryAdded(telvane::AlarmItemKind kind, int index, const QString &text);
    // The main window's alarm indication must start (true) or stop (false).
    void alarmBlinkRequested(bool on);
    // Both lists were emptied by an acknowledgement.
    void alarmsReset();

private:
    struct ItemAlarm
    {
        int FailCount = 0;
        bool AlarmReported = false;
    };

    // Null, with a warning, for an index outside the plant's limits.
    ItemAlarm *item(AlarmItemKind kind, int index);
    const ItemAlarm *item(AlarmItemKind kind, int index) const;

    const Clock &m_clock;
    ItemNameLookup m_nameOf;
    std::array<ItemAlarm, MaxZones> m_zones{};
    std::array<ItemAlarm, MaxSwitches> m_switches{};
    std::array<ItemAlarm, MaxLeds> m_leds{};
    bool m_alarmPending = false;
    QStringListModel m_zoneList;
    QStringListModel m_switchList;
};

} // namespace telvane
