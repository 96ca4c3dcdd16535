#include "storage/displayresets.h"
#include "storage/inistore.h"
#include "storage/plantconfigloader.h"

#include <QFile>
#include <QImageReader>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <iterator>

using namespace telvane;

namespace {

const QString DemoPlant = QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant");

// The demo pictures are drawn at 15 twips per pixel.
constexpr int TwipsPerPixel = 15;

} // namespace

class TestPlantConfigLoader : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    // Until a mode is loaded the store's current file is the industrial one.
    IniStore storeWith(const QByteArray &settings)
    {
        QFile file(m_dir.filePath(QStringLiteral("Telvane2.ini")));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            qFatal("cannot write the settings file");
        file.write(settings);
        file.close();
        return IniStore(ProgramFolder(m_dir.path()));
    }

    static PlantConfig load(const IniStore &store)
    {
        PlantConfig config;
        DisplayResets resets;
        LoadPlantConfig(store, config, resets);
        return config;
    }

    static QByteArray zoneSections(int count)
    {
        QByteArray text;
        for (int i = 1; i <= count; ++i)
            text += QStringLiteral("[Zona %1]\r\nNome=Z%1\r\n").arg(i, 2, 10, QLatin1Char('0')).toUtf8();
        return text;
    }

    // Every marker of a plant must land on its picture, or the operator cannot reach it.
    static void verifyMarkersOnPicture(const PlantConfig &config)
    {
        const QSize picture = QImageReader(config.synoptic.picturePath).size();
        QVERIFY2(picture.isValid(), qPrintable(config.synoptic.picturePath));
        const QRect area(QPoint(0, 0), picture * TwipsPerPixel);
        auto onPicture = [&](const QString &what, int x, int y) {
            QVERIFY2(area.contains(x, y), qPrintable(QStringLiteral("%1 at %2,%3").arg(what).arg(x).arg(y)));
        };
        for (const Zona &z : config.zones)
            onPicture(z.name, z.x, z.y);
        for (const Interruttore &s : config.switches)
            onPicture(s.name, s.x, s.y);
        for (const LED &l : config.leds)
            onPicture(l.name, l.x, l.y);
        onPicture(config.apriporta.name, config.apriporta.x, config.apriporta.y);
        onPicture(config.webcam.name, config.webcam.x, config.webcam.y);
    }

