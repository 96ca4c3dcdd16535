#include "storage/chartsettings.h"
#include "storage/inistore.h"
#include "support/settingsfixture.h"

using namespace telvane;

namespace {

// Colours as hexadecimal, then the display and absolute limits.
QString describe(const ChartSettings &c)
{
    QStringList colours;
    for (const quint32 colour : {c.background, c.border, c.grid, c.cursor, c.off1, c.off2})
        colours << QString::number(colour, 16).toUpper();
    return QStringLiteral("%1 %2..%3 %4..%5").arg(colours.join(' ')).arg(c.displayMin).arg(c.displayMax)
        .arg(c.absoluteMin).arg(c.absoluteMax);
}

} // namespace

class TestChartSettings : public QObject
{
    Q_OBJECT

private:
    SettingsFolder m_dir;

private slots:
    void chartKeys_data()
    {
        QTest::addColumn<QByteArray>("grafico");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no section: white, black grid, -50..50")
            << QByteArray() << "FFFFFF FFFFFF 0 800000 C0C0C0 E0E0E0 -50..50 -200..200";
        QTest::newRow("every key") << QByteArray("Colore_Sfondo=&HC0FFFF\r\nColore_Bordo=255\r\nColore_Griglia=&H8000\r\n"
                                                 "Colore_Cursore=&H1\r\nColore_Off1=&H2\r\nColore_Off2=&H3\r\n"
                                                 "T_Min=-5\r\nT_Max=80.5\r\nT_Min_Ass=-30\r\nT_Max_Ass=120")
                                   << "C0FFFF FF 8000 1 2 3 -5..80.5 -30..120";
        QTest::newRow("comma in a limit") << QByteArray("T_Max=80,5") << "FFFFFF FFFFFF 0 800000 C0C0C0 E0E0E0 -50..80.5 -200..200";
        QTest::newRow("garbage keeps the defaults") << QByteArray("Colore_Sfondo=bianco\r\nColore_Bordo=\r\nT_Max=alto")
                                                    << "FFFFFF FFFFFF 0 800000 C0C0C0 E0E0E0 -50..50 -200..200";
    }
    void chartKeys()
    {
        QFETCH(QByteArray, grafico);
        QFETCH(QString, expected);
        const IniStore store = m_dir.store("[Zona 01]\r\nNome=Soggiorno\r\n[Grafico]\r\n" + grafico + "\r\n");
        QCOMPARE(describe(LoadChartSettings(store, {"Soggiorno"})), expected);
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
        QCOMPARE(chart.traceColors[0], 0x000000FFu);
        QCOMPARE(chart.traceColors[1], 0xFFFF80FFu);
        QCOMPARE(chart.traceColors[4], 0x00123456u);
        QCOMPARE(chart.traceColors[29], 0x80000008u);
        QCOMPARE(chart.traceLabels[29], QStringLiteral("Z30"));

        // Only configured zones read their colour.
        QCOMPARE(LoadChartSettings(store, {"A"}).traceColors[4], 0x00FFFF00u);
    }

    void traceLabels_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("label");
        QTest::newRow("25 characters, blank at the cut") << "Laboratorio analisi  Nord" << "Laboratorio analisi";
        QTest::newRow("21 characters") << "Camera degli ospiti12" << "Camera degli ospiti1";
        QTest::newRow("accents count as one") << QString::fromUtf8("Àtrio è più lungo di venti")
                                              << QString::fromUtf8("Àtrio è più lungo di");
    }
    void traceLabels()
    {
        QFETCH(QString, name);
        QFETCH(QString, label);
        const ChartSettings chart = LoadChartSettings(m_dir.store(""), {"Primo", name});
        QCOMPARE(chart.traceLabels[1], label);
        QCOMPARE(chart.traceToolTips[1], "Doppio click per modificare il colore della traccia <" + name + ">");
        for (int i = 2; i < MaxZones; ++i) {
            QCOMPARE(chart.traceLabels[i], QStringLiteral("--------"));
            QVERIFY(chart.traceToolTips[i].isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(TestChartSettings)
#include "tst_chartsettings.moc"
