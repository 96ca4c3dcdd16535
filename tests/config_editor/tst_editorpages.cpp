#include "base/prompts.h"
#include "config_editor/chronopagemodel.h"
#include "config_editor/commlists.h"
#include "config_editor/editorpages.h"
#include "config_editor/instrumenttrial.h"
#include "config_editor/pagemodel.h"
#include "config_editor/printlayout.h"
#include "config_editor/recipetemplate.h"
#include "storage/chronofiles.h"
#include "storage/holidaylist.h"
#include "storage/numberkeys.h"
#include "support/runtimefixture.h"
#include "support/settingsfixture.h"

#include <QRegularExpression>

using namespace telvane;

namespace {

int fieldOf(const PageModel &page, const QString &section, const QString &key)
{
    const int index = page.indexOf(section, key);
    if (index < 0)
        qFatal("no field %s/%s", qPrintable(section), qPrintable(key));
    return index;
}

// What is wrong with `text` typed into a field of `kind`; empty: it is accepted.
QString problemOf(FieldKind kind, const QString &text, int decimals = 0)
{
    return fieldProblem(FieldSpec{.section = "Zona 01", .key = "K", .kind = kind, .maximum = 30}, text, decimals);
}

// Empty when the text is refused for `reason`; else what was said instead.
QString refused(FieldKind kind, const QString &text, const QString &reason, int decimals = 0)
{
    const QString problem = problemOf(kind, text, decimals);
    return problem.contains(reason) && !problem.isEmpty() ? QString() : QStringLiteral("'%1' gives '%2'").arg(text, problem);
}

const QDateTime Now(QDate(2026, 11, 23), QTime(9, 5, 7));

// A printout by page, each line its texts joined by "|" (their columns left out).
QList<QStringList> pagesOf(const PrintJob &job)
{
    QList<QStringList> pages{{}};
    for (const PrintStep &step : job) {
        if (step.kind == PrintStep::Kind::NewPage)
            pages.append(QStringList());
        if (step.kind != PrintStep::Kind::Line)
            continue;
        QStringList cells;
        for (const PrintTab &tab : step.texts)
            cells.append(tab.text);
        pages.last().append(cells.join('|'));
    }
    return pages;
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

// The editor's pages: what a technician may type, what a confirmed page saves, and the
// tools beside them (the instrument trial, the recipe template and the printouts).
class TestEditorPages : public QObject
{
    Q_OBJECT

private slots:
    // Empty disables on purpose; anything the program would silently leave out, clamp or
    // read as 0 is refused with a reason.
    void fieldProblems()
    {
        for (const char *text : {"", " 255 "})
            QCOMPARE(problemOf(FieldKind::Address, text), QString());
        QCOMPARE(refused(FieldKind::Address, "0", "1 a 255"), QString());
        QCOMPARE(refused(FieldKind::Address, "300", "1 a 255"), QString());
        QCOMPARE(problemOf(FieldKind::ReadRegister, "3,40001"), QString());
        QCOMPARE(refused(FieldKind::ReadRegister, "3", "Manca il registro"), QString());
        QCOMPARE(refused(FieldKind::ReadRegister, "6,1", "1, 2, 3 o 4"), QString());
        QCOMPARE(refused(FieldKind::ReadRegister, "3,70000", "non valido"), QString());
        QCOMPARE(problemOf(FieldKind::WriteRegister, "5,12"), QString());
        QCOMPARE(refused(FieldKind::WriteRegister, "3,12", "5, 6 o 8"), QString());
        QCOMPARE(problemOf(FieldKind::ClockRegister, "8,100"), QString());
        QCOMPARE(refused(FieldKind::ClockRegister, "5,100", "6 o 8"), QString());
        QCOMPARE(problemOf(FieldKind::Value, "21,5", 1), QString());
        QCOMPARE(refused(FieldKind::Value, "abc", "Non è un numero", 1), QString());
        QCOMPARE(refused(FieldKind::Value, "3276,8", "troppo grande", 1), QString());
        QCOMPARE(problemOf(FieldKind::Value, "3276"), QString());
        QCOMPARE(refused(FieldKind::Colour, "rosso", "&H"), QString());
        QCOMPARE(problemOf(FieldKind::Count, "30"), QString());
        QCOMPARE(refused(FieldKind::Count, "31", "da 0 a 30"), QString());
    }

    // Opening shows the stored texts (the page's own defaults for missing keys);
    // confirming writes all ten controls, check boxes as "1"/"0".
    void rs232PageRoundTrip()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("[COM]\r\nPorta=/dev/ttyUSB0\r\nRemoto=1\r\n");
        PageModel page = rs232Page();
        page.load(ini);
        QCOMPARE(page.text(fieldOf(page, "COM", "TimeOut")), QStringLiteral("400"));
        QCOMPARE(page.text(fieldOf(page, "COM", "Porta")), QStringLiteral("/dev/ttyUSB0"));
        QVERIFY(page.canConfirm());
        page.setText(fieldOf(page, "COM", "Base Misura"), "301");
        QVERIFY(page.problem(fieldOf(page, "COM", "Base Misura")).contains("da 5 a 300"));
        QVERIFY(!page.save(ini));
        QCOMPARE(dir.read(SettingsFolder::Industrial), QByteArray("[COM]\r\nPorta=/dev/ttyUSB0\r\nRemoto=1\r\n"));

        page.setText(fieldOf(page, "COM", "Base Misura"), "120");
        page.setText(fieldOf(page, "COM", "Attivita"), "1");
        page.setText(fieldOf(page, "Sinottico", "SuonoAllarme"), "sirena.wav");
        QVERIFY(page.save(ini));
        QCOMPARE(dir.read(SettingsFolder::Industrial),
                 QByteArray("[COM]\r\nPorta=/dev/ttyUSB0\r\nRemoto=1\r\nFormato=9600,N,8,1\r\nRetry=1\r\n"
                            "TimeOut=400\r\nBase Remoto=3\r\nBase Misura=120\r\nBase LED=3\r\nAttivita=1\r\n\r\n"
                            "[Sinottico]\r\nSuonoAllarme=sirena.wav\r\n"));
    }

    // Only the zones within the count (as typed on the page) are checked and saved; the
    // first zone has no slave flag; keys the file lacks and the page left empty stay out.
    void zonePageSavesTheCountedZones()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nZone=3\r\n[Zona 03]\r\nIndirizzo=0\r\n");
        PageModel page = zonesPage();
        page.load(ini);
        QCOMPARE(page.indexOf("Zona 01", "Slave"), -1);
        QVERIFY(page.indexOf("Zona 02", "Slave") >= 0);
        QCOMPARE(page.itemCount(0), 3);
        QVERIFY(page.firstProblem().startsWith("Zona 03, Indirizzo:"));

        page.setText(fieldOf(page, "Generale", "Zone"), "2");
        page.setText(fieldOf(page, "Zona 03", "Nome"), "Cantina");
        QVERIFY(page.canConfirm());
        page.setText(fieldOf(page, "Zona 02", "PV_r"), " 3,40001 ");
        QVERIFY(page.save(ini));
        QCOMPARE(ini.ReadIniKey("Generale", "Zone", ""), QStringLiteral("2"));
        QCOMPARE(ini.ReadIniKey("Zona 02", "PV_r", ""), QStringLiteral("3,40001"));
        QCOMPARE(ini.ReadIniKey("Zona 03", "Indirizzo", ""), QStringLiteral("0"));
        QCOMPARE(ini.ReadIniKey("Zona 03", "Nome", "absent"), QStringLiteral("absent"));
        QCOMPARE(ini.ReadIniKey("Zona 02", "PV_w", "absent"), QStringLiteral("absent"));
        // Check boxes read as the program reads their keys.
        const FieldSpec &slave = page.field(page.indexOf("Zona 02", "Slave")).definition;
        QVERIFY(flagTicked(slave, ""));
        QVERIFY(!flagTicked(slave, " 0 "));
        const PageModel options = generalOptionsPage();
        const FieldSpec &autoStart = options.field(0).definition;
        for (const QString text : {"si", "2", " 0 "}) {
            QVERIFY(ini.WriteIniKey("Generale", "AutoAvvio", text));
            QVERIFY2(flagTicked(autoStart, text) == readFlagKey(ini, "Generale", "AutoAvvio"), qPrintable(text));
        }
        const PageModel doorPage = doorAndWebcamPage();
        const FieldSpec &door = doorPage.field(0).definition;
        QVERIFY(!flagTicked(door, "-1"));
        QVERIFY(flagTicked(door, "1"));
    }

