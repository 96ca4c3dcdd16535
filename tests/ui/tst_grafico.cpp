#include "trendrig.h"

#include "storage/valuetables.h"
#include "ui/trends/grafico.h"
#include "ui/trends/storico.h"
#include "ui/trends/tracelabellist.h"
#include "ui/trends/trendchart.h"
#include "ui/trends/trendpanel.h"

#include <QColorDialog>
#include <QLineSeries>
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

// The drawn stretches of `color`'s line, in the order they were made.
QList<QLineSeries *> drawnStretches(TrendChart &chart, const QColor &color)
{
    QList<QLineSeries *> stretches;
    for (QAbstractSeries *series : chart.chart()->series()) {
        auto *line = qobject_cast<QLineSeries *>(series);
        if (line && line->isVisible() && line->count() > 0 && line->pen().color() == color)
            stretches.append(line);
    }
    return stretches;
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

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    // Button "3" opens the chart, button "4" the history in its place.
    void openedByItsButtonAndExclusive()
    {
        WindowRig rig;
        startUpWithSettings(rig, TwoZones);
        Grafico *trend = rig.window->trendWindow();
        QVERIFY(rig.entry(QStringLiteral("MenuGrafico"))->isEnabled());
        rig.clickButton(QStringLiteral("3"));
        QVERIFY(trend->isVisible());
        QVERIFY(rig.button(QStringLiteral("3"))->isChecked());
        rig.clickButton(QStringLiteral("4"));
        QVERIFY(!trend->isVisible());
        QVERIFY(rig.window->historyWindow()->isVisible());
        QVERIFY(!rig.button(QStringLiteral("3"))->isChecked());
    }

    // No "Grafico" section: a white chart with a black grid from -50 to 50; zone 1 red,
    // a long name cut to 20 characters without its trailing blank, empty positions dashed.
    void withoutChartSettings()
    {
        WindowRig rig;
        startUpWithSettings(rig, TwoZones);
        rig.clickButton(QStringLiteral("3"));
        TrendPanel &panel = rig.window->trendWindow()->panel();
        TrendChart &chart = panel.chart();

        QCOMPARE(chart.chart()->plotAreaBackgroundBrush().color(), QColor(Qt::white));
        QCOMPARE(valueAxis(chart)->gridLineColor(), QColor(Qt::black));
        QCOMPARE(valueAxis(chart)->min(), -50.0);
        QCOMPARE(valueAxis(chart)->max(), 50.0);

        QCOMPARE(panel.labels().label(1), QStringLiteral("Laboratorio prove A"));
        QCOMPARE(panel.labels().toolTipOf(1),
                 QStringLiteral("Doppio click per modificare il colore della traccia <") + LongName + ">");
        QCOMPARE(panel.labels().label(2), QStringLiteral("Cucina"));
        QCOMPARE(panel.labels().label(3), QStringLiteral("--------"));
        QCOMPARE(panel.labels().label(30), QStringLiteral("--------"));
        QVERIFY(panel.labels().toolTipOf(3).isEmpty());

        rig.plant.rt.display.chart->addPoint(1, Morning, 21.5);
        rig.plant.rt.display.chart->addPoint(1, Morning.addSecs(60), 22.0);
        rig.plant.rt.display.chart->roundFinished();
        chart.redrawNow();
        QCOMPARE(drawnStretches(chart, QColor(255, 0, 0)).size(), 1);
    }

    // Points come from the rounds through the acquisition's chart; a zone that did not
    // answer breaks its line instead of plunging to the invalid marker.
    void liveRoundsWithAFailedReading()
    {
        WindowRig rig;
        startUpWithSettings(rig, TwoZones);
        rig.clickButton(QStringLiteral("3"));
        TrendChart &chart = rig.window->trendWindow()->panel().chart();
        const double zone1[] = {20, 21, InvalidValue, InvalidValue, 23, 24};
        for (int i = 0; i < 6; ++i) {
            rig.plant.rt.display.chart->addPoint(1, Morning.addSecs(60 * i), zone1[i]);
            rig.plant.rt.display.chart->addPoint(2, Morning.addSecs(60 * i), 18);
            rig.plant.rt.display.chart->roundFinished();
        }
        chart.redrawNow();

        const QList<QLineSeries *> stretches = drawnStretches(chart, QColor(255, 0, 0));
        QCOMPARE(stretches.size(), 2);
        for (QLineSeries *stretch : stretches) {
            for (const QPointF &point : stretch->points())
                QVERIFY2(point.y() > 0, qPrintable(QString::number(point.y())));
        }
        QCOMPARE(stretches[1]->at(0).y(), 23.0);
        QCOMPARE(chart.drawnPointCount(), 4 + 6);
        // The information box: minimum, maximum and mean of the shown range.
        QVERIFY2(chart.infoText().contains(">&nbsp;20,0<") || chart.infoText().contains(">&nbsp;20.0<"),
                 qPrintable(chart.infoText()));
        QVERIFY(rig.window->trendWindow()->memoryText().contains(QLocale().toString(12)));
    }

    // The cursor shows each trace's value at its time, "--.-" inside a gap.
    void cursorReadout()
    {
        WindowRig rig;
        startUpWithSettings(rig, TwoZones);
        rig.clickButton(QStringLiteral("3"));
        TrendChart &chart = rig.window->trendWindow()->panel().chart();
        rig.plant.rt.display.chart->addPoint(1, Morning, 20.5);
        rig.plant.rt.display.chart->addPoint(2, Morning, InvalidValue);
        rig.plant.rt.display.chart->roundFinished();
        chart.redrawNow();
        chart.moveCursorTo(Morning.addSecs(30).toMSecsSinceEpoch());
        const QString info = chart.infoText();
        QVERIFY2(info.contains("14/11/2026 08:00:30"), qPrintable(info));
        QVERIFY2(info.contains(QLocale().toString(20.5, 'f', 1) + "</td>"), qPrintable(info));
        QVERIFY2(info.contains("Cucina&nbsp;</td><td align=right>--.-</td>"), qPrintable(info));
    }

    // A double-click on a label asks for the colour and writes it back in blue-green-red order.
    void colourChosenByDoubleClick()
    {
        WindowRig rig;
        startUpWithSettings(rig, TwoZones);
        rig.clickButton(QStringLiteral("3"));
        TrendPanel &panel = rig.window->trendWindow()->panel();
        TraceLabelList &labels = panel.labels();
        const QRect row = labels.visualItemRect(labels.item(1));
        // A double-click is a click and then the second press.
        QTest::mouseClick(labels.viewport(), Qt::LeftButton, {}, row.center());
        QTest::mouseDClick(labels.viewport(), Qt::LeftButton, {}, row.center());
        QColorDialog *dialog = panel.colourDialog();
        QVERIFY(dialog);
        QVERIFY(dialog->isVisible());
        dialog->setCurrentColor(QColor(0x12, 0x34, 0x56));
        dialog->accept();

        QVERIFY2(settingsFile(rig).contains("[Zona 02]\r\nNome=Cucina\r\nColore=&H563412\r\n"), settingsFile(rig).constData());
        QCOMPARE(rig.plant.rt.model.plant.chart.traceColors[1], 0x563412u);
        // A double-click on an empty position asks nothing.
        const QPoint empty = labels.visualItemRect(labels.item(5)).center();
        QTest::mouseClick(labels.viewport(), Qt::LeftButton, {}, empty);
        QTest::mouseDClick(labels.viewport(), Qt::LeftButton, {}, empty);
        QVERIFY(!panel.colourDialog() || !panel.colourDialog()->isVisible());
    }

    // Zooming the value axis out stops at the absolute limits, which are then saved as
    // the displayed ones.
    void valueZoomBoundedAndSaved()
    {
        WindowRig rig;
        startUpWithSettings(rig, TwoZones + "[Grafico]\r\nT_Max_Ass=100\r\nT_Min_Ass=-20\r\nT_Max=30\r\nT_Min=10\r\n");
        rig.clickButton(QStringLiteral("3"));
        TrendChart &chart = rig.window->trendWindow()->panel().chart();
        QCOMPARE(valueAxis(chart)->min(), 10.0);
        const QPoint middle = chart.viewport()->rect().center();
        for (int i = 0; i < 20; ++i) {
            QWheelEvent wheel(middle, chart.viewport()->mapToGlobal(middle), {}, QPoint(0, -120), Qt::NoButton,
                              Qt::ControlModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(chart.viewport(), &wheel);
        }
        QCOMPARE(valueAxis(chart)->min(), -20.0);
        QCOMPARE(valueAxis(chart)->max(), 100.0);

        auto *save = rig.window->trendWindow()->findChild<QTimer *>(QStringLiteral("SalvaLimiti"));
        QVERIFY(save && save->isActive());
        save->setInterval(0);
        save->start();
        QTRY_VERIFY2(settingsFile(rig).contains("T_Max=100\r\n") && settingsFile(rig).contains("T_Min=-20\r\n"),
                     settingsFile(rig).constData());
    }
};

QTEST_MAIN(TestGrafico)
#include "tst_grafico.moc"
