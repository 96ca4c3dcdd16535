#include "support/settingsfixture.h"

#include "season/recipe.h"
#include "storage/plantconfig.h"

#include <QTest>

using namespace telvane;

namespace {

const QByteArray Header = "[File]\r\nID = Telvane\r\n\r\n[Note]\r\n< note >\r\n\r\n";

// A plant of `zones` zones; zone k (0-based) is named "Zona k+1" on slave 10 + k.
struct Plant
{
    explicit Plant(int zones)
    {
        for (int zone = 0; zone < zones; ++zone) {
            Zona z;
            z.name = QStringLiteral("Zona %1").arg(zone + 1);
            plant.zones.append(z);
            table.set(zone, ZoneSlot::Address, qint16(10 + zone));
        }
    }

    RecipeLoad load(const QByteArray &recipe, const QString &name = QStringLiteral("Prova.prg"))
    {
        folder.write(QStringLiteral("Ricetta/") + name, recipe);
        return LoadRecipe(IniStore(folder.folder()), name, plant, table);
    }

    SettingsFolder folder;
    PlantConfig plant;
    ZoneTable table;
};

QByteArray zoneSection(int zone, const QByteArray &body)
{
    return "[Zona " + QByteArray::number(zone).rightJustified(2, '0') + "]\r\n" + body + "\r\n";
}

} // namespace

class TestRecipe : public QObject
{
    Q_OBJECT

private slots:
    // Each line becomes one row, in zone and line order, sent to the zone's own slave.
    void rowsInOrder()
    {
        Plant plant(3);
        plant.table.set(2, ZoneSlot::Address, UnusedSlot);
        const RecipeLoad load = plant.load(Header + zoneSection(1, "Intervallo = 150\r\nLinee = 3\r\n"
                                                                   "01 = 6,2,260;Set point\r\n"
                                                                   "02 = 0,MSGBOX,Chiudere, poi aprire;Avviso\r\n"
                                                                   "03 = 0,sleep,1000;pausa\r\n") +
                                           zoneSection(2, "Linee=1\r\n01= 5 , 1 , 1 ; Comando remoto \r\n") +
                                           zoneSection(3, "Linee=1\r\n01=6,40000,-5;Negativo\r\n"));
        QVERIFY(load.loaded());
        QCOMPARE(load.message, QStringLiteral("Il file Prova.prg è stato caricato correttamente."));
        QCOMPARE(load.recipe.rows.size(), 5);

        const RecipeRow &write = load.recipe.rows.at(0);
        QCOMPARE(write.kind, RecipeRow::Kind::WriteRegister);
        QCOMPARE(write.device, QStringLiteral("Zona 1"));
        QCOMPARE((QList<int>{write.zone, write.slave, write.functionCode, write.address, write.value}),
                 (QList<int>{1, 10, 6, 2, 260}));
        QCOMPARE(write.name, QStringLiteral("Set point"));

        // The text runs to the first ";", commas and all.
        const RecipeRow &box = load.recipe.rows.at(1);
        QCOMPARE(box.kind, RecipeRow::Kind::MsgBox);
        QCOMPARE(box.valueText, QStringLiteral("Chiudere, poi aprire"));
        QCOMPARE(box.name, QStringLiteral("Avviso"));
        QCOMPARE(load.recipe.rows.at(2).kind, RecipeRow::Kind::Sleep);
        QCOMPARE(load.recipe.rows.at(2).value, 1000);

        // A coil written with 1 is switched on with 0xFF00.
        const RecipeRow &coil = load.recipe.rows.at(3);
        QCOMPARE(coil.kind, RecipeRow::Kind::WriteCoil);
        QCOMPARE((QList<int>{coil.slave, coil.address, coil.value}), (QList<int>{11, 1, 0xFF00}));
        QCOMPARE(coil.name, QStringLiteral("Comando remoto"));

        // A zone without an instrument is listed; its rows cannot be sent.
        const RecipeRow &unaddressed = load.recipe.rows.at(4);
        QCOMPARE((QList<int>{unaddressed.slave, unaddressed.address, unaddressed.value}), (QList<int>{-1, 40000, -5}));

        QCOMPARE(load.recipe.intervalsMs.at(0), 150);
        QCOMPARE(load.recipe.intervalsMs.at(1), DefaultRecipeIntervalMs);
    }

