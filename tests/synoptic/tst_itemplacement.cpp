#include "storage/inistore.h"
#include "support/settingsfixture.h"
#include "synoptic/itemplacement.h"

#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::PlanItemKind)

class TestItemPlacement : public QObject
{
    Q_OBJECT

private slots:
    // Each item lands in its own section and keys, as whole twips, and the rest of the
    // file stays as it was.
    void positionWrittenToItsSection_data()
    {
        QTest::addColumn<PlanItemKind>("kind");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("xKey");
        QTest::addColumn<QString>("yKey");
        QTest::newRow("zone 1") << PlanItemKind::ZoneMarker << 0 << "Zona 01" << "X" << "Y";
        QTest::newRow("zone 12 info") << PlanItemKind::ZoneInfoPanel << 11 << "Zona 12" << "Info_X" << "Info_Y";
        QTest::newRow("switch 10") << PlanItemKind::Switch << 9 << "Interruttore 10" << "X" << "Y";
        QTest::newRow("LED 3") << PlanItemKind::Led << 2 << "LED 03" << "X" << "Y";
        QTest::newRow("door") << PlanItemKind::DoorOpener << 0 << "Apriporta" << "X" << "Y";
        QTest::newRow("webcam") << PlanItemKind::WebcamButton << 0 << "Webcam" << "X" << "Y";
        QTest::newRow("webcam panel") << PlanItemKind::WebcamPanel << 0 << "Webcam" << "Info_X" << "Info_Y";
    }
    void positionWrittenToItsSection()
    {
        QFETCH(PlanItemKind, kind);
        QFETCH(int, index);
        QFETCH(QString, section);
        QFETCH(QString, xKey);
        QFETCH(QString, yKey);
        SettingsFolder folder;
        IniStore ini = folder.store("[Generale]\r\nZone=3\r\n[Webcam]\r\nNome=Ingresso\r\n");

        QVERIFY(storeItemPosition(ini, kind, index, QPoint(4815, 162)));

        QCOMPARE(ini.ReadIniKey(section, xKey, QString()), QStringLiteral("4815"));
        QCOMPARE(ini.ReadIniKey(section, yKey, QString()), QStringLiteral("162"));
        QCOMPARE(ini.ReadIniKey(QStringLiteral("Generale"), QStringLiteral("Zone"), QString()), QStringLiteral("3"));
        QCOMPARE(ini.ReadIniKey(QStringLiteral("Webcam"), QStringLiteral("Nome"), QString()),
                 QStringLiteral("Ingresso"));
        const QByteArray text = folder.read(SettingsFolder::Industrial);
        QVERIFY2(text.contains(xKey.toLatin1() + "=4815\r\n"), text.constData());
    }

    void clampedToThePlan_data()
    {
        QTest::addColumn<QPoint>("wanted");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QPoint>("placed");
        const QSize item(600, 300);
        QTest::newRow("past the right and bottom edges") << QPoint(17900, 11950) << item << QPoint(17400, 11700);
        QTest::newRow("before the left and top edges") << QPoint(-450, -15) << item << QPoint(0, 0);
        QTest::newRow("exactly at the far corner") << QPoint(17400, 11700) << item << QPoint(17400, 11700);
        QTest::newRow("larger than the plan") << QPoint(500, 500) << QSize(20000, 13000) << QPoint(0, 0);
    }
    void clampedToThePlan()
    {
        QFETCH(QPoint, wanted);
        QFETCH(QSize, size);
        QFETCH(QPoint, placed);
        QCOMPARE(clampToPlan(wanted, size, QRect(0, 0, 18000, 12000)), placed);
    }

    void panelPositionRead()
    {
        SettingsFolder folder;
        IniStore ini = folder.store("[Zona 01]\r\nInfo_X= 7200 \r\nInfo_Y=3600\r\n"
                                    "[Zona 02]\r\nNome=Cucina\r\n"
                                    "[Zona 03]\r\nInfo_X=abc\r\nInfo_Y=\r\n"
                                    "[Webcam]\r\nInfo_X=1500\r\nInfo_Y=900\r\n");
        QCOMPARE(readPanelPosition(ini, PlanItemKind::ZoneInfoPanel, 0), QPoint(7200, 3600));
        QCOMPARE(readPanelPosition(ini, PlanItemKind::ZoneInfoPanel, 1), QPoint(300, 300));
        QCOMPARE(readPanelPosition(ini, PlanItemKind::ZoneInfoPanel, 2), QPoint(300, 300));
        QCOMPARE(readPanelPosition(ini, PlanItemKind::WebcamPanel, 0), QPoint(1500, 900));
    }
};

QTEST_GUILESS_MAIN(TestItemPlacement)
#include "tst_itemplacement.moc"
