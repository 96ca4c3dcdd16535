// The writes the monitoring cycle makes on time: the chrono-thermostat's set point of
// each quarter-hour slot, and the instruments' clocks aligned every hour.

#include "support/runtimefixture.h"

#include "commands/chronothermostat.h"
#include "commands/clockalignment.h"

#include <QLoggingCategory>
#include <QTest>
#include <QTimeZone>

using namespace telvane;

namespace {

// Wednesday 18 November 2026 is a holiday. Zone k is on slave k, quantity q of it
// written to register 0x10 * k + q.
// The chrono-thermostat: zone 1 follows it with 1 decimal, zone 2 does not, zone 3
// follows it with none; zone 5 is enabled but not in the plant; `Zone Crono` sends AL3.
// Each set point tells its day and slot: day * 100 + slot, plus 0.7 that zone 3's
// decimals cut away.
// The clocks: zone 1 takes the hour, minute and weekday, zone 2 the hour only, with
// code 8; zone 3 has no clock keys, zone 4 has one but no instrument address.
struct TimedFixture : RuntimeFixture
{
    ChronoThermostat chrono{rt.model, rt.services.master, clock};
    ClockAlignment alignment{rt.model, rt.services.master, clock};

    TimedFixture()
    {
        rt.model.editor.chronoThermostat = true;
        rt.model.plant.zoneDisplay.chronoQuantity = 4;
        rt.model.holidays.setEntries({QStringLiteral("18/11/2026")});
        rt.model.plant.zones.resize(4);
        for (int zone : {0, 1, 2, 4}) {
            const int r = 0x10 * (zone + 1);
            setRow(rt.model.editor.tables.ZoneWriteTable, zone,
                   {zone + 1, zone == 2 ? 0 : 1, -1, -1, 6, r, 6, r + 1, 6, r + 2, 6, r + 3, 6, r + 4});
            slaves.insert(zone + 1);
            rt.model.editor.chronoZoneEnabled[zone] = zone != 1;
            for (int slot = 0; slot < ChronoSchedule::Slots; ++slot)
                for (int day = 0; day < ChronoSchedule::Days; ++day)
                    rt.model.chrono(slot, zone, day) = float(day * 100 + slot) + (zone == 2 ? 0.7f : 0.0f);
        }
        writeFile(QStringLiteral("Telvane2.ini"), "[Zona 01]\nOra_w=6,256\nMinuti_w= 6, 257 \nGiorno_w=6,40202\n"
                                                  "[Zona 02]\nOra_w=8,512\n[Zona 04]\nOra_w=6,1024\n");
        clock.setNow(QDateTime(QDate(2026, 11, 16), QTime(9, 5)));
    }

