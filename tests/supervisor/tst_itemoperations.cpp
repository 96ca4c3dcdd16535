#include "plantrig.h"

#include "supervisor/activitypoll.h"
#include "supervisor/dooroperations.h"
#include "supervisor/ledoperations.h"
#include "supervisor/switchoperations.h"
#include "supervisor/zoneoperations.h"

#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::SwitchState)
Q_DECLARE_METATYPE(telvane::RemoteState)

namespace {

enum class Kind { Zone, Switch, Door, Led };

// Address, function code, register.
using LineProbeRow = QList<int>;

template <typename Slot, int Rows>
void setRem(RegisterTable<Slot, Rows> &table, int row, int slave, int functionCode, int address)
{
    table.set(row, Slot::Address, qint16(slave));
    table.set(row, Slot::RemFunction, qint16(functionCode));
    table.set(row, Slot::RemRegister, qint16(address));
}

void setSwitchStateRegisters(Runtime &rt, int sw, int slave, int decimals, std::pair<int, int> on,
                             std::pair<int, int> off)
{
    SwitchTable &table = rt.editor.tables.SwitchReadTable;
    table.set(sw, SwitchSlot::Address, qint16(slave));
    table.set(sw, SwitchSlot::Decimals, qint16(decimals));
    table.set(sw, SwitchSlot::OnFunction, qint16(on.first));
    table.set(sw, SwitchSlot::OnRegister, qint16(on.second));
    table.set(sw, SwitchSlot::OffFunction, qint16(off.first));
    table.set(sw, SwitchSlot::OffRegister, qint16(off.second));
}

void setLed(Runtime &rt, int led, int slave, int decimals, int functionCode, int address, int threshold,
            int condition)
{
    LedTable &table = rt.editor.tables.LedReadTable;
    table.set(led, LedSlot::Address, qint16(slave));
    table.set(led, LedSlot::Decimals, qint16(decimals));
    table.set(led, LedSlot::P1Function, qint16(functionCode));
    table.set(led, LedSlot::P1Register, qint16(address));
    table.set(led, LedSlot::Threshold, qint16(threshold));
    table.set(led, LedSlot::Colour, 1);
    table.set(led, LedSlot::Condition, qint16(condition));
}

} // namespace

class TestItemOperations : public QObject
{
    Q_OBJECT

private:
    static bool remoteRead(Runtime &rt, Kind kind)
    {
        switch (kind) {
        case Kind::Zone:
            return ZoneRemoteRead(rt, 2);
        case Kind::Switch:
            return SwitchRemoteRead(rt, 2);
        case Kind::Door:
            return DoorRemoteRead(rt);
        case Kind::Led:
            return LedRemoteRead(rt, 2);
        }
        return false;
    }

    static bool localWrite(Runtime &rt, Kind kind, int state)
    {
        switch (kind) {
        case Kind::Zone:
            return ZoneLocalWrite(rt, 2, state);
        case Kind::Switch:
            return SwitchLocalWrite(rt, 2, state);
        case Kind::Door:
            return DoorLocalWrite(rt, state);
        case Kind::Led:
            return LedLocalWrite(rt, 2, state);
        }
        return false;
    }

    static void configureRem(Runtime &rt, Kind kind, int slave, int readCode, int writeCode)
    {
        RegisterTables &t = rt.editor.tables;
        switch (kind) {
        case Kind::Zone:
            setRem(t.ZoneReadTable, 2, slave, readCode, 40100);
            setRem(t.ZoneWriteTable, 2, slave, writeCode, 40101);
            break;
        case Kind::Switch:
            setRem(t.SwitchReadTable, 2, slave, readCode, 40100);
            setRem(t.SwitchWriteTable, 2, slave, writeCode, 40101);
            break;
        case Kind::Door:
            setRem(t.DoorReadTable, 0, slave, readCode, 40100);
            setRem(t.DoorWriteTable, 0, slave, writeCode, 40101);
            break;
        case Kind::Led:
            setRem(t.LedReadTable, 2, slave, readCode, 40100);
            setRem(t.LedWriteTable, 2, slave, writeCode, 40101);
            break;
        }
    }

