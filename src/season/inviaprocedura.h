#pragma once

#include "season/recipe.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>

namespace telvane {

class Clock;
class ModbusMaster;
class Pause;
class Prompts;

// How one row of a send ended.
struct RowOutcome
{
    enum class Status {
        Written,        // the instrument echoed the value written (and read it back, when asked)
        Paused,         // SLEEP
        Acknowledged,   // MSGBOX answered OK
        NotAcknowledged, // no valid echo, or an echo of another value
        Mismatch,       // echoed, but read back as another value
        NoInstrument,   // the zone has no instrument address: nothing sent
        Cancelled,      // MSGBOX answered Cancel
        NotSent,        // after the row that stopped the send (the report lists them)
    };

    int row = 0; // 0-based index in the recipe
    Status status = Status::Written;
    qint32 echo = 0;     // the master's answer to the write (-99999: none)
    qint32 readBack = 0; // the value read back, when verifying
    QString reason;      // the line's failure description (" Time out" ...), if any
    QDateTime startedAt;  // wall time, for the send report
    qint64 startedMs = 0; // monotonic
    qint64 elapsedMs = 0;

    bool ok() const { return status == Status::Written || status == Status::Paused || status == Status::Acknowledged; }
    // One line in Italian for the operator, the headless output and the send report.
    QString text(const RecipeRow &row) const;
};

struct ProcedureResult
{
    bool ok = false;
    QList<RowOutcome> rows; // one per row handled, the failed one last
};

struct ProcedureOptions
{
    // After each register write (code 6), read the register back (code 3) and compare.
    bool verifyReadBack = false;
};

// What the window and the headless mode follow while the rows go out.
struct ProcedureObserver
{
    // Before each row, then at the end: the share of rows done and its text ("40%").
    std::function<void(int percent, const QString &text)> progress;
    std::function<void(const RecipeRow &row, const RowOutcome &outcome)> rowDone;
};

// Sends the recipe's rows in order, through the master's single writes (each with the
// line's own attempts and no more) followed by the zone's interval; SLEEP pauses for its
// value; MSGBOX shows its text and waits for OK, its style chosen by the row's name
// when that is a single digit (see docs/recipes.md). Stops at the first row that fails:
// rows already written stay written in the instruments.
ProcedureResult InviaProcedura(ModbusMaster &master, Pause &pause, Prompts &prompts, const Clock &clock,
                               const Recipe &recipe, const ProcedureObserver &observer = {},
                               ProcedureOptions options = {});

// The percentage of `done` rows out of `total` as the progress shows it: "0%" .. "100%".
QString progressText(int percent);

} // namespace telvane
