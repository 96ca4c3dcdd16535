#include "storage/chartsettings.h"
#include "storage/inistore.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

class TestChartSettings : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    // The store's current file until a mode is loaded is the industrial one.
    IniStore storeWith(const QByteArray &settings)
    {
        QFile file(m_dir.filePath(QStringLiteral("Telvane2.ini")));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            qFatal("cannot write the settings file");
        file.write(settings);
        file.close();
        return IniStore(ProgramFolder(m_dir.path()));
    }

private slots:
    void withoutGraficoTheChartIsWhiteWithABlackGrid()
    {
        const IniStore store = storeWith("[Zona 01]\r\nNome=Soggiorno\r\n");
        const ChartSettings chart = LoadChartSettings(store, {QStringLiteral("Soggiorno")});
        QCOMPARE(chart.background, 0x00FFFFFFu);
        QCOMPARE(chart.border, 0x00FFFFFFu);
        QCOMPARE(chart.grid, 0x00000000u);
        QCOMPARE(chart.cursor, 0x00800000u);
        QCOMPARE(chart.off1, 0x00C0C0C0u);
        QCOMPARE(chart.off2, 0x00E0E0E0u);
        QCOMPARE(chart.displayMin, -50.0f);
        QCOMPARE(chart.displayMax, 50.0f);
        QCOMPARE(chart.absoluteMin, -200.0f);
        QCOMPARE(chart.absoluteMax, 200.0f);
    }

    void chartKeys_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<quint32>("background");
        QTest::addColumn<float>("displayMax");
        QTest::newRow("hex colour") << QByteArray("Colore_Sfondo=&HC0FFFF") << 0x00C0FFFFu << 50.0f;
        QTest::newRow("decimal colour") << QByteArray("Colore_Sfondo=255") << 0x000000FFu << 50.0f;
        QTest::newRow("garbage colour keeps white") << QByteArray("Colore_Sfondo=bianco") << 0x00FFFFFFu << 50.0f;
        QTest::newRow("empty colour keeps white") << QByteArray("Colore_Sfondo=") << 0x00FFFFFFu << 50.0f;
        QTest::newRow("limit with point") << QByteArray("T_Max=80.5") << 0x00FFFFFFu << 80.5f;
        QTest::newRow("limit with comma") << QByteArray("T_Max=80,5") << 0x00FFFFFFu << 80.5f;
        QTest::newRow("garbage limit keeps 50") << QByteArray("T_Max=alto") << 0x00FFFFFFu << 50.0f;
    }
    void chartKeys()
    {
        QFETCH(QByteArray, line);
        QFETCH(quint32, background);
        QFETCH(float, displayMax);
        const IniStore store = storeWith("[Grafico]\r\n" + line + "\r\nT_Min=-5\r\nT_Max_Ass=120\r\nT_Min_Ass=-30\r\n");
        const ChartSettings chart = LoadChartSettings(store, {});
        QCOMPARE(chart.background, background);
        QCOMPARE(chart.displayMax, displayMax);
        QCOMPARE(chart.displayMin, -5.0f);
        QCOMPARE(chart.absoluteMax, 120.0f);
        QCOMPARE(chart.absoluteMin, -30.0f);
    }

    void zoneWithoutColoreTakesItsTableEntry_data()
    {
        QTest::addColumn<int>("zone");
        QTest::addColumn<quint32>("color");
        QTest::newRow("zone 1 red") << 1 << 0x000000FFu;
        QTest::newRow("zone 2 upper half kept") << 2 << 0xFFFF80FFu;
        QTest::newRow("zone 24 upper half kept") << 24 << 0xFFFF8000u;
        QTest::newRow("zone 29 grey") << 29 << 0x00808080u;
        QTest::newRow("zone 30 window text") << 30 << 0x80000008u;
    }
    void zoneWithoutColoreTakesItsTableEntry()
    {
        QFETCH(int, zone);
        QFETCH(quint32, color);
        // Zone 5 carries its own colour so that a table lookup by the wrong index shows.
        const IniStore store = storeWith("[Zona 05]\r\nColore=&H123456\r\n");
        QStringList names;
        for (int i = 1; i <= MaxZones; ++i)
            names << QStringLiteral("Z%1").arg(i);
        const ChartSettings chart = LoadChartSettings(store, names);
        QCOMPARE(chart.traceColors[zone - 1], color);
        QCOMPARE(chart.traceColors[4], 0x00123456u);
    }

    void zoneColoursAreReadOnlyForConfiguredZones()
    {
        const IniStore store = storeWith("[Zona 01]\r\nColore=&H00FF00\r\n"
                                         "[Zona 02]\r\nColore=verde\r\n"
                                         "[Zona 03]\r\nColore=&H0000AA\r\n");
        const ChartSettings chart = LoadChartSettings(store, {QStringLiteral("A"), QStringLiteral("B")});
        QCOMPARE(chart.traceColors[0], 0x0000FF00u);
        QCOMPARE(chart.traceColors[1], 0xFFFF80FFu); // not a colour: the table entry stays
        QCOMPARE(chart.traceColors[2], 0xFFFFFFFFu); // zone 3 is not configured
    }

    void traceLabels_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("label");
        QTest::newRow("short name") << "Cucina" << "Cucina";
        QTest::newRow("25 characters, blank at the cut")
            << "Laboratorio analisi  Nord" << "Laboratorio analisi";
        QTest::newRow("exactly 20") << "Camera degli ospiti1" << "Camera degli ospiti1";
        QTest::newRow("no name") << "" << "";
        QTest::newRow("accents count as one") << QString::fromUtf8("Àtrio è più lungo di venti") << QString::fromUtf8("Àtrio è più lungo di");
    }
    void traceLabels()
    {
        QFETCH(QString, name);
        QFETCH(QString, label);
        const IniStore store = storeWith("");
        const ChartSettings chart = LoadChartSettings(store, {QStringLiteral("Primo"), name});
        QCOMPARE(chart.traceLabels[1], label);
        QCOMPARE(chart.traceToolTips[1],
                 QStringLiteral("Doppio click per modificare il colore della traccia <") + name + QLatin1Char('>'));
    }

    void positionsBeyondTheZoneCountShowDashes()
    {
        const IniStore store = storeWith("");
        const ChartSettings chart = LoadChartSettings(store, {QStringLiteral("A"), QStringLiteral("B")});
        QCOMPARE(chart.traceLabels[0], QStringLiteral("A"));
        QCOMPARE(chart.traceLabels[1], QStringLiteral("B"));
        for (int i = 2; i < MaxZones; ++i) {
            QCOMPARE(chart.traceLabels[i], QStringLiteral("--------"));
            QVERIFY(chart.traceToolTips[i].isEmpty());
        }
    }

    void moreNamesThanTracesAreIgnored()
    {
        const IniStore store = storeWith("");
        QStringList names;
        for (int i = 1; i <= MaxZones + 5; ++i)
            names << QStringLiteral("Z%1").arg(i);
        const ChartSettings chart = LoadChartSettings(store, names);
        QCOMPARE(chart.traceLabels[MaxZones - 1], QStringLiteral("Z30"));
    }
};

QTEST_GUILESS_MAIN(TestChartSettings)
#include "tst_chartsettings.moc"
