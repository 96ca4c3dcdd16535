#include "storage/holidaylist.h"

#include <QTest>

using namespace telvane;

class TestHolidayList : public QObject
{
    Q_OBJECT

private slots:
    void containsDate_data()
    {
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<bool>("expected");
        const QStringList year{"01/01/2026", "25/12/2026"};
        QTest::newRow("listed") << year << QDate(2026, 12, 25) << true;
        QTest::newRow("same day, other year") << year << QDate(2027, 12, 25) << false;
        QTest::newRow("day and month swapped") << QStringList{"05/01/2026"} << QDate(2026, 5, 1) << false;
        QTest::newRow("typed without leading zeros") << QStringList{"5/1/2026"} << QDate(2026, 1, 5) << true;
        QTest::newRow("blanks around an entry") << QStringList{" 05/01/2026 "} << QDate(2026, 1, 5) << true;
        QTest::newRow("entry that is no date") << QStringList{"Natale"} << QDate(2026, 12, 25) << false;
        QTest::newRow("empty list") << QStringList() << QDate(2026, 1, 1) << false;
        QTest::newRow("invalid date is never a holiday") << QStringList{"", "00/00/0000"} << QDate() << false;
    }
    void containsDate()
    {
        QFETCH(QStringList, entries);
        QFETCH(QDate, date);
        QFETCH(bool, expected);
        HolidayList list;
        list.setEntries(entries);
        QCOMPARE(list.containsDate(date), expected);
    }

    void dateTextIsWhatContainsDateFinds()
    {
        const QDate date(2026, 8, 15);
        QCOMPARE(HolidayList::dateText(date), QStringLiteral("15/08/2026"));
        HolidayList list;
        list.setEntries({HolidayList::dateText(date)});
        QVERIFY(list.containsDate(date));
    }

    void selectionFollowsTheEntries()
    {
        HolidayList list;
        QCOMPARE(list.selectedRow(), -1);
        list.setEntries({"01/01/2026", "06/01/2026"});
        QCOMPARE(list.selectedRow(), 0);

        // The editor's list view moves the selection through the shared selection model.
        list.selectionModel()->setCurrentIndex(list.index(1), QItemSelectionModel::ClearAndSelect);
        QCOMPARE(list.selectedRow(), 1);
        // Deleting the selected holiday hands the selection to the one above it.
        QVERIFY(list.removeRows(1, 1));
        QCOMPARE(list.selectedRow(), 0);
        QVERIFY(list.removeRows(0, 1));
        QCOMPARE(list.selectedRow(), -1);

        list.setEntries({});
        QCOMPARE(list.selectedRow(), -1);
    }
};

QTEST_GUILESS_MAIN(TestHolidayList)
#include "tst_holidaylist.moc"
