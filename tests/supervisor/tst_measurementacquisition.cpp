#include "support/runtimefixture.h"

#include "supervisor/chartsink.h"
#include "supervisor/measurementacquisition.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

struct RecordingChart final : ChartSink
{
    void addPoint(int trace, const QDateTime &at, double value) override { points.append({trace, at, value}); }
    void roundFinished() override { ++rounds; }

    QList<std::tuple<int, QDateTime, double>> points;
    int rounds = 0;
};

// `functions`: per quantity its function code, -1 when it is not read; `answers`: where
// the slave holds the register (200 + k at 100 + k).
using Codes = QList<int>;
using Answers = QList<bool>;
const Answers AllAnswer(5, true);

void setUpZone(RuntimeFixture &fx, int zone, int slave, const Codes &functions, const Answers &answers)
{
    fx.slaves.insert(slave);
    setRow(fx.rt.model.editor.tables.ZoneReadTable, zone, {slave, 1});
    for (int k = 0; k < 5; ++k) {
        fx.rt.model.editor.tables.ZoneReadTable.set(zone, zoneQuantityFunctionSlot(k), qint16(functions[k]));
        fx.rt.model.editor.tables.ZoneReadTable.set(zone, zoneQuantityRegisterSlot(k), qint16(100 + k));
        if (answers[k])
            fx.setValue(slave, functions[k], 100 + k, 200 + k);
    }
}