    void accepted_data()
    {
        QTest::addColumn<QByteArray>("recipe");
        QTest::addColumn<int>("plantZones");
        QTest::addColumn<QList<int>>("rowZones");
        QTest::addColumn<QList<int>>("intervals");

        const QByteArray oneLine = "Intervallo = 100\r\nLinee = 1\r\n01 = 6,1,1;P\r\n";
        QTest::newRow("ID in lower case with blanks")
            << "[file]\r\nid =   telvane   \r\n" + zoneSection(1, oneLine) << 1 << QList<int>{1} << QList<int>{100};
        QTest::newRow("zone without Linee adds nothing")
            << Header + zoneSection(1, "Intervallo = 100\r\n01 = 6,1,1;P\r\n") + zoneSection(2, oneLine) << 2
            << QList<int>{2} << QList<int>{100, 100};
        QTest::newRow("zone without Intervallo pauses 200 ms")
            << Header + zoneSection(1, "Linee = 1\r\n01 = 6,1,1;P\r\n") << 1 << QList<int>{1} << QList<int>{200};
        QTest::newRow("zone missing from the file")
            << Header + zoneSection(2, oneLine) << 2 << QList<int>{2} << QList<int>{200, 100};

        QByteArray thirty = Header;
        for (int zone = 1; zone <= 30; ++zone)
            thirty += zoneSection(zone, oneLine);
        thirty += zoneSection(31, "Linee = 1\r\n01 = garbage\r\n");
        QTest::newRow("30 zones on a 4-zone plant") << thirty << 4 << QList<int>{1, 2, 3, 4}
                                                    << QList<int>{100, 100, 100, 100};
        QTest::newRow("negative Linee adds nothing")
            << Header + zoneSection(1, "Linee = -3\r\n01 = 6,1,1;P\r\n") << 1 << QList<int>{} << QList<int>{200};
        QTest::newRow("steps in any case")
            << Header + zoneSection(1, "Linee = 2\r\n01 = 0,sleep,1000;pausa\r\n02 = 0,MsgBox,Avanti;1\r\n") << 1
            << QList<int>{1, 1} << QList<int>{200};
    }
    void accepted()
    {
        QFETCH(QByteArray, recipe);
        QFETCH(int, plantZones);
        QFETCH(QList<int>, rowZones);
        QFETCH(QList<int>, intervals);

        Plant plant(plantZones);
        const RecipeLoad load = plant.load(recipe);
        QVERIFY2(load.loaded(), qPrintable(load.message));
        QList<int> zones;
        for (const RecipeRow &row : load.recipe.rows)
            zones.append(row.zone);
        QCOMPARE(zones, rowZones);
        for (int zone = 0; zone < intervals.size(); ++zone)
            QCOMPARE(load.recipe.intervalsMs.at(zone), intervals.at(zone));
    }

    // One bad line refuses the whole file, even after good lines.
    void refused_data()
    {
        QTest::addColumn<QByteArray>("recipe");
        const auto zone1 = [](const QByteArray &line) {
            return Header + zoneSection(1, "Linee = 2\r\n01 = 6,1,1;buona\r\n02 = " + line + "\r\n");
        };
        QTest::newRow("wrong ID") << "[File]\r\nID = Telvane2\r\n" + zoneSection(1, "Linee=0\r\n");
        QTest::newRow("code 3") << zone1("3,100,5;x");
        QTest::newRow("no semicolon") << zone1("6,100,5");
        QTest::newRow("semicolon before the second comma") << zone1("6,100;5,x");
        QTest::newRow("line missing") << Header + zoneSection(1, "Linee = 2\r\n01 = 6,1,1;P\r\n");
        QTest::newRow("unknown step") << zone1("0,WAIT,100;x");
        QTest::newRow("negative pause") << zone1("0,SLEEP,-1;x");
        QTest::newRow("register beyond 65535") << zone1("6,65536,100;x");
        QTest::newRow("value with decimals") << zone1("6,2,26.5;x");
        QTest::newRow("value too large") << zone1("6,2,65536;x");
        QTest::newRow("coil value 2") << zone1("5,1,2;x");
        QTest::newRow("Linee not a number") << Header + zoneSection(1, "Linee = due\r\n");
        QTest::newRow("negative Intervallo") << Header + zoneSection(1, "Intervallo = -1\r\nLinee = 0\r\n");
    }
    void refused()
    {
        QFETCH(QByteArray, recipe);
        Plant plant(1);
        const RecipeLoad load = plant.load(recipe, QStringLiteral("Estate.prg"));
        QCOMPARE(load.status, RecipeLoad::Status::Invalid);
        QCOMPARE(load.message, QStringLiteral("Il file Estate.prg non è un file valido per il cambio stagione."));
        QVERIFY(load.recipe.rows.isEmpty());
    }

    void missing()
    {
        Plant plant(1);
        plant.folder.write(QStringLiteral("Estate.prg"), Header); // beside the program, not in "Ricetta"
        for (const QString &name : {QStringLiteral("Estate.prg"), QString()}) {
            const RecipeLoad load = LoadRecipe(IniStore(plant.folder.folder()), name, plant.plant, plant.table);
            QCOMPARE(load.status, RecipeLoad::Status::Missing);
            QCOMPARE(load.message, QStringLiteral("Il file ") + name + QStringLiteral(" è errato o mancante."));
        }
    }

};

QTEST_GUILESS_MAIN(TestRecipe)
#include "tst_recipe.moc"
