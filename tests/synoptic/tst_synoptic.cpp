// What the synoptic shows of a zone (its texts, pictures and information panel, when it
// is stale) and where its items are kept in the settings.

#include "config_editor/registertables.h"
#include "storage/inistore.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"
#include "support/settingsfixture.h"
#include "synoptic/itemplacement.h"
#include "synoptic/zonefreshness.h"
#include "synoptic/zoneinfo.h"
#include "synoptic/zonelabels.h"

using namespace telvane;

class TestSynoptic : public QObject
{
    Q_OBJECT

private slots:
    void labelsShowTheChosenQuantity()
    {
        ValueTables values;
        ZoneTable readTable;
        readTable.set(0, ZoneSlot::Decimals, 1);
        readTable.set(1, ZoneSlot::Decimals, 2);
        values.zoneValue(0, ZoneQuantity::PV) = 21.5f;
        values.zoneValue(0, ZoneQuantity::SP) = 20.0f;
        values.zoneValue(1, ZoneQuantity::PV) = 3.25f;
        const QString unit = QStringLiteral("°C");

        // With the set point as the zone's text, the second label is the measurement.
        ZoneLabelQuantities shown = zoneLabelQuantities(1);
        QCOMPARE(zoneLabelText(values, readTable, 0, shown.labTemp, unit), QStringLiteral("20.0 °C"));
        QCOMPARE(zoneLabelText(values, readTable, 0, shown.labTemp1, unit), QStringLiteral("21.5 °C"));
        // With the measurement as the text, the second label is the set point.
        shown = zoneLabelQuantities(0);
        QCOMPARE(zoneLabelText(values, readTable, 1, shown.labTemp, unit), QStringLiteral("3.25 °C"));
        QCOMPARE(zoneLabelText(values, readTable, 1, shown.labTemp1, unit), QStringLiteral("--.-"));
        // A text quantity out of range shows the set point, as the loader reads it.
        QCOMPARE(zoneLabelQuantities(7).labTemp, ZoneQuantity::SP);
        QCOMPARE(zoneLabelQuantities(4).labTemp, ZoneQuantity::AL3);
    }

    // The panel lists the named fields only; exactly one mode picture per remote state,
    // master and slave only under the plant's option for a zone in the chain.
    void infoPanel()
    {
        PlantConfig plant;
        plant.zones.resize(2);
        plant.zones[0].name = QStringLiteral("Soggiorno");
        plant.zones[1].name = QStringLiteral("Cucina");
        plant.fields.names = {QStringLiteral("Superficie"), QString(), QStringLiteral("Radiatori"), QString(),
                              QStringLiteral("Note")};
        plant.fields.values[1] = {QStringLiteral("24,3 m²"), QStringLiteral("hidden"), QStringLiteral("2"), QString(),
                                  QString()};

        const ZoneInfo info = zoneInfo(plant, plant.fields, 1, {});
        QCOMPARE(info.name, QStringLiteral("Cucina"));
        const QList<std::pair<QString, QString>> expected{{QStringLiteral("Superficie"), QStringLiteral("24,3 m²")},
                                                          {QStringLiteral("Radiatori"), QStringLiteral("2")},
                                                          {QStringLiteral("Note"), QString()}};
        QCOMPARE(info.fields, expected);
        QCOMPARE(zoneFieldsText(info), QStringLiteral("Cucina\n [Superficie]: 24,3 m²\n [Radiatori]: 2\n [Note]: "));
        QCOMPARE(zoneInfo(plant, plant.fields, 2, {}).name, QString());

        // The pictures shown: MS, MS_M, MS_S, Master, Slave.
        const auto pictures = [&plant](ZoneInfoFlags flags) {
            const ZoneInfo i = zoneInfo(plant, plant.fields, 0, flags);
            return QList<bool>{i.imgMS, i.imgMS_M, i.imgMS_S, i.imgMaster, i.imgSlave};
        };
        using L = QList<bool>;
        QCOMPARE(pictures({.remote = RemoteState::Unknown}), (L{true, false, false, false, false}));
        QCOMPARE(pictures({.remote = RemoteState::Local}), (L{false, true, false, false, false}));
        QCOMPARE(pictures({.remote = RemoteState::Remote}), (L{false, false, true, false, false}));
        const ZoneInfoFlags chain{.masterSlaveZone = true, .role = 1, .masterOption = true};
        QCOMPARE(pictures(chain), (L{true, false, false, true, false}));
        QCOMPARE(pictures({.masterSlaveZone = true, .role = 2, .masterOption = true}), (L{true, false, false, false, true}));
        QCOMPARE(pictures({.masterSlaveZone = true, .role = 3, .masterOption = true}), (L{true, false, false, false, true}));
        QCOMPARE(pictures({.masterSlaveZone = true, .role = 2, .masterOption = false}), (L{true, false, false, false, false}));
        QCOMPARE(pictures({.masterSlaveZone = false, .role = 1, .masterOption = true}), (L{true, false, false, false, false}));
        QCOMPARE(pictures({.masterSlaveZone = true, .role = 0, .masterOption = true}), (L{true, false, false, false, false}));
    }

