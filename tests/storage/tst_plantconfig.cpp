#include "storage/chartsettings.h"
#include "storage/displayresets.h"
#include "storage/inistore.h"
#include "storage/plantconfigloader.h"
#include "support/settingsfixture.h"

#include <QImageReader>
#include <QRegularExpression>

using namespace telvane;

namespace {

PlantConfig load(const IniStore &store)
{
    PlantConfig config;
    DisplayResets resets;
    LoadPlantConfig(store, config, resets);
    return config;
}

// The loaded plant, one line per item, to compare whole.
QString describe(const PlantConfig &c)
{
    const ZoneDisplaySettings &d = c.zoneDisplay;
    QStringList lines{QStringLiteral("unit %1 text %2 chart %3 chrono %4, chart limits %5..%6")
                          .arg(d.unit).arg(d.textQuantity).arg(d.chartQuantity).arg(d.chronoQuantity)
                          .arg(c.chartMinAbs).arg(c.chartMaxAbs)};
    for (const Zona &z : c.zones)
        lines << QStringLiteral("zone '%1' %2,%3 '%4'").arg(z.name).arg(z.x).arg(z.y).arg(z.icon);
    for (const Interruttore &s : c.switches)
        lines << QStringLiteral("switch '%1' %2,%3").arg(s.name).arg(s.x).arg(s.y);
    for (const LED &l : c.leds)
        lines << QStringLiteral("LED '%1' %2,%3").arg(l.name).arg(l.x).arg(l.y);
    lines << QStringLiteral("door '%1' %2 %3,%4").arg(c.apriporta.name).arg(c.apriporta.present).arg(c.apriporta.x).arg(c.apriporta.y);
    lines << QStringLiteral("webcam '%1' %2 %3,%4").arg(c.webcam.name).arg(c.webcam.present).arg(c.webcam.x).arg(c.webcam.y);
    lines << QStringLiteral("picture %1 sounds '%2' '%3'").arg(c.synoptic.picture, c.synoptic.doorSound, c.synoptic.alarmSound);
    return lines.join('\n');
}

QByteArray numbered(const char *word, int count)
{
    QByteArray text;
    for (int i = 1; i <= count; ++i)
        text += QStringLiteral("[%1 %2]\r\nNome=%1%2\r\n").arg(word).arg(i, 2, 10, QLatin1Char('0')).toUtf8();
    return text;
}

} // namespace