    // A value goes into the register it is written to: with the item's decimals, or
    // none when that register is a bit.
    void valuesAreCheckedWithTheirRegistersDecimals()
    {
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nInterruttori=1\r\nLED=1\r\n"
                                 "[Interruttore 01]\r\nDecimali=2\r\nOn_w=6,5\r\nVal_on=400\r\n"
                                 "[LED 01]\r\nDecimali=2\r\nP1_r=1,5\r\nVal=400\r\nCondizione=6\r\nCol=0\r\n");
        PageModel page = switchesAndLedsPage();
        page.load(ini);
        QCOMPARE(page.problems(), QList<int>{fieldOf(page, "Interruttore 01", "Val_on")});
        page.setText(fieldOf(page, "Interruttore 01", "Decimali"), "1");
        QVERIFY(page.canConfirm());
        page.setText(fieldOf(page, "LED 01", "P1_r"), "3,5");
        QCOMPARE(page.problems(), QList<int>{fieldOf(page, "LED 01", "Val")});
    }

    // Edits stay in the page's copy until it is confirmed.
    void chronoPageActsOnlyWhenSaved()
    {
        QLocale::setDefault(QLocale::c());
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nCronotermostato=0\r\n[Zona 02]\r\nCronotermostato=1\r\n");
        ChronoSchedule live;
        HolidayList liveHolidays;
        liveHolidays.setEntries({"25/12/2026"});
        ChronoPageModel page;
        page.load(ini, live, liveHolidays.stringList());
        // The flags come from the file even while the option is off, so saving keeps them.
        QVERIFY(page.zoneEnabled(1));
        QVERIFY(!page.zoneEnabled(0));

        // A set point that is no number, or beyond the range, changes nothing.
        QVERIFY(page.setSetPoints(0, 0, 0, 95, "abc").contains("Non è un numero"));
        QVERIFY(page.setSetPoints(0, 0, 0, 95, "1000").contains("da -99,9 a 999,9"));
        QCOMPARE(page.dayLines(0, 0), ChronoPageModel().dayLines(0, 0));
        // Friday's 02:30 copied to the whole week of zone 1 only.
        page.setSetPoints(0, 4, 10, 10, "18");
        page.copyDayToWeek(0, 4);
        for (int day = 0; day < 7; ++day)
            QCOMPARE(page.setPoint(10, 0, day), 18.0f);
        QCOMPARE(page.setPoint(10, 1, 0), 20.0f);

        QCOMPARE(page.setSetPoints(1, 2, 74, 72, "21,5"), QString());
        QVERIFY(page.addHoliday(QDate(2026, 1, 6)));
        QVERIFY(!page.addHoliday(QDate(2026, 12, 25)));
        const QStringList wednesday = page.dayLines(1, 2);
        QCOMPARE(wednesday.mid(71, 5), QStringList({"17:45   20.0", "18:00   21.5", "18:15   21.5", "18:30   21.5",
                                                    "18:45   20.0"}));
        QCOMPARE(live(73, 1, 2), 20.0f);
        QCOMPARE(liveHolidays.stringList(), QStringList{"25/12/2026"});

        page.setZoneEnabled(0, true);
        QVERIFY(page.save(ini, live, liveHolidays));
        QCOMPARE(live(73, 1, 2), 21.5f);
        QCOMPARE(live(73, 1, 3), 20.0f);
        QCOMPARE(live(10, 0, 6), 18.0f);
        QCOMPARE(liveHolidays.stringList(), QStringList({"25/12/2026", "06/01/2026"}));
        QCOMPARE(ini.ReadIniKey("Zona 01", "Cronotermostato", ""), QStringLiteral("1"));
        QCOMPARE(ini.ReadIniKey("Zona 02", "Cronotermostato", ""), QStringLiteral("1"));
        QCOMPARE(ini.ReadIniKey("Zona 03", "Cronotermostato", ""), QStringLiteral("0"));
        ChronoSchedule reread;
        HolidayList rereadHolidays;
        QVERIFY(LoadChronoFiles(ini.folder(), reread, rereadHolidays));
        QCOMPARE(reread(72, 1, 2), 21.5f);
        QCOMPARE(rereadHolidays.stringList(), liveHolidays.stringList());
    }

    // The page's typed texts are tried, saved or not; each register says what it got.
    void readsEveryRegisterOfTheShownItem()
    {
        RuntimeFixture fx;
        fx.setValue(5, 3, 100, 215);
        fx.setValue(5, 1, 7, 1);
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nZone=2\r\n[Zona 02]\r\nDecimali=1\r\nPV_r=3,100\r\nSP_r=3,101\r\nREM_r=1,7\r\n");
        PageModel page = zonesPage();
        page.load(ini);
        const auto set = [&page](const QString &key, const QString &text) { page.setText(page.indexOf("Zona 02", key), text); };
        set("Indirizzo", "5");
        set("AL1_r", "3");
        set("PV_w", "6,100");
        QCOMPARE(runInstrumentTrial(fx.rt.services.master, page, "Zona 02"),
                 QStringList({"PV lettura (3,100): 21.5", "SP lettura (3,101): nessuna risposta valida (Time out)",
                              "AL1 lettura (3): registro non valido, non letto", "REM lettura (1,7): 1"}));
        QCOMPARE(fx.takeRequests(), QStringList({RuntimeFixture::request(5, 3, 100, 1), RuntimeFixture::request(5, 3, 101, 1),
                                                 RuntimeFixture::request(5, 1, 7, 1)}));

        set("Indirizzo", "0");
        QCOMPARE(runInstrumentTrial(fx.rt.services.master, page, "Zona 02").size(), 1);
        QVERIFY(fx.takeRequests().isEmpty());
    }
    void recipeTemplate()
    {
        SettingsFolder dir;
        // The folder is made when missing; an older template is replaced.
        QCOMPARE(WriteRecipeTemplate(dir.folder()), dir.path("Ricetta/InvioDati.prg"));
        dir.write("Ricetta/InvioDati.prg", "[File]\r\nID = vecchio\r\n");
        QCOMPARE(WriteRecipeTemplate(dir.folder()), dir.path("Ricetta/InvioDati.prg"));
        const QByteArray text = dir.read("Ricetta/InvioDati.prg");
        QVERIFY(text.startsWith("[File]\r\nID = Telvane\r\n\r\n\r\n[Note]\r\n< Spazio dedicato alle note del cliente >"
                                "\r\n\r\n\r\n[Zona 01]\r\nIntervallo = 150\r\nLinee =0\r\n\r\n\r\n[Zona 02]\r\n"));
        QVERIFY(text.endsWith("\r\n\r\n\r\n[Zona 30]\r\nIntervallo = 150\r\nLinee =0\r\n"));
        QCOMPARE(text.count("[Zona "), 30);
    }

    void commListsPrintSideBySide()
    {
        CommLists lists;
        lists.Lst_Letture.lines = {"100>1:3,1 [1]", "100>1:3,2 [1]", "300>7:3,10 @ >=25 [0]"};
        lists.Lst_RemW.lines = {"100>1:5,9 [0]"};
        const QStringList heading{"", "", "Telvane", "", "DATA E ORA = 23/11/2026 / 09:05:07", "", ""};
        const QStringList rows{"100>1:3,1 [1]|||100>1:5,9 [0]", "100>1:3,2 [1]|||", "300>7:3,10 @ >=25 [0]|||"};
        QCOMPARE(pagesOf(commListsPrintJob(lists, "Telvane", Now)), QList<QStringList>{heading + rows});
        // Empty lists print the heading only.
        QCOMPARE(pagesOf(commListsPrintJob(CommLists(), "Telvane", Now)), QList<QStringList>{heading});
    }

    void chronoPrintBreaksBefore1830()
    {
        const QList<QStringList> pages = pagesOf(chronoSchedulePrintJob(schedule(true), "Telvane", Now));
        QCOMPARE(pages.size(), 2);
        const QStringList first = pages[0].filter(QRegularExpression("."));
        const QStringList second = pages[1].filter(QRegularExpression("."));
        QCOMPARE(first.mid(0, 4), QStringList({"Telvane", "IMPOSTAZIONE CRONOTERMOSTATO ZONA: Zona 01 - Soggiorno",
                                              "Stampato il 23/11/2026 alle ore 09:05:07", "Lun|Mar|Mer|Gio|Ven|Sab|Dom"}));
        QCOMPARE(first.last(), QStringLiteral("18:15 0|18:15 1|18:15 2|18:15 3|18:15 4|18:15 5|18:15 6"));
        QCOMPARE(second.mid(0, 4), QStringList({"Telvane", "IMPOSTAZIONE CRONOTERMOSTATO ZONA: Zona 01 - Soggiorno",
                                               "Lun|Mar|Mer|Gio|Ven|Sab|Dom",
                                               "18:30 0|18:30 1|18:30 2|18:30 3|18:30 4|18:30 5|18:30 6"}));
        // An empty holiday list still has its heading.
        QCOMPARE(pages[1].last(), QStringLiteral("Festività"));
        // A schedule that ends before 18:30 stays on one page, its holidays after it.
        ChronoPrintout shorter = schedule(false);
        shorter.holidays = {"25/12/2026", "01/01/2027"};
        const QList<QStringList> one = pagesOf(chronoSchedulePrintJob(shorter, "Telvane", Now));
        QCOMPARE(one.size(), 1);
        QCOMPARE(one[0].mid(one[0].size() - 3), QStringList({"Festività", "25/12/2026", "01/01/2027"}));
    }

    void printingAsksFirst()
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

QTEST_GUILESS_MAIN(TestEditorPages)
#include "tst_editorpages.moc"