    static RemoteState remoteState(const Runtime &rt, Kind kind)
    {
        switch (kind) {
        case Kind::Zone:
            return rt.items.zoneRemote[2];
        case Kind::Switch:
            return rt.items.switchRemote[2];
        case Kind::Door:
            return rt.items.doorRemote;
        case Kind::Led:
            return rt.items.ledRemote[2];
        }
        return RemoteState::Unknown;
    }

    static int failCount(const Runtime &rt, Kind kind)
    {
        switch (kind) {
        case Kind::Zone:
            return rt.alarms.FailCount(AlarmItemKind::Zone, 2);
        case Kind::Switch:
            return rt.alarms.FailCount(AlarmItemKind::Switch, 2);
        case Kind::Led:
            return rt.alarms.FailCount(AlarmItemKind::Led, 2);
        case Kind::Door:
            break;
        }
        return 0;
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    void remoteRead_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<int>("readCode");
        QTest::addColumn<int>("answer"); // -1: silent
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("requests");
        QTest::addColumn<int>("count");
        QTest::addColumn<RemoteState>("state");

        const std::pair<Kind, const char *> kinds[] = {
            {Kind::Zone, "zone"}, {Kind::Switch, "switch"}, {Kind::Door, "door"}, {Kind::Led, "LED"}};
        for (auto [kind, name] : kinds) {
            const int counted = kind == Kind::Door ? 0 : 1;
            QTest::addRow("%s remote", name) << kind << 3 << 1 << true << 1 << 0 << RemoteState::Remote;
            QTest::addRow("%s local", name) << kind << 1 << 0 << true << 1 << 0 << RemoteState::Local;
            QTest::addRow("%s silent", name) << kind << 3 << -1 << false << 1 << counted << RemoteState::Unknown;
            QTest::addRow("%s not configured", name) << kind << -1 << 1 << false << 0 << 0 << RemoteState::Unknown;
            QTest::addRow("%s write code", name) << kind << 6 << 1 << false << 0 << 0 << RemoteState::Unknown;
        }
    }

    void remoteRead()
    {
        QFETCH(Kind, kind);
        QFETCH(int, readCode);
        QFETCH(int, answer);
        QFETCH(bool, ok);
        QFETCH(int, requests);
        QFETCH(int, count);
        QFETCH(RemoteState, state);

        PlantRig rig;
        configureRem(rig.rt, kind, 12, readCode, 6);
        rig.addSlave(12);
        if (answer >= 0)
            rig.setValue(12, readCode, 40100, answer);
        QSignalSpy changed(&rig.rt.synoptic, &SynopticRefresh::remoteStatesChanged);

        QCOMPARE(remoteRead(rig.rt, kind), ok);
        const QList<QByteArray> sent = rig.takeRequests();
        QCOMPARE(sent.size(), requests);
        if (requests)
            QCOMPARE(sent.first(), PlantRig::readRequest(12, readCode, 40100));
        QCOMPARE(failCount(rig.rt, kind), count);
        QCOMPARE(remoteState(rig.rt, kind), state);
        QCOMPARE(changed.size(), ok ? 1 : 0);
    }

    void localWrite_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<int>("writeCode");
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("present");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("count");