    // Three measurement periods without a good reading make a zone stale; a good reading,
    // a new start or a stop end it.
    void staleAfterThreePeriodsWithoutAGoodReading()
    {
        const int period = 60;
        ValueTables values;
        values.zoneValue(0, ZoneQuantity::SP) = 20.0f;
        const QDateTime first(QDate(2026, 11, 23), QTime(10, 0));
        ZoneFreshness freshness;
        QVERIFY(!freshness.isStale(0, 500000, period)); // not acquiring

        freshness.start(1000);
        freshness.noteRound(values, 2, 1, first, 1000);
        QCOMPARE(freshness.lastGoodReading(0), first);
        QVERIFY(!freshness.lastGoodReading(1).isValid());
        QVERIFY(!freshness.isStale(0, 1000 + 179999, period));
        QVERIFY(freshness.isStale(0, 1000 + 180000, period));
        // Zone 2 never answered: stale three periods after the start as well.
        QVERIFY(freshness.isStale(1, 1000 + 180000, period));

        values.zoneValue(0, ZoneQuantity::SP) = InvalidValue;
        freshness.noteRound(values, 2, 1, first.addSecs(120), 121000);
        QVERIFY2(freshness.isStale(0, 181000, period), "a failed reading is no good reading");
        QCOMPARE(freshness.lastGoodReading(0), first);

        values.zoneValue(0, ZoneQuantity::SP) = 20.5f;
        freshness.noteRound(values, 2, 1, first.addSecs(180), 181000);
        QVERIFY(!freshness.isStale(0, 181000 + 179999, period));
        QVERIFY(!freshness.isStale(0, 181000, 0)); // rounds switched off

        freshness.stop();
        QVERIFY(!freshness.isStale(1, 10000000, period));
        freshness.start(10000000);
        QVERIFY(!freshness.isStale(1, 10000000 + 1000, period));
        QCOMPARE(freshness.lastGoodReading(0), first.addSecs(180));
    }

    // Each item lands in its own section and keys, as whole twips, and the rest of the
    // file stays as it was; a panel never placed, or placed badly, opens near the corner.
    void placementInTheSettings()
    {
        SettingsFolder folder;
        IniStore ini = folder.store("[Generale]\r\nZone=3\r\n[Zona 01]\r\nInfo_X= 7200 \r\nInfo_Y=3600\r\n"
                                    "[Zona 02]\r\nNome=Cucina\r\n[Zona 03]\r\nInfo_X=abc\r\nInfo_Y=\r\n"
                                    "[Webcam]\r\nNome=Ingresso\r\nInfo_X=1500\r\nInfo_Y=900\r\n");
        QCOMPARE(readPanelPosition(ini, PlanItemKind::ZoneInfoPanel, 0), QPoint(7200, 3600));
        QCOMPARE(readPanelPosition(ini, PlanItemKind::ZoneInfoPanel, 1), QPoint(300, 300));
        QCOMPARE(readPanelPosition(ini, PlanItemKind::ZoneInfoPanel, 2), QPoint(300, 300));
        QCOMPARE(readPanelPosition(ini, PlanItemKind::WebcamPanel, 0), QPoint(1500, 900));

        const auto stored = [&ini](const char *section, const QString &prefix = {}) {
            const auto read = [&](const char *axis) { return ini.ReadIniKey(section, prefix + axis, QString()).toInt(); };
            return QPoint(read("X"), read("Y"));
        };
        QVERIFY(storeItemPosition(ini, PlanItemKind::ZoneMarker, 0, {4815, 162}));
        QVERIFY(storeItemPosition(ini, PlanItemKind::ZoneInfoPanel, 11, {1, 2}));
        QVERIFY(storeItemPosition(ini, PlanItemKind::Switch, 9, {3, 4}));
        QVERIFY(storeItemPosition(ini, PlanItemKind::Led, 2, {5, 6}));
        QVERIFY(storeItemPosition(ini, PlanItemKind::DoorOpener, 0, {7, 8}));
        QVERIFY(storeItemPosition(ini, PlanItemKind::WebcamButton, 0, {9, 10}));
        QVERIFY(storeItemPosition(ini, PlanItemKind::WebcamPanel, 0, {11, 12}));
        QCOMPARE(stored("Zona 01"), QPoint(4815, 162));
        QCOMPARE(stored("Zona 01", "Info_"), QPoint(7200, 3600));
        QCOMPARE(stored("Zona 12", "Info_"), QPoint(1, 2));
        QCOMPARE(stored("Interruttore 10"), QPoint(3, 4));
        QCOMPARE(stored("LED 03"), QPoint(5, 6));
        QCOMPARE(stored("Apriporta"), QPoint(7, 8));
        QCOMPARE(stored("Webcam"), QPoint(9, 10));
        QCOMPARE(stored("Webcam", "Info_"), QPoint(11, 12));
        QCOMPARE(ini.ReadIniKey(QStringLiteral("Generale"), QStringLiteral("Zone"), QString()), QStringLiteral("3"));
        QCOMPARE(ini.ReadIniKey(QStringLiteral("Webcam"), QStringLiteral("Nome"), QString()), QStringLiteral("Ingresso"));
        const QByteArray text = folder.read(SettingsFolder::Industrial);
        QVERIFY2(text.contains("[Zona 01]\r\nInfo_X= 7200 \r\nInfo_Y=3600\r\nX=4815\r\nY=162\r\n"), text.constData());

        // Dragged beyond the plan, an item stops at its edges.
        const QRect plan(0, 0, 18000, 12000);
        const QSize item(600, 300);
        QCOMPARE(clampToPlan({17900, 11950}, item, plan), QPoint(17400, 11700));
        QCOMPARE(clampToPlan({-450, -15}, item, plan), QPoint(0, 0));
        QCOMPARE(clampToPlan({17400, 11700}, item, plan), QPoint(17400, 11700));
        QCOMPARE(clampToPlan({500, 500}, QSize(20000, 13000), plan), QPoint(0, 0));
    }
};

QTEST_GUILESS_MAIN(TestSynoptic)
#include "tst_synoptic.moc"
