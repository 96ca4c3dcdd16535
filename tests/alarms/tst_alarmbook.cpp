#include "alarms/alarmbook.h"
#include "base/clock.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::AlarmItemKind)

class TestAlarmBook : public QObject
{
    Q_OBJECT

private:
    ManualClock m_clock{QDateTime(QDate(2026, 11, 14), QTime(10, 15, 0))};

    static QString nameOf(AlarmItemKind kind, int index)
    {
        switch (kind) {
        case AlarmItemKind::Zone:
            return QStringLiteral("Zona%1").arg(index);
        case AlarmItemKind::Switch:
            return QStringLiteral("Int%1").arg(index);
        case AlarmItemKind::Led:
            return QStringLiteral("Led%1").arg(index);
        }
        return {};
    }

    static void report(AlarmBook &book, AlarmItemKind kind, int index, int times)
    {
        for (int i = 0; i < times; ++i) {
            switch (kind) {
            case AlarmItemKind::Zone:
                book.ReportZoneFailure(index);
                break;
            case AlarmItemKind::Switch:
                book.ReportSwitchFailure(index);
                break;
            case AlarmItemKind::Led:
                book.ReportLedFailure(index);
                break;
            }
        }
    }

    static QStringList listOf(const AlarmBook &book, AlarmItemKind kind)
    {
        return kind == AlarmItemKind::Zone ? book.zoneEntries() : book.switchEntries();
    }

private slots:
    void init() { m_clock.setNow(QDateTime(QDate(2026, 11, 14), QTime(10, 15, 0))); }

    void sixthFailureListsOnce_data()
    {
        QTest::addColumn<AlarmItemKind>("kind");
        QTest::addColumn<int>("failures");
        QTest::addColumn<int>("entries");

        for (auto [kind, label] : {std::pair{AlarmItemKind::Zone, "zone"}, std::pair{AlarmItemKind::Switch, "switch"},
                                   std::pair{AlarmItemKind::Led, "LED"}}) {
            QTest::addRow("%s 5", label) << kind << 5 << 0;
            QTest::addRow("%s 6", label) << kind << 6 << 1;
            QTest::addRow("%s 7", label) << kind << 7 << 1;
            QTest::addRow("%s 40", label) << kind << 40 << 1;
        }
    }

    void sixthFailureListsOnce()
    {
        QFETCH(AlarmItemKind, kind);
        QFETCH(int, failures);
        QFETCH(int, entries);

        AlarmBook book(m_clock, nameOf);
        QSignalSpy blink(&book, &AlarmBook::alarmBlinkRequested);
        QSignalSpy added(&book, &AlarmBook::entryAdded);
        report(book, kind, 3, failures);

        QCOMPARE(listOf(book, kind).size(), entries);
        QCOMPARE(added.size(), entries);
        QCOMPARE(book.AlarmPending(), entries > 0);
        QCOMPARE(book.AlarmReported(kind, 3), entries > 0);
        QCOMPARE(book.FailCount(kind, 3), failures);
        QCOMPARE(blink.size(), entries);
        if (entries > 0)
            QCOMPARE(blink.first().first().toBool(), true);
        // The other list and the other items are untouched.
        const AlarmItemKind other = kind == AlarmItemKind::Zone ? AlarmItemKind::Switch : AlarmItemKind::Zone;
        QVERIFY(listOf(book, other).isEmpty());
        QCOMPARE(book.FailCount(kind, 2), 0);
    }

