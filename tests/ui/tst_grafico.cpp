#include "trendrig.h"

#include "storage/valuetables.h"
#include "ui/trends/grafico.h"
#include "ui/trends/storico.h"
#include "ui/trends/tracelabellist.h"
#include "ui/trends/trendchart.h"
#include "ui/trends/trendpanel.h"

#include <QColorDialog>
#include <QLabel>
#include <QLoggingCategory>
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

QByteArray settingsFile(WindowRig &rig)
{
    QFile file(rig.plant.rt.model.ini.folder().filePath(QStringLiteral("Telvane2.ini")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestGrafico : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowRig> rig;
    TrendPanel *panel = nullptr;

    // The trend window opened by its button over the two zones and `chartKeys`.
    TrendChart &open(const QByteArray &chartKeys = {})
    {
        rig = std::make_unique<WindowRig>();
        startUpWithSettings(*rig, TwoZones + chartKeys);
        rig->clickButton(QStringLiteral("3"));
        panel = &rig->window->trendWindow()->panel();
        return panel->chart();
    }
    void addRound(const QDateTime &at, double zone1, double zone2 = InvalidValue)
    {
        rig->plant.rt.display.chart->addPoint(1, at, zone1);
        rig->plant.rt.display.chart->addPoint(2, at, zone2);
        rig->plant.rt.display.chart->roundFinished();
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }
    void cleanup() { rig.reset(); }

    // No "Grafico" section: a white chart with a black grid from -50 to 50; zone 1 red,
    // a long name cut to 20 characters without its trailing blank, empty positions dashed.
    void withoutChartSettings()
    {
        TrendChart &chart = open();
        QCOMPARE(chart.chart()->plotAreaBackgroundBrush().color(), QColor(Qt::white));
        QCOMPARE(valueAxis(chart)->gridLineColor(), QColor(Qt::black));
        QCOMPARE(valueAxis(chart)->min(), -50.0);
        QCOMPARE(valueAxis(chart)->max(), 50.0);

        QCOMPARE(panel->labels().label(1), QStringLiteral("Laboratorio prove A"));
        QCOMPARE(panel->labels().toolTipOf(1),
                 QStringLiteral("Doppio click per modificare il colore della traccia <") + LongName + ">");
        QCOMPARE(panel->labels().label(3), QStringLiteral("--------"));
        QVERIFY(panel->labels().toolTipOf(3).isEmpty());

        addRound(Morning, 21.5);
        addRound(Morning.addSecs(60), 22.0);
        chart.redrawNow();
        QCOMPARE(drawnStretches(chart, QColor(255, 0, 0)).size(), 1);
        // The time axis has its labels: dark text on the white frame under the plot.
        const QImage image = chart.grab().toImage();
        const QRect plot = chart.chart()->plotArea().toRect();
        int dark = 0;
        for (int y = plot.bottom() + 4; y < image.height(); ++y) {
            for (int x = plot.left(); x < plot.right(); ++x)
                dark += qGray(image.pixel(x, y)) < 128;
        }
        QVERIFY2(dark > 20, "no labels under the time axis");
    }

    // A zone that did not answer breaks its line instead of plunging to the invalid
    // marker; a reading between two failures still shows; the cursor says "--.-" there.
    void liveRoundsWithAFailedReading()
    {
        TrendChart &chart = open();
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

        chart.moveCursorTo(Morning.addSecs(90).toMSecsSinceEpoch());
        const QString info = chart.infoText();
        QVERIFY2(info.contains("14/11/2026 08:01:30"), qPrintable(info));
        QVERIFY2(info.contains(QLocale().toString(21.0, 'f', 1) + "</td>"), qPrintable(info));
        QVERIFY2(info.contains("Cucina&nbsp;</td><td align=right>--.-</td>"), qPrintable(info));
    }

    // The information box goes where it is dropped, stays inside the chart, and its place is saved.
    void infoBoxDragged()
    {
        TrendChart &chart = open();
        addRound(Morning, 20.5);
        chart.redrawNow();
        auto *info = chart.findChild<QLabel *>(QStringLiteral("InfoBox"));
        QVERIFY(info && info->isVisible());
        const auto dragBy = [info](QPointF to) {
            QTest::mousePress(info, Qt::LeftButton, {}, QPoint(5, 5));
            QMouseEvent move(QEvent::MouseMove, to, info->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(info, &move);
            QTest::mouseRelease(info, Qt::LeftButton, {}, to.toPoint());
        };
        const QPoint start = info->pos();
        dragBy(QPointF(45, 25));
        QCOMPARE(info->pos(), start + QPoint(40, 20));
        QVERIFY2(settingsFile(*rig).contains(
                     QStringLiteral("Info_X=%1\r\nInfo_Y=%2\r\n").arg(info->x() * 15).arg(info->y() * 15).toLatin1()),
                 settingsFile(*rig).constData());
        dragBy(QPointF(-5000, -5000));
        QCOMPARE(info->pos(), QPoint(0, 0));
    }

    // A double-click on a label asks for the colour and writes it back in blue-green-red order.
    void colourChosenByDoubleClick()
    {
        open();
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
        QVERIFY2(settingsFile(*rig).contains("[Zona 02]\r\nNome=Cucina\r\nColore=&H563412\r\n"), settingsFile(*rig).constData());
        QCOMPARE(rig->plant.rt.model.plant.chart.traceColors[1], 0x563412u);
        // A double-click on an empty position asks nothing.
        doubleClick(5);
        QVERIFY(!panel->colourDialog()->isVisible());
    }

    // Zooming the value axis out stops at the absolute limits, which are then saved as
    // the displayed ones.
    void valueZoomBoundedAndSaved()
    {
        TrendChart &chart = open("[Grafico]\r\nT_Max_Ass=100\r\nT_Min_Ass=-20\r\nT_Max=30\r\nT_Min=10\r\n");
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
        QTRY_VERIFY2(settingsFile(*rig).contains("T_Max=100\r\n") && settingsFile(*rig).contains("T_Min=-20\r\n"),
                     settingsFile(*rig).constData());
    }
};

QTEST_MAIN(TestGrafico)
#include "tst_grafico.moc"
