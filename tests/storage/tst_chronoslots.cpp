#include "storage/chronoschedule.h"
#include "storage/chronoslots.h"
#include "support/datarows.h"

using namespace telvane;

class TestChronoSlots : public QObject
{
    Q_OBJECT

private slots:
    // slot | label
    void labels_data() { addRows({"0|00:00", "50|12:30", "95|23:45", "96|", "-1|"}); }
    void labels()
    {
        const QStringList cells = rowCells();
        QCOMPARE(chronoSlotLabel(cells[0].toInt()), cells[1]);
    }

    // time | slot
    void slotOfTime_data() { addRows({"00:14:59.999|0", "14:44:10.000|58", "23:59:59.999|95", "|-1"}); }
    void slotOfTime()
    {
        const QStringList cells = rowCells();
        QCOMPARE(chronoSlotAt(QTime::fromString(cells[0], "HH:mm:ss.zzz")), cells[1].toInt());
    }

    // Every slot's label names the start of the quarter it holds, and the day's slots fit
    // the schedule with its one spare slot.
    void labelsAndSlotsAgree()
    {
        QCOMPARE(ChronoDaySlots + 1, ChronoSchedule::Slots);
        for (int slot = 0; slot < ChronoDaySlots; ++slot) {
            const QTime start = QTime::fromString(chronoSlotLabel(slot), "HH:mm");
            QVERIFY(start.isValid());
            QCOMPARE(chronoSlotAt(start), slot);
            QCOMPARE(chronoSlotAt(start.addSecs(ChronoSlotMinutes * 60 - 1)), slot);
        }
    }
};

QTEST_GUILESS_MAIN(TestChronoSlots)
#include "tst_chronoslots.moc"
