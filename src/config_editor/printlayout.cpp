#include "config_editor/printlayout.h"

#include "base/prompts.h"
#include "config_editor/commlists.h"

#include <algorithm>

namespace telvane {

namespace {

PrintStep fontName(const QString &name)
{
    PrintStep step;
    step.kind = PrintStep::Kind::FontName;
    step.fontName = name;
    return step;
}

PrintStep fontSize(int points)
{
    PrintStep step;
    step.kind = PrintStep::Kind::FontSize;
    step.fontSize = points;
    return step;
}

PrintStep bold(bool on)
{
    PrintStep step;
    step.kind = PrintStep::Kind::Bold;
    step.bold = on;
    return step;
}

PrintStep line(QList<PrintTab> texts = {})
{
    PrintStep step;
    step.texts = std::move(texts);
    return step;
}

PrintStep newPage()
{
    PrintStep step;
    step.kind = PrintStep::Kind::NewPage;
    return step;
}

QString dateText(const QDateTime &now)
{
    return now.date().toString(QStringLiteral("dd/MM/yyyy"));
}

QString timeText(const QDateTime &now)
{
    return now.time().toString(QStringLiteral("HH:mm:ss"));
}

// The product's name in large bold type, with room above and below; the text after it
// is small and plain.
void addProductHeader(PrintJob &job, const QString &productName)
{
    job << fontName(QStringLiteral("Arial")) << fontSize(14) << bold(true);
    job << line() << line() << line({{35, productName}}) << line();
    job << fontSize(8) << bold(false);
}

QString lineAt(const QStringList &lines, qsizetype row)
{
    return row < lines.size() ? lines[row] : QString();
}

constexpr int DayColumns[] = {10, 30, 50, 70, 90, 110, 130};

void addColumnHeading(PrintJob &job, const ChronoPrintout &schedule)
{
    job << line() << line();
    QList<PrintTab> captions;
    for (int day = 0; day < 7; ++day)
        captions.append({DayColumns[day], lineAt(schedule.dayCaptions, day)});
    job << line(captions);
}

} // namespace

void playPrintJob(const PrintJob &job, PrinterSink &printer)
{
    for (const PrintStep &step : job) {
        switch (step.kind) {
        case PrintStep::Kind::FontName:
            printer.setFontName(step.fontName);
            break;
        case PrintStep::Kind::FontSize:
            printer.setFontSize(step.fontSize);
            break;
        case PrintStep::Kind::Bold:
            printer.setBold(step.bold);
            break;
        case PrintStep::Kind::Line:
            printer.printLine(step.texts);
            break;
        case PrintStep::Kind::NewPage:
            printer.newPage();
            break;
        }
    }
    printer.endDocument();
}

PrintJob commListsPrintJob(const CommLists &lists, const QString &productName, const QDateTime &now)
{
    PrintJob job;
    addProductHeader(job, productName);
    job << line({{10, QStringLiteral("DATA E ORA = ") + dateText(now) + QStringLiteral(" / ") + timeText(now)}});
    job << line() << line();
    const QStringList *columns[] = {&lists.Lst_Letture.lines, &lists.Lst_Scritture.lines, &lists.Lst_RemL.lines,
                                    &lists.Lst_RemW.lines};
    qsizetype rows = 0;
    for (const QStringList *column : columns)
        rows = std::max(rows, column->size());
    for (qsizetype row = 0; row < rows; ++row) {
        job << line({{10, lineAt(*columns[0], row)},
                     {50, lineAt(*columns[1], row)},
                     {90, lineAt(*columns[2], row)},
                     {130, lineAt(*columns[3], row)}});
    }
    return job;
}

PrintJob chronoSchedulePrintJob(const ChronoPrintout &schedule, const QString &productName, const QDateTime &now)
{
    PrintJob job;
    const auto pageHeader = [&] {
        addProductHeader(job, productName);
        job << line({{10, QStringLiteral("IMPOSTAZIONE CRONOTERMOSTATO ZONA: ") + schedule.zone}});
    };
    pageHeader();
    job << line({{10, QStringLiteral("Stampato il ") + dateText(now) + QStringLiteral(" alle ore ") + timeText(now)}});
    addColumnHeading(job, schedule);

    qsizetype rows = 0;
    for (const QStringList &day : schedule.dayLines)
        rows = std::max(rows, day.size());
    const QStringList monday = schedule.dayLines.value(0);
    for (qsizetype row = 0; row < rows; ++row) {
        // The afternoon and evening always go on a page of their own.
        if (lineAt(monday, row).left(5) == QLatin1String("18:30")) {
            job << newPage();
            pageHeader();
            job << line();
            addColumnHeading(job, schedule);
        }
        QList<PrintTab> texts;
        for (int day = 0; day < 7; ++day)
            texts.append({DayColumns[day], lineAt(schedule.dayLines.value(day), row)});
        job << line(texts);
    }

    job << line() << line() << line({{10, schedule.holidayCaption}});
    for (const QString &holiday : schedule.holidays)
        job << line({{10, holiday}});
    return job;
}

bool PrintCommLists(Prompts &prompts, PrinterSink &printer, const CommLists &lists, const QString &productName,
                    const QDateTime &now)
{
    // "stampate" is how the plants' technicians have always read it.
    if (!prompts.question(PrintQuestionTitle,
                          QStringLiteral("Stampare le liste di comunicazione sulla stampate predefinita ?")))
        return false;
    playPrintJob(commListsPrintJob(lists, productName, now), printer);
    return true;
}

bool PrintChronoSchedule(Prompts &prompts, PrinterSink &printer, const ChronoPrintout &schedule,
                         const QString &productName, const QDateTime &now)
{
    if (!prompts.question(PrintQuestionTitle,
                          QStringLiteral("Stampare le impostazioni del cronotermostato sulla stampante predefinita ?")))
        return false;
    playPrintJob(chronoSchedulePrintJob(schedule, productName, now), printer);
    return true;
}

} // namespace telvane
