#include "trendrig.h"

#include "ui/trends/storico.h"
#include "ui/trends/trendchart.h"
#include "ui/trends/trendpanel.h"

#include <QCalendarWidget>
#include <QFile>
#include <QImage>
#include <QLoggingCategory>
#include <QPrinterInfo>
#include <QSignalSpy>
#include <QTextCharFormat>

using namespace telvane;

namespace {

const QByteArray TwoZones = "[Generale]\r\nZone=2\r\n[Zona 01]\r\nNome=Soggiorno\r\n[Zona 02]\r\nNome=Cucina\r\n";
const QDate Day1(2026, 11, 14);
const QDate Day2(2026, 11, 15);

void writeDay(WindowRig &rig, const QDate &date, const QByteArray &lines)
{
    writeTestFile(rig.plant.rt.model.ini.folder().filePath(QStringLiteral("Dati/") + DailyLogFileName(date)), lines);
}

// Shows the days as the operator would and waits for the reading to end.
void showDays(Storico &history, const QDate &from, const QDate &to)
{
    // Opening the window shows today first.
    QTRY_VERIFY(!history.loading());
    QSignalSpy shown(&history, &Storico::daysShown);
    history.showDays(from, to);
    QVERIFY(shown.wait(10000));
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestStorico : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowRig> rig;
    Storico *history = nullptr;

    QString plantFile(const QString &name) const { return rig->plant.rt.model.ini.folder().filePath(name); }

private slots:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false\ntelvane.storage.warning=false"));
        QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    }
    void init()
    {
        rig = std::make_unique<WindowRig>();
        startUpWithSettings(*rig, TwoZones);
        history = rig->window->historyWindow();
    }
    void cleanup() { rig.reset(); }

    // The points before the damage are drawn and the operator is told which day it was.
    void damagedDay()
    {
        writeDay(*rig, Day2, "15/11/2026 08:00:00;20.5;18.0;\r\n15/11/2026 08:01:00;21.0;18.5;\r\n"
                            "15/11/2026 08:02:00;21.5;19.0\r\n15/11/2026 08:03:00;22.0;19.5;\r\n");
        rig->clickButton(QStringLiteral("4"));
        showDays(*history, Day2, Day2);

        const RecordingPrompts::Prompt expected{
            RecordingPrompts::Kind::Warning, QStringLiteral("Storico"),
            QStringLiteral("Attenzione: Il file relativo alla giornata di 15/11/2026 è danneggiato. Il caricameto dei "
                           "dati potrebbe essere errato o incompleto.")};
        QCOMPARE(rig->prompts.asked(), QList<RecordingPrompts::Prompt>{expected});
        QCOMPARE(history->shownPoints()->trace(1).size(), 3);
        QCOMPARE(history->shownPoints()->trace(2).size(), 2);
        QVERIFY(history->panel().chart().drawnPointCount() == 5);
    }

    void dayWithoutFile()
    {
        showDays(*history, Day1, Day1);
        QCOMPARE(history->statusText(), QStringLiteral("Nessun dato registrato il 14/11/2026."));
        QVERIFY(rig->prompts.asked().isEmpty());
        QCOMPARE(history->shownPoints()->pointCount(), 0);
    }

    // The calendar shows in bold the days that have a file, and a click on a day shows it.
    void calendarMarksAndOpensDays()
    {
        QCalendarWidget &calendar = history->calendar();
        calendar.setCurrentPage(2026, 11);
        // A file written while the window was closed is in bold when it opens.
        writeDay(*rig, Day1, "14/11/2026 08:00:00;20.5;18.0;\r\n");
        rig->clickButton(QStringLiteral("4"));
        QCOMPARE(calendar.dateTextFormat(Day1).fontWeight(), int(QFont::Bold));
        QVERIFY(calendar.dateTextFormat(Day2).fontWeight() != int(QFont::Bold));

        QTRY_VERIFY(!history->loading());
        QSignalSpy shown(history, &Storico::daysShown);
        emit calendar.clicked(Day1);
        QVERIFY(shown.wait(10000));
        QCOMPARE(history->shownPoints()->trace(1).size(), 1);
    }

    // Two days shown as one chart go to one spreadsheet file, in the Italian way.
    void rangeExportedAndReadBack()
    {
        writeDay(*rig, Day1, "14/11/2026 23:59:00;20.5;18.0;\r\n");
        writeDay(*rig, Day2, "15/11/2026 00:00:05;21.5;-99999.0;\r\n15/11/2026 00:01:05;22.0;19.0;\r\n");
        showDays(*history, Day1, Day2);

        const QString csv = plantFile(QStringLiteral("intervallo.csv"));
        QVERIFY(history->exportCsv(csv));
        const QStringList lines = QString::fromUtf8(readAll(csv)).remove(QChar(0xFEFF)).split(QStringLiteral("\r\n"));
        QCOMPARE(lines, (QStringList{"Data e ora;Soggiorno;Cucina", "14/11/2026 23:59:00;20,5;18",
                                     "15/11/2026 00:00:05;21,5;", "15/11/2026 00:01:05;22;19", ""}));

        const QString png = plantFile(QStringLiteral("intervallo.png"));
        QVERIFY(history->exportPng(png));
        QVERIFY(!QImage(png).isNull());
        QVERIFY(!history->exportCsv(plantFile(QStringLiteral("assente/x.csv"))));
        QCOMPARE(rig->prompts.asked().size(), 1);
    }

    // Without a printer the chart goes to a PDF beside the plant's files, and the
    // operator is told where.
    void printWithoutPrinter()
    {
        if (!QPrinterInfo::defaultPrinter().isNull())
            QSKIP("this machine has a default printer");
        writeDay(*rig, Day1, "14/11/2026 08:00:00;20.5;18.0;\r\n14/11/2026 09:00:00;21.5;17.0;\r\n");
        showDays(*history, Day1, Day1);

        const QString pdf = history->print();
        QCOMPARE(pdf, plantFile(QStringLiteral("Storico_2026_11_14.pdf")));
        QVERIFY(readAll(pdf).startsWith("%PDF"));
        QCOMPARE(rig->prompts.asked().size(), 1);
        QVERIFY(rig->prompts.asked()[0].text.endsWith(QDir::toNativeSeparators(pdf)));
    }
};

QTEST_MAIN(TestStorico)
#include "tst_storico.moc"