private slots:
    void missingFileGivesTheDefaults()
    {
        const IniStore store(ProgramFolder(m_dir.filePath(QStringLiteral("nessuna-cartella"))));
        const PlantConfig config = load(store);
        QCOMPARE(config.apriporta.name, QStringLiteral("Apriporta"));
        QVERIFY(!config.apriporta.present);
        QCOMPARE(config.apriporta.x, 300);
        QCOMPARE(config.webcam.name, QStringLiteral("Webcam"));
        QVERIFY(!config.webcam.present);
        QCOMPARE(config.webcam.y, 300);
        QCOMPARE(config.zoneDisplay.unit, QString::fromUtf8("°C"));
        QCOMPARE(config.zoneDisplay.textQuantity, qint16(1));
        QCOMPARE(config.zoneDisplay.chartQuantity, qint16(1));
        QCOMPARE(config.zoneDisplay.chronoQuantity, qint16(0));
        QCOMPARE(config.zoneCount(), 0);
        QCOMPARE(config.switchCount(), 0);
        QCOMPARE(config.ledCount(), 0);
        QCOMPARE(config.chartMinAbs, -200.0f);
        QCOMPARE(config.chartMaxAbs, 200.0f);
        QCOMPARE(config.chart.traceLabels[0], QStringLiteral("--------"));
        QVERIFY(config.synoptic.doorSound.isEmpty());
        QVERIFY(config.synoptic.alarmSound.isEmpty());
        QCOMPARE(config.synoptic.picture, QStringLiteral("Pianta.jpg"));
        QCOMPARE(config.synoptic.picturePath, store.folder().filePath(QStringLiteral("Pianta.jpg")));
    }

    void countsAreClamped_data()
    {
        QTest::addColumn<QByteArray>("general");
        QTest::addColumn<int>("zones");
        QTest::addColumn<int>("switches");
        QTest::addColumn<int>("leds");
        QTest::newRow("in range") << QByteArray("Zone=6\r\nInterruttori=3\r\nLED=2") << 6 << 3 << 2;
        QTest::newRow("negative zone count") << QByteArray("Zone=-3") << 0 << 0 << 0;
        QTest::newRow("31 zones") << QByteArray("Zone=31") << 30 << 0 << 0;
        QTest::newRow("45 zones") << QByteArray("Zone=45") << 30 << 0 << 0;
        QTest::newRow("12 switches") << QByteArray("Interruttori=12") << 0 << 10 << 0;
        QTest::newRow("12 LEDs") << QByteArray("LED=12") << 0 << 0 << 10;
        QTest::newRow("negative switches and LEDs") << QByteArray("Interruttori=-1\r\nLED=-7") << 0 << 0 << 0;
        QTest::newRow("garbage counts") << QByteArray("Zone=tante\r\nInterruttori=\r\nLED=?") << 0 << 0 << 0;
        QTest::newRow("leading number") << QByteArray("Zone=4 zone") << 4 << 0 << 0;
        QTest::newRow("decimal comma rounds") << QByteArray("Zone=2,6") << 3 << 0 << 0;
        QTest::newRow("beyond 32 bits") << QByteArray("Zone=99999999999") << 30 << 0 << 0;
    }
    void countsAreClamped()
    {
        QFETCH(QByteArray, general);
        QFETCH(int, zones);
        QFETCH(int, switches);
        QFETCH(int, leds);
        QByteArray items = zoneSections(MaxZones + 1);
        for (int i = 1; i <= MaxSwitches + 2; ++i)
            items += QStringLiteral("[Interruttore %1]\r\nNome=I%1\r\n").arg(i, 2, 10, QLatin1Char('0')).toUtf8();
        for (int i = 1; i <= MaxLeds + 2; ++i)
            items += QStringLiteral("[LED %1]\r\nNome=L%1\r\n").arg(i, 2, 10, QLatin1Char('0')).toUtf8();
        const PlantConfig config = load(storeWith("[Generale]\r\n" + general + "\r\n" + items));
        QCOMPARE(config.zoneCount(), zones);
        QCOMPARE(config.switchCount(), switches);
        QCOMPARE(config.ledCount(), leds);
        // Items come from their own numbered sections, in order.
        if (zones > 0)
            QCOMPARE(config.zones.last().name, QStringLiteral("Z%1").arg(zones, 2, 10, QLatin1Char('0')));
        if (switches > 0)
            QCOMPARE(config.switches.last().name, QStringLiteral("I%1").arg(switches, 2, 10, QLatin1Char('0')));
        if (leds > 0)
            QCOMPARE(config.leds.last().name, QStringLiteral("L%1").arg(leds, 2, 10, QLatin1Char('0')));
        for (int i = 0; i < MaxZones; ++i) {
            const QString expected = i < zones ? QStringLiteral("Z%1").arg(i + 1, 2, 10, QLatin1Char('0'))
                                               : QStringLiteral("--------");
            QCOMPARE(config.chart.traceLabels[i], expected);
        }
    }

    void zoneQuantities_data()
    {
        QTest::addColumn<QByteArray>("general");
        QTest::addColumn<qint16>("text");
        QTest::addColumn<qint16>("chart");
        QTest::addColumn<qint16>("chrono");
        QTest::newRow("as written") << QByteArray("Zone Testo=0\r\nZone Grafico=4\r\nZone Crono=2") << qint16(0) << qint16(4) << qint16(2);
        QTest::newRow("Zone Testo 7 is 1") << QByteArray("Zone Testo=7") << qint16(1) << qint16(1) << qint16(0);
        QTest::newRow("Zone Testo -1 is 1") << QByteArray("Zone Testo=-1") << qint16(1) << qint16(1) << qint16(0);
        QTest::newRow("Zone Testo beyond 16 bits") << QByteArray("Zone Testo=65536") << qint16(1) << qint16(1) << qint16(0);
        QTest::newRow("garbage text quantity") << QByteArray("Zone Testo=PV") << qint16(1) << qint16(1) << qint16(0);
        QTest::newRow("chart and chrono out of range") << QByteArray("Zone Grafico=9\r\nZone Crono=-2") << qint16(1) << qint16(1) << qint16(0);
    }
    void zoneQuantities()
    {
        QFETCH(QByteArray, general);
        QFETCH(qint16, text);
        QFETCH(qint16, chart);
        QFETCH(qint16, chrono);
        const PlantConfig config = load(storeWith("[Generale]\r\n" + general + "\r\n"));
        QCOMPARE(config.zoneDisplay.textQuantity, text);
        QCOMPARE(config.zoneDisplay.chartQuantity, chart);
        QCOMPARE(config.zoneDisplay.chronoQuantity, chrono);
    }

    void presentFlags_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("present");
        QTest::newRow("1") << QByteArray("1") << true;
        QTest::newRow("2") << QByteArray("2") << true;
        QTest::newRow("0") << QByteArray("0") << false;
        QTest::newRow("-1 as a boolean true in memory is not present") << QByteArray("-1") << false;
        QTest::newRow("text") << QByteArray("si") << false;
    }
    void presentFlags()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, present);
        const PlantConfig door = load(storeWith("[Generale]\r\nApriporta=" + value + "\r\n"));
        QCOMPARE(door.apriporta.present, present);
        QVERIFY(!door.webcam.present);
        const PlantConfig webcam = load(storeWith("[Generale]\r\nWebcam=" + value + "\r\n"));
        QCOMPARE(webcam.webcam.present, present);
        QVERIFY(!webcam.apriporta.present);
    }

    void itemsReadTheirOwnSections()
    {
        const PlantConfig config = load(storeWith(
            "[Generale]\r\nZone=2\r\nInterruttori=1\r\nLED=1\r\nApriporta=1\r\nWebcam=1\r\nZone Unita=%\r\n"
            "[Zona 01]\r\nNome=Forno\r\nX=1500\r\nY=2250\r\nIcona=Tforno.bmp\r\nInfo_X=9\r\n"
            "[Zona 02]\r\nX=45\r\n"
            "[Interruttore 01]\r\nNome=Pompa\r\nX=10\r\nY=20\r\n"
            "[LED 01]\r\nNome=Allarme\r\nX=30\r\nY=40\r\n"
            "[Apriporta]\r\nNome=Cancello\r\nX=50\r\nY=60\r\n"
            "[Webcam]\r\nNome=Camera\r\nX=70\r\nY=abc\r\n"
            "[Sinottico]\r\nImmagine=Casa.png\r\nSuonoPorta=porta.wav\r\nSuonoAllarme=sirena.wav\r\n"));
        QCOMPARE(config.zoneDisplay.unit, QStringLiteral("%"));
        QCOMPARE(config.zones[0].name, QStringLiteral("Forno"));
        QCOMPARE(config.zones[0].x, 1500);
        QCOMPARE(config.zones[0].y, 2250);
        QCOMPARE(config.zones[0].icon, QStringLiteral("Tforno.bmp"));
        // A zone without Nome has an empty name, and its missing keys their defaults.
        QCOMPARE(config.zones[1].name, QString());
        QCOMPARE(config.zones[1].x, 45);
        QCOMPARE(config.zones[1].y, 300);
        QVERIFY(config.zones[1].icon.isEmpty());
        QCOMPARE(config.chart.traceLabels[1], QString());
        QCOMPARE(config.switches[0].name, QStringLiteral("Pompa"));
        QCOMPARE(QPoint(config.switches[0].x, config.switches[0].y), QPoint(10, 20));
        QCOMPARE(config.leds[0].name, QStringLiteral("Allarme"));
        QCOMPARE(QPoint(config.leds[0].x, config.leds[0].y), QPoint(30, 40));
        QCOMPARE(config.apriporta.name, QStringLiteral("Cancello"));
        QCOMPARE(QPoint(config.apriporta.x, config.apriporta.y), QPoint(50, 60));
        QCOMPARE(config.webcam.name, QStringLiteral("Camera"));
        QCOMPARE(QPoint(config.webcam.x, config.webcam.y), QPoint(70, 300));
        QCOMPARE(config.synoptic.picture, QStringLiteral("Casa.png"));
        QCOMPARE(config.synoptic.picturePath, m_dir.filePath(QStringLiteral("Casa.png")));
        QCOMPARE(config.synoptic.doorSound, QStringLiteral("porta.wav"));
        QCOMPARE(config.synoptic.alarmSound, QStringLiteral("sirena.wav"));
    }

    void absoluteChartLimits_data()
    {
        QTest::addColumn<QByteArray>("grafico");
        QTest::addColumn<float>("minimum");
        QTest::addColumn<float>("maximum");
        QTest::newRow("no section") << QByteArray() << -200.0f << 200.0f;
        QTest::newRow("written") << QByteArray("[Grafico]\r\nT_Min_Ass=-20\r\nT_Max_Ass=1200.5\r\n") << -20.0f << 1200.5f;
        QTest::newRow("garbage keeps the defaults") << QByteArray("[Grafico]\r\nT_Min_Ass=x\r\nT_Max_Ass=\r\n") << -200.0f << 200.0f;
    }
    void absoluteChartLimits()
    {
        QFETCH(QByteArray, grafico);
        QFETCH(float, minimum);
        QFETCH(float, maximum);
        const PlantConfig config = load(storeWith(grafico));
        QCOMPARE(config.chartMinAbs, minimum);
        QCOMPARE(config.chartMaxAbs, maximum);
        QCOMPARE(config.chart.absoluteMin, minimum);
        QCOMPARE(config.chart.absoluteMax, maximum);
    }

    void chartTracesFollowTheLoadedZones()
    {
        const PlantConfig config = load(storeWith("[Generale]\r\nZone=2\r\n"
                                                  "[Zona 01]\r\nNome=Soggiorno\r\nColore=&H00FF00\r\n"
                                                  "[Zona 02]\r\nNome=Laboratorio analisi  Nord\r\n"));
        QCOMPARE(config.chart.traceColors[0], 0x0000FF00u);
        QCOMPARE(config.chart.traceColors[1], 0xFFFF80FFu);
        QCOMPARE(config.chart.traceLabels[1], QStringLiteral("Laboratorio analisi"));
        QCOMPARE(config.chart.traceToolTips[0],
                 QStringLiteral("Doppio click per modificare il colore della traccia <Soggiorno>"));
        QCOMPARE(config.chart.traceLabels[2], QStringLiteral("--------"));
    }

    void synopticFields()
    {
        const IniStore store = storeWith("[Generale]\r\nZone=3\r\n"
                                         "[Sinottico]\r\nCampo_1=  Superficie  \r\nCampo_3=Esposizione\r\n"
                                         "[Zona 01]\r\nCampo_1= 30 m2 \r\nCampo_5=nota\r\n"
                                         "[Zona 02]\r\nCampo_3=Sud\r\n"
                                         "[Zona 03]\r\nCampo_1=12 m2\r\n");
        PlantConfig config = load(store);
        QCOMPARE(config.fields.names[0], QStringLiteral("Superficie"));
        QCOMPARE(config.fields.names[1], QString());
        QCOMPARE(config.fields.names[2], QStringLiteral("Esposizione"));
        // The plant load reads only the names; the synoptic asks for the values.
        QCOMPARE(config.fields.values[0][0], QString());

        LoadSynopticFields(store, config.fields, 2);
        QCOMPARE(config.fields.values[0][0], QStringLiteral("30 m2"));
        QCOMPARE(config.fields.values[0][4], QStringLiteral("nota"));
        QCOMPARE(config.fields.values[1][2], QStringLiteral("Sud"));
        QCOMPARE(config.fields.values[2][0], QString());

        LoadSynopticFields(store, config.fields, 3);
        QCOMPARE(config.fields.values[2][0], QStringLiteral("12 m2"));
        LoadSynopticFields(store, config.fields, 1);
        QCOMPARE(config.fields.values[1][2], QString());
        QCOMPARE(config.fields.values[2][0], QString());

        LoadSynopticFields(store, config.fields, 1000);
        QCOMPARE(config.fields.values[2][0], QStringLiteral("12 m2"));
        LoadSynopticFields(store, config.fields, -4);
        QCOMPARE(config.fields.values[0][0], QString());
        QCOMPARE(config.fields.names[2], QStringLiteral("Esposizione"));
    }

    void reloadReplacesEverything()
    {
        PlantConfig config;
        DisplayResets resets;
        LoadPlantConfig(storeWith("[Generale]\r\nZone=5\r\nLED=2\r\nApriporta=1\r\n"
                                  "[Sinottico]\r\nImmagine=Vecchia.jpg\r\nCampo_1=Nome\r\n"
                                  "[Zona 05]\r\nNome=Ultima\r\n"),
                        config, resets);
        LoadSynopticFields(storeWith(""), config.fields, 5);
        QCOMPARE(config.zones[4].name, QStringLiteral("Ultima"));

        LoadPlantConfig(storeWith("[Generale]\r\nZone=2\r\n"), config, resets);
        QCOMPARE(config.zoneCount(), 2);
        QCOMPARE(config.ledCount(), 0);
        QVERIFY(!config.apriporta.present);
        QCOMPARE(config.synoptic.picture, QStringLiteral("Pianta.jpg"));
        QCOMPARE(config.fields.names[0], QString());
        QCOMPARE(config.chart.traceLabels[4], QStringLiteral("--------"));
    }

    // Resets come after the items are in place and before the picture is read, so a
    // window that rebuilds on the reset sees the new items and can load the picture
    // once the load returns.
    void resetsFireInOrderOnceItemsAreLoaded()
    {
        const IniStore store = storeWith("[Generale]\r\nZone=2\r\nInterruttori=1\r\nLED=3\r\n"
                                         "[Sinottico]\r\nImmagine=Nuova.jpg\r\n");
        PlantConfig config;
        DisplayResets resets;
        QStringList seen;
        auto snapshot = [&](const char *which) {
            seen << QStringLiteral("%1 zones=%2 switches=%3 leds=%4 picture=%5")
                        .arg(QLatin1String(which))
                        .arg(config.zoneCount())
                        .arg(config.switchCount())
                        .arg(config.ledCount())
                        .arg(config.synoptic.picture);
        };
        connect(&resets, &DisplayResets::ResetZoneDisplays, this, [&] { snapshot("zone"); });
        connect(&resets, &DisplayResets::ResetIndicatorDisplays, this, [&] { snapshot("indicator"); });

        LoadPlantConfig(store, config, resets);
        QCOMPARE(seen, QStringList({QStringLiteral("zone zones=2 switches=1 leds=3 picture=Pianta.jpg"),
                                    QStringLiteral("indicator zones=2 switches=1 leds=3 picture=Pianta.jpg")}));
        QCOMPARE(config.synoptic.picture, QStringLiteral("Nuova.jpg"));

        // Stopping acquisition resets the displays in the same order, without a load.
        seen.clear();
        resets.resetAll();
        QCOMPARE(seen.size(), 2);
        QVERIFY(seen[0].startsWith(QLatin1String("zone ")));
        QVERIFY(seen[1].startsWith(QLatin1String("indicator ")));
    }

    // A technician finds a hand-edited value that went wrong in the log, once per read.
    void badValuesAreLogged_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QString>("warning");
        QTest::addColumn<int>("times");
        QTest::newRow("count beyond the maximum")
            << QByteArray("[Generale]\r\nInterruttori=12\r\n")
            << R"(^\[Generale\] Interruttori = "12" is outside 0\.\.10; using 10$)" << 1;
        QTest::newRow("negative count") << QByteArray("[Generale]\r\nZone=-3\r\n")
                                        << R"(^\[Generale\] Zone = "-3" is outside 0\.\.30; using 0$)" << 1;
        QTest::newRow("zone quantity")
            << QByteArray("[Generale]\r\nZone Testo=7\r\n")
            << R"(^\[Generale\] Zone Testo = "7" is not a zone quantity \(0\.\.4\); using 1$)" << 1;
        QTest::newRow("position") << QByteArray("[Generale]\r\nZone=1\r\n[Zona 01]\r\nX=dieci\r\n")
                                  << R"(^\[Zona 01\] X = "dieci" is not a number; using 300$)" << 1;
        QTest::newRow("chart colour") << QByteArray("[Grafico]\r\nColore_Bordo=blu\r\n")
                                      << R"(^\[Grafico\] Colore_Bordo = "blu" is not a colour; using &HFFFFFF$)" << 1;
        QTest::newRow("trace colour") << QByteArray("[Generale]\r\nZone=2\r\n[Zona 02]\r\nColore=&HZZ\r\n")
                                      << R"(^\[Zona 02\] Colore = "&HZZ" is not a colour; using &HFFFF80FF$)" << 1;
        // Read once for the plant and once more for the chart.
        QTest::newRow("absolute limit") << QByteArray("[Grafico]\r\nT_Min_Ass=basso\r\n")
                                        << R"(^\[Grafico\] T_Min_Ass = "basso" is not a number; using -200$)" << 2;
    }
    void badValuesAreLogged()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QString, warning);
        QFETCH(int, times);
        const IniStore store = storeWith(settings);
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        for (int i = 0; i < times; ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));
        load(store);
    }

    void civilDemoPlant()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        IniStore store{ProgramFolder(DemoPlant)};
        QCOMPARE(store.ReadModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"), QStringLiteral("0")),
                 QStringLiteral("1"));
        store.setCurrentIniName(QStringLiteral("Telvane1.ini"));
        PlantConfig config = load(store);

        QStringList names;
        for (const Zona &z : config.zones)
            names << z.name;
        QCOMPARE(names, QStringList({QStringLiteral("Soggiorno"), QStringLiteral("Cucina"), QStringLiteral("Camera 1"),
                                     QStringLiteral("Camera 2"), QStringLiteral("Bagno"), QStringLiteral("Studio")}));
        QCOMPARE(config.switchCount(), 3);
        QCOMPARE(config.switches[1].name, QStringLiteral("Caldaia"));
        QCOMPARE(config.ledCount(), 3);
        QCOMPARE(config.leds[0].name, QStringLiteral("Allarme gelo"));
        QVERIFY(config.apriporta.present);
        QCOMPARE(config.apriporta.name, QStringLiteral("Porta ingresso"));
        QVERIFY(config.webcam.present);
        QCOMPARE(config.zoneDisplay.unit, QString::fromUtf8("°C"));
        QCOMPARE(config.zoneDisplay.textQuantity, qint16(0));
        QCOMPARE(config.zoneDisplay.chronoQuantity, qint16(1));
        QCOMPARE(QPoint(config.zones[0].x, config.zones[0].y), QPoint(9975, 3300));
        QCOMPARE(config.chart.traceColors[0], 0x000000FFu);
        QCOMPARE(config.chart.traceColors[3], 0x000080FFu);
        QCOMPARE(config.chart.grid, 0x00C0C0C0u);
        QCOMPARE(config.chart.displayMin, 10.0f);
        QCOMPARE(config.chart.displayMax, 30.0f);
        QCOMPARE(config.chartMinAbs, -20.0f);
        QCOMPARE(config.synoptic.picture, QStringLiteral("Pianta.jpg"));
        QCOMPARE(config.fields.names[4], QStringLiteral("Note"));
        LoadSynopticFields(store, config.fields, config.zoneCount());
        QCOMPARE(config.fields.values[0][0], QString::fromUtf8("30,0 m²"));
        QCOMPARE(config.fields.values[4][4], QString());
        verifyMarkersOnPicture(config);
    }

    void industrialDemoPlant()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        IniStore store{ProgramFolder(DemoPlant)};
        store.setCurrentIniName(QStringLiteral("Telvane2.ini"));
        const PlantConfig config = load(store);
        QCOMPARE(config.zoneCount(), 3);
        QCOMPARE(config.zones[2].name, QStringLiteral("Vasca di tempra"));
        QCOMPARE(config.switchCount(), 2);
        QCOMPARE(config.ledCount(), 2);
        QCOMPARE(config.apriporta.name, QStringLiteral("Portone carico"));
        QCOMPARE(config.chart.absoluteMax, 1200.0f);
        QCOMPARE(config.synoptic.picture, QStringLiteral("Reparto.jpg"));
        verifyMarkersOnPicture(config);
    }

    void garbageNeverEscapesTheLimits_data()
    {
        QTest::addColumn<QByteArray>("settings");
        static const char binary[] = "\x00\xff\xfe[Generale\r\nZone=\x01\x02\r\n=\r\n[]\r\n";
        QTest::newRow("binary") << QByteArray(binary, sizeof(binary) - 1);
        QTest::newRow("no sections") << QByteArray("Zone=30\r\nInterruttori=10\r\n");
        QTest::newRow("lone CR line ends") << QByteArray("[Generale]\rZone=3\r[Zona 01]\rNome=A\r");
        QTest::newRow("huge numbers") << QByteArray("[Generale]\r\nZone=1e308\r\nZone Testo=-1e308\r\nLED=NaN\r\n"
                                                    "[Zona 01]\r\nX=1e400\r\nY=-99999999999999\r\n");
        QTest::newRow("long lines") << (QByteArray("[Generale]\r\nZone=") + QByteArray(100000, '9') + "\r\n"
                                        + "[Zona 01]\r\nNome=" + QByteArray(5000, 'x') + "\r\n");
        QTest::newRow("invalid UTF-8 names") << QByteArray("[Generale]\r\nZone=1\r\n[Zona 01]\r\nNome=Camera \xe0 \xc3\r\n");
    }
    void garbageNeverEscapesTheLimits()
    {
        QFETCH(QByteArray, settings);
        const PlantConfig config = load(storeWith(settings));
        QVERIFY(config.zoneCount() >= 0 && config.zoneCount() <= MaxZones);
        QVERIFY(config.switchCount() >= 0 && config.switchCount() <= MaxSwitches);
        QVERIFY(config.ledCount() >= 0 && config.ledCount() <= MaxLeds);
        QVERIFY(config.zoneDisplay.textQuantity >= 0 && config.zoneDisplay.textQuantity <= 4);
        for (const Zona &z : config.zones)
            QVERIFY(z.name.size() <= 254);
    }

    // Files put together from the keys the loader reads, with random values: the load
    // must finish with every count and quantity inside its range.
    void randomSettingsStayInRange()
    {
        static const char *const keys[] = {"Zone", "Interruttori", "LED", "Zone Testo", "Zone Grafico", "Zone Crono",
                                           "Apriporta", "Webcam", "Nome", "X", "Y", "Icona", "Colore", "Immagine",
                                           "T_Max", "T_Min_Ass", "Campo_1", "Colore_Sfondo"};
        static const char *const sections[] = {"Generale", "Zona 01", "Zona 30", "Interruttore 10", "LED 01",
                                               "Apriporta", "Webcam", "Sinottico", "Grafico", "generale"};
        static const char *const values[] = {"", "-", "0", "1", "-1", "31", "4", "&H", "&HFFFFFFFFF", "1,5,",
                                             "2147483648", "-2147483649", "  ", "\"", "x", "9.9.9", "+5"};
        // Most of these values are bad on purpose; their warnings are tested elsewhere.
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.storage.warning=false"));
        const auto restoreLogging = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
        QRandomGenerator random(20261122);
        for (int round = 0; round < 200; ++round) {
            QByteArray text;
            const int lines = random.bounded(1, 60);
            for (int i = 0; i < lines; ++i) {
                if (random.bounded(4) == 0)
                    text += QByteArray("[") + sections[random.bounded(int(std::size(sections)))] + "]\r\n";
                text += QByteArray(keys[random.bounded(int(std::size(keys)))]) + "="
                        + values[random.bounded(int(std::size(values)))] + "\r\n";
            }
            const PlantConfig config = load(storeWith(text));
            QVERIFY2(config.zoneCount() <= MaxZones && config.switchCount() <= MaxSwitches
                         && config.ledCount() <= MaxLeds,
                     text.constData());
            QVERIFY2(config.zoneDisplay.chartQuantity >= 0 && config.zoneDisplay.chartQuantity <= 4, text.constData());
            QVERIFY2(config.zoneDisplay.chronoQuantity >= 0 && config.zoneDisplay.chronoQuantity <= 4, text.constData());
        }
    }
};

QTEST_GUILESS_MAIN(TestPlantConfigLoader)
#include "tst_plantconfigloader.moc"
