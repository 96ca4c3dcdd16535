#include "alarms/alarmbook.h"
#include "alarms/commerrortable.h"

#include "base/clock.h"
#include "config_editor/registertables.h"
#include "storage/plantconfig.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::AlarmItemKind)

namespace {

// A plant of two zones, one switch and one LED, with the book and the alarms window's
// table over them. The book names zones by `zoneName`, the others "Int3", "Led3".
struct Rig
{
    Rig()
    {
        plant.zones.resize(2);
        plant.zones[0].name = QStringLiteral("Forno 1");
        plant.zones[1].name = QStringLiteral("Forno 2");
        plant.switches.resize(1);
        plant.switches[0].name = QStringLiteral("Pompa");
        plant.leds.resize(1);
        plant.leds[0].name = QStringLiteral("Spia");
        tables.ZoneReadTable.set(0, ZoneSlot::Address, 1);
        tables.ZoneReadTable.set(1, ZoneSlot::Address, 2);
        tables.SwitchReadTable.set(0, SwitchSlot::Address, 5);
        tables.LedReadTable.set(0, LedSlot::Address, 8);
        table.refresh();
    }

    static QString nameOf(AlarmItemKind kind, int index)
    {
        return QLatin1String(kind == AlarmItemKind::Switch ? "Int" : "Led") + QString::number(index);
    }
    void report(AlarmItemKind kind, int index, int times)
    {
        for (int i = 0; i < times; ++i)
            alarms.reportFailure(kind, index);
    }
    // LEDs share the switches' list.
    QStringList listOf(AlarmItemKind kind) const
    {
        return kind == AlarmItemKind::Zone ? alarms.zoneEntries() : alarms.switchEntries();
    }
    QString cell(int row, int column) const { return table.index(row, column).data().toString(); }
    // Each row's kind, name and address as shown.
    QStringList rows() const
    {
        QStringList shown;
        for (int row = 0; row < table.rowCount(); ++row)
            shown << QStringList{cell(row, CommErrorTable::KindColumn), cell(row, CommErrorTable::NameColumn),
                                 cell(row, CommErrorTable::AddressColumn)}.join(u' ');
        return shown;
    }

    ManualClock clock{QDateTime(QDate(2026, 11, 14), QTime(10, 15, 0))};
    QString zoneName = QStringLiteral("Zona");
    PlantConfig plant;
    RegisterTables tables;
    AlarmBook alarms{clock, [this](AlarmItemKind kind, int index) {
                         return kind == AlarmItemKind::Zone ? zoneName : nameOf(kind, index);
                     }};
    CommErrorTable table{alarms, plant, tables, clock};
};

} // namespace

class TestAlarms : public QObject
{
    Q_OBJECT

private slots:
    // The sixth failure lists the item once and blinks. On acknowledgement zones and
    // switches count again from nothing, up to the top of the old 16-bit counter; a LED
    // stays reported and is never listed again.
    void listedAtTheSixthFailureUntilAcknowledged_data()
    {
        QTest::addColumn<AlarmItemKind>("kind");
        QTest::newRow("zone") << AlarmItemKind::Zone;
        QTest::newRow("switch") << AlarmItemKind::Switch;
        QTest::newRow("LED") << AlarmItemKind::Led;
    }
    void listedAtTheSixthFailureUntilAcknowledged()
    {
        QFETCH(AlarmItemKind, kind);
        const bool led = kind == AlarmItemKind::Led;
        Rig rig;
        QSignalSpy blink(&rig.alarms, &AlarmBook::alarmBlinkRequested);
        rig.report(kind, 3, 5);
        QVERIFY(rig.listOf(kind).isEmpty() && !rig.alarms.AlarmPending());
        rig.report(kind, 3, 2);
        const QString name = kind == AlarmItemKind::Zone ? rig.zoneName : Rig::nameOf(kind, 3);
        QCOMPARE(rig.listOf(kind), QStringList{name + " (14/11/2026 10:15:00)"});
        QVERIFY(rig.alarms.AlarmPending());
        QCOMPARE(QList<QVariantList>(blink), QList<QVariantList>{{true}});

        rig.alarms.ResetAlarms();
        QCOMPARE(blink.last(), QVariantList{false});
        QVERIFY(!rig.alarms.AlarmPending() && rig.listOf(kind).isEmpty());
        rig.report(kind, 3, 5);
        QVERIFY(rig.listOf(kind).isEmpty());
        rig.report(kind, 3, 32767);
        QCOMPARE(rig.listOf(kind).size(), led ? 0 : 1);
        QCOMPARE(rig.alarms.AlarmPending(), !led);
        QCOMPARE(rig.alarms.FailCount(kind, 3), 32767);
    }

