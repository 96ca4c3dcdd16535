#include "commandrig.h"

#include "commands/clockalignment.h"

#include <QLoggingCategory>
#include <QTest>
#include <QTimeZone>

using namespace telvane;

namespace {

struct ClockStep
{
    enum Kind {
        AdvanceTo, // wall and monotonic time move together up to `time` (the next day when earlier)
        SetWall,   // the PC clock is set to `time` on the same day; monotonic time stands
        Restart,   // acquisition restarts
    };
    Kind kind;
    QString time; // "HH:mm:ss"
    bool aligns = false;
};

} // namespace

Q_DECLARE_METATYPE(ClockStep)

class TestClockAlignment : public QObject
{
    Q_OBJECT

private:
    // Zone 1: hour, minute and weekday registers; zone 2: the hour only, with code 8;
    // zone 3: no clock keys; zone 4: clock keys but no instrument address.
    static void setUpPlant(CommandRig &rig)
    {
        Runtime &rt = rig.rt;
        rt.plant.zones.resize(4);
        ZoneTable &table = rt.editor.tables.ZoneWriteTable;
        for (int zone = 0; zone < 3; ++zone) {
            table.set(zone, ZoneSlot::Address, qint16(zone + 1));
            table.set(zone, ZoneSlot::Decimals, 2);
            rig.addSlave(zone + 1);
        }
        rt.ini.WriteIniKey(QStringLiteral("Zona 01"), QStringLiteral("Ora_w"), QStringLiteral("6,200"));
        rt.ini.WriteIniKey(QStringLiteral("Zona 01"), QStringLiteral("Minuti_w"), QStringLiteral(" 6, 201 "));
        rt.ini.WriteIniKey(QStringLiteral("Zona 01"), QStringLiteral("Giorno_w"), QStringLiteral("6,40202"));
        rt.ini.WriteIniKey(QStringLiteral("Zona 02"), QStringLiteral("Ora_w"), QStringLiteral("8,300"));
        rt.ini.WriteIniKey(QStringLiteral("Zona 04"), QStringLiteral("Ora_w"), QStringLiteral("6,400"));
    }

