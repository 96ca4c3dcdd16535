#pragma once

#include "storage/dailylog.h"
#include "trends/trendset.h"

#include <QDate>
#include <QList>
#include <QSet>

#include <atomic>

namespace telvane {

// How one day of a range was read back.
enum class DayOutcome
{
    Read,    // the whole file
    Damaged, // reading stopped on a damaged line; the points before it are kept
    Missing, // no file for that day
};

struct DayResult
{
    QDate date;
    DayOutcome outcome;
};

// The days between `from` and `to` (both included) that have a file in "Dati"; one
// listing of the folder, not one look-up per day.
QSet<QDate> daysWithLog(const ProgramFolder &folder, const QDate &from, const QDate &to);

// Reads the files of the days `from` to `to` (both included, at most MaxHistoryDays) into
// `into`, one day after the other. `progress`, when given, climbs from 0 to 1000 while
// the files are read; it may be watched from another thread.
QList<DayResult> readDays(const DailyLog &log, const QDate &from, const QDate &to, TrendSet &into,
                          std::atomic<int> *progress = nullptr);

inline constexpr int MaxHistoryDays = 31;

// What the operator is told about a day that did not read whole.
QString damagedDayMessage(const QDate &date);
QString missingDayMessage(const QDate &date);

} // namespace telvane
