#include "trends/chartkeys.h"

#include "storage/chartsettings.h"
#include "trends/tracecolors.h"
#include "support/settingsfixture.h"

using namespace telvane;

class TestChartKeys : public QObject
{
    Q_OBJECT

private slots:
    // A colour picked on screen goes to the file in blue-green-red order and the chart
    // reads back the same colour.
    void pickedColourRoundTrips()
    {
        SettingsFolder dir;
        IniStore store = dir.store("[Zona 02]\r\nNome=Cucina\r\nColore=&HFF\r\n");
        QVERIFY(writeTraceColor(store, 1, storedColor(0x12, 0x34, 0x56)));
        QVERIFY(writeChartColor(store, "Colore_Sfondo", storedColor(0, 0, 0x80)));
        QVERIFY(dir.read(SettingsFolder::Industrial).contains("Colore=&H563412\r\n"));
        QVERIFY(dir.read(SettingsFolder::Industrial).contains("Nome=Cucina\r\n"));

        const ChartSettings chart = LoadChartSettings(store, {"Soggiorno", "Cucina"});
        QCOMPARE(screenColor(chart.traceColors[1]), (ScreenColor{0x12, 0x34, 0x56}));
        QCOMPARE(chart.background, 0x800000u);
    }

    void storedColoursOnScreen_data()
    {
        QTest::addColumn<quint32>("stored");
        QTest::addColumn<ScreenColor>("expected");
        QTest::newRow("zone 1 red") << 0x000000FFu << ScreenColor{255, 0, 0};
        QTest::newRow("blue in the high byte") << 0x00FF0000u << ScreenColor{0, 0, 255};
        QTest::newRow("widened four digits: orange") << 0xFFFF80FFu << ScreenColor{255, 128, 0};
        QTest::newRow("widened four digits: green") << 0xFFFFFF00u << ScreenColor{0, 255, 0};
        QTest::newRow("window text") << 0x80000008u << ScreenColor{0, 0, 0, SystemWindowTextIndex};
    }
    void storedColoursOnScreen()
    {
        QFETCH(quint32, stored);
        QFETCH(ScreenColor, expected);
        QCOMPARE(screenColor(stored), expected);
    }

    void valueRangeStaysWithinTheLimits_data()
    {
        QTest::addColumn<double>("wantedMin");
        QTest::addColumn<double>("wantedMax");
        QTest::addColumn<double>("expectedMin");
        QTest::addColumn<double>("expectedMax");
        QTest::newRow("scrolled past the top") << 190.0 << 230.0 << 160.0 << 200.0;
        QTest::newRow("scrolled past the bottom") << -250.0 << -150.0 << -200.0 << -100.0;
        QTest::newRow("zoomed out beyond both") << -500.0 << 500.0 << -200.0 << 200.0;
        QTest::newRow("reversed") << 30.0 << 10.0 << 10.0 << 30.0;
        QTest::newRow("empty") << 20.0 << 20.0 << 20.0 << 21.0;
    }
    void valueRangeStaysWithinTheLimits()
    {
        QFETCH(double, wantedMin);
        QFETCH(double, wantedMax);
        QFETCH(double, expectedMin);
        QFETCH(double, expectedMax);
        const ValueRange range = clampedValueRange({wantedMin, wantedMax}, {-200, 200});
        QCOMPARE(range.min, expectedMin);
        QCOMPARE(range.max, expectedMax);
    }

    void limitsAndInfoBoxWrittenBack()
    {
        SettingsFolder dir;
        IniStore store = dir.store("[Grafico]\r\nT_Max=50\r\nInfo_X=450\r\nInfo_Y=900\r\n");
        QCOMPARE(readInfoPosition(store).x, 450);
        // Never moved: a little inside the plot's corner, not over its axis labels.
        QCOMPARE(readInfoPosition(dir.store("[Grafico]\r\n", QStringLiteral("Telvane1.ini"))).y, 1000);
        QVERIFY(writeValueLimits(store, -12.5, 37));
        QVERIFY(writeInfoPosition(store, {150, 300}));
        const QByteArray file = dir.read(SettingsFolder::Industrial);
        QVERIFY2(file.contains("T_Max=37\r\n") && file.contains("T_Min=-12.5\r\n"), file.constData());
        QCOMPARE(readInfoPosition(store).y, 300);
        const ChartSettings chart = LoadChartSettings(store, {});
        QCOMPARE(chart.displayMin, -12.5f);
    }
};

QTEST_GUILESS_MAIN(TestChartKeys)
#include "tst_chartkeys.moc"
