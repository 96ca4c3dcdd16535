#include "storage/chronoschedule.h"
#include "storage/chronoslots.h"

#include <QTest>

using namespace telvane;

class TestChronoSlots : public QObject
{
    Q_OBJECT

private slots:
    void labels_data()
    {
        QTest::addColumn<int>("slot");
        QTest::addColumn<QString>("label");
        QTest::newRow("first") << 0 << "00:00";
        QTest::newRow("second") << 1 << "00:15";
        QTest::newRow("noon") << 48 << "12:00";
        QTest::newRow("half past") << 50 << "12:30";
        QTest::newRow("last") << 95 << "23:45";
        QTest::newRow("the unused slot") << 96 << "";
        QTest::newRow("negative") << -1 << "";
    }
    void labels()
    {
        QFETCH(int, slot);
        QFETCH(QString, label);
        QCOMPARE(chronoSlotLabel(slot), label);
    }

    void slotOfTime_data()
    {
        QTest::addColumn<QTime>("time");
        QTest::addColumn<int>("slot");
        QTest::newRow("midnight") << QTime(0, 0) << 0;
        QTest::newRow("end of the first quarter") << QTime(0, 14, 59, 999) << 0;
        QTest::newRow("second quarter") << QTime(0, 15) << 1;
        QTest::newRow("afternoon") << QTime(14, 44, 10) << 58;
        QTest::newRow("last second of the day") << QTime(23, 59, 59) << 95;
        QTest::newRow("invalid") << QTime() << -1;
    }
    void slotOfTime()
    {
        QFETCH(QTime, time);
        QFETCH(int, slot);
        QCOMPARE(chronoSlotAt(time), slot);
    }

    // Every slot's label names the start of the quarter it holds, and the day's slots fit
    // the schedule with its one spare slot.
    void labelsAndSlotsAgree()
    {
        QCOMPARE(ChronoDaySlots + 1, ChronoSchedule::Slots);
        for (int slot = 0; slot < ChronoDaySlots; ++slot) {
            const QTime start = QTime::fromString(chronoSlotLabel(slot), QStringLiteral("HH:mm"));
            QVERIFY(start.isValid());
            QCOMPARE(chronoSlotAt(start), slot);
            QCOMPARE(chronoSlotAt(start.addSecs(ChronoSlotMinutes * 60 - 1)), slot);
        }
    }
};

QTEST_GUILESS_MAIN(TestChronoSlots)
#include "tst_chronoslots.moc"
