#include "storage/chronoslots.h"

#include <QTest>

using namespace telvane;

class TestChronoSlots : public QObject
{
    Q_OBJECT

private slots:
    // Every slot's label names the start of the quarter it holds.
    void labelsAndSlotsAgree()
    {
        for (int slot = 0; slot < ChronoDaySlots; ++slot) {
            const QTime start = QTime::fromString(chronoSlotLabel(slot), "HH:mm");
            QVERIFY2(start.isValid(), qPrintable(chronoSlotLabel(slot)));
            QCOMPARE(chronoSlotAt(start), slot);
            QCOMPARE(chronoSlotAt(start.addMSecs(ChronoSlotMinutes * 60000 - 1)), slot);
        }
        QCOMPARE(chronoSlotLabel(50), QStringLiteral("12:30"));
    }

    void outsideTheDay()
    {
        QCOMPARE(chronoSlotLabel(ChronoDaySlots), QString());
        QCOMPARE(chronoSlotLabel(-1), QString());
        QCOMPARE(chronoSlotAt(QTime()), -1);
    }
};

QTEST_GUILESS_MAIN(TestChronoSlots)
#include "tst_chronoslots.moc"
