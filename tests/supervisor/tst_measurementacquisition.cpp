#include "plantrig.h"
#include "recordingchart.h"

#include "supervisor/measurementacquisition.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

class TestMeasurementAcquisition : public QObject
{
    Q_OBJECT

private:
    // `functions`: one character per quantity, the function code or '-' for a quantity
    // not read. `answers`: 'y' where the slave holds the register.
    static void setUpZone(PlantRig &rig, int zone, int slave, const QString &functions, const QString &answers,
                          int decimals = 1)
    {
        QList<std::pair<int, int>> quantities;
        for (int k = 0; k < 5; ++k) {
            const QChar code = functions.at(k);
            const int functionCode = code == QLatin1Char('-') ? -1 : code.digitValue();
            quantities.append({functionCode, 100 + k});
            if (k < answers.size() && answers.at(k) == QLatin1Char('y'))
                rig.setValue(slave, functionCode, 100 + k, 200 + k);
        }
        rig.addSlave(slave);
        configureZone(rig.rt, zone, slave, decimals, quantities);
    }

    static QString readLog(PlantRig &rig, const QString &name)
    {
        QFile file(rig.rt.ini.folder().filePath(QStringLiteral("Dati/") + name));
        if (!file.open(QIODevice::ReadOnly))
            return QStringLiteral("<no file>");
        return QString::fromUtf8(file.readAll());
    }

private slots:
    void failureCountsPerRound_data()
    {
        QTest::addColumn<QString>("functions");
        QTest::addColumn<QString>("answers");
        QTest::addColumn<int>("countAfterFirst");
        QTest::addColumn<int>("listedAfterFirst");
        QTest::addColumn<int>("countAfterSecond");
        QTest::addColumn<int>("listedAfterSecond");

        // Each alarm quantity not read counts twice: listed after the first round.
        QTest::newRow("PV and SP only") << "33---" << "yy" << 6 << 1 << 6 << 1;
        QTest::newRow("coils PV and SP only") << "11---" << "yy" << 6 << 1 << 6 << 1;
        QTest::newRow("all five answer") << "33333" << "yyyyy" << 0 << 0 << 0 << 0;
        QTest::newRow("slave absent") << "44444" << "nnnnn" << 5 << 0 << 10 << 1;
        QTest::newRow("PV only") << "3----" << "y" << 7 << 1 << 7 << 1;
        // A later good read clears what an unused quantity added.
        QTest::newRow("SP unused") << "3-333" << "y-yyy" << 0 << 0 << 0 << 0;
        QTest::newRow("AL3 silent") << "33333" << "yyyyn" << 1 << 0 << 1 << 0;
        QTest::newRow("PV silent") << "33333" << "nyyyy" << 0 << 0 << 0 << 0;
        QTest::newRow("nothing configured") << "-----" << "" << 8 << 1 << 16 << 1;
    }

