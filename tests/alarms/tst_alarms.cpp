#include "alarms/alarmbook.h"
#include "alarms/commerrortable.h"

#include "base/clock.h"
#include "config_editor/registertables.h"
#include "storage/plantconfig.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

// A plant of two zones, one switch and one LED, with the book and the alarms window's
// table over them. The book names zones by `zoneName`, the others "Int3", "Led3"; LEDs
// share the switches' list.
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

    void report(AlarmItemKind kind, int index, int times)
    {
        for (int i = 0; i < times; ++i)
            alarms.reportFailure(kind, index);
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
                         return kind == AlarmItemKind::Zone ? zoneName
                                                            : QLatin1String(kind == AlarmItemKind::Switch ? "Int" : "Led")
                                                                  + QString::number(index);
                     }};
    CommErrorTable table{alarms, plant, tables, clock};
};

} // namespace

class TestAlarms : public QObject
{
    Q_OBJECT

private slots:
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

        // The sixth failure lists the item once and blinks.
        QSignalSpy blink(&rig.alarms, &AlarmBook::alarmBlinkRequested);
        rig.report(AlarmItemKind::Led, 0, 5);
        QVERIFY(rig.alarms.switchEntries().isEmpty() && !rig.alarms.AlarmPending());
        rig.report(AlarmItemKind::Led, 0, 2);
        QVERIFY(rig.alarms.AlarmPending());
        QCOMPARE(QList<QVariantList>(blink), QList<QVariantList>{{true}});
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
        rig.report(AlarmItemKind::Zone, 1, 6);
        rig.report(AlarmItemKind::Switch, 0, 5);
        QCOMPARE(rig.alarms.zoneEntries(), QStringList{"Cucina (14/11/2026 10:16:30)"});
        QCOMPARE(rig.alarms.switchEntries(), (QStringList{"Led0 (14/11/2026 10:15:00)", "Int0 (14/11/2026 10:16:30)"}));

        // The acknowledgement empties the lists, stops the blink and clears every total,
        // the LEDs' too, whose alarm counts stay.
        rig.alarms.ResetAlarms();
        QVERIFY(!rig.alarms.AlarmPending() && rig.alarms.zoneEntries().isEmpty() && rig.alarms.switchEntries().isEmpty());
        QCOMPARE(blink.last(), QVariantList{false});
        QCOMPARE(rig.cell(pump, CommErrorTable::TotalColumn), QStringLiteral("0"));
        QCOMPARE(rig.cell(3, CommErrorTable::ConsecutiveColumn), QStringLiteral("7"));
        QCOMPARE(rig.cell(3, CommErrorTable::TotalColumn), QStringLiteral("0"));
        QCOMPARE(rig.cell(pump, CommErrorTable::LastFailureColumn), QString());
        QCOMPARE(rig.table.lastLineFailure(), QStringLiteral("Nessun errore dall'ultimo riconoscimento"));

        // Zones and switches count again from nothing, up to the top of the old 16-bit
        // counter; a LED stays reported and is never listed again until restart.
        rig.report(AlarmItemKind::Zone, 1, 5);
        QVERIFY(rig.alarms.zoneEntries().isEmpty());
        rig.report(AlarmItemKind::Zone, 1, 1);
        rig.report(AlarmItemKind::Switch, 0, 32767 + 10);
        rig.report(AlarmItemKind::Led, 0, 6);
        QCOMPARE(rig.alarms.zoneEntries().size(), 1);
        QCOMPARE(rig.alarms.switchEntries(), QStringList{"Int0 (14/11/2026 10:16:30)"});
        QCOMPARE(rig.alarms.FailCount(AlarmItemKind::Switch, 0), 32767);

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