    void setNow(const QString &dayAndTime)
    {
        clock.setNow(QDateTime::fromString("2026-11-" + dayAndTime, QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    }
};

enum class Before { Tick, Restart, OptionOff };

// A tick at "dd HH:mm:ss" of November 2026 and the slot it must send, day -1 for nothing.
struct ChronoStep
{
    QString at;
    int day;
    int slot;
    Before before = Before::Tick;
};
using ChronoSteps = QList<ChronoStep>;

// The writes of one slot of `day` (Monday 0): zone 1 with its decimal, then zone 3.
QStringList slotWrites(int day, int slot)
{
    const int value = day * 100 + slot;
    return {RuntimeFixture::request(1, 6, 0x14, value * 10), RuntimeFixture::request(3, 6, 0x34, value)};
}


// The clock runs forward to `time` (the next day when earlier), the PC clock is set to
// it, or acquisition restarts; then the tick aligns the clocks or not.
enum class Move { RunTo, SetTo, Restart };
struct ClockStep
{
    Move move;
    QTime time;
    bool aligns;
};
using ClockSteps = QList<ClockStep>;

QStringList alignmentWrites(int hour, int minute, int weekday)
{
    return {RuntimeFixture::request(1, 6, 256, hour), RuntimeFixture::request(1, 6, 257, minute),
            RuntimeFixture::request(1, 6, 40202, weekday), RuntimeFixture::request(2, 8, 512, hour)};
}

} // namespace

class TestTimedWrites : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    // Each slot once, on the first tick inside it; again after a start.
    void chronoSchedule_data()
    {
        QTest::addColumn<ChronoSteps>("steps");
        const auto at = [](const char *time, int day = -1, int slot = -1) { return ChronoStep{time, day, slot}; };
        QTest::newRow("each slot once, across a quarter-hour")
            << ChronoSteps{at("16 08:07:00", 0, 32), at("16 08:07:01"), at("16 08:14:59"), at("16 08:15:00", 0, 33)};
        QTest::newRow("week boundary") << ChronoSteps{at("22 23:45:00", 6, 95), at("23 00:00:01", 0, 0)};
        QTest::newRow("holiday runs Sunday's schedule")
            << ChronoSteps{at("17 23:59:00", 1, 95), at("18 00:00:00", 6, 0), at("18 10:00:00", 6, 40),
                           at("19 00:00:00", 3, 0)};
        QTest::newRow("restart inside a slot")
            << ChronoSteps{at("16 08:07:00", 0, 32), at("16 08:08:00"), {"16 08:09:00", 0, 32, Before::Restart}};
        QTest::newRow("clock set back a slot") << ChronoSteps{at("16 08:20:00", 0, 33), at("16 08:05:00", 0, 32)};
        QTest::newRow("option switched on")
            << ChronoSteps{{"16 08:07:00", -1, -1, Before::OptionOff}, {"16 08:15:00", -1, -1, Before::OptionOff},
                           at("16 08:16:00", 0, 33)};
    }
    void chronoSchedule()
    {
        QFETCH(ChronoSteps, steps);
        TimedFixture fx;
        for (const ChronoStep &step : steps) {
            if (step.before == Before::Restart)
                fx.chrono.acquisitionStarted();
            fx.rt.model.editor.chronoThermostat = step.before != Before::OptionOff;
            fx.setNow(step.at);
            const QStringList expected = step.day < 0 ? QStringList{} : slotWrites(step.day, step.slot);
            QCOMPARE(fx.chrono.runTick(), !expected.isEmpty());
            const QStringList sent = fx.takeRequests();
            QVERIFY2(sent == expected, qPrintable(step.at + ": sent " + sent.join(", ")));
        }
    }

