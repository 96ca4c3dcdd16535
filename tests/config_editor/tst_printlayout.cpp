#include "base/prompts.h"
#include "config_editor/commlists.h"
#include "config_editor/printlayout.h"

#include <QTest>

using namespace telvane;

namespace {

const QDateTime Now(QDate(2026, 11, 23), QTime(9, 5, 7));

// The lines of a printout, by page: each line its texts with their columns.
using Page = QList<QList<PrintTab>>;

QList<Page> pagesOf(const PrintJob &job)
{
    QList<Page> pages{{}};
    for (const PrintStep &step : job) {
        if (step.kind == PrintStep::Kind::NewPage)
            pages.append(Page());
        else if (step.kind == PrintStep::Kind::Line)
            pages.last().append(step.texts);
    }
    return pages;
}

// A line's texts without their columns, blank lines left out.
QStringList textsOf(const Page &page)
{
    QStringList texts;
    for (const QList<PrintTab> &line : page) {
        QStringList cells;
        for (const PrintTab &tab : line)
            cells.append(tab.text);
        if (!line.isEmpty())
            texts.append(cells.join(QLatin1Char('|')));
    }
    return texts;
}

ChronoPrintout schedule(bool withEvening)
{
    ChronoPrintout page;
    page.zone = "Zona 01 - Soggiorno";
    page.dayCaptions = {"Lun", "Mar", "Mer", "Gio", "Ven", "Sab", "Dom"};
    const int slotCount = withEvening ? 96 : 74;
    for (int day = 0; day < 7; ++day) {
        QStringList lines;
        for (int slot = 0; slot < slotCount; ++slot)
            lines.append(QStringLiteral("%1:%2 %3").arg(slot / 4, 2, 10, QChar('0')).arg(slot % 4 * 15, 2, 10, QChar('0')).arg(day));
        page.dayLines.append(lines);
    }
    page.holidayCaption = "Festività";
    return page;
}

class RecordingPrinter final : public PrinterSink
{
public:
    void setFontName(const QString &) override { ++steps; }
    void setFontSize(int) override { ++steps; }
    void setBold(bool) override { ++steps; }
    void printLine(const QList<PrintTab> &) override { ++steps; }
    void newPage() override { ++steps; }
    void endDocument() override { ++ended; }
    int steps = 0;
    int ended = 0;
};

} // namespace

class TestPrintLayout : public QObject
{
    Q_OBJECT

private slots:
    void commListsSideBySide()
    {
        CommLists lists;
        lists.Lst_Letture.lines = {"100>1:3,1 [1]", "100>1:3,2 [1]", "300>7:3,10 @ >=25 [0]"};
        lists.Lst_RemW.lines = {"100>1:5,9 [0]"};
        const PrintJob job = commListsPrintJob(lists, "Telvane", Now);
        const QList<Page> pages = pagesOf(job);
        QCOMPARE(pages.size(), 1);
        QCOMPARE(pages[0].size(), 4 + 1 + 2 + 3);
        QCOMPARE(pages[0][2], (QList<PrintTab>{{35, "Telvane"}}));
        QCOMPARE(pages[0][4], (QList<PrintTab>{{10, "DATA E ORA = 23/11/2026 / 09:05:07"}}));
        QCOMPARE(pages[0][7], (QList<PrintTab>{{10, "100>1:3,1 [1]"}, {50, ""}, {90, ""}, {130, "100>1:5,9 [0]"}}));
        QCOMPARE(pages[0][9], (QList<PrintTab>{{10, "300>7:3,10 @ >=25 [0]"}, {50, ""}, {90, ""}, {130, ""}}));
        // Arial 14 bold for the name, then 8 plain.
        QCOMPARE(job.mid(0, 3), (PrintJob{{PrintStep::Kind::FontName, "Arial", 0, false, {}},
                                          {PrintStep::Kind::FontSize, {}, 14, false, {}},
                                          {PrintStep::Kind::Bold, {}, 0, true, {}}}));
        QCOMPARE(job.mid(7, 2), (PrintJob{{PrintStep::Kind::FontSize, {}, 8, false, {}},
                                          {PrintStep::Kind::Bold, {}, 0, false, {}}}));
    }

    void emptyListsPrintTheHeaderOnly()
    {
        const QList<Page> pages = pagesOf(commListsPrintJob(CommLists(), "Telvane", Now));
        QCOMPARE(textsOf(pages.value(0)), QStringList({"Telvane", "DATA E ORA = 23/11/2026 / 09:05:07"}));
        QCOMPARE(pages[0].size(), 7);
    }

    void scheduleBreaksBefore1830()
    {
        const QList<Page> pages = pagesOf(chronoSchedulePrintJob(schedule(true), "Telvane", Now));
        QCOMPARE(pages.size(), 2);
        const QStringList first = textsOf(pages[0]);
        const QStringList second = textsOf(pages[1]);
        QCOMPARE(first.mid(0, 4), QStringList({"Telvane", "IMPOSTAZIONE CRONOTERMOSTATO ZONA: Zona 01 - Soggiorno",
                                              "Stampato il 23/11/2026 alle ore 09:05:07", "Lun|Mar|Mer|Gio|Ven|Sab|Dom"}));
        QCOMPARE(first.last(), QStringLiteral("18:15 0|18:15 1|18:15 2|18:15 3|18:15 4|18:15 5|18:15 6"));
        QCOMPARE(second.mid(0, 4), QStringList({"Telvane", "IMPOSTAZIONE CRONOTERMOSTATO ZONA: Zona 01 - Soggiorno",
                                               "Lun|Mar|Mer|Gio|Ven|Sab|Dom",
                                               "18:30 0|18:30 1|18:30 2|18:30 3|18:30 4|18:30 5|18:30 6"}));
        // An empty holiday list still has its heading.
        QCOMPARE(second.last(), QStringLiteral("Festività"));
        QCOMPARE(pages[1].last(), (QList<PrintTab>{{10, "Festività"}}));
        QCOMPARE(pages[0][10].value(6).column, 130);
    }

    void scheduleWithout1830StaysOnOnePage()
    {
        ChronoPrintout page = schedule(false);
        page.holidays = {"25/12/2026", "01/01/2027"};
        const QList<Page> pages = pagesOf(chronoSchedulePrintJob(page, "Telvane", Now));
        QCOMPARE(pages.size(), 1);
        QCOMPARE(textsOf(pages[0]).mid(textsOf(pages[0]).size() - 3),
                 QStringList({"Festività", "25/12/2026", "01/01/2027"}));
    }

    void questionsComeFirst()
    {
        RecordingPrompts prompts;
        RecordingPrinter printer;
        prompts.scriptQuestion(false);
        QVERIFY(!PrintCommLists(prompts, printer, CommLists(), "Telvane", Now));
        QCOMPARE(printer.steps + printer.ended, 0);
        prompts.scriptQuestion(true);
        QVERIFY(PrintChronoSchedule(prompts, printer, schedule(false), "Telvane", Now));
        QCOMPARE(printer.ended, 1);
        QCOMPARE(prompts.asked(),
                 (QList<RecordingPrompts::Prompt>{
                     {RecordingPrompts::Kind::Question, "Stampa elenco comunicazione",
                      "Stampare le liste di comunicazione sulla stampate predefinita ?"},
                     {RecordingPrompts::Kind::Question, "Stampa elenco comunicazione",
                      "Stampare le impostazioni del cronotermostato sulla stampante predefinita ?"}}));
    }
};

QTEST_GUILESS_MAIN(TestPrintLayout)
#include "tst_printlayout.moc"