class TestPlantConfig : public QObject
{
    Q_OBJECT

private:
    SettingsFolder m_dir;

private slots:
    void itemsReadTheirOwnSections()
    {
        const IniStore store = m_dir.store(
            "[Generale]\r\nZone=2\r\nInterruttori=1\r\nLED=1\r\nApriporta=1\r\nWebcam=1\r\nZone Unita=%\r\n"
            "Zone Testo=0\r\nZone Grafico=4\r\nZone Crono=2\r\n"
            "[Zona 01]\r\nNome=Forno\r\nX=1500\r\nY=2250\r\nIcona=Tforno.bmp\r\nInfo_X=9\r\nCampo_1= 30 m2 \r\nCampo_5=nota\r\n"
            "[Zona 02]\r\nNome=Laboratorio analisi  Nord\r\nX=45\r\nColore=&H123456\r\nCampo_3=Sud\r\n"
            "[Interruttore 01]\r\nNome=Pompa\r\nX=10\r\nY=20\r\n"
            "[LED 01]\r\nNome=Allarme\r\nX=30\r\nY=40\r\n"
            "[Apriporta]\r\nNome=Cancello\r\nX=50\r\nY=60\r\n"
            "[Webcam]\r\nNome=Camera\r\nX=70\r\n"
            "[Grafico]\r\nT_Min_Ass=-20\r\nT_Max_Ass=1200.5\r\nColore_Sfondo=&HC0FFFF\r\nColore_Bordo=255\r\n"
            "Colore_Griglia=&H8000\r\nColore_Cursore=&H1\r\nColore_Off1=&H2\r\nColore_Off2=&H3\r\nT_Min=-5\r\nT_Max=80,5\r\n"
            "[Zona 03]\r\nColore=&H654321\r\nCampo_1=12 m2\r\n"
            "[Sinottico]\r\nImmagine=Casa.png\r\nSuonoPorta=porta.wav\r\nSuonoAllarme=sirena.wav\r\n"
            "Campo_1=  Superficie  \r\nCampo_3=Esposizione\r\n");
        PlantConfig config = load(store);
        QCOMPARE(describe(config), QString(R"(unit % text 0 chart 4 chrono 2, chart limits -20..1200.5
zone 'Forno' 1500,2250 'Tforno.bmp'
zone 'Laboratorio analisi  Nord' 45,300 ''
switch 'Pompa' 10,20
LED 'Allarme' 30,40
door 'Cancello' 1 50,60
webcam 'Camera' 1 70,300
picture Casa.png sounds 'porta.wav' 'sirena.wav')"));
        QCOMPARE(config.synoptic.picturePath, m_dir.path("Casa.png"));
        // The chart gets the zones just loaded, and its own copy of the limits.
        QCOMPARE(config.chart.traceLabels[1], QStringLiteral("Laboratorio analisi"));
        QCOMPARE(config.chart.traceLabels[2], QStringLiteral("--------"));
        QCOMPARE(config.chart.absoluteMax, 1200.5f);
        const ChartSettings &chart = config.chart;
        const QList<quint32> colours{chart.background, chart.border, chart.grid, chart.cursor, chart.off1, chart.off2};
        QCOMPARE(colours, QList<quint32>({0xC0FFFF, 0xFF, 0x8000, 1, 2, 3}));
        QCOMPARE(chart.displayMin, -5.0f);
        QCOMPARE(chart.displayMax, 80.5f);
        QCOMPARE(chart.absoluteMin, -20.0f);
        // Each zone's trace has its own zone's colour; zones beyond the count keep the built-in one.
        const ChartSettings builtIn;
        QCOMPARE(chart.traceColors[0], builtIn.traceColors[0]);
        QCOMPARE(chart.traceColors[1], 0x00123456u);
        QCOMPARE(chart.traceColors[2], builtIn.traceColors[2]);
        // A plant that never set the switches' command mode keeps commanding them.
        QCOMPARE(config.SwitchControlMode, 1);

        // The plant load reads only the names of the synoptic's fields; the synoptic asks
        // for the values of the zones in use.
        const auto fields = [&] {
            QStringList text{QStringList(config.fields.names.begin(), config.fields.names.end()).join(',')};
            for (int z = 0; z < 3; ++z)
                text << QStringList(config.fields.values[z].begin(), config.fields.values[z].end()).join(',');
            return text.join('|');
        };
        QCOMPARE(fields(), QStringLiteral("Superficie,,Esposizione,,|,,,,|,,,,|,,,,"));
        LoadSynopticFields(store, config.fields, 2);
        QCOMPARE(fields(), QStringLiteral("Superficie,,Esposizione,,|30 m2,,,,nota|,,Sud,,|,,,,"));
        LoadSynopticFields(store, config.fields, -4);
        QCOMPARE(fields(), QStringLiteral("Superficie,,Esposizione,,|,,,,|,,,,|,,,,"));
    }

    // A hand-edited value that went wrong is kept in range and named in the log, so a
    // technician finds it.
    void handEditedValuesAreKeptInRange()
    {
        QByteArray items = numbered("Zona", MaxZones + 1) + numbered("Interruttore", 12) + numbered("LED", 12);
        items.replace("Nome=Zona01\r\n", "Nome=Zona01\r\nX=dieci\r\n");
        const IniStore store = m_dir.store("[Generale]\r\nZone=31\r\nInterruttori=12\r\nLED=12\r\nZone Testo=7\r\n"
                                           "Zone Crono=-2\r\nApriporta=2\r\n"
                                           "[Grafico]\r\nColore_Sfondo=bianco\r\nColore_Bordo=\r\nT_Max=alto\r\n" + items);
        QTest::failOnWarning(QRegularExpression("."));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(R"(^\[Generale\] Interruttori = "12" is outside 0\.\.10; using 10$)"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(R"(^\[Zona 01\] X = "dieci" is not a number; using 300$)"));
        for (const char *key : {"Zone", "LED", "Zone Testo", "Zone Crono", "Colore_Sfondo", "Colore_Bordo", "T_Max"})
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^\\[.*\\] %1 = ").arg(key)));
        const PlantConfig c = load(store);
        QCOMPARE(c.zoneCount(), MaxZones);
        QCOMPARE(c.switchCount(), MaxSwitches);
        QCOMPARE(c.ledCount(), MaxLeds);
        QCOMPARE(c.zoneDisplay.textQuantity, 1);
        QCOMPARE(c.zoneDisplay.chronoQuantity, 0);
        QVERIFY(c.apriporta.present);
        QCOMPARE(c.zones[0].x, 300);
        // Items come from their own numbered sections, in order, up to the last.
        QCOMPARE(c.zones.last().name, QStringLiteral("Zona30"));
        QCOMPARE(c.chart.traceLabels[MaxZones - 1], QStringLiteral("Zona30"));
        QCOMPARE(c.leds.last().name, QStringLiteral("LED10"));
        const ChartSettings builtIn;
        QCOMPARE(c.chart.background, builtIn.background);
        QCOMPARE(c.chart.border, builtIn.border);
        QCOMPARE(c.chart.displayMax, builtIn.displayMax);

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(R"(^\[Generale\] Zone = )"));
        QCOMPARE(load(m_dir.store("[Generale]\r\nZone=99999999999\r\n" + numbered("Zona", MaxZones + 1))).zoneCount(), MaxZones);
    }

