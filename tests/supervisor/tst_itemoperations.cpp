#include "support/runtimefixture.h"

#include "supervisor/activitypoll.h"
#include "supervisor/dooroperations.h"
#include "supervisor/ledoperations.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/switchoperations.h"
#include "supervisor/zoneoperations.h"

#include <QSignalSpy>
#include <QLoggingCategory>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::SwitchState)
Q_DECLARE_METATYPE(telvane::RemoteState)
Q_DECLARE_METATYPE(telvane::LineProbe)

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

bool runExchange(Runtime &rt, Kind kind, bool read, int state)
{
    switch (kind) {
    case Kind::Zone:
        return read ? ZoneRemoteRead(rt, 2) : ZoneLocalWrite(rt, 2, state);
    case Kind::Switch:
        return read ? SwitchRemoteRead(rt, 2) : SwitchLocalWrite(rt, 2, state);
    case Kind::Door:
        return read ? DoorRemoteRead(rt) : DoorLocalWrite(rt, state);
    case Kind::Led:
        return read ? LedRemoteRead(rt, 2) : LedLocalWrite(rt, 2, state);
    }
    return false;
}

} // namespace

class TestItemOperations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    // The remote read and local write of every item kind. A failed exchange counts toward
    // the item's alarm; the door opener has none.
    void exchange_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<bool>("read");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("value"); // the answer to a read, or the state written; -1: absent slave
        QTest::addColumn<QString>("request");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<RemoteState>("state");

        const RemoteState unknown = RemoteState::Unknown, remote = RemoteState::Remote, local = RemoteState::Local;
        for (auto [kind, name] : {std::pair{Kind::Zone, "zone"}, {Kind::Switch, "switch"}, {Kind::Door, "door"},
                                  {Kind::Led, "LED"}}) {
            QTest::addRow("%s remote", name) << kind << true << 3 << 1 << "0c 03 0020 0001" << true << remote;
            QTest::addRow("%s local", name) << kind << true << 1 << 0 << "0c 01 0020 0001" << true << local;
            QTest::addRow("%s silent", name) << kind << true << 3 << -1 << "0c 03 0020 0001" << false << unknown;
            QTest::addRow("%s write code", name) << kind << true << 6 << 1 << "" << false << unknown;
            QTest::addRow("%s coil on", name) << kind << false << 5 << 1 << "0c 05 0021 ff00" << true << unknown;
            QTest::addRow("%s register", name) << kind << false << 6 << 1 << "0c 06 0021 0001" << true << unknown;
            QTest::addRow("%s no echo", name) << kind << false << 6 << -1 << "0c 06 0021 0001" << false << unknown;
            QTest::addRow("%s read code", name) << kind << false << 3 << 1 << "" << false << unknown;
        }
    }
    void exchange()
    {
        QFETCH(Kind, kind);
        QFETCH(bool, read);
        QFETCH(int, code);
        QFETCH(int, value);
        QFETCH(QString, request);
        QFETCH(bool, ok);
        QFETCH(RemoteState, state);
        RuntimeFixture fx;
        configure(fx.rt.model.editor.tables, kind, read ? code : 3, read ? 6 : code);
        if (value >= 0)
            fx.setValue(12, code, 0x20, value);
        QSignalSpy changed(&fx.rt.display.synoptic, &SynopticRefresh::remoteStatesChanged);

        QCOMPARE(runExchange(fx.rt, kind, read, std::max(value, 1)), ok);
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

    // An exchange asked for while another waits for its reply is refused as "line busy":
    // that says nothing of the instrument, so no item's count moves, not even for a
    // measurement round.
    void busyLineIsNoInstrumentFailure()
    {
        RuntimeFixture fx;
        for (const Kind kind : {Kind::Zone, Kind::Switch, Kind::Door, Kind::Led})
            configure(fx.rt.model.editor.tables, kind, 3, 6);
        fx.rt.model.plant.zones.resize(3);
        for (int k = 0; k < 5; ++k) {
            fx.rt.model.editor.tables.ZoneReadTable.set(2, zoneQuantityFunctionSlot(k), 3);
            fx.rt.model.editor.tables.ZoneReadTable.set(2, zoneQuantityRegisterSlot(k), qint16(k));
        }
        fx.setValue(1, 3, 0, 7);
        QList<bool> answers;
        fx.line.setDuringYield([&] {
            if (!answers.isEmpty())
                return;
            for (const Kind kind : {Kind::Zone, Kind::Switch, Kind::Door, Kind::Led})
                answers << runExchange(fx.rt, kind, true, 1) << runExchange(fx.rt, kind, false, 1);
            ReadAllMeasurements(fx.rt);
        });
        QCOMPARE(fx.rt.services.master.ReadRegister(3, 0, 1), 7);

        QCOMPARE(answers, QList<bool>(8, false));
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Zone, 2), 0);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 2), 0);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 2), 0);
        QCOMPARE(fx.takeRequests(), QStringList{RuntimeFixture::request(1, 3, 0, 1)});
    }

    void indexOutsideThePlant()
    {
        RuntimeFixture fx;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No zone with index 30"));
        QVERIFY(!ZoneRemoteRead(fx.rt, 30));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No LED with index 10"));
        QVERIFY(!LedRemoteRead(fx.rt, 10));
        QVERIFY(fx.line.requests().isEmpty());
    }

    void switchStateRule_data()
    {
        QTest::addColumn<bool>("onUsed");
        QTest::addColumn<float>("on");
        QTest::addColumn<bool>("offUsed");
        QTest::addColumn<float>("off");
        QTest::addColumn<SwitchState>("state");
        const float bad = InvalidValue;
        QTest::newRow("both: on") << true << 2.5f << true << 0.0f << SwitchState::On;
        QTest::newRow("both: off") << true << 0.0f << true << 1.0f << SwitchState::Off;
        QTest::newRow("both say on") << true << 1.0f << true << 1.0f << SwitchState::Undetermined;
        QTest::newRow("on only: off") << true << 0.0f << false << bad << SwitchState::Off;
        QTest::newRow("off only: on") << false << bad << true << 0.0f << SwitchState::On;
        QTest::newRow("none configured") << false << bad << false << bad << SwitchState::Undetermined;
    }
    void switchStateRule()
    {
        QFETCH(bool, onUsed);
        QFETCH(float, on);
        QFETCH(bool, offUsed);
        QFETCH(float, off);
        QFETCH(SwitchState, state);
        QCOMPARE(SwitchStateFrom(onUsed, on, offUsed, off), state);
    }

    // Switch 0: coils, on. 1: registers with 1 decimal, off. 2: silent.
    void switchStatesRead()
    {
        RuntimeFixture fx;
        fx.rt.model.plant.switches.resize(3);
        setRow(fx.rt.model.editor.tables.SwitchReadTable, 0, {21, 2, -1, -1, 1, 0x10, 1, 0x11});
        setRow(fx.rt.model.editor.tables.SwitchReadTable, 1, {22, 1, -1, -1, 3, 0x10, 3, 0x11});
        setRow(fx.rt.model.editor.tables.SwitchReadTable, 2, {23, 0, -1, -1, 1, 0x10});
        for (auto [slave, functionCode, address, value] :
             {std::tuple{21, 1, 0x10, 1}, {21, 1, 0x11, 0}, {22, 3, 0x10, 0}, {22, 3, 0x11, 15}})
            fx.setValue(slave, functionCode, address, value);
        for (int i = 0; i < 3; ++i)
            fx.rt.services.alarms.ReportSwitchFailure(0);

        ReadAllSwitchStates(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"15 01 0010 0001", "15 01 0011 0001", "16 03 0010 0001",
                                                 "16 03 0011 0001", "17 01 0010 0001"}));
        QCOMPARE(fx.rt.model.values.SwitchValues[1][1], 1.5f);
        QCOMPARE(fx.rt.services.items.switches[0], SwitchState::On);
        QCOMPARE(fx.rt.services.items.switches[1], SwitchState::Off);
        QCOMPARE(fx.rt.services.items.switches[2], SwitchState::Undetermined);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 2), 1);
    }

    // Whether a lamp is lit below, at and above its threshold, for each condition from 0
    // to 9: 1 ">=", 2 "<=", 3 "=", 4 ">", 5 "<", 6 "<>", any other ">=".
    void ledCondition()
    {
        QStringList lit;
        for (int condition = 0; condition <= 9; ++condition) {
            lit.append(QString());
            for (int reading : {249, 250, 251})
                lit.last() += LedConditionHolds(condition, reading, 250) ? '1' : '0';
        }
        QCOMPARE(lit, (QStringList{"011", "011", "110", "010", "001", "100", "101", "011", "011", "011"}));
    }

    // LED 0: 25.5 with 1 decimal against 25.0 (">="): lit. 1: the same reading with "<":
    // dark. 2: silent. 3: no P1_r.
    void ledLampsRead()
    {
        RuntimeFixture fx;
        fx.rt.model.plant.leds.resize(4);
        LedTable &table = fx.rt.model.editor.tables.LedReadTable;
        setRow(table, 0, {31, 1, -1, -1, 3, 0x10, 250, 1, 1});
        setRow(table, 1, {31, 1, -1, -1, 3, 0x10, 250, 1, 5});
        setRow(table, 2, {33, 0, -1, -1, 4, 0x09, 0, 1, 1});
        setRow(table, 3, {34, 0, -1, -1, -1, -1, 0, 1, 1});
        fx.setValue(31, 3, 0x10, 255);
        fx.rt.services.items.leds[2] = {true, 12.0f};

        ReadAllLedLamps(fx.rt);
        QCOMPARE(fx.takeRequests(), (QStringList{"1f 03 0010 0001", "1f 03 0010 0001", "21 04 0009 0001"}));
        QVERIFY(fx.rt.services.items.leds[0].lit);
        QCOMPARE(fx.rt.services.items.leds[0].value, 25.5f);
        QVERIFY(!fx.rt.services.items.leds[1].lit);
        QVERIFY(!fx.rt.services.items.leds[2].lit);
        QCOMPARE(fx.rt.services.items.leds[2].value, InvalidValue);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 2), 1);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 3), 0);

        fx.setValue(33, 4, 0x09, 0);
        ReadAllLedLamps(fx.rt);
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Led, 2), 0);
        QVERIFY(fx.rt.services.items.leds[2].lit);
    }

    // A silent line is noted once, not on every idle tick.
    void activityPoll_data()
    {
        QTest::addColumn<LineProbe>("probe");
        QTest::addColumn<bool>("answered");
        QTest::addColumn<int>("requests");
        QTest::newRow("answers") << LineProbe{5, 3, 0x40} << true << 1;
        QTest::newRow("silent") << LineProbe{6, 3, 0x40} << false << 1;
        QTest::newRow("off") << LineProbe{-1, -1, -1} << false << 0;
    }
    void activityPoll()
    {
        QFETCH(LineProbe, probe);
        QFETCH(bool, answered);
        QFETCH(int, requests);
        RuntimeFixture fx;
        fx.rt.model.editor.lineProbe = probe;
        fx.setValue(5, 3, 0x40, 7);
        if (!answered && requests)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("The line is silent"));
        QCOMPARE(ActivityPoll(fx.rt), answered);
        QCOMPARE(fx.takeRequests(), QStringList(requests, QStringLiteral("0%1 03 0040 0001").arg(probe.address)));
        QTest::failOnWarning(QRegularExpression("The line"));
        ActivityPoll(fx.rt);
    }
};

QTEST_GUILESS_MAIN(TestItemOperations)
#include "tst_itemoperations.moc"
