#include "alarms/alarmbook.h"
#include "base/clock.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::AlarmItemKind)

namespace {

QString nameOf(AlarmItemKind kind, int index)
{
    static const char *const prefixes[] = {"Zona", "Int", "Led"};
    return QLatin1String(prefixes[int(kind)]) + QString::number(index);
}

void report(AlarmBook &book, AlarmItemKind kind, int index, int times)
{
    using Report = void (AlarmBook::*)(int, const QString &);
    static const Report reports[] = {&AlarmBook::ReportZoneFailure, &AlarmBook::ReportSwitchFailure,
                                     &AlarmBook::ReportLedFailure};
    for (int i = 0; i < times; ++i)
        (book.*reports[int(kind)])(index, QString());
}

// LEDs share the switches' list.
QStringList listOf(const AlarmBook &book, AlarmItemKind kind)
{
    return kind == AlarmItemKind::Zone ? book.zoneEntries() : book.switchEntries();
}

void addKinds()
{
    QTest::addColumn<AlarmItemKind>("kind");
    QTest::newRow("zone") << AlarmItemKind::Zone;
    QTest::newRow("switch") << AlarmItemKind::Switch;
    QTest::newRow("LED") << AlarmItemKind::Led;
}

} // namespace

class TestAlarmBook : public QObject
{
    Q_OBJECT

    ManualClock m_clock{QDateTime(QDate(2026, 11, 14), QTime(10, 15, 0))};

private slots:
    // The sixth failure lists the item once and blinks. On acknowledgement zones and
    // switches count again from nothing; a LED stays reported and is never listed again.
    void listedAtTheSixthFailureUntilAcknowledged_data() { addKinds(); }
    void listedAtTheSixthFailureUntilAcknowledged()
    {
        QFETCH(AlarmItemKind, kind);
        const bool led = kind == AlarmItemKind::Led;
        AlarmBook book(m_clock, nameOf);
        QSignalSpy blink(&book, &AlarmBook::alarmBlinkRequested);
        report(book, kind, 3, 5);
        QVERIFY(listOf(book, kind).isEmpty() && !book.AlarmPending());
        report(book, kind, 3, 2);
        QCOMPARE(listOf(book, kind), QStringList{nameOf(kind, 3) + " (14/11/2026 10:15:00)"});
        QVERIFY(book.AlarmPending());
        QCOMPARE(QList<QVariantList>(blink), QList<QVariantList>{{true}});

        book.ResetAlarms();
        QCOMPARE(blink.last(), QVariantList{false});
        QVERIFY(!book.AlarmPending() && listOf(book, kind).isEmpty());
        report(book, kind, 3, 5);
        QVERIFY(listOf(book, kind).isEmpty());
        report(book, kind, 3, 1);
        QCOMPARE(listOf(book, kind).size(), led ? 0 : 1);
        QCOMPARE(book.AlarmPending(), !led);
    }

    // Entries keep their order and the time of listing; the name is looked up then.
    void entriesInOrderUnderTheCurrentName()
    {
        QString zoneName = QStringLiteral("Soggiorno");
        AlarmBook book(m_clock, [&](AlarmItemKind kind, int index) {
            return kind == AlarmItemKind::Zone ? zoneName : nameOf(kind, index);
        });
        report(book, AlarmItemKind::Led, 0, 6);
        report(book, AlarmItemKind::Zone, 29, 5);
        m_clock.advance(61'000);
        zoneName = QStringLiteral("Cucina");
        report(book, AlarmItemKind::Switch, 9, 6);
        report(book, AlarmItemKind::Zone, 29, 1);
        QCOMPARE(book.zoneEntries(), QStringList{"Cucina (14/11/2026 10:16:01)"});
        QCOMPARE(book.switchEntries(), (QStringList{"Led0 (14/11/2026 10:15:00)", "Int9 (14/11/2026 10:16:01)"}));
    }

    // The count stops at the top of the old 16-bit counter instead of wrapping round.
    void countStopsAtTheTop()
    {
        AlarmBook book(m_clock, nameOf);
        report(book, AlarmItemKind::Switch, 0, 32767 + 10);
        QCOMPARE(book.FailCount(AlarmItemKind::Switch, 0), 32767);
        QCOMPARE(book.switchEntries().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestAlarmBook)
#include "tst_alarmbook.moc"