    // Resets come after the items are in place and before the picture is read, so a
    // window that rebuilds on the reset sees the new items and can load the picture
    // once the load returns. A reload replaces everything.
    void reloadAndResets()
    {
        PlantConfig config;
        DisplayResets resets;
        LoadPlantConfig(m_dir.store("[Generale]\r\nZone=5\r\nLED=2\r\nApriporta=1\r\n"
                                    "[Sinottico]\r\nImmagine=Vecchia.jpg\r\nCampo_1=Nome\r\n"),
                        config, resets);
        QStringList seen;
        const auto snapshot = [&](const char *which) {
            seen << QStringLiteral("%1 %2 %3 %4 %5").arg(which).arg(config.zoneCount()).arg(config.switchCount())
                        .arg(config.ledCount()).arg(config.synoptic.picture);
        };
        connect(&resets, &DisplayResets::ResetZoneDisplays, this, [&] { snapshot("zone"); });
        connect(&resets, &DisplayResets::ResetIndicatorDisplays, this, [&] { snapshot("indicator"); });

        LoadPlantConfig(m_dir.store("[Generale]\r\nZone=2\r\nInterruttori=1\r\n[Sinottico]\r\nImmagine=Nuova.jpg\r\n"),
                        config, resets);
        QCOMPARE(seen, QStringList({"zone 2 1 0 Pianta.jpg", "indicator 2 1 0 Pianta.jpg"}));
        QCOMPARE(config.synoptic.picture, QStringLiteral("Nuova.jpg"));
        QVERIFY(!config.apriporta.present);
        QCOMPARE(config.fields.names[0], QString());
        QCOMPARE(config.chart.traceLabels[4], QStringLiteral("--------"));

        // Stopping acquisition resets the displays in the same order, without a load.
        seen.clear();
        resets.resetAll();
        QCOMPARE(seen, QStringList({"zone 2 1 0 Nuova.jpg", "indicator 2 1 0 Nuova.jpg"}));
    }

    // Every marker of a demo plant must land on its picture (drawn at 15 twips per
    // pixel), or the operator cannot reach it.
    void demoPlants()
    {
        QTest::failOnWarning(QRegularExpression("."));
        for (const QString file : {"Telvane1.ini", "Telvane2.ini"}) {
            IniStore store{ProgramFolder(TELVANE_SOURCE_DIR "/demo/plant")};
            store.setCurrentIniName(file);
            const PlantConfig c = load(store);
            const QSize picture = QImageReader(c.synoptic.picturePath).size();
            QVERIFY2(c.zoneCount() > 0 && picture.isValid(), qPrintable(file + " " + c.synoptic.picturePath));
            const QRect area(QPoint(0, 0), picture * 15);
            const auto onPicture = [&](const QString &what, int x, int y) {
                QVERIFY2(area.contains(x, y), qPrintable(QStringLiteral("%1: %2 at %3,%4").arg(file, what).arg(x).arg(y)));
            };
            for (const Zona &z : c.zones)
                onPicture(z.name, z.x, z.y);
            for (const Interruttore &s : c.switches)
                onPicture(s.name, s.x, s.y);
            for (const LED &l : c.leds)
                onPicture(l.name, l.x, l.y);
            onPicture(c.apriporta.name, c.apriporta.x, c.apriporta.y);
            onPicture(c.webcam.name, c.webcam.x, c.webcam.y);
        }
    }
};

QTEST_GUILESS_MAIN(TestPlantConfig)
#include "tst_plantconfig.moc"
