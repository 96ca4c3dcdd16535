// The exchanges the cycle runs for each item (remote read, local write, switch states,
// LED lamps, the line probe) and the measurement round with its log line and chart.

#include "support/runtimefixture.h"

#include "supervisor/activitypoll.h"
#include "supervisor/chartsink.h"
#include "supervisor/dooroperations.h"
#include "supervisor/ledoperations.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/switchoperations.h"
#include "supervisor/zoneoperations.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;


namespace {

enum class Kind { Zone, Switch, Door, Led };

// Row 2 of each kind (the door's only row): REM_r at 0x20 and REM_w at 0x21 of slave 12.
void configure(RegisterTables &t, Kind kind, int readCode, int writeCode)
{
    const QList<int> read{12, 0, readCode, 0x20}, write{12, 0, writeCode, 0x21};
    switch (kind) {
    case Kind::Zone:
        return setRow(t.ZoneReadTable, 2, read), setRow(t.ZoneWriteTable, 2, write);
    case Kind::Switch:
        return setRow(t.SwitchReadTable, 2, read), setRow(t.SwitchWriteTable, 2, write);
    case Kind::Door:
        return setRow(t.DoorReadTable, 0, read), setRow(t.DoorWriteTable, 0, write);
    case Kind::Led:
        return setRow(t.LedReadTable, 2, read), setRow(t.LedWriteTable, 2, write);
    }
}

// One remote read or local write of an item and what it must do.
struct ItemExchange
{
    bool read;
    int code;
    int value; // the answer to a read, or the state written; -1: absent slave
    QString request;
    bool ok;
    RemoteState state;
    bool busy = false;
};

bool runExchange(Runtime &rt, Kind kind, bool read, int state)
{
    switch (kind) {
    case Kind::Zone:
        return read ? zoneRemoteRead(rt, 2) : zoneLocalWrite(rt, 2, state);
    case Kind::Switch:
        return read ? switchRemoteRead(rt, 2) : switchLocalWrite(rt, 2, state);
    case Kind::Door:
        return read ? doorRemoteRead(rt) : doorLocalWrite(rt, state);
    case Kind::Led:
        return read ? ledRemoteRead(rt, 2) : ledLocalWrite(rt, 2, state);
    }
    return false;
}

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

Q_DECLARE_METATYPE(ItemExchange)

class TestPolls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    // The remote read and local write of every item kind. A failed exchange counts toward
    // the item's alarm; the door opener has none. One asked for while another waits for
    // its reply is refused as "line busy": that says nothing of the instrument.
    void exchange_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<ItemExchange>("x");
        const RemoteState unknown = RemoteState::Unknown, remote = RemoteState::Remote, local = RemoteState::Local;
        for (auto [kind, name] : {std::pair{Kind::Zone, "zone"}, {Kind::Switch, "switch"}, {Kind::Door, "door"},
                                  {Kind::Led, "LED"}}) {
            QTest::addRow("%s remote", name) << kind << ItemExchange{true, 3, 1, "0c 03 0020 0001", true, remote};
            QTest::addRow("%s local", name) << kind << ItemExchange{true, 1, 0, "0c 01 0020 0001", true, local};
            QTest::addRow("%s silent", name) << kind << ItemExchange{true, 3, -1, "0c 03 0020 0001", false, unknown};
            QTest::addRow("%s write code", name) << kind << ItemExchange{true, 6, 1, "", false, unknown};
            QTest::addRow("%s coil on", name) << kind << ItemExchange{false, 5, 1, "0c 05 0021 ff00", true, unknown};
            QTest::addRow("%s register", name) << kind << ItemExchange{false, 6, 1, "0c 06 0021 0001", true, unknown};
            QTest::addRow("%s no echo", name) << kind << ItemExchange{false, 6, -1, "0c 06 0021 0001", false, unknown};
            QTest::addRow("%s read code", name) << kind << ItemExchange{false, 3, 1, "", false, unknown};
            QTest::addRow("%s read, line busy", name) << kind << ItemExchange{true, 3, 1, "", false, unknown, true};
            QTest::addRow("%s write, line busy", name) << kind << ItemExchange{false, 6, 1, "", false, unknown, true};
        }
    }
    void exchange()
    {
        QFETCH(Kind, kind);
        QFETCH(ItemExchange, x);
        const auto [read, code, value, request, ok, state, busy] = x;
        RuntimeFixture fx;
        configure(fx.rt.model.editor.tables, kind, read ? code : 3, read ? 6 : code);
        if (value >= 0)
            fx.setValue(12, code, 0x20, value);
        QSignalSpy changed(&fx.rt.display.synoptic, &SynopticRefresh::remoteStatesChanged);

        bool result = false, asked = false;
        const auto run = [&] { result = runExchange(fx.rt, kind, x.read, std::max(x.value, 1)); };
        if (busy) {
            fx.setValue(1, 3, 0, 7);
            fx.line.setDuringYield([&] { std::exchange(asked, true) ? void() : run(); });
            QCOMPARE(fx.rt.services.master.ReadRegister(3, 0, 1), 7);
            QVERIFY(asked);
            QCOMPARE(fx.takeRequests(), QStringList{RuntimeFixture::request(1, 3, 0, 1)});
        } else {
            run();
        }
        QCOMPARE(result, ok);
        QCOMPARE(fx.takeRequests(), request.isEmpty() ? QStringList{} : QStringList{request});
        const bool counted = kind != Kind::Door && !ok && !request.isEmpty();
        const AlarmItemKind alarmKinds[] = {AlarmItemKind::Zone, AlarmItemKind::Switch, AlarmItemKind::Zone,
                                            AlarmItemKind::Led};
        QCOMPARE(fx.rt.services.alarms.FailCount(alarmKinds[int(kind)], 2), counted ? 1 : 0);
        const RemoteState states[] = {fx.rt.services.items.zoneRemote[2], fx.rt.services.items.switchRemote[2], fx.rt.services.items.doorRemote,
                                      fx.rt.services.items.ledRemote[2]};
        QCOMPARE(states[int(kind)], state);
        QCOMPARE(changed.size(), state == RemoteState::Unknown ? 0 : 1);
    }

    // The state reads of one tick. Switch 0: coils, on. 1: registers with 1 decimal, off.
    // 2: silent. LED 0: 25.5 with 1 decimal against 25.0 (">="): lit. 1: the same reading
    // with "<": dark. 2: silent. 3: no P1_r.
    void stateReads()
    {
        RuntimeFixture fx;
        fx.rt.model.plant.switches.resize(3);
        fx.rt.model.plant.leds.resize(4);
        RegisterTables &t = fx.rt.model.editor.tables;
        setRow(t.SwitchReadTable, 0, {21, 2, -1, -1, 1, 0x10, 1, 0x11});
        setRow(t.SwitchReadTable, 1, {22, 1, -1, -1, 3, 0x10, 3, 0x11});
        setRow(t.SwitchReadTable, 2, {23, 0, -1, -1, 1, 0x10});
        setRow(t.LedReadTable, 0, {31, 1, -1, -1, 3, 0x10, 250, 1, 1});
        setRow(t.LedReadTable, 1, {31, 1, -1, -1, 3, 0x10, 250, 1, 5});
        setRow(t.LedReadTable, 2, {33, 0, -1, -1, 4, 0x09, 0, 1, 1});
        setRow(t.LedReadTable, 3, {34, 0, -1, -1, -1, -1, 0, 1, 1});
        for (auto [slave, functionCode, address, value] :
             {std::tuple{21, 1, 0x10, 1}, {21, 1, 0x11, 0}, {22, 3, 0x10, 0}, {22, 3, 0x11, 15}, {31, 3, 0x10, 255}})
            fx.setValue(slave, functionCode, address, value);
        for (int i = 0; i < 3; ++i)
            fx.rt.services.alarms.ReportSwitchFailure(0);
        ItemStates &items = fx.rt.services.items;
        items.leds[2] = {true, 12.0f};

        readAllSwitchStates(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"15 01 0010 0001", "15 01 0011 0001", "16 03 0010 0001",
                                                 "16 03 0011 0001", "17 01 0010 0001"}));
        QCOMPARE(fx.rt.model.values.SwitchValues[1][1], 1.5f);
        QCOMPARE(items.switches[0], SwitchState::On);
        QCOMPARE(items.switches[1], SwitchState::Off);
        QCOMPARE(items.switches[2], SwitchState::Undetermined);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 2), 1);
        // On_r and Off_r, each used or not: a state only when they agree.
        const float bad = InvalidValue;
        QCOMPARE(switchStateFrom(true, 1.0f, true, 1.0f), SwitchState::Undetermined);
        QCOMPARE(switchStateFrom(true, 0.0f, false, bad), SwitchState::Off);
        QCOMPARE(switchStateFrom(false, bad, true, 0.0f), SwitchState::On);
        QCOMPARE(switchStateFrom(false, bad, false, bad), SwitchState::Undetermined);

        readAllLedLamps(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"1f 03 0010 0001", "1f 03 0010 0001", "21 04 0009 0001"}));
        QVERIFY(items.leds[0].lit && !items.leds[1].lit && !items.leds[2].lit);
        QCOMPARE(items.leds[0].value, 25.5f);
        QCOMPARE(items.leds[2].value, InvalidValue);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 2), 1);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 3), 0);
        fx.setValue(33, 4, 0x09, 0);
        readAllLedLamps(fx.rt);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 2), 0);
        QVERIFY(items.leds[2].lit);
        fx.takeRequests();

        // The line probe: a silent line is noted once, not on every idle tick.
        fx.rt.model.editor.lineProbe = {21, 1, 0x10};
        QVERIFY(activityPoll(fx.rt));
        fx.rt.model.editor.lineProbe = {6, 3, 0x40};
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("The line is silent"));
        QVERIFY(!activityPoll(fx.rt));
        QTest::failOnWarning(QRegularExpression("The line"));
        QVERIFY(!activityPoll(fx.rt));
        fx.rt.model.editor.lineProbe = {-1, -1, -1};
        QVERIFY(!activityPoll(fx.rt));
        QCOMPARE(fx.takeRequests(), (QStringList{"15 01 0010 0001", "06 03 0040 0001", "06 03 0040 0001"}));

        // An index outside the plant sends nothing.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No zone with index 30"));
        QVERIFY(!zoneRemoteRead(fx.rt, 30));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No LED with index 10"));
        QVERIFY(!ledRemoteRead(fx.rt, 10));
        QVERIFY(fx.takeRequests().isEmpty());
    }

    // Whether a lamp is lit below, at and above its threshold, for each condition from 0
    // to 9: 1 ">=", 2 "<=", 3 "=", 4 ">", 5 "<", 6 "<>", any other ">=".
    void ledCondition()
    {
        QStringList lit;
        for (int condition = 0; condition <= 9; ++condition) {
            lit.append(QString());
            for (int reading : {249, 250, 251})
                lit.last() += ledConditionHolds(condition, reading, 250) ? '1' : '0';
        }
        QCOMPARE(lit, (QStringList{"011", "011", "110", "010", "001", "100", "101", "011", "011", "011"}));
    }

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

    // One round over zones of every kind: registers are scaled by the zone's decimals,
    // coils and discrete inputs are not; rows without a usable slave address or read code
    // send nothing and count as failures.
    void oneRound()
    {
        RuntimeFixture fx;
        fx.rt.model.plant.zones.resize(5);
        RegisterTables &t = fx.rt.model.editor.tables;
        setRow(t.ZoneReadTable, 0, {7, 1, -1, -1, 3, 0x9c41});
        setRow(t.ZoneReadTable, 1, {7, 2, -1, -1, 4, 0x9c41});
        setRow(t.ZoneReadTable, 2, {7, 2, -1, -1, 1, 0x9c41});
        setRow(t.ZoneReadTable, 3, {256, 1, -1, -1, 3, 0, 3, 1});
        setRow(t.ZoneReadTable, 4, {5, 1, -1, -1, 6, 0, 9, 1});
        fx.setValue(7, 3, 0x9c41, 215);
        fx.setValue(7, 4, 0x9c41, -5);
        fx.setValue(7, 1, 0x9c41, 1);

        ReadAllMeasurements(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"07 03 9c41 0001", "07 04 9c41 0001", "07 01 9c41 0001"}));
        QCOMPARE(fx.rt.model.values.ZoneValues[0][0], 21.5f);
        QCOMPARE(fx.rt.model.values.ZoneValues[1][0], -0.05f);
        QCOMPARE(fx.rt.model.values.ZoneValues[2][0], 1.0f);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 3), 8);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 4), 8);

        // A round refused as the line is busy counts against no zone.
        fx.rt.model.plant.zones.resize(1);
        setUpZone(fx, 0, 2, Codes(5, 3), AllAnswer);
        fx.rt.services.alarms.clearFailCount(AlarmItemKind::Zone, 0);
        fx.setValue(1, 3, 0, 7);
        bool asked = false;
        fx.line.setDuringYield([&] { std::exchange(asked, true) ? void() : ReadAllMeasurements(fx.rt); });
        QCOMPARE(fx.rt.services.master.ReadRegister(3, 0, 1), 7);
        QVERIFY(asked);
        QCOMPARE(fx.takeRequests(), QStringList{RuntimeFixture::request(1, 3, 0, 1)});
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 0), 0);
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
};

QTEST_GUILESS_MAIN(TestPolls)
#include "tst_polls.moc"