    void failureCountsPerRound()
    {
        QFETCH(QString, functions);
        QFETCH(QString, answers);
        QFETCH(int, countAfterFirst);
        QFETCH(int, listedAfterFirst);
        QFETCH(int, countAfterSecond);
        QFETCH(int, listedAfterSecond);

        PlantRig rig;
        rig.rt.plant.zones.resize(2);
        rig.rt.plant.zones[1].name = QStringLiteral("Soggiorno");
        setUpZone(rig, 0, 1, QStringLiteral("33333"), QStringLiteral("yyyyy"));
        setUpZone(rig, 1, 2, functions, answers);

        ReadAllMeasurements(rig.rt);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 1), countAfterFirst);
        QCOMPARE(rig.rt.alarms.zoneEntries().size(), listedAfterFirst);
        ReadAllMeasurements(rig.rt);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 1), countAfterSecond);
        QCOMPARE(rig.rt.alarms.zoneEntries().size(), listedAfterSecond);
        if (listedAfterSecond > 0)
            QVERIFY(rig.rt.alarms.zoneEntries().first().startsWith(QLatin1String("Soggiorno (14/11/2026 22:2")));
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 0), 0);
        QVERIFY(rig.rt.alarms.switchEntries().isEmpty());
    }

    void storedValues_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("raw");
        QTest::addColumn<float>("stored");

        QTest::newRow("holding, 1 decimal") << 3 << 1 << 215 << 21.5f;
        QTest::newRow("input, 2 decimals, negative") << 4 << 2 << -5 << -0.05f;
        QTest::newRow("holding, 0 decimals") << 3 << 0 << 1234 << 1234.0f;
        QTest::newRow("over range is scaled here") << 3 << 1 << 32767 << 3276.7f;
        QTest::newRow("coil ignores decimals") << 1 << 2 << 1 << 1.0f;
        QTest::newRow("discrete input off") << 2 << 3 << 0 << 0.0f;
    }

    void storedValues()
    {
        QFETCH(int, functionCode);
        QFETCH(int, decimals);
        QFETCH(int, raw);
        QFETCH(float, stored);

        PlantRig rig;
        rig.rt.plant.zones.resize(1);
        configureZone(rig.rt, 0, 7, decimals, {{functionCode, 40001}, {-1, -1}});
        rig.setValue(7, functionCode, 40001, raw);

        ReadAllMeasurements(rig.rt);
        QCOMPARE(rig.takeRequests(), QList<QByteArray>{PlantRig::readRequest(7, functionCode, 40001)});
        QCOMPARE(rig.rt.values.ZoneValues[0][0], stored);
        for (int k = 1; k < 5; ++k)
            QCOMPARE(rig.rt.values.ZoneValues[0][k], InvalidValue);
    }

    void silentInstrumentLeavesInvalidMarker()
    {
        PlantRig rig;
        rig.rt.plant.zones.resize(1);
        rig.rt.values.ZoneValues[0].fill(12.0f);
        configureZone(rig.rt, 0, 9, 1, {{3, 1}, {3, 2}, {3, 3}, {3, 4}, {3, 5}});
        QSignalSpy refreshed(&rig.rt.synoptic, &SynopticRefresh::zoneTextsChanged);

        ReadAllMeasurements(rig.rt);
        for (float value : rig.rt.values.ZoneValues[0])
            QCOMPARE(value, InvalidValue);
        QCOMPARE(rig.takeRequests().size(), 5);
        QCOMPARE(refreshed.size(), 1);
    }

    void logLineAndChart_data()
    {
        QTest::addColumn<int>("chartQuantity");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QList<double>>("points");

        // Zone 3 does not answer; zone 4 has more decimals than the log shows.
        QTest::newRow("set point") << 1 << "14/11/2026 22:20:09;21.5;19.0;-99999.0;"
                                   << QList<double>{21.5, 19.0, -99999.0, 0.0201};
        QTest::newRow("measured value") << 0 << "14/11/2026 22:20:09;20.0;18.5;-99999.0;"
                                        << QList<double>{20.0, 18.5, -99999.0, 0.02};
    }

    void logLineAndChart()
    {
        QFETCH(int, chartQuantity);
        QFETCH(QString, line);
        QFETCH(QList<double>, points);

        PlantRig rig;
        RecordingChart chart;
        rig.rt.chart = &chart;
        rig.rt.ChartLoggingOption = true;
        rig.rt.plant.zones.resize(4);
        rig.rt.plant.zoneDisplay.chartQuantity = chartQuantity;
        configureZone(rig.rt, 0, 1, 1, {{3, 0}, {3, 1}});
        rig.setValue(1, 3, 0, 200);
        rig.setValue(1, 3, 1, 215);
        configureZone(rig.rt, 1, 2, 1, {{3, 0}, {3, 1}});
        rig.setValue(2, 3, 0, 185);
        rig.setValue(2, 3, 1, 190);
        configureZone(rig.rt, 2, 3, 1, {{3, 0}, {3, 1}});
        configureZone(rig.rt, 3, 4, 4, {{3, 0}, {3, 1}});
        rig.setValue(4, 3, 0, 200);
        rig.setValue(4, 3, 1, 201);

        ReadAllMeasurements(rig.rt);

        QCOMPARE(readLog(rig, QStringLiteral("2026_11_14.csv")), line + QStringLiteral("\r\n"));
        QCOMPARE(chart.rounds, 1);
        QCOMPARE(chart.points.size(), points.size());
        for (int i = 0; i < points.size(); ++i) {
            QCOMPARE(chart.points[i].trace, i + 1);
            QCOMPARE(float(chart.points[i].value), float(points[i]));
        }
        // Zone 3's silent reads took time: its point is later than the line's stamp.
        QVERIFY(chart.points[3].at > rig.clock.now().addSecs(-10));
        QVERIFY(chart.points[3].at > chart.points[0].at);
    }

    void optionOffWritesNothingButUpdates()
    {
        PlantRig rig;
        RecordingChart chart;
        rig.rt.chart = &chart;
        rig.rt.ChartLoggingOption = false;
        rig.rt.plant.zones.resize(1);
        configureZone(rig.rt, 0, 1, 1, {{3, 0}});
        rig.setValue(1, 3, 0, 215);
        QSignalSpy refreshed(&rig.rt.synoptic, &SynopticRefresh::zoneTextsChanged);

        ReadAllMeasurements(rig.rt);
        QVERIFY(!QFile::exists(rig.rt.ini.folder().filePath(QStringLiteral("Dati/2026_11_14.csv"))));
        QVERIFY(chart.points.isEmpty());
        QCOMPARE(rig.rt.values.ZoneValues[0][0], 21.5f);
        QCOMPARE(refreshed.size(), 1);
    }

    void chartQuantityOutsideTheFiveChartsNothing()
    {
        PlantRig rig;
        RecordingChart chart;
        rig.rt.chart = &chart;
        rig.rt.ChartLoggingOption = true;
        rig.rt.plant.zones.resize(1);
        rig.rt.plant.zoneDisplay.chartQuantity = 7;
        configureZone(rig.rt, 0, 1, 1, {{3, 0}});
        rig.setValue(1, 3, 0, 215);

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Zone Grafico"));
        ReadAllMeasurements(rig.rt);
        QVERIFY(chart.points.isEmpty());
        QCOMPARE(readLog(rig, QStringLiteral("2026_11_14.csv")), QStringLiteral("14/11/2026 22:20:09;\r\n"));
        QCOMPARE(rig.rt.values.ZoneValues[0][0], 21.5f);
    }

    void lineGoesToTheDayOfWriting()
    {
        PlantRig rig;
        rig.clock.setNow(QDateTime(QDate(2026, 11, 14), QTime(23, 59, 59, 900)));
        rig.rt.ChartLoggingOption = true;
        rig.rt.plant.zones.resize(1);
        // Silent: the round runs past midnight.
        configureZone(rig.rt, 0, 1, 0, {{3, 0}, {3, 1}});

        ReadAllMeasurements(rig.rt);
        QCOMPARE(readLog(rig, QStringLiteral("2026_11_15.csv")),
                 QStringLiteral("14/11/2026 23:59:59;-99999;\r\n"));
    }

    void logFolderRemovedWhileAcquiring()
    {
        PlantRig rig;
        rig.rt.ChartLoggingOption = true;
        rig.rt.plant.zones.resize(1);
        rig.rt.plant.zoneDisplay.chartQuantity = 0;
        configureZone(rig.rt, 0, 1, 1, {{3, 0}});
        rig.setValue(1, 3, 0, 215);

        ReadAllMeasurements(rig.rt);
        QVERIFY(QDir(rig.rt.ini.folder().filePath(QStringLiteral("Dati"))).removeRecursively());
        rig.clock.advance(60'000);
        ReadAllMeasurements(rig.rt);
        QCOMPARE(readLog(rig, QStringLiteral("2026_11_14.csv")), QStringLiteral("14/11/2026 22:21:09;21.5;\r\n"));
    }

    void unusableRowsSendNothing_data()
    {
        QTest::addColumn<int>("slave");
        QTest::addColumn<int>("functionCode");
        QTest::newRow("address 0") << 0 << 3;
        QTest::newRow("address 256") << 256 << 3;
        QTest::newRow("write code") << 5 << 6;
        QTest::newRow("code 9") << 5 << 9;
    }

    void unusableRowsSendNothing()
    {
        QFETCH(int, slave);
        QFETCH(int, functionCode);
        PlantRig rig;
        rig.rt.plant.zones.resize(1);
        configureZone(rig.rt, 0, slave, 1, {{functionCode, 0}, {functionCode, 1}});
        ReadAllMeasurements(rig.rt);
        QVERIFY(rig.line.requests().isEmpty());
        QCOMPARE(rig.rt.values.ZoneValues[0][0], InvalidValue);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 0), 8);
    }

    void simulationPausesAndLeavesTheLineAlone_data()
    {
        QTest::addColumn<bool>("communicate");
        QTest::addColumn<QList<int>>("pauses");
        QTest::newRow("simulation") << false << QList<int>{250};
        QTest::newRow("communicate") << true << QList<int>{};
    }

    void simulationPausesAndLeavesTheLineAlone()
    {
        QFETCH(bool, communicate);
        QFETCH(QList<int>, pauses);

        PlantRig rig;
        rig.rt.master.setCommunicate(communicate);
        rig.rt.plant.zones.resize(2);
        configureZone(rig.rt, 0, 1, 1, {{3, 0}, {3, 1}, {3, 2}, {3, 3}, {3, 4}});
        configureZone(rig.rt, 1, 2, 0, {{1, 0}, {1, 1}, {1, 2}, {1, 3}, {1, 4}});
        for (int k = 0; k < 5; ++k) {
            rig.setValue(1, 3, k, 100);
            rig.setValue(2, 1, k, 1);
        }
        QSignalSpy panels(&rig.rt.statusBar, &StatusBar::panelChanged);

        ReadAllMeasurements(rig.rt);
        QCOMPARE(rig.pause.pauses(), pauses);
        QCOMPARE(rig.line.requests().size(), communicate ? 10 : 0);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 0), 0);
        for (int k = 0; k < 5; ++k) {
            QVERIFY(rig.rt.values.ZoneValues[0][k] >= 0.0f && rig.rt.values.ZoneValues[0][k] <= 40.0f);
            QVERIFY(rig.rt.values.ZoneValues[1][k] == 0.0f || rig.rt.values.ZoneValues[1][k] == 1.0f);
        }
        QCOMPARE(panels.size(), 2);
        QCOMPARE(panels[0], (QList<QVariant>{3, QStringLiteral("Lettura...")}));
        QCOMPARE(panels[1], (QList<QVariant>{3, QString()}));
    }
};

QTEST_GUILESS_MAIN(TestMeasurementAcquisition)
#include "tst_measurementacquisition.moc"
