#pragma once

#include "storage/chronoschedule.h"

#include <QDate>
#include <QString>
#include <QStringList>

namespace telvane {

class HolidayList;
class IniStore;

// The chrono-thermostat page as data: a working copy of the weekly set points, of the
// zones that follow them and of the holidays, edited freely and put in force only on
// confirming, when the schedule and holiday files and the zones' flags are saved.
class ChronoPageModel
{
public:
    // The weekday captions `Lab_CTg`, Monday first, and the holiday caption `Lab_CTf`.
    static QStringList dayCaptions();
    static QString holidayCaption();

    // Copies the schedule and holidays in force and reads each zone's flag
    // "Cronotermostato" from the settings (whether or not the option is on).
    void load(const IniStore &ini, const ChronoSchedule &schedule, const QStringList &holidays);

    // One line per quarter-hour of the day, "HH:mm" and the set point: what `Lst_CT`
    // shows and prints.
    QStringList dayLines(int zone, int day) const;

    float setPoint(int slot, int zone, int day) const { return m_schedule(slot, zone, day); }
    // Sets slots first .. last (either order) of one day to the typed set point. An
    // empty text on success; otherwise why not, and nothing changes.
    QString setSetPoints(int zone, int day, int firstSlot, int lastSlot, const QString &text);
    // Makes the other six days of `zone` like `day`.
    void copyDayToWeek(int zone, int day);

    bool zoneEnabled(int zone) const { return m_zoneEnabled[zone]; }
    void setZoneEnabled(int zone, bool enabled) { m_zoneEnabled[zone] = enabled; }

    const QStringList &holidays() const { return m_holidays; }
    // False when the date is already a holiday.
    bool addHoliday(const QDate &date);
    void removeHoliday(int row);

    // Puts the copy in force: the live schedule and holidays take its values, then
    // everything is saved. False when a file could not be written (the live copies
    // still hold the new values, as the page showed them).
    bool save(IniStore &ini, ChronoSchedule &schedule, HolidayList &holidays) const;

private:
    ChronoSchedule m_schedule;
    ChronoZoneEnabled m_zoneEnabled{};
    QStringList m_holidays;
};

} // namespace telvane
