#include "commandrig.h"

#include "commands/chronothermostat.h"
#include "supervisor/supervisor.h"

#include <QTest>

using namespace telvane;

namespace {

// Zone 1 follows the schedule with 1 decimal, zone 2 does not follow it, zone 3 follows
// it with no decimals; zone 4 is enabled but not in the plant.
constexpr int Slaves[] = {1, 2, 3, 4};
constexpr int FirstRegister = 100; // quantity k of zone z: 100 * (z + 1) + k

// A set point that tells its slot and day: day * 100 + slot (+ 0.7 for zone 3, which
// its 0 decimals cut away).
float setPointOf(int zone, int slot, int day)
{
    return float(day * 100 + slot) + (zone == 2 ? 0.7f : 0.0f);
}

struct Step
{
    QString at;           // "yyyy-MM-dd HH:mm:ss", local time
    bool restart = false; // restart just before this tick
    int day = -1;         // the slot expected on the wire; -1: nothing sent
    int slot = -1;
};

QDateTime at(const QString &text)
{
    return QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace

Q_DECLARE_METATYPE(Step)

class TestChronoThermostat : public QObject
{
    Q_OBJECT

private:
    static void setUpPlant(CommandRig &rig, int quantity = 1)
    {
        Runtime &rt = rig.rt;
        rt.editor.chronoThermostat = true;
        rt.plant.zoneDisplay.chronoQuantity = qint16(quantity);
        for (int zone = 0; zone < 4; ++zone) {
            const int decimals = zone == 2 ? 0 : 1;
            for (int k = 0; k < ValueTables::Quantities; ++k)
                rig.configureZoneWrite(zone, Slaves[zone], decimals, k, 6, FirstRegister * (zone + 1) + k);
            rig.addSlave(Slaves[zone]);
            for (int slot = 0; slot < ChronoSchedule::Slots; ++slot)
                for (int day = 0; day < ChronoSchedule::Days; ++day)
                    rt.chrono(slot, zone, day) = setPointOf(zone, slot, day);
        }
        rt.plant.zones.resize(3);
        rt.editor.chronoZoneEnabled[0] = true;
        rt.editor.chronoZoneEnabled[2] = true;
        rt.editor.chronoZoneEnabled[3] = true;
    }

    static QList<QByteArray> slotWrites(int day, int slot, int quantity = 1)
    {
        const int value = day * 100 + slot;
        return {PlantRig::writeRequest(1, 6, FirstRegister + quantity, quint16(value * 10)),
                PlantRig::writeRequest(3, 6, 3 * FirstRegister + quantity, quint16(value))};
    }

private slots:
    void schedule_data()
    {
        QTest::addColumn<QStringList>("holidays");
        QTest::addColumn<QList<Step>>("steps");

        QTest::newRow("each slot once, across a quarter-hour")
            << QStringList{}
            << QList<Step>{{"2026-11-16 08:07:00", false, 0, 32},
                           {"2026-11-16 08:07:01"},
                           {"2026-11-16 08:14:59"},
                           {"2026-11-16 08:15:00", false, 0, 33},
                           {"2026-11-16 08:15:01"}};
        QTest::newRow("midnight")
            << QStringList{}
            << QList<Step>{{"2026-11-16 23:59:59", false, 0, 95}, {"2026-11-17 00:00:00", false, 1, 0}};
        QTest::newRow("week boundary")
            << QStringList{}
            << QList<Step>{{"2026-11-22 23:45:00", false, 6, 95}, {"2026-11-23 00:00:01", false, 0, 0}};
        QTest::newRow("holiday runs Sunday's schedule")
            << QStringList{"18/11/2026"}
            << QList<Step>{{"2026-11-17 23:59:00", false, 1, 95},
                           {"2026-11-18 00:00:00", false, 6, 0},
                           {"2026-11-18 10:00:00", false, 6, 40},
                           {"2026-11-19 00:00:00", false, 3, 0}};
        QTest::newRow("holiday typed without leading zeros")
            << QStringList{"1/1/2027"} << QList<Step>{{"2027-01-01 12:00:00", false, 6, 48}};
        QTest::newRow("restart inside a slot")
            << QStringList{}
            << QList<Step>{{"2026-11-16 08:07:00", false, 0, 32},
                           {"2026-11-16 08:08:00"},
                           {"2026-11-16 08:09:00", true, 0, 32},
                           {"2026-11-16 08:10:00"}};
        QTest::newRow("slots skipped: the slot of the moment")
            << QStringList{}
            << QList<Step>{{"2026-11-16 08:07:00", false, 0, 32}, {"2026-11-16 09:31:00", false, 0, 38}};
        QTest::newRow("clock set back a slot")
            << QStringList{}
            << QList<Step>{{"2026-11-16 08:20:00", false, 0, 33}, {"2026-11-16 08:05:00", false, 0, 32}};
        QTest::newRow("same slot a day later")
            << QStringList{}
            << QList<Step>{{"2026-11-16 08:07:00", false, 0, 32}, {"2026-11-17 08:07:00", false, 1, 32}};
    }
    void schedule()
    {
        QFETCH(QStringList, holidays);
        QFETCH(QList<Step>, steps);

        CommandRig rig;
        setUpPlant(rig);
        rig.rt.holidays.setEntries(holidays);
        ChronoThermostat chrono(rig.rt);

        for (const Step &step : steps) {
            rig.clock.setNow(at(step.at));
            QVERIFY2(rig.clock.now().isValid(), qPrintable(step.at));
            if (step.restart)
                chrono.restart();
            const bool sent = chrono.runTick();
            const QList<QByteArray> expected = step.day < 0 ? QList<QByteArray>{} : slotWrites(step.day, step.slot);
            QVERIFY2(rig.takeRequests() == expected, qPrintable(step.at));
            QCOMPARE(sent, !expected.isEmpty());
        }
    }

    void zoneCronoSelectsTheRegister_data()
    {
        QTest::addColumn<int>("quantity");
        for (int k = 0; k < ValueTables::Quantities; ++k)
            QTest::addRow("quantity %d", k) << k;
    }
    void zoneCronoSelectsTheRegister()
    {
        QFETCH(int, quantity);
        CommandRig rig;
        setUpPlant(rig, quantity);
        ChronoThermostat chrono(rig.rt);
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:07:00")));

        chrono.runTick();
        QCOMPARE(rig.takeRequests(), slotWrites(0, 32, quantity));
    }

    // The option off sends nothing; switched on, the slot of that moment goes at once.
    void optionSwitchedOn()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.rt.editor.chronoThermostat = false;
        ChronoThermostat chrono(rig.rt);
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:07:00")));
        QVERIFY(!chrono.runTick());
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:15:00")));
        QVERIFY(!chrono.runTick());
        QVERIFY(rig.line.requests().isEmpty());

        rig.rt.editor.chronoThermostat = true;
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:16:00")));
        QVERIFY(chrono.runTick());
        QCOMPARE(rig.takeRequests(), slotWrites(0, 33));
    }

    // A set point the register cannot hold is left out; the other zones still get theirs.
    void setPointTooLarge()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.rt.chrono(32, 0, 0) = 4000.0f;
        ChronoThermostat chrono(rig.rt);
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:07:00")));

        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("zone 1 set point .*4000.* does not fit"));
        QVERIFY(chrono.runTick());
        QCOMPARE(rig.takeRequests(), slotWrites(0, 32).mid(1));
    }

    // A zone without a write register for the quantity is skipped with a warning.
    void zoneWithoutRegister()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.rt.editor.tables.ZoneWriteTable.set(0, zoneQuantityFunctionSlot(1), UnusedSlot);
        ChronoThermostat chrono(rig.rt);
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:07:00")));

        QTest::ignoreMessage(QtWarningMsg, "Chrono-thermostat: zone 1 has no write register for quantity 1");
        chrono.runTick();
        QCOMPARE(rig.takeRequests(), slotWrites(0, 32).mid(1));
    }

    // In the monitoring cycle: the first tick after a start sends, a Stop and Start inside
    // the same slot sends again.
    void runsInTheMonitoringCycle()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.rt.editor.comm.remotePeriod = 0;
        rig.rt.editor.comm.measurementPeriod = 0;
        rig.rt.editor.comm.ledPeriod = 0;
        ChronoThermostat chrono(rig.rt);
        rig.rt.cycleTasks.append(&chrono);
        Supervisor supervisor(rig.rt);
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:07:00")));

        // Ticks while an earlier slot was sent; acquisition then starts inside the next one.
        chrono.runTick();
        rig.takeRequests();
        rig.clock.setNow(at(QStringLiteral("2026-11-16 08:07:30")));
        supervisor.SetAcquisitionState(true);
        supervisor.MonitorCycle();
        QCOMPARE(rig.takeRequests(), slotWrites(0, 32));
        supervisor.MonitorCycle();
        QVERIFY(rig.takeRequests().isEmpty());

        supervisor.SetAcquisitionState(false);
        supervisor.SetAcquisitionState(true);
        supervisor.MonitorCycle();
        QCOMPARE(rig.takeRequests(), slotWrites(0, 32));
    }
};

QTEST_GUILESS_MAIN(TestChronoThermostat)
#include "tst_chronothermostat.moc"