        const QByteArray none;
        const std::pair<Kind, const char *> kinds[] = {
            {Kind::Zone, "zone"}, {Kind::Switch, "switch"}, {Kind::Door, "door"}, {Kind::Led, "LED"}};
        for (auto [kind, name] : kinds) {
            const int counted = kind == Kind::Door ? 0 : 1;
            QTest::addRow("%s coil on", name)
                << kind << 5 << 1 << true << PlantRig::writeRequest(12, 5, 40101, 0xFF00) << true << 0;
            QTest::addRow("%s coil off", name)
                << kind << 5 << 0 << true << PlantRig::writeRequest(12, 5, 40101, 0) << true << 0;
            QTest::addRow("%s register", name)
                << kind << 6 << 1 << true << PlantRig::writeRequest(12, 6, 40101, 1) << true << 0;
            QTest::addRow("%s no echo", name)
                << kind << 6 << 1 << false << PlantRig::writeRequest(12, 6, 40101, 1) << false << counted;
            QTest::addRow("%s read code", name) << kind << 3 << 1 << true << none << false << 0;
        }
    }

    void localWrite()
    {
        QFETCH(Kind, kind);
        QFETCH(int, writeCode);
        QFETCH(int, state);
        QFETCH(bool, present);
        QFETCH(QByteArray, request);
        QFETCH(bool, ok);
        QFETCH(int, count);

        PlantRig rig;
        configureRem(rig.rt, kind, 12, 3, writeCode);
        if (present)
            rig.addSlave(12);

        QCOMPARE(localWrite(rig.rt, kind, state), ok);
        QCOMPARE(rig.takeRequests(), request.isEmpty() ? QList<QByteArray>{} : QList<QByteArray>{request});
        QCOMPARE(failCount(rig.rt, kind), count);
    }

    void statusTextForgetsTheRemoteState()
    {
        PlantRig rig;
        rig.rt.items.zoneRemote[3] = RemoteState::Remote;
        rig.rt.items.switchRemote[1] = RemoteState::Local;
        QSignalSpy changed(&rig.rt.synoptic, &SynopticRefresh::remoteStatesChanged);
        ZoneStatusText(rig.rt, 3);
        SwitchStatusText(rig.rt, 1);
        SwitchStatusText(rig.rt, 1);
        QCOMPARE(rig.rt.items.zoneRemote[3], RemoteState::Unknown);
        QCOMPARE(rig.rt.items.switchRemote[1], RemoteState::Unknown);
        QCOMPARE(changed.size(), 2);
        QCOMPARE(stateText(rig.rt.items.zoneRemote[3]), QLatin1String("--.-"));
    }

    void indexOutsideThePlant()
    {
        PlantRig rig;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No zone with index 30"));
        QVERIFY(!ZoneRemoteRead(rig.rt, 30));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No switch with index -1"));
        QVERIFY(!SwitchLocalWrite(rig.rt, -1, 1));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No LED with index 10"));
        QVERIFY(!LedRemoteRead(rig.rt, 10));
        QVERIFY(rig.line.requests().isEmpty());
    }

    void switchStateRule_data()
    {
        QTest::addColumn<bool>("onUsed");
        QTest::addColumn<float>("on");
        QTest::addColumn<bool>("offUsed");
        QTest::addColumn<float>("off");
        QTest::addColumn<SwitchState>("state");

        const float bad = InvalidValue;
        QTest::newRow("both: on") << true << 1.0f << true << 0.0f << SwitchState::On;
        QTest::newRow("both: off") << true << 0.0f << true << 1.0f << SwitchState::Off;
        QTest::newRow("both say on") << true << 1.0f << true << 1.0f << SwitchState::Undetermined;
        QTest::newRow("both say off") << true << 0.0f << true << 0.0f << SwitchState::Undetermined;
        QTest::newRow("register value counts as on") << true << 2.5f << true << 0.0f << SwitchState::On;
        QTest::newRow("on only: on") << true << 1.0f << false << bad << SwitchState::On;
        QTest::newRow("on only: off") << true << 0.0f << false << bad << SwitchState::Off;
        QTest::newRow("off only: off") << false << bad << true << 1.0f << SwitchState::Off;
        QTest::newRow("off only: on") << false << bad << true << 0.0f << SwitchState::On;
        QTest::newRow("on silent") << true << bad << true << 0.0f << SwitchState::Undetermined;
        QTest::newRow("off silent") << true << 1.0f << true << bad << SwitchState::Undetermined;
        QTest::newRow("only register silent") << true << bad << false << bad << SwitchState::Undetermined;
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

    void switchStatesRead()
    {
        PlantRig rig;
        rig.rt.plant.switches.resize(4);
        // 0: coils, on. 1: registers with 1 decimal, off. 2: silent. 3: no address.
        setSwitchStateRegisters(rig.rt, 0, 21, 2, {1, 100}, {1, 101});
        rig.setValue(21, 1, 100, 1);
        rig.setValue(21, 1, 101, 0);
        setSwitchStateRegisters(rig.rt, 1, 22, 1, {3, 100}, {3, 101});
        rig.setValue(22, 3, 100, 0);
        rig.setValue(22, 3, 101, 15);
        setSwitchStateRegisters(rig.rt, 2, 23, 0, {1, 100}, {-1, -1});
        rig.rt.values.SwitchValues[3] = {1.0f, 0.0f};
        for (int i = 0; i < 3; ++i)
            rig.rt.alarms.ReportSwitchFailure(0);
        QSignalSpy changed(&rig.rt.synoptic, &SynopticRefresh::switchStatesChanged);

        ReadAllSwitchStates(rig.rt);
        QCOMPARE(rig.takeRequests(), (QList<QByteArray>{PlantRig::readRequest(21, 1, 100), PlantRig::readRequest(21, 1, 101),
                                                        PlantRig::readRequest(22, 3, 100), PlantRig::readRequest(22, 3, 101),
                                                        PlantRig::readRequest(23, 1, 100)}));
        QCOMPARE(rig.rt.values.SwitchValues[0][0], 1.0f);
        QCOMPARE(rig.rt.values.SwitchValues[0][1], 0.0f);
        QCOMPARE(rig.rt.values.SwitchValues[1][1], 1.5f);
        QCOMPARE(rig.rt.values.SwitchValues[2][0], InvalidValue);
        QCOMPARE(rig.rt.values.SwitchValues[3][0], InvalidValue);
        QCOMPARE(rig.rt.items.switches[0], SwitchState::On);
        QCOMPARE(rig.rt.items.switches[1], SwitchState::Off);
        QCOMPARE(rig.rt.items.switches[2], SwitchState::Undetermined);
        QCOMPARE(rig.rt.items.switches[3], SwitchState::Undetermined);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 2), 1);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 3), 0);
        QCOMPARE(changed.size(), 1);

        // The sixth failed round lists the switch.
        for (int round = 0; round < 5; ++round)
            ReadAllSwitchStates(rig.rt);
        QCOMPARE(rig.rt.alarms.switchEntries().size(), 1);
    }

    void ledCondition_data()
    {
        QTest::addColumn<int>("condition");
        QTest::addColumn<QList<bool>>("litBelowEqualAbove");

        QTest::newRow("1 >=") << 1 << QList<bool>{false, true, true};
        QTest::newRow("2 <=") << 2 << QList<bool>{true, true, false};
        QTest::newRow("3 =") << 3 << QList<bool>{false, true, false};
        QTest::newRow("4 >") << 4 << QList<bool>{false, false, true};
        QTest::newRow("5 <") << 5 << QList<bool>{true, false, false};
        QTest::newRow("6 <>") << 6 << QList<bool>{true, false, true};
        QTest::newRow("0 is >=") << 0 << QList<bool>{false, true, true};
        QTest::newRow("9 is >=") << 9 << QList<bool>{false, true, true};
    }

    void ledCondition()
    {
        QFETCH(int, condition);
        QFETCH(QList<bool>, litBelowEqualAbove);
        QCOMPARE(LedConditionHolds(condition, 249, 250), litBelowEqualAbove[0]);
        QCOMPARE(LedConditionHolds(condition, 250, 250), litBelowEqualAbove[1]);
        QCOMPARE(LedConditionHolds(condition, 251, 250), litBelowEqualAbove[2]);
        QCOMPARE(LedConditionHolds(condition, -300, -300), litBelowEqualAbove[1]);
    }

    void ledLampsRead()
    {
        PlantRig rig;
        rig.rt.plant.leds.resize(5);
        // 0: 25.5 with 1 decimal against 25.0 (">="): lit. 1: same reading, "<": dark.
        // 2: a coil at 1 against 1 ("="): lit. 3: silent. 4: no P1_r.
        setLed(rig.rt, 0, 31, 1, 3, 40010, 250, 1);
        rig.setValue(31, 3, 40010, 255);
        setLed(rig.rt, 1, 31, 1, 3, 40010, 250, 5);
        setLed(rig.rt, 2, 32, 2, 1, 7, 1, 3);
        rig.setValue(32, 1, 7, 1);
        setLed(rig.rt, 3, 33, 0, 4, 9, 0, 1);
        setLed(rig.rt, 4, 34, 0, -1, -1, 0, 1);
        rig.rt.items.leds[3] = {true, 12.0f};
        QSignalSpy changed(&rig.rt.synoptic, &SynopticRefresh::ledLampsChanged);

        ReadAllLedLamps(rig.rt);
        QCOMPARE(rig.takeRequests(), (QList<QByteArray>{PlantRig::readRequest(31, 3, 40010), PlantRig::readRequest(31, 3, 40010),
                                                        PlantRig::readRequest(32, 1, 7), PlantRig::readRequest(33, 4, 9)}));
        QVERIFY(rig.rt.items.leds[0].lit);
        QCOMPARE(rig.rt.items.leds[0].value, 25.5f);
        QVERIFY(!rig.rt.items.leds[1].lit);
        QVERIFY(rig.rt.items.leds[2].lit);
        QCOMPARE(rig.rt.items.leds[2].value, 1.0f);
        QVERIFY(!rig.rt.items.leds[3].lit);
        QCOMPARE(rig.rt.items.leds[3].value, InvalidValue);
        QVERIFY(!rig.rt.items.leds[4].lit);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Led, 3), 1);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Led, 4), 0);
        QCOMPARE(changed.size(), 1);

        rig.setValue(33, 4, 9, 0);
        ReadAllLedLamps(rig.rt);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Led, 3), 0);
        QVERIFY(rig.rt.items.leds[3].lit);
    }

    void activityPoll_data()
    {
        QTest::addColumn<LineProbeRow>("probe");
        QTest::addColumn<bool>("present");
        QTest::addColumn<bool>("answered");
        QTest::addColumn<int>("requests");

        QTest::newRow("answers") << LineProbeRow{5, 3, 40001} << true << true << 1;
        QTest::newRow("silent") << LineProbeRow{5, 3, 40001} << false << false << 1;
        QTest::newRow("off") << LineProbeRow{-1, -1, -1} << true << false << 0;
        QTest::newRow("write code") << LineProbeRow{5, 6, 40001} << true << false << 0;
    }

    void activityPoll()
    {
        QFETCH(LineProbeRow, probe);
        QFETCH(bool, present);
        QFETCH(bool, answered);
        QFETCH(int, requests);

        PlantRig rig;
        rig.rt.editor.lineProbe = {probe[0], probe[1], probe[2]};
        if (present)
            rig.setValue(5, 3, 40001, 7);
        if (!answered && requests)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("The line is silent"));
        QCOMPARE(ActivityPoll(rig.rt), answered);
        const QList<QByteArray> sent = rig.takeRequests();
        QCOMPARE(sent.size(), requests);
        if (requests)
            QCOMPARE(sent.first(), PlantRig::readRequest(5, 3, 40001));
        // Noted once, not on every idle tick.
        QTest::failOnWarning(QRegularExpression("The line"));
        ActivityPoll(rig.rt);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Zone, 0), 0);
    }
};

QTEST_GUILESS_MAIN(TestItemOperations)
#include "tst_itemoperations.moc"
