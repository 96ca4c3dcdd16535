#pragma once

#include "storage/programfolder.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <span>

namespace telvane {

class Clock;

// Where the history chart receives the points of a day read back from its file.
class DailyLogSink
{
public:
    virtual ~DailyLogSink() = default;
    // `trace` 1 is the first zone of the line.
    virtual void addPoint(int trace, const QDateTime &time, float value) = 0;
    // The whole file has been read.
    virtual void redraw() = 0;
};

// One zone's logged quantity and the decimals it is shown with.
struct LoggedValue
{
    float value;
    int decimals;
};

inline constexpr char DailyLogFolderName[] = "Dati";

// "2026_11_14.csv": the file of that day in the folder "Dati".
QString dailyLogFileName(const QDate &date);

// A finished line: "14/11/2026 22:20:09;21.5;19.0;20.3;". Every field, the last one too,
// ends with ";", which the reader relies on.
QString dailyLogLine(const QDateTime &time, std::span<const LoggedValue> values);

// One text file of measurements per calendar day.
class DailyLog
{
public:
    DailyLog(ProgramFolder folder, const Clock &clock);

    // Appends `text` and CR LF to the file of the clock's current date, so a line
    // written just before midnight lands in the old day's file. The file is closed again
    // at once: a failure loses this line only, never the lines already written.
    bool AppendDailyLogLine(const QString &text);

    // Reads the file `fileName` of the folder "Dati" into `sink`. False as soon as a line
    // is damaged (no ";", a date or a value that is not one, a last value without its
    // ";"); the points before it stay in the sink. An empty file is read successfully.
    bool ReadDailyLog(const QString &fileName, DailyLogSink &sink) const;

    const ProgramFolder &folder() const { return m_folder; }

private:
    ProgramFolder m_folder;
    const Clock &m_clock;
};

} // namespace telvane
