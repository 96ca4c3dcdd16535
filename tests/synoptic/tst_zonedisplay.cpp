#include "config_editor/registertables.h"
#include "storage/plantconfig.h"
#include "storage/valuetables.h"
#include "synoptic/zonefreshness.h"
#include "synoptic/zoneinfo.h"
#include "synoptic/zonelabels.h"

#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::RemoteState)

class TestZoneDisplay : public QObject
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

    void infoPanelShowsNamedFieldsOnly()
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
        QCOMPARE(zoneFieldsText(info),
                 QStringLiteral("Cucina\n [Superficie]: 24,3 m²\n [Radiatori]: 2\n [Note]: "));
        QCOMPARE(zoneInfo(plant, plant.fields, 2, {}).name, QString());
    }

    // Exactly one mode picture per remote state.
    void modePictureFollowsTheRemoteState_data()
    {
        QTest::addColumn<RemoteState>("remote");
        QTest::addColumn<bool>("ms");
        QTest::addColumn<bool>("msM");
        QTest::addColumn<bool>("msS");
        QTest::newRow("unknown") << RemoteState::Unknown << true << false << false;
        QTest::newRow("local") << RemoteState::Local << false << true << false;
        QTest::newRow("remote") << RemoteState::Remote << false << false << true;
    }
    void modePictureFollowsTheRemoteState()
    {
        QFETCH(RemoteState, remote);
        QFETCH(bool, ms);
        QFETCH(bool, msM);
        QFETCH(bool, msS);
        PlantConfig plant;
        plant.zones = {Zona{}};
        ZoneInfoFlags flags;
        flags.remote = remote;
        const ZoneInfo info = zoneInfo(plant, plant.fields, 0, flags);
        QCOMPARE(info.imgMS, ms);
        QCOMPARE(info.imgMS_M, msM);
        QCOMPARE(info.imgMS_S, msS);
    }

    void masterAndSlaveOnlyUnderTheOption_data()
    {
        QTest::addColumn<bool>("zoneFlag");
        QTest::addColumn<bool>("option");
        QTest::addColumn<int>("role");
        QTest::addColumn<bool>("master");
        QTest::addColumn<bool>("slave");
        QTest::newRow("master") << true << true << 1 << true << false;
        QTest::newRow("slave") << true << true << 2 << false << true;
        QTest::newRow("third role is a slave") << true << true << 3 << false << true;
        QTest::newRow("option off") << true << false << 2 << false << false;
        QTest::newRow("zone not in the chain") << false << true << 1 << false << false;
        QTest::newRow("no role") << true << true << 0 << false << false;
    }
    void masterAndSlaveOnlyUnderTheOption()
    {
        QFETCH(bool, zoneFlag);
        QFETCH(bool, option);
        QFETCH(int, role);
        QFETCH(bool, master);
        QFETCH(bool, slave);
        PlantConfig plant;
        plant.zones = {Zona{}};
        ZoneInfoFlags flags;
        flags.masterSlaveZone = zoneFlag;
        flags.masterOption = option;
        flags.role = role;
        const ZoneInfo info = zoneInfo(plant, plant.fields, 0, flags);
        QCOMPARE(info.imgMaster, master);
        QCOMPARE(info.imgSlave, slave);
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
};

QTEST_GUILESS_MAIN(TestZoneDisplay)
#include "tst_zonedisplay.moc"
