#pragma once

#include "trends/trendset.h"

#include <QLocale>
#include <QStringList>

namespace telvane {

// The lines of a spreadsheet file of the traces 1..traceCount over [from, to]: a header
// of "Data e ora" and the zone names, then one line per instant with the value of every
// trace at that instant (empty where a trace has no reading then). Numbers use the
// locale's decimal separator; the fields are then separated by ";" when that separator
// is "," (as an Italian spreadsheet expects), by "," otherwise. Zones without a name
// are called "Zona N".
QStringList csvExportLines(const TrendSet &set, const QStringList &zoneNames, int traceCount, qint64 from,
                           qint64 to, const QLocale &locale);

// Writes the lines with CR LF ends and a UTF-8 byte order mark (so a spreadsheet shows
// the accents), replacing the file in one step. False when it could not be written.
bool writeCsvFile(const QString &path, const QStringList &lines);

} // namespace telvane
