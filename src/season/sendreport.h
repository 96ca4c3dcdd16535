#pragma once

#include "config_editor/printlayout.h"
#include "season/inviaprocedura.h"
#include "season/seasons.h"

#include <QDateTime>
#include <QStringList>

#include <optional>

namespace telvane {

class ProgramFolder;

// What one send of a recipe did, kept so that the technician can show afterwards what
// reached which instrument: the plant may be audited long after the window was closed.
struct SendRecord
{
    QString recipeFile;
    // Where the rows went: the port and its format, or the simulation.
    QString line;
    std::optional<Season> from;
    // The season a complete send stores; none for a recipe sent outside a season change.
    std::optional<Season> to;
    bool verifyReadBack = false;
    QDateTime started;
    QDateTime finished;
    QList<RecipeRow> rows;
    ProcedureResult result;
};

// The report as text lines: a heading with the recipe, the change, the line, the times
// and the outcome, then one line per row with the time it started and how it ended;
// rows after the one that stopped the send are listed as not sent (see docs/recipes.md).
QStringList sendReportLines(const SendRecord &record);

// "Resoconto <recipe> <yyyy-MM-dd HH-mm-ss>.txt": sorted by name, a recipe's sends
// follow each other in the order they ran.
QString sendReportFileName(const SendRecord &record);

// Writes the report beside the recipes in "Ricetta" (UTF-8, CR LF line ends); its path,
// or empty when it could not be written.
QString writeSendReport(const ProgramFolder &folder, const SendRecord &record);

// The report on paper: the lines in a fixed-pitch font, the heading in bold.
PrintJob sendReportPrintJob(const QStringList &lines);

} // namespace telvane