    // A zone left out is logged; the other zones still get their set point.
    void chronoZoneLeftOut()
    {
        TimedFixture fx;
        fx.rt.model.chrono(32, 0, 0) = 4000.0f;
        fx.setNow(QStringLiteral("16 08:07:00"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("zone 1 set point .*4000.* does not fit"));
        QVERIFY(fx.chrono.runTick());
        QCOMPARE(fx.takeRequests(), slotWrites(0, 32).mid(1));

        fx.rt.model.editor.tables.ZoneWriteTable.set(0, zoneQuantityFunctionSlot(4), UnusedSlot);
        fx.setNow(QStringLiteral("16 08:15:00"));
        QTest::ignoreMessage(QtWarningMsg, "Chrono-thermostat: zone 1 has no write register for quantity 4");
        QVERIFY(fx.chrono.runTick());
        QCOMPARE(fx.takeRequests(), slotWrites(0, 33).mid(1));
    }

    // At the first tick, then at each new hour or when the PC clock jumps back.
    void clockSchedule_data()
    {
        QTest::addColumn<ClockSteps>("steps");
        const auto runTo = [](const char *time, bool aligns = false) { return ClockStep{Move::RunTo, QTime::fromString(time), aligns}; };
        const auto setTo = [](const char *time, bool aligns = false) { return ClockStep{Move::SetTo, QTime::fromString(time), aligns}; };
        QTest::newRow("at the first tick, then at the next hour")
            << ClockSteps{runTo("10:20:00", true), runTo("10:20:01"), runTo("10:59:59"), runTo("11:00:00", true), runTo("11:00:01")};
        QTest::newRow("PC clock set back") << ClockSteps{runTo("10:20:00", true), setTo("10:15:00", true), runTo("10:15:01")};
        QTest::newRow("PC clock corrected by thirty seconds") << ClockSteps{runTo("10:20:00", true), setTo("10:20:30")};
        QTest::newRow("acquisition restarted")
            << ClockSteps{runTo("10:20:00", true), runTo("10:20:01"), {Move::Restart, {}, true}, runTo("10:20:03")};
    }
    void clockSchedule()
    {
        QFETCH(ClockSteps, steps);
        TimedFixture fx;
        for (const ClockStep &step : steps) {
            if (step.move == Move::Restart)
                fx.alignment.acquisitionStarted();
            else if (step.move == Move::SetTo)
                fx.clock.setNow(QDateTime(fx.clock.now().date(), step.time));
            else
                fx.clock.advance((fx.clock.now().time().msecsTo(step.time) + 86'400'000) % 86'400'000);
            const QDateTime now = fx.clock.now();
            QCOMPARE(fx.alignment.runTick(), step.aligns);
            const QStringList writes = alignmentWrites(now.time().hour(), now.time().minute(), now.date().dayOfWeek());
            const QStringList sent = fx.takeRequests();
            QVERIFY2(sent == (step.aligns ? writes : QStringList{}), qPrintable(now.toString() + ": sent " + sent.join(", ")));
        }
    }

    // Summer time ends: 02:30 comes twice, the second time an hour later, and the clocks
    // are aligned again although the hour is the same.
    void summerTimeEnds()
    {
        const QTimeZone rome("Europe/Rome");
        if (!rome.isValid())
            QSKIP("No time zone data on this machine");
        TimedFixture fx;
        fx.clock.setNow(QDateTime(QDate(2026, 10, 25), QTime(1, 30), rome));
        QVERIFY(fx.alignment.runTick());
        fx.clock.advance(60 * 60 * 1000);
        QVERIFY(fx.alignment.runTick());
        fx.clock.advance(60 * 60 * 1000);
        fx.takeRequests();
        QVERIFY(fx.alignment.runTick());
        // Sunday is day 7.
        QCOMPARE(fx.takeRequests(), alignmentWrites(2, 30, 7));
    }

    // In civil mode the chrono-thermostat keeps its own time: the cycle aligns nothing,
    // but the technician's command still does. A bad key is logged and left out, a
    // silent instrument reported; the other registers are still written. Monday is day 1.
    void alignNow()
    {
        TimedFixture fx;
        fx.rt.model.mode.CivilMode = true;
        fx.slaves.remove(2);
        fx.rt.model.ini.WriteIniKey(QStringLiteral("Zona 03"), QStringLiteral("Ora_w"), QStringLiteral("6"));
        fx.rt.model.ini.WriteIniKey(QStringLiteral("Zona 03"), QStringLiteral("Minuti_w"), QStringLiteral("5,10"));
        QVERIFY(!fx.alignment.runTick());
        QVERIFY(fx.line.requests().isEmpty());

        for (const char *warning : {"[Zona 03] Ora_w = \"6\" is not \"function,register\": clock not written",
                                    "[Zona 03] Minuti_w = \"5,10\" needs function code 6 or 8: clock not written",
                                    "Clock alignment: zone 2 Ora_w: the instrument echoed -99999 for 9",
                                    "Clock alignment: 1 of 4 writes not confirmed"})
            QTest::ignoreMessage(QtWarningMsg, warning);
        const ClockAlignment::Result result = fx.alignment.alignNow();
        QVERIFY(result.sent == 4 && result.failed == 1);
        QCOMPARE(fx.takeRequests(), alignmentWrites(9, 5, 1));
    }
};

QTEST_GUILESS_MAIN(TestTimedWrites)
#include "tst_timedwrites.moc"
