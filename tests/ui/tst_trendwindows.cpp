// The two trend windows: the live chart over the rounds and the history over the day files.

#include "windowrig.h"

#include "storage/valuetables.h"
#include "ui/trends/grafico.h"
#include "ui/trends/storico.h"
#include "ui/trends/tracelabellist.h"
#include "ui/trends/trendchart.h"
#include "ui/trends/trendpanel.h"

#include <QCalendarWidget>
#include <QColorDialog>
#include <QLabel>
#include <QLoggingCategory>
#include <QPrinterInfo>
#include <QSignalSpy>
#include <QTextCharFormat>
#include <QTimer>
#include <QToolButton>
#include <QValueAxis>
#include <QWheelEvent>

using namespace telvane;

namespace {

// 25 characters, the 20th a blank.
const QString LongName = QStringLiteral("Laboratorio prove A  Nord");
const QByteArray TwoZones = "[Generale]\r\nZone=2\r\n[Zona 01]\r\nNome=Laboratorio prove A  Nord\r\n"
                            "[Zona 02]\r\nNome=Cucina\r\n";
const QDateTime Morning(QDate(2026, 11, 14), QTime(8, 0));
const QDate Day1(2026, 11, 14);

QValueAxis *valueAxis(TrendChart &chart)
{
    return qobject_cast<QValueAxis *>(chart.chart()->axes(Qt::Vertical).value(0));
}

// The drawn stretches of `color`'s line, in time order.
QList<QPolygonF> drawnStretches(TrendChart &chart, const QColor &color)
{
    for (const TracesItem::Trace &trace : chart.drawnTraces()) {
        if (trace.color == color)
            return trace.stretches;
    }
    return {};
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestTrendWindows : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowRig> rig;

    // The main window over an industrial plant of two zones and `chartKeys`.
    void startUp(const QByteArray &chartKeys = {})
    {
        rig = std::make_unique<WindowRig>();
        QVERIFY(rig->plant.rt.model.ini.WriteModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"), QStringLiteral("0")));
        writeTestFile(plantFile(QStringLiteral("Telvane2.ini")), TwoZones + chartKeys);
        rig->startUp();
    }
    QString plantFile(const QString &name) const { return rig->plant.rt.model.ini.folder().filePath(name); }
    QByteArray settingsFile() const { return readAll(plantFile(QStringLiteral("Telvane2.ini"))); }
    void addRound(const QDateTime &at, double zone1, double zone2 = InvalidValue)
    {
        rig->plant.rt.display.chart->addPoint(1, at, zone1);
        rig->plant.rt.display.chart->addPoint(2, at, zone2);
        rig->plant.rt.display.chart->roundFinished();
    }
    void writeDay(const QDate &date, const QByteArray &lines)
    {
        writeTestFile(plantFile(QStringLiteral("Dati/") + dailyLogFileName(date)), lines);
    }
    // Shows the days as the operator would and waits for the reading to end.
    void showDays(Storico &history, const QDate &from, const QDate &to)
    {
        QTRY_VERIFY(!history.loading()); // opening the window shows today first
        QSignalSpy shown(&history, &Storico::daysShown);
        history.showDays(from, to);
        QVERIFY(shown.wait(10000));
    }

private slots:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.storage.warning=false"));
        QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    }
    void cleanup() { rig.reset(); }

    // No "Grafico" section: a white chart with a black grid from -50 to 50; zone 1 red,
    // a long name cut to 20 characters without its trailing blank, empty positions
    // dashed. Then a colour chosen, live rounds with failed readings, the cursor and the
    // information box dragged; then the history window.
    void liveChartAndHistory()
    {
        startUp();
        rig->clickButton(QStringLiteral("3"));
        TrendPanel *panel = &rig->window->trendWindow()->panel();
        TrendChart &chart = panel->chart();
        QCOMPARE(chart.chart()->plotAreaBackgroundBrush().color(), QColor(Qt::white));
        QCOMPARE(valueAxis(chart)->gridLineColor(), QColor(Qt::black));
        QCOMPARE(valueAxis(chart)->min(), -50.0);
        QCOMPARE(valueAxis(chart)->max(), 50.0);
        QCOMPARE(panel->labels().label(1), QStringLiteral("Laboratorio prove A"));
        QCOMPARE(panel->labels().toolTipOf(1),
                 QStringLiteral("Doppio click per modificare il colore della traccia <") + LongName + ">");
        QCOMPARE(panel->labels().label(3), QStringLiteral("--------"));
        QVERIFY(panel->labels().toolTipOf(3).isEmpty());

        // A double-click on a label asks for the colour and writes it back in
        // blue-green-red order; on an empty position it asks nothing.
        TraceLabelList &labels = panel->labels();
        const auto doubleClick = [&labels](int row) {
            const QPoint at = labels.visualItemRect(labels.item(row)).center();
            // A double-click is a click and then the second press.
            QTest::mouseClick(labels.viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(labels.viewport(), Qt::LeftButton, {}, at);
        };
        doubleClick(1);
        QColorDialog *dialog = panel->colourDialog();
        QVERIFY(dialog && dialog->isVisible());
        dialog->setCurrentColor(QColor(0x12, 0x34, 0x56));
        dialog->accept();
        QVERIFY2(settingsFile().contains("[Zona 02]\r\nNome=Cucina\r\nColore=&H563412\r\n"), settingsFile().constData());
        QCOMPARE(rig->plant.rt.model.plant.chart.traceColors[1], 0x563412u);
        doubleClick(5);
        QVERIFY(!panel->colourDialog()->isVisible());

        // A zone that did not answer breaks its line instead of plunging to the invalid
        // marker; a reading between two failures still shows; the cursor says "--.-" there.
        const double zone1[] = {20, 21, InvalidValue, InvalidValue, 23, 24};
        for (int i = 0; i < 6; ++i)
            addRound(Morning.addSecs(60 * i), zone1[i], i % 2 ? InvalidValue : 18);
        chart.redrawNow();
        const QList<QPolygonF> stretches = drawnStretches(chart, QColor(255, 0, 0));
        QCOMPARE(stretches.size(), 2);
        const QRectF plot = chart.chart()->plotArea();
        for (const QPolygonF &stretch : stretches) {
            for (const QPointF &point : stretch)
                QVERIFY2(plot.contains(point), qPrintable(QStringLiteral("%1 outside the plot").arg(point.y())));
        }
        QCOMPARE(stretches[0].size(), 2);
        QVERIFY2(stretches[1].front().y() < stretches[0].back().y(), "the line resumes at 23, above 21");
        QCOMPARE(chart.drawnPointCount(), 4 + 3);
        QVERIFY(rig->window->trendWindow()->memoryText().contains(QLocale().toString(12)));
        // The time axis has its labels: dark text on the white frame under the plot.
        const QImage image = chart.grab().toImage();
        int dark = 0;
        for (int y = int(plot.bottom()) + 4; y < image.height(); ++y) {
            for (int x = int(plot.left()); x < int(plot.right()); ++x)
                dark += qGray(image.pixel(x, y)) < 128;
        }
        QVERIFY2(dark > 20, "no labels under the time axis");

        chart.moveCursorTo(Morning.addSecs(90).toMSecsSinceEpoch());
        const QString info = chart.infoText();
        QVERIFY2(info.contains("14/11/2026 08:01:30"), qPrintable(info));
        QVERIFY2(info.contains(QLocale().toString(21.0, 'f', 1) + "</td>"), qPrintable(info));
        QVERIFY2(info.contains("Cucina&nbsp;</td><td align=right>--.-</td>"), qPrintable(info));

        // The information box goes where it is dropped, stays inside the chart, and its
        // place is saved.
        auto *box = chart.findChild<QLabel *>(QStringLiteral("InfoBox"));
        QVERIFY(box && box->isVisible());
        const auto dragBy = [box](QPointF to) {
            QTest::mousePress(box, Qt::LeftButton, {}, QPoint(5, 5));
            QMouseEvent move(QEvent::MouseMove, to, box->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(box, &move);
            QTest::mouseRelease(box, Qt::LeftButton, {}, to.toPoint());
        };
        const QPoint start = box->pos();
        dragBy(QPointF(45, 25));
        QCOMPARE(box->pos(), start + QPoint(40, 20));
        QVERIFY2(settingsFile().contains(
                     QStringLiteral("Info_X=%1\r\nInfo_Y=%2\r\n").arg(box->x() * 15).arg(box->y() * 15).toLatin1()),
                 settingsFile().constData());
        dragBy(QPointF(-5000, -5000));
        QCOMPARE(box->pos(), QPoint(0, 0));

        // The history: the calendar marks the days that have a file (also one written while
        // the window was closed); a day without a file says so; a damaged day draws its
        // points before the damage and tells which day it was; a range goes to one
        // spreadsheet file in the Italian way; without a printer the chart goes to a PDF
        // and the operator is told where.
        Storico *history = rig->window->historyWindow();
        QCalendarWidget &calendar = history->calendar();
        calendar.setCurrentPage(2026, 11);
        writeDay(Day1.addDays(1), "15/11/2026 08:00:00;20.5;18.0;\r\n15/11/2026 08:01:00;21.0;18.5;\r\n"
                                  "15/11/2026 08:02:00;21.5;19.0\r\n15/11/2026 08:03:00;22.0;19.5;\r\n");
        writeDay(Day1.addDays(2), "16/11/2026 23:59:00;20.5;18.0;\r\n");
        writeDay(Day1.addDays(3), "17/11/2026 00:00:05;21.5;-99999.0;\r\n17/11/2026 00:01:05;22.0;19.0;\r\n");
        rig->clickButton(QStringLiteral("4"));
        QCOMPARE(calendar.dateTextFormat(Day1.addDays(1)).fontWeight(), int(QFont::Bold));
        QVERIFY(calendar.dateTextFormat(Day1).fontWeight() != int(QFont::Bold));

        showDays(*history, Day1, Day1);
        QCOMPARE(history->statusText(), QStringLiteral("Nessun dato registrato il 14/11/2026."));
        QVERIFY(rig->prompts.asked().isEmpty());
        QCOMPARE(history->shownPoints()->pointCount(), 0);

        QTRY_VERIFY(!history->loading());
        QSignalSpy shown(history, &Storico::daysShown);
        emit calendar.clicked(Day1.addDays(1));
        QVERIFY(shown.wait(10000));
        const RecordingPrompts::Prompt damaged{
            RecordingPrompts::Kind::Warning, QStringLiteral("Storico"),
            QStringLiteral("Attenzione: Il file relativo alla giornata di 15/11/2026 è danneggiato. Il caricameto dei "
                           "dati potrebbe essere errato o incompleto.")};
        QCOMPARE(rig->prompts.asked(), QList<RecordingPrompts::Prompt>{damaged});
        QCOMPARE(history->shownPoints()->trace(1).size(), 3);
        QCOMPARE(history->shownPoints()->trace(2).size(), 2);
        QCOMPARE(history->panel().chart().drawnPointCount(), 5);

        showDays(*history, Day1.addDays(2), Day1.addDays(3));
        const QString csv = plantFile(QStringLiteral("intervallo.csv"));
        QVERIFY(history->exportCsv(csv));
        const QStringList lines = QString::fromUtf8(readAll(csv)).remove(QChar(0xFEFF)).split(QStringLiteral("\r\n"));
        QCOMPARE(lines, (QStringList{"Data e ora;Laboratorio prove A  Nord;Cucina", "16/11/2026 23:59:00;20,5;18",
                                     "17/11/2026 00:00:05;21,5;", "17/11/2026 00:01:05;22;19", ""}));
        const QString png = plantFile(QStringLiteral("intervallo.png"));
        QVERIFY(history->exportPng(png));
        QVERIFY(!QImage(png).isNull());
        QVERIFY(!history->exportCsv(plantFile(QStringLiteral("assente/x.csv"))));
        QCOMPARE(rig->prompts.asked().size(), 2);

        if (!QPrinterInfo::defaultPrinter().isNull())
            QSKIP("this machine has a default printer");
        const QString pdf = history->print();
        QCOMPARE(pdf, plantFile(QStringLiteral("Storico_2026_11_16-2026_11_17.pdf")));
        QVERIFY(readAll(pdf).startsWith("%PDF"));
        QCOMPARE(rig->prompts.asked().size(), 3);
        QVERIFY(rig->prompts.asked().last().text.endsWith(QDir::toNativeSeparators(pdf)));
    }

    // Zooming the value axis out stops at the absolute limits, which are then saved as
    // the displayed ones.
    void valueZoomBoundedAndSaved()
    {
        startUp("[Grafico]\r\nT_Max_Ass=100\r\nT_Min_Ass=-20\r\nT_Max=30\r\nT_Min=10\r\n");
        rig->clickButton(QStringLiteral("3"));
        TrendChart &chart = rig->window->trendWindow()->panel().chart();
        QCOMPARE(valueAxis(chart)->min(), 10.0);
        const QPoint middle = chart.viewport()->rect().center();
        for (int i = 0; i < 20; ++i) {
            QWheelEvent wheel(middle, chart.viewport()->mapToGlobal(middle), {}, QPoint(0, -120), Qt::NoButton,
                              Qt::ControlModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(chart.viewport(), &wheel);
        }
        QCOMPARE(valueAxis(chart)->min(), -20.0);
        QCOMPARE(valueAxis(chart)->max(), 100.0);
        auto *save = rig->window->trendWindow()->findChild<QTimer *>(QStringLiteral("SalvaLimiti"));
        QVERIFY(save && save->isActive());
        save->setInterval(0);
        save->start();
        QTRY_VERIFY2(settingsFile().contains("T_Max=100\r\n") && settingsFile().contains("T_Min=-20\r\n"),
                     settingsFile().constData());
    }
};

QTEST_MAIN(TestTrendWindows)
#include "tst_trendwindows.moc"