    // The alarms window's table and lists: the rows follow the plant, the counts the
    // reads, the last failure says why, with the reason reported with it.
    void communicationErrorTable()
    {
        Rig rig;
        QCOMPARE(rig.rows(), (QStringList{"Zona Forno 1 1", "Zona Forno 2 2", "Interruttore Pompa 5", "LED Spia 8"}));
        QSignalSpy changed(&rig.table, &QAbstractItemModel::dataChanged);
        QSignalSpy lineFailure(&rig.table, &CommErrorTable::lastLineFailureChanged);
        const int pump = 2;

        // Items outside the plant are ignored.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^No zone with index 30"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^No LED with index -1"));
        rig.alarms.ReportZoneFailure(MaxZones);
        rig.alarms.ReportLedFailure(-1);
        QVERIFY(lineFailure.isEmpty() && changed.isEmpty() && !rig.alarms.AlarmPending());

        rig.report(AlarmItemKind::Led, 0, 6);
        changed.clear();
        rig.report(AlarmItemKind::Switch, 0, 3);
        QCOMPARE(changed.last().at(0).toModelIndex().row(), pump);
        // A good read ends the run of failures; the total remembers them.
        rig.alarms.clearFailCount(AlarmItemKind::Switch, 0);
        QCOMPARE(changed.size(), 4);
        rig.alarms.ReportSwitchFailure(0);
        QCOMPARE(rig.cell(pump, CommErrorTable::ConsecutiveColumn), QStringLiteral("1"));
        QCOMPARE(rig.cell(pump, CommErrorTable::TotalColumn), QStringLiteral("4"));
        QCOMPARE(rig.cell(pump, CommErrorTable::LastFailureColumn), QStringLiteral("14/11/2026 10:15:00"));
        QCOMPARE(rig.table.lastLineFailure(), QStringLiteral("Interruttore Pompa, 14/11/2026 10:15:00"));

        // The reason is the one reported with the failure, not whatever the line did last.
        rig.clock.setNow(QDateTime(QDate(2026, 11, 14), QTime(10, 16, 30)));
        rig.alarms.ReportZoneFailure(1, QStringLiteral("Time out"));
        QCOMPARE(rig.cell(1, CommErrorTable::LastFailureColumn), QStringLiteral("14/11/2026 10:16:30  Time out"));
        const QString line = QStringLiteral("Zona Forno 2, 14/11/2026 10:16:30: Time out");
        QCOMPARE(rig.table.lastLineFailure(), line);
        QCOMPARE(lineFailure.last(), QVariantList{line});

        // Entries keep their order and the time of listing; the name is looked up then.
        rig.zoneName = QStringLiteral("Cucina");
        rig.report(AlarmItemKind::Zone, 1, 5);
        rig.report(AlarmItemKind::Switch, 0, 5);
        QCOMPARE(rig.alarms.zoneEntries(), QStringList{"Cucina (14/11/2026 10:16:30)"});
        QCOMPARE(rig.alarms.switchEntries(), (QStringList{"Led0 (14/11/2026 10:15:00)", "Int0 (14/11/2026 10:16:30)"}));

        // The acknowledgement clears every total, the LEDs' too, whose alarm counts stay.
        rig.alarms.ResetAlarms();
        QCOMPARE(rig.cell(pump, CommErrorTable::TotalColumn), QStringLiteral("0"));
        QCOMPARE(rig.cell(3, CommErrorTable::ConsecutiveColumn), QStringLiteral("6"));
        QCOMPARE(rig.cell(3, CommErrorTable::TotalColumn), QStringLiteral("0"));
        QCOMPARE(rig.cell(pump, CommErrorTable::LastFailureColumn), QString());
        QCOMPARE(rig.table.lastLineFailure(), QStringLiteral("Nessun errore dall'ultimo riconoscimento"));

        // A reload changed the plant: the rows follow once the view refreshes, and a
        // failure of an item the view does not know yet is kept, not lost.
        rig.plant.zones.removeLast();
        rig.alarms.ReportSwitchFailure(3);
        rig.table.refresh();
        QCOMPARE(rig.rows(), (QStringList{"Zona Forno 1 1", "Interruttore Pompa 5", "LED Spia 8"}));
        rig.plant.switches.resize(4);
        rig.table.refresh();
        QCOMPARE(rig.cell(4, CommErrorTable::TotalColumn), QStringLiteral("1"));
    }
};

QTEST_GUILESS_MAIN(TestAlarms)
#include "tst_alarms.moc"
