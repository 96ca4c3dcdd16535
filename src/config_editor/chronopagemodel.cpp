#include "config_editor/chronopagemodel.h"

#include "storage/chronofiles.h"
#include "storage/chronoslots.h"
#include "storage/holidaylist.h"
#include "storage/numberkeys.h"
#include "storage/numbertext.h"
#include "storage/sectionnames.h"

#include <QLocale>

#include <algorithm>

namespace telvane {

namespace {

// The schedule file keeps set points as "00.0": at most three integer digits.
constexpr double LowestSetPoint = -99.9;
constexpr double HighestSetPoint = 999.9;

} // namespace

QStringList ChronoPageModel::dayCaptions()
{
    return {QStringLiteral("Lunedì"), QStringLiteral("Martedì"), QStringLiteral("Mercoledì"), QStringLiteral("Giovedì"),
            QStringLiteral("Venerdì"), QStringLiteral("Sabato"), QStringLiteral("Domenica")};
}

QString ChronoPageModel::holidayCaption()
{
    return QStringLiteral("Festività (programma della domenica)");
}

void ChronoPageModel::load(const IniStore &ini, const ChronoSchedule &schedule, const QStringList &holidays)
{
    m_schedule = schedule;
    m_holidays = holidays;
    for (int zone = 0; zone < ChronoSchedule::Zones; ++zone)
        m_zoneEnabled[zone] = readIntegerKey(ini, zoneSection(zone), QStringLiteral("Cronotermostato"), 0) != 0;
}

QStringList ChronoPageModel::dayLines(int zone, int day) const
{
    const QLocale locale;
    QStringList lines;
    lines.reserve(ChronoDaySlots);
    for (int slot = 0; slot < ChronoDaySlots; ++slot)
        lines.append(chronoSlotLabel(slot) + QStringLiteral("   ")
                     + locale.toString(double(m_schedule(slot, zone, day)), 'f', 1));
    return lines;
}

QString ChronoPageModel::setSetPoints(int zone, int day, int firstSlot, int lastSlot, const QString &text)
{
    const std::optional<double> value = parseNumber(text);
    if (!value)
        return QStringLiteral("Non è un numero (es. 21,5)");
    if (*value < LowestSetPoint || *value > HighestSetPoint)
        return QStringLiteral("Temperatura ammessa da -99,9 a 999,9");
    const auto [first, last] = std::minmax(firstSlot, lastSlot);
    for (int slot = std::max(first, 0); slot <= std::min(last, ChronoDaySlots - 1); ++slot)
        m_schedule(slot, zone, day) = float(*value);
    return {};
}

void ChronoPageModel::copyDayToWeek(int zone, int day)
{
    for (int other = 0; other < ChronoSchedule::Days; ++other) {
        for (int slot = 0; slot < ChronoSchedule::Slots; ++slot)
            m_schedule(slot, zone, other) = m_schedule(slot, zone, day);
    }
}

bool ChronoPageModel::addHoliday(const QDate &date)
{
    if (!date.isValid() || HolidayList::containsDate(m_holidays, date))
        return false;
    m_holidays.append(HolidayList::dateText(date));
    return true;
}

void ChronoPageModel::removeHoliday(int row)
{
    if (row >= 0 && row < m_holidays.size())
        m_holidays.removeAt(row);
}

bool ChronoPageModel::save(IniStore &ini, ChronoSchedule &schedule, HolidayList &holidays) const
{
    schedule = m_schedule;
    holidays.setEntries(m_holidays);
    return SaveChronoSchedule(ini, schedule, m_zoneEnabled, holidays);
}

} // namespace telvane
