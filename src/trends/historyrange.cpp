#include "trends/historyrange.h"

#include <QDir>

#include <algorithm>

namespace telvane {

namespace {

QString dayText(const QDate &date)
{
    return date.toString(QStringLiteral("dd/MM/yyyy"));
}

// Hands the points to the set and tells how far through the day the file has got,
// from the time of its lines.
class DaySink final : public DailyLogSink
{
public:
    DaySink(TrendSet &into, std::atomic<int> *progress, int dayIndex, int dayCount)
        : m_into(into)
        , m_progress(progress)
        , m_dayIndex(dayIndex)
        , m_dayCount(dayCount)
    {
    }

    void addPoint(int trace, const QDateTime &time, float value) override
    {
        // Every line starts with trace 1 and hands the same time to each of its traces;
        // converting a local time to milliseconds is dear, so once per line.
        if (trace == 1 || m_lastMs < 0) {
            m_lastMs = time.toMSecsSinceEpoch();
            if (m_progress) {
                const int secondOfDay = time.time().msecsSinceStartOfDay() / 1000;
                const qint64 done = (m_dayIndex * 86400LL + secondOfDay) * 1000 / (m_dayCount * 86400LL);
                m_progress->store(static_cast<int>(std::clamp<qint64>(done, 0, 1000)));
            }
        }
        m_into.addPoint(trace, m_lastMs, value);
    }

    void redraw() override {}

private:
    TrendSet &m_into;
    std::atomic<int> *m_progress;
    int m_dayIndex;
    int m_dayCount;
    qint64 m_lastMs = -1;
};

} // namespace

QSet<QDate> daysWithLog(const ProgramFolder &folder, const QDate &from, const QDate &to)
{
    QSet<QDate> days;
    const QDir dir(folder.filePath(QLatin1String(DailyLogFolderName)));
    const QStringList names = dir.entryList({QStringLiteral("????_??_??.csv")}, QDir::Files);
    for (const QString &name : names) {
        const QDate date = QDate::fromString(name.left(10), QStringLiteral("yyyy_MM_dd"));
        if (date.isValid() && date >= from && date <= to)
            days.insert(date);
    }
    return days;
}

QList<DayResult> readDays(const DailyLog &log, const QDate &from, const QDate &to, TrendSet &into,
                          std::atomic<int> *progress)
{
    QList<DayResult> results;
    if (!from.isValid() || !to.isValid() || to < from)
        return results;
    const int dayCount = static_cast<int>(std::min<qint64>(from.daysTo(to) + 1, MaxHistoryDays));
    const QSet<QDate> present = daysWithLog(log.folder(), from, to);
    for (int i = 0; i < dayCount; ++i) {
        const QDate date = from.addDays(i);
        DayOutcome outcome = DayOutcome::Missing;
        if (present.contains(date)) {
            DaySink sink(into, progress, i, dayCount);
            outcome = log.ReadDailyLog(dailyLogFileName(date), sink) ? DayOutcome::Read : DayOutcome::Damaged;
        }
        results.append({date, outcome});
        if (progress)
            progress->store((i + 1) * 1000 / dayCount);
    }
    return results;
}

QString damagedDayMessage(const QDate &date)
{
    return QStringLiteral("Attenzione: Il file relativo alla giornata di ") + dayText(date)
           + QStringLiteral(" è danneggiato. Il caricameto dei dati potrebbe essere errato o incompleto.");
}

QString missingDayMessage(const QDate &date)
{
    return QStringLiteral("Nessun dato registrato il ") + dayText(date) + QLatin1Char('.');
}

} // namespace telvane
