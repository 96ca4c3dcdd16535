#include "alarms/commerrortable.h"

#include "base/clock.h"
#include "config_editor/registertables.h"
#include "storage/plantconfig.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

// A plant of two zones, one switch and one LED, with the book, the master and the
// table over them, as the alarms window has them.
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
    PlantConfig plant;
    RegisterTables tables;
    AlarmBook alarms{clock, [](AlarmItemKind, int) { return QString(); }};
    CommErrorTable table{alarms, plant, tables, clock};
};

} // namespace

class TestCommErrorTable : public QObject
{
    Q_OBJECT

private slots:
    void rowsFollowThePlant()
    {
        Rig rig;
        QCOMPARE(rig.rows(), (QStringList{"Zona Forno 1 1", "Zona Forno 2 2", "Interruttore Pompa 5", "LED Spia 8"}));

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

    void countsFollowTheReads()
    {
        Rig rig;
        QSignalSpy changed(&rig.table, &QAbstractItemModel::dataChanged);
        const int pump = 2;

        for (int i = 0; i < 3; ++i)
            rig.alarms.ReportSwitchFailure(0);
        QCOMPARE(changed.last().at(0).toModelIndex().row(), pump);

        // A good read ends the run of failures; the total remembers them.
        rig.alarms.clearFailCount(AlarmItemKind::Switch, 0);
        QCOMPARE(changed.size(), 4);
        rig.alarms.ReportSwitchFailure(0);
        QCOMPARE(rig.cell(pump, CommErrorTable::ConsecutiveColumn), QStringLiteral("1"));
        QCOMPARE(rig.cell(pump, CommErrorTable::TotalColumn), QStringLiteral("4"));

        // The acknowledgement clears every total, the LEDs' too, whose alarm counts stay.
        for (int i = 0; i < 2; ++i)
            rig.alarms.ReportLedFailure(0);
        rig.alarms.ResetAlarms();
        QCOMPARE(rig.cell(pump, CommErrorTable::TotalColumn), QStringLiteral("0"));
        QCOMPARE(rig.cell(3, CommErrorTable::ConsecutiveColumn), QStringLiteral("2"));
        QCOMPARE(rig.cell(3, CommErrorTable::TotalColumn), QStringLiteral("0"));
        QCOMPARE(rig.cell(pump, CommErrorTable::LastFailureColumn), QString());
        QCOMPARE(rig.table.lastLineFailure(), QStringLiteral("Nessun errore dall'ultimo riconoscimento"));
    }

    // The reason is the one reported with the failure, not whatever the line did last,
    // and none is shown when none was given; items outside the plant are ignored.
    void lastFailureTellsWhy()
    {
        Rig rig;
        QSignalSpy lineFailure(&rig.table, &CommErrorTable::lastLineFailureChanged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^No zone with index 30"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^No LED with index -1"));
        rig.alarms.ReportZoneFailure(MaxZones);
        rig.alarms.ReportLedFailure(-1);
        QVERIFY(lineFailure.isEmpty() && !rig.alarms.AlarmPending());
        rig.clock.setNow(QDateTime(QDate(2026, 11, 14), QTime(10, 16, 30)));
        rig.alarms.ReportZoneFailure(1, QStringLiteral("Time out"));

        QCOMPARE(rig.cell(1, CommErrorTable::LastFailureColumn), QStringLiteral("14/11/2026 10:16:30  Time out"));
        const QString line = QStringLiteral("Zona Forno 2, 14/11/2026 10:16:30: Time out");
        QCOMPARE(rig.table.lastLineFailure(), line);
        QCOMPARE(QList<QVariantList>(lineFailure), QList<QVariantList>{{line}});
        rig.alarms.ReportSwitchFailure(0);
        QCOMPARE(rig.cell(2, CommErrorTable::LastFailureColumn), QStringLiteral("14/11/2026 10:16:30"));
        QCOMPARE(rig.table.lastLineFailure(), QStringLiteral("Interruttore Pompa, 14/11/2026 10:16:30"));
    }
};

QTEST_GUILESS_MAIN(TestCommErrorTable)
#include "tst_commerrortable.moc"