QString dailyLog(RuntimeFixture &fx)
{
    QFile file(fx.dir.filePath(QStringLiteral("Dati/2026_11_15.csv")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("<no file>");
}

} // namespace

class TestMeasurementAcquisition : public QObject
{
    Q_OBJECT

private slots:
    // Zone 2 beside a zone that always answers: its count after one and two rounds, and
    // whether it is listed. An alarm quantity not read counts twice; any later good read
    // clears the count.
    void failureCountsPerRound_data()
    {
        QTest::addColumn<Codes>("functions");
        QTest::addColumn<Answers>("answers");
        QTest::addColumn<QList<int>>("counts");
        QTest::addColumn<QList<int>>("listed");
        const Answers none(5, false);
        QTest::newRow("PV and SP only") << Codes{3, 3, -1, -1, -1} << Answers{true, true, false, false, false}
                                        << QList<int>{6, 6} << QList<int>{1, 1};
        QTest::newRow("all five answer") << Codes(5, 3) << AllAnswer << QList<int>{0, 0} << QList<int>{0, 0};
        QTest::newRow("slave absent") << Codes(5, 4) << none << QList<int>{5, 10} << QList<int>{0, 1};
        QTest::newRow("SP unused") << Codes{3, -1, 3, 3, 3} << Answers{true, false, true, true, true}
                                   << QList<int>{0, 0} << QList<int>{0, 0};
        QTest::newRow("AL3 silent") << Codes(5, 3) << Answers{true, true, true, true, false} << QList<int>{1, 1}
                                    << QList<int>{0, 0};
        QTest::newRow("nothing configured") << Codes(5, -1) << none << QList<int>{8, 16} << QList<int>{1, 1};
    }
    void failureCountsPerRound()
    {
        QFETCH(Codes, functions);
        QFETCH(Answers, answers);
        QFETCH(QList<int>, counts);
        QFETCH(QList<int>, listed);
        RuntimeFixture fx;
        fx.rt.model.plant.zones.resize(2);
        fx.rt.model.plant.zones[1].name = QStringLiteral("Soggiorno");
        setUpZone(fx, 0, 1, Codes(5, 3), AllAnswer);
        setUpZone(fx, 1, 2, functions, answers);

        for (int round = 0; round < 2; ++round) {
            ReadAllMeasurements(fx.rt);
            QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 1), counts[round]);
            QCOMPARE(fx.rt.services.alarms.zoneEntries().size(), listed[round]);
        }
        if (listed[1])
            QVERIFY(fx.rt.services.alarms.zoneEntries().first().startsWith(QLatin1String("Soggiorno (14/11/2026 22:2")));
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 0), 0);
        // What was not read holds the invalid marker, for the synoptic's "--.-".
        for (int k = 0; k < 5; ++k)
            QCOMPARE(fx.rt.model.values.ZoneValues[1][k] == InvalidValue, !answers[k]);
    }

    // Registers are scaled by the zone's decimals; coils and discrete inputs are not.
    void storedValues_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("raw");
        QTest::addColumn<float>("stored");
        QTest::newRow("holding, 1 decimal") << 3 << 1 << 215 << 21.5f;
        QTest::newRow("input, 2 decimals, negative") << 4 << 2 << -5 << -0.05f;
        QTest::newRow("coil") << 1 << 2 << 1 << 1.0f;
    }
    void storedValues()
    {
        QFETCH(int, functionCode);
        QFETCH(int, decimals);
        QFETCH(int, raw);
        QFETCH(float, stored);
        RuntimeFixture fx;
        fx.rt.model.plant.zones.resize(1);
        setRow(fx.rt.model.editor.tables.ZoneReadTable, 0, {7, decimals, -1, -1, functionCode, 0x9c41});
        fx.setValue(7, functionCode, 0x9c41, raw);

        ReadAllMeasurements(fx.rt);
        QCOMPARE(fx.takeRequests(), QStringList{QStringLiteral("07 0%1 9c41 0001").arg(functionCode)});
        QCOMPARE(fx.rt.model.values.ZoneValues[0][0], stored);
    }

    // Zone 3 does not answer; zone 4 has more decimals than the log shows. The round
    // begins just before midnight and its silent reads take it past: the line is stamped
    // when the round begins and goes to the file of the day it is written; each chart
    // point has the time its zone was read.
    void logLineAndChart_data()
    {
        QTest::addColumn<bool>("option");
        QTest::addColumn<int>("chartQuantity");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QList<double>>("points");
        QTest::newRow("set point") << true << 1 << "14/11/2026 23:59:59;21.5;19.0;-99999.0;\r\n"
                                   << QList<double>{21.5, 19.0, -99999.0, 0.0201};
        QTest::newRow("measured value") << true << 0 << "14/11/2026 23:59:59;20.0;18.5;-99999.0;\r\n"
                                        << QList<double>{20.0, 18.5, -99999.0, 0.02};
        QTest::newRow("option off") << false << 1 << "<no file>" << QList<double>{};
        QTest::newRow("no such quantity") << true << 7 << "14/11/2026 23:59:59;\r\n" << QList<double>{};
    }
    void logLineAndChart()
    {
        QFETCH(bool, option);
        QFETCH(int, chartQuantity);
        QFETCH(QString, line);
        QFETCH(QList<double>, points);
        RuntimeFixture fx;
        fx.clock.setNow(QDateTime(QDate(2026, 11, 14), QTime(23, 59, 59, 900)));
        RecordingChart chart;
        fx.rt.display.chart = &chart;
        fx.rt.display.ChartLoggingOption = option;
        fx.rt.model.plant.zones.resize(4);
        fx.rt.model.plant.zoneDisplay.chartQuantity = qint16(chartQuantity);
        const int decimals[] = {1, 1, 1, 4};
        for (int zone = 0; zone < 4; ++zone)
            setRow(fx.rt.model.editor.tables.ZoneReadTable, zone, {zone + 1, decimals[zone], -1, -1, 3, 0, 3, 1});
        for (auto [slave, pv, sp] : {std::tuple{1, 200, 215}, {2, 185, 190}, {4, 200, 201}}) {
            fx.setValue(slave, 3, 0, pv);
            fx.setValue(slave, 3, 1, sp);
        }
        QSignalSpy refreshed(&fx.rt.display.synoptic, &SynopticRefresh::zoneTextsChanged);
        if (chartQuantity > 4)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Zone Grafico"));

        ReadAllMeasurements(fx.rt);
        QCOMPARE(dailyLog(fx), line);
        QCOMPARE(chart.rounds, 1);
        QCOMPARE(chart.points.size(), points.size());
        for (int i = 0; i < points.size(); ++i) {
            QCOMPARE(std::get<0>(chart.points[i]), i + 1);
            QCOMPARE(float(std::get<2>(chart.points[i])), float(points[i]));
        }
        if (!points.isEmpty())
            QVERIFY(std::get<1>(chart.points[3]) > std::get<1>(chart.points[0]));
        QCOMPARE(fx.rt.model.values.ZoneValues[0][1], 21.5f);
        QCOMPARE(refreshed.size(), 1);
    }

    // Rows without a usable slave address or read code send nothing and count as failures.
    void unusableRowsSendNothing()
    {
        RuntimeFixture fx;
        fx.rt.model.plant.zones.resize(2);
        setRow(fx.rt.model.editor.tables.ZoneReadTable, 0, {256, 1, -1, -1, 3, 0, 3, 1});
        setRow(fx.rt.model.editor.tables.ZoneReadTable, 1, {5, 1, -1, -1, 6, 0, 9, 1});
        ReadAllMeasurements(fx.rt);
        QVERIFY(fx.line.requests().isEmpty());
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 0), 8);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 1), 8);
    }
};

QTEST_GUILESS_MAIN(TestMeasurementAcquisition)
#include "tst_measurementacquisition.moc"
