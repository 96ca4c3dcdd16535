#include "storage/chartsettings.h"
#include "storage/inistore.h"
#include "support/settingsfixture.h"

using namespace telvane;

class TestChartSettings : public QObject
{
    Q_OBJECT

private:
    SettingsFolder m_dir;

    ChartSettings load(const QByteArray &grafico, const QStringList &zones = {"Soggiorno"})
    {
        return LoadChartSettings(m_dir.store("[Zona 01]\r\nNome=Soggiorno\r\n[Grafico]\r\n" + grafico + "\r\n"), zones);
    }

private slots:
    void everyKeyIsRead()
    {
        const ChartSettings c = load("Colore_Sfondo=&HC0FFFF\r\nColore_Bordo=255\r\nColore_Griglia=&H8000\r\n"
                                     "Colore_Cursore=&H1\r\nColore_Off1=&H2\r\nColore_Off2=&H3\r\n"
                                     "T_Min=-5\r\nT_Max=80,5\r\nT_Min_Ass=-30\r\nT_Max_Ass=120");
        const QList<quint32> colours{c.background, c.border, c.grid, c.cursor, c.off1, c.off2};
        QCOMPARE(colours, QList<quint32>({0xC0FFFF, 0xFF, 0x8000, 1, 2, 3}));
        QCOMPARE(c.displayMin, -5.0f);
        QCOMPARE(c.displayMax, 80.5f);
        QCOMPARE(c.absoluteMin, -30.0f);
        QCOMPARE(c.absoluteMax, 120.0f);
    }

    void garbageKeepsTheDefaults()
    {
        const ChartSettings defaults = load("");
        const ChartSettings c = load("Colore_Sfondo=bianco\r\nColore_Bordo=\r\nT_Max=alto");
        QCOMPARE(c.background, defaults.background);
        QCOMPARE(c.border, defaults.border);
        QCOMPARE(c.displayMax, defaults.displayMax);
    }

    void traceColours()
    {
        // Zone 5 carries its own colour so that a table lookup by the wrong index shows;
        // zone 2's is no colour, and zone 31's is beyond the traces.
        const IniStore store = m_dir.store("[Zona 05]\r\nColore=&H123456\r\n[Zona 02]\r\nColore=verde\r\n");
        QStringList names;
        for (int i = 1; i <= MaxZones + 1; ++i)
            names << QStringLiteral("Z%1").arg(i);
        const ChartSettings chart = LoadChartSettings(store, names);
        const ChartSettings builtIn;
        QCOMPARE(chart.traceColors[1], builtIn.traceColors[1]);
        QCOMPARE(chart.traceColors[4], 0x00123456u);
        QCOMPARE(chart.traceLabels[29], QStringLiteral("Z30"));
        // Only configured zones read their colour.
        QCOMPARE(LoadChartSettings(store, {"A"}).traceColors[4], builtIn.traceColors[4]);
    }

};

QTEST_GUILESS_MAIN(TestChartSettings)
#include "tst_chartsettings.moc"
