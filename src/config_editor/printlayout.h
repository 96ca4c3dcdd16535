#pragma once

#include "base/printersink.h"

#include <QDateTime>
#include <QList>
#include <QStringList>

namespace telvane {

class Prompts;
struct CommLists;

// One step of a printout: a font change, a line at tab columns, or a new page.
struct PrintStep
{
    enum class Kind { FontName, FontSize, Bold, Line, NewPage };

    Kind kind = Kind::Line;
    QString fontName;
    int fontSize = 0;
    bool bold = false;
    QList<PrintTab> texts; // Line: empty for an empty line

    bool operator==(const PrintStep &) const = default;
};

// A whole printout as plain data, so that what goes on paper is checked without a printer.
using PrintJob = QList<PrintStep>;

// Sends every step to the printer, then ends the document.
void playPrintJob(const PrintJob &job, PrinterSink &printer);

// The title of both print questions.
inline const QString PrintQuestionTitle = QStringLiteral("Stampa elenco comunicazione");

// The four communication lists side by side (tab columns 10, 50, 90, 130), under the
// product's name and the date and time of `now`. A list shorter than another leaves its
// column blank in the later rows.
PrintJob commListsPrintJob(const CommLists &lists, const QString &productName, const QDateTime &now);

// What the chrono-thermostat page shows, as it stands.
struct ChronoPrintout
{
    QString zone;                 // the text of Cmb_ZonaCT
    QStringList dayCaptions;      // the seven Lab_CTg
    QList<QStringList> dayLines;  // the seven Lst_CT, Monday first
    QString holidayCaption;       // Lab_CTf
    QStringList holidays;         // Lst_Festa
};

// The schedule of one zone, one row per slot with the seven days at tab columns 10, 30,
// .. 130, starting a new page before the row of 18:30 (header and column captions
// again, without the printing date), then the holiday list.
PrintJob chronoSchedulePrintJob(const ChronoPrintout &schedule, const QString &productName, const QDateTime &now);

// The print commands: each asks first and prints nothing on No. True when printed.
bool PrintCommLists(Prompts &prompts, PrinterSink &printer, const CommLists &lists, const QString &productName,
                    const QDateTime &now);
bool PrintChronoSchedule(Prompts &prompts, PrinterSink &printer, const ChronoPrintout &schedule,
                         const QString &productName, const QDateTime &now);

} // namespace telvane
