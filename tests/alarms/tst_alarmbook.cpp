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

const std::pair<AlarmItemKind, const char *> Kinds[] = {
    {AlarmItemKind::Zone, "zone"}, {AlarmItemKind::Switch, "switch"}, {AlarmItemKind::Led, "LED"}};

} // namespace

class TestAlarmBook : public QObject
{
    Q_OBJECT

    ManualClock m_clock{QDateTime(QDate(2026, 11, 14), QTime(10, 15, 0))};

private slots:
    void sixthFailureListsOnce_data()
    {
        QTest::addColumn<AlarmItemKind>("kind");
        QTest::addColumn<int>("failures");
        for (auto [kind, name] : Kinds)
            for (int failures : {5, 6})
                QTest::addRow("%s %d", name, failures) << kind << failures;
    }
    void sixthFailureListsOnce()
    {
        QFETCH(AlarmItemKind, kind);
        QFETCH(int, failures);
        const bool listed = failures >= 6;
        AlarmBook book(m_clock, nameOf);
        QSignalSpy blink(&book, &AlarmBook::alarmBlinkRequested);

        report(book, kind, 3, failures);
        QCOMPARE(listOf(book, kind), listed ? QStringList{nameOf(kind, 3) + " (14/11/2026 10:15:00)"} : QStringList{});
        QCOMPARE(book.AlarmPending(), listed);
        QCOMPARE(book.FailCount(kind, 3), failures);
        QCOMPARE(blink.size(), listed ? 1 : 0);
        if (listed)
            QCOMPARE(blink.first().first().toBool(), true);
        QCOMPARE(book.FailCount(kind, 2), 0);
    }

    // Entries keep their order and the time of listing; the name is looked up then.
    void entriesInOrderUnderTheCurrentName()
    {
        QString zoneName = QStringLiteral("Soggiorno");
        AlarmBook book(m_clock, [&](AlarmItemKind kind, int index) {
            return kind == AlarmItemKind::Zone ? zoneName : nameOf(kind, index);
        });
        QSignalSpy added(&book, &AlarmBook::entryAdded);
        report(book, AlarmItemKind::Led, 0, 6);
        report(book, AlarmItemKind::Zone, 29, 5);
        m_clock.advance(61'000);
        zoneName = QStringLiteral("Cucina");
        report(book, AlarmItemKind::Switch, 9, 6);
        report(book, AlarmItemKind::Zone, 29, 1);

        QCOMPARE(book.zoneEntries(), QStringList{"Cucina (14/11/2026 10:16:01)"});
        QCOMPARE(book.switchEntries(), (QStringList{"Led0 (14/11/2026 10:15:00)", "Int9 (14/11/2026 10:16:01)"}));
        QCOMPARE(book.Lst_AllarmiI()->rowCount(), 2);
        QCOMPARE(added.size(), 3);
        const QVariantList lastAdded{QVariant::fromValue(AlarmItemKind::Zone), 29, "Cucina (14/11/2026 10:16:01)"};
        QCOMPARE(added.last(), lastAdded);
    }

    void goodReadRestartsTheCount()
    {
        AlarmBook book(m_clock, nameOf);
        report(book, AlarmItemKind::Zone, 4, 5);
        book.clearFailCount(AlarmItemKind::Zone, 4);
        report(book, AlarmItemKind::Zone, 4, 5);
        QVERIFY(book.zoneEntries().isEmpty());
        report(book, AlarmItemKind::Zone, 4, 1);
        QCOMPARE(book.zoneEntries().size(), 1);
    }

    // Zones and switches start counting again; a LED stays reported and is never listed again.
    void acknowledgement_data()
    {
        QTest::addColumn<AlarmItemKind>("kind");
        for (auto [kind, name] : Kinds)
            QTest::newRow(name) << kind;
    }
    void acknowledgement()
    {
        QFETCH(AlarmItemKind, kind);
        const bool led = kind == AlarmItemKind::Led;
        AlarmBook book(m_clock, nameOf);
        report(book, kind, 1, 6);
        QSignalSpy blink(&book, &AlarmBook::alarmBlinkRequested);

        book.ResetAlarms();
        QCOMPARE(blink.size(), 1);
        QCOMPARE(blink.first().first().toBool(), false);
        QVERIFY(!book.AlarmPending());
        QVERIFY(listOf(book, kind).isEmpty());
        QCOMPARE(book.FailCount(kind, 1), led ? 6 : 0);

        report(book, kind, 1, 5);
        QVERIFY(listOf(book, kind).isEmpty());
        report(book, kind, 1, 1);
        QCOMPARE(listOf(book, kind).size(), led ? 0 : 1);
        QCOMPARE(book.AlarmPending(), !led);
    }

    void badIndexIsIgnoredAndCountStopsAtTheTop()
    {
        AlarmBook book(m_clock, nameOf);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^No zone with index 30"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^No LED with index -1"));
        book.ReportZoneFailure(30);
        book.ReportLedFailure(-1);
        QVERIFY(!book.AlarmPending());

        report(book, AlarmItemKind::Switch, 0, 32767 + 10);
        QCOMPARE(book.FailCount(AlarmItemKind::Switch, 0), 32767);
        QCOMPARE(book.switchEntries().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestAlarmBook)
#include "tst_alarmbook.moc"
