#include "support/runtimefixture.h"

#include "commands/clockalignment.h"

#include <QLoggingCategory>
#include <QTest>
#include <QTimeZone>

using namespace telvane;

namespace {

// Zone 1 takes the hour, minute and weekday; zone 2 the hour only, with code 8; zone 3
// has no clock keys; zone 4 has one but no instrument address.
struct ClockFixture : RuntimeFixture
{
    ClockAlignment alignment{rt.model, rt.services.master, clock};

    ClockFixture()
    {
        rt.model.plant.zones.resize(4);
        for (int zone = 0; zone < 3; ++zone)
            setRow(rt.model.editor.tables.ZoneWriteTable, zone, {zone + 1, 2});
        slaves = {1, 2, 3};
        writeFile(QStringLiteral("Telvane2.ini"), "[Zona 01]\nOra_w=6,256\nMinuti_w= 6, 257 \nGiorno_w=6,40202\n"
                                                  "[Zona 02]\nOra_w=8,512\n[Zona 04]\nOra_w=6,1024\n");
        clock.setNow(QDateTime(QDate(2026, 11, 16), QTime(9, 5)));
    }
};

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

class TestClockAlignment : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    void schedule_data()
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
    void schedule()
    {
        QFETCH(ClockSteps, steps);
        ClockFixture fx;
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
            QVERIFY2(fx.takeRequests() == (step.aligns ? writes : QStringList{}), qPrintable(now.toString()));
        }
    }

    // Summer time ends: 02:30 comes twice, the second time an hour later, and the clocks
    // are aligned again although the hour is the same.
    void summerTimeEnds()
    {
        const QTimeZone rome("Europe/Rome");
        if (!rome.isValid())
            QSKIP("No time zone data on this machine");
        ClockFixture fx;
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
        ClockFixture fx;
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

QTEST_GUILESS_MAIN(TestClockAlignment)
#include "tst_clockalignment.moc"