    static QList<QByteArray> alignmentWrites(int hour, int minute, int weekday)
    {
        return {PlantRig::writeRequest(1, 6, 200, quint16(hour)), PlantRig::writeRequest(1, 6, 201, quint16(minute)),
                PlantRig::writeRequest(1, 6, 40202, quint16(weekday)),
                PlantRig::writeRequest(2, 8, 300, quint16(hour))};
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    void bytes()
    {
        CommandRig rig;
        setUpPlant(rig);
        ClockAlignment alignment(rig.rt);
        // Saturday.
        rig.clock.setNow(QDateTime(QDate(2026, 11, 14), QTime(22, 20, 9)));

        QVERIFY(alignment.runTick());
        QCOMPARE(rig.takeRequests(), alignmentWrites(22, 20, 6));
    }

    void weekdays_data()
    {
        QTest::addColumn<QDate>("date");
        QTest::addColumn<int>("weekday");
        QTest::newRow("Monday") << QDate(2026, 11, 16) << 1;
        QTest::newRow("Sunday") << QDate(2026, 11, 22) << 7;
    }
    void weekdays()
    {
        QFETCH(QDate, date);
        QFETCH(int, weekday);
        CommandRig rig;
        setUpPlant(rig);
        ClockAlignment alignment(rig.rt);
        rig.clock.setNow(QDateTime(date, QTime(0, 0)));
        alignment.runTick();
        QCOMPARE(rig.takeRequests(), alignmentWrites(0, 0, weekday));
    }

    void schedule_data()
    {
        QTest::addColumn<QTime>("start");
        QTest::addColumn<QList<ClockStep>>("steps");

        QTest::newRow("at the first tick, then at the next hour")
            << QTime(10, 20)
            << QList<ClockStep>{{ClockStep::AdvanceTo, "10:20:00", true},
                                {ClockStep::AdvanceTo, "10:20:01", false},
                                {ClockStep::AdvanceTo, "10:59:59", false},
                                {ClockStep::AdvanceTo, "11:00:00", true},
                                {ClockStep::AdvanceTo, "11:00:01", false}};
        QTest::newRow("midnight") << QTime(23, 59, 59)
                                  << QList<ClockStep>{{ClockStep::AdvanceTo, "23:59:59", true},
                                                      {ClockStep::AdvanceTo, "00:00:00", true}};
        QTest::newRow("PC clock set back five minutes")
            << QTime(10, 20)
            << QList<ClockStep>{{ClockStep::AdvanceTo, "10:20:00", true},
                                {ClockStep::SetWall, "10:15:00", true},
                                {ClockStep::AdvanceTo, "10:15:01", false}};
        QTest::newRow("PC clock set forward two minutes")
            << QTime(10, 20)
            << QList<ClockStep>{{ClockStep::AdvanceTo, "10:20:00", true}, {ClockStep::SetWall, "10:22:00", true}};
        QTest::newRow("PC clock corrected by thirty seconds")
            << QTime(10, 20)
            << QList<ClockStep>{{ClockStep::AdvanceTo, "10:20:00", true}, {ClockStep::SetWall, "10:20:30", false}};
        QTest::newRow("acquisition restarted")
            << QTime(10, 20)
            << QList<ClockStep>{{ClockStep::AdvanceTo, "10:20:00", true},
                                {ClockStep::AdvanceTo, "10:20:01", false},
                                {ClockStep::Restart, {}, true},
                                {ClockStep::AdvanceTo, "10:20:03", false}};
    }
    void schedule()
    {
        QFETCH(QTime, start);
        QFETCH(QList<ClockStep>, steps);

        CommandRig rig;
        setUpPlant(rig);
        ClockAlignment alignment(rig.rt);
        rig.clock.setNow(QDateTime(QDate(2026, 11, 16), start));

        for (int i = 0; i < steps.size(); ++i) {
            const ClockStep &step = steps[i];
            const QTime time = QTime::fromString(step.time, QStringLiteral("HH:mm:ss"));
            switch (step.kind) {
            case ClockStep::AdvanceTo: {
                QDateTime target(rig.clock.now().date(), time);
                if (target < rig.clock.now())
                    target = target.addDays(1);
                rig.clock.advance(rig.clock.now().msecsTo(target));
                break;
            }
            case ClockStep::SetWall:
                rig.clock.setNow(QDateTime(rig.clock.now().date(), time));
                break;
            case ClockStep::Restart:
                alignment.acquisitionStarted();
                break;
            }
            const QDateTime now = rig.clock.now();
            QCOMPARE(alignment.runTick(), step.aligns);
            const QList<QByteArray> expected =
                step.aligns ? alignmentWrites(now.time().hour(), now.time().minute(), now.date().dayOfWeek())
                            : QList<QByteArray>{};
            QVERIFY2(rig.takeRequests() == expected, qPrintable(QStringLiteral("step %1").arg(i)));
        }
    }

    // Summer time ends: 02:30 comes twice, the second time an hour later; the clocks
    // are aligned again although the hour is the same.
    void summerTimeEnds()
    {
        const QTimeZone rome("Europe/Rome");
        if (!rome.isValid())
            QSKIP("No time zone data on this machine");
        CommandRig rig;
        setUpPlant(rig);
        ClockAlignment alignment(rig.rt);
        rig.clock.setNow(QDateTime(QDate(2026, 10, 25), QTime(1, 30), rome));

        QVERIFY(alignment.runTick());
        rig.takeRequests();
        rig.clock.advance(60 * 60 * 1000);
        const QDateTime summer = rig.clock.now();
        QVERIFY(alignment.runTick());
        rig.takeRequests();
        rig.clock.advance(60 * 60 * 1000);
        const QDateTime winter = rig.clock.now();
        QCOMPARE(winter.time().hour(), summer.time().hour());
        QVERIFY(winter.offsetFromUtc() != summer.offsetFromUtc());
        QVERIFY(alignment.runTick());
        QCOMPARE(rig.takeRequests(), alignmentWrites(2, 30, 7));
        rig.clock.advance(1000);
        QVERIFY(!alignment.runTick());
    }

    // The chrono-thermostat's mode keeps its own time: no alignment from the cycle, but
    // the technician's command still works.
    void civilMode()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.rt.mode.CivilMode = true;
        ClockAlignment alignment(rig.rt);
        rig.clock.setNow(QDateTime(QDate(2026, 11, 16), QTime(9, 5)));

        QVERIFY(!alignment.runTick());
        QVERIFY(rig.line.requests().isEmpty());

        const ClockAlignment::Result result = alignment.alignNow();
        QCOMPARE(result.sent, 4);
        QCOMPARE(result.failed, 0);
        QCOMPARE(rig.takeRequests(), alignmentWrites(9, 5, 1));
    }

    void badKeys_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("problem");
        QTest::newRow("no comma") << "Ora_w" << "6" << "is not \"function,register\": clock not written";
        QTest::newRow("register too large") << "Ora_w" << "6,70000"
                                            << "is not \"function,register\": clock not written";
        QTest::newRow("coil") << "Minuti_w" << "5,10" << "needs function code 6 or 8: clock not written";
        QTest::newRow("read code") << "Giorno_w" << "3,12" << "needs function code 6 or 8: clock not written";
    }
    // A bad key is logged and left out; the other registers are still written.
    void badKeys()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        QFETCH(QString, problem);
        CommandRig rig;
        setUpPlant(rig);
        rig.rt.ini.WriteIniKey(QStringLiteral("Zona 03"), key, text);
        ClockAlignment alignment(rig.rt);
        rig.clock.setNow(QDateTime(QDate(2026, 11, 16), QTime(9, 5)));

        QTest::ignoreMessage(QtWarningMsg, qPrintable(QStringLiteral("[Zona 03] %1 = \"%2\" %3").arg(key, text, problem)));
        QCOMPARE(alignment.alignNow().sent, 4);
        QCOMPARE(rig.takeRequests(), alignmentWrites(9, 5, 1));
    }

    void instrumentSilent()
    {
        CommandRig rig;
        setUpPlant(rig);
        rig.removeSlave(2);
        ClockAlignment alignment(rig.rt);
        rig.clock.setNow(QDateTime(QDate(2026, 11, 16), QTime(9, 5)));

        QTest::ignoreMessage(QtWarningMsg, "Clock alignment: zone 2 Ora_w: the instrument echoed -99999 for 9");
        QTest::ignoreMessage(QtWarningMsg, "Clock alignment: 1 of 4 writes not confirmed");
        const ClockAlignment::Result result = alignment.alignNow();
        QCOMPARE(result.sent, 4);
        QCOMPARE(result.failed, 1);
    }
};

QTEST_GUILESS_MAIN(TestClockAlignment)
#include "tst_clockalignment.moc"