    void entryTextAndListOrder()
    {
        AlarmBook book(m_clock, nameOf);
        report(book, AlarmItemKind::Led, 0, 6);
        m_clock.advance(61'000);
        report(book, AlarmItemKind::Switch, 9, 6);
        report(book, AlarmItemKind::Zone, 29, 6);

        QCOMPARE(book.zoneEntries(), QStringList{"Zona29 (14/11/2026 10:16:01)"});
        QCOMPARE(book.switchEntries(),
                 (QStringList{"Led0 (14/11/2026 10:15:00)", "Int9 (14/11/2026 10:16:01)"}));
        QCOMPARE(book.Lst_AllarmiI()->rowCount(), 2);
        QCOMPARE(book.Lst_AllarmiZ()->data(book.Lst_AllarmiZ()->index(0)).toString(),
                 QStringLiteral("Zona29 (14/11/2026 10:16:01)"));
    }

    void nameIsLookedUpWhenListed()
    {
        QString name = QStringLiteral("Soggiorno");
        AlarmBook book(m_clock, [&name](AlarmItemKind, int) { return name; });
        report(book, AlarmItemKind::Zone, 0, 5);
        name = QStringLiteral("Cucina");
        book.ReportZoneFailure(0);
        QCOMPARE(book.zoneEntries(), QStringList{"Cucina (14/11/2026 10:15:00)"});
    }

    void goodReadRestartsTheCount()
    {
        AlarmBook book(m_clock, nameOf);
        report(book, AlarmItemKind::Zone, 4, 5);
        book.clearFailCount(AlarmItemKind::Zone, 4);
        report(book, AlarmItemKind::Zone, 4, 5);
        QVERIFY(book.zoneEntries().isEmpty());
        book.ReportZoneFailure(4);
        QCOMPARE(book.zoneEntries().size(), 1);
    }

    void acknowledgementKeepsLeds_data()
    {
        QTest::addColumn<AlarmItemKind>("kind");
        QTest::addColumn<int>("countAfterReset");
        QTest::addColumn<int>("entriesAfterSixMore");

        QTest::newRow("zone starts again") << AlarmItemKind::Zone << 0 << 1;
        QTest::newRow("switch starts again") << AlarmItemKind::Switch << 0 << 1;
        QTest::newRow("LED stays reported") << AlarmItemKind::Led << 6 << 0;
    }

    void acknowledgementKeepsLeds()
    {
        QFETCH(AlarmItemKind, kind);
        QFETCH(int, countAfterReset);
        QFETCH(int, entriesAfterSixMore);

        AlarmBook book(m_clock, nameOf);
        report(book, kind, 1, 6);
        QSignalSpy blink(&book, &AlarmBook::alarmBlinkRequested);
        QSignalSpy reset(&book, &AlarmBook::alarmsReset);
        book.ResetAlarms();

        QCOMPARE(reset.size(), 1);
        QCOMPARE(blink.size(), 1);
        QCOMPARE(blink.first().first().toBool(), false);
        QVERIFY(!book.AlarmPending());
        QVERIFY(book.zoneEntries().isEmpty());
        QVERIFY(book.switchEntries().isEmpty());
        QCOMPARE(book.FailCount(kind, 1), countAfterReset);
        QCOMPARE(book.AlarmReported(kind, 1), kind == AlarmItemKind::Led);

        report(book, kind, 1, 5);
        QVERIFY(listOf(book, kind).isEmpty());
        book.ResetAlarms();
        report(book, kind, 1, 6);
        QCOMPARE(listOf(book, kind).size(), entriesAfterSixMore);
        QCOMPARE(book.AlarmPending(), entriesAfterSixMore > 0);
    }

    void countStopsAtSixteenBitTop()
    {
        AlarmBook book(m_clock, nameOf);
        report(book, AlarmItemKind::Switch, 0, 32767 + 10);
        QCOMPARE(book.FailCount(AlarmItemKind::Switch, 0), 32767);
        QCOMPARE(book.switchEntries().size(), 1);
    }

    void indexOutsideThePlantIsIgnored_data()
    {
        QTest::addColumn<AlarmItemKind>("kind");
        QTest::addColumn<int>("index");
        QTest::newRow("zone 30") << AlarmItemKind::Zone << 30;
        QTest::newRow("zone -1") << AlarmItemKind::Zone << -1;
        QTest::newRow("switch 10") << AlarmItemKind::Switch << 10;
        QTest::newRow("LED 10") << AlarmItemKind::Led << 10;
    }

    void indexOutsideThePlantIsIgnored()
    {
        QFETCH(AlarmItemKind, kind);
        QFETCH(int, index);
        AlarmBook book(m_clock, nameOf);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^No .* with index"));
        report(book, kind, index, 1);
        QVERIFY(book.zoneEntries().isEmpty());
        QVERIFY(book.switchEntries().isEmpty());
        QVERIFY(!book.AlarmPending());
    }
};

QTEST_GUILESS_MAIN(TestAlarmBook)
#include "tst_alarmbook.moc"
