#include "windowrig.h"

#include "alarms/commerrortable.h"
#include "base/datetimetext.h"
#include "ui/allarmi.h"

#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QLoggingCategory>
#include <QPushButton>
#include <QTableView>
#include <QTest>

using namespace telvane;

namespace {

// A switch whose instrument has gone silent: every read of the plant fails once.
void addSilentSwitch(PlantRig &plant)
{
    plant.rt.plant.switches.resize(1);
    plant.rt.plant.switches[0].name = QStringLiteral("Pompa");
    SwitchTable &table = plant.rt.editor.tables.SwitchReadTable;
    table.set(0, SwitchSlot::Address, 7);
    table.set(0, SwitchSlot::Decimals, 0);
    table.set(0, SwitchSlot::OnFunction, 1);
    table.set(0, SwitchSlot::OnRegister, 3);
    plant.rt.plant.synoptic.alarmSound = QStringLiteral("allarme.wav");
}

QStringList rowsOf(const QListView *list)
{
    QStringList rows;
    for (int row = 0; row < list->model()->rowCount(); ++row)
        rows.append(list->model()->index(row, 0).data().toString());
    return rows;
}

} // namespace

class TestAllarmi : public QObject
{
    Q_OBJECT

private:
    static QListView *list(WindowRig &rig, const char *name)
    {
        return rig.window->alarmsWindow()->findChild<QListView *>(QLatin1String(name));
    }

    // Reads the plant again through the toolbar's drop-down, as often as asked; the
    // first time it starts acquisition.
    static void readPlant(WindowRig &rig, int times)
    {
        for (int i = 0; i < times; ++i)
            rig.chooseFromAcquisitionButton(QStringLiteral("Start"));
    }

private slots:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false\ntelvane.fieldbus.warning=false"));
    }

    void sixthFailureListsTheSwitch()
    {
        WindowRig rig;
        rig.startUp();
        addSilentSwitch(rig.plant);
        QListView *switches = list(rig, "Lst_AllarmiI");

        readPlant(rig, 5);
        QCOMPARE(rowsOf(switches), QStringList());
        QVERIFY(!rig.supervisor.AlarmBlinkActive());

        readPlant(rig, 1);
        const QString when = rig.plant.clock.now().toString(QLatin1String(DateTimeTextFormat));
        QCOMPARE(rowsOf(switches), QStringList{QStringLiteral("Pompa (%1)").arg(when)});
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiZ")), QStringList());
        QVERIFY(rig.supervisor.Timer_Lampeggio().isActive());

        // The blink alternates the button's images and sounds the alarm on one phase.
        rig.supervisor.Timer_LampeggioTick();
        QCOMPARE(rig.acquisitionImage(), Supervisor::StandbyImage);
        QCOMPARE(rig.plant.sound.played(), QStringList{rig.plant.dir.filePath(QStringLiteral("allarme.wav"))});
        rig.supervisor.Timer_LampeggioTick();
        QCOMPARE(rig.acquisitionImage(), Supervisor::AcquiringImage);

        readPlant(rig, 3);
        QCOMPARE(rowsOf(switches).size(), 1);
    }

    void closingAcknowledges_data()
    {
        QTest::addColumn<bool>("byFrame");
        QTest::newRow("Cmd_Chiudi") << false;
        QTest::newRow("the window's frame") << true;
    }

    void closingAcknowledges()
    {
        QFETCH(bool, byFrame);

        WindowRig rig;
        rig.startUp();
        addSilentSwitch(rig.plant);
        readPlant(rig, 6);
        Allarmi *alarms = rig.window->alarmsWindow();
        rig.clickButton(QStringLiteral("8"));
        QVERIFY(alarms->isVisible());
        QVERIFY(alarms->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiI")).size(), 1);

        if (byFrame)
            alarms->close();
        else
            QTest::mouseClick(alarms->findChild<QPushButton *>(QStringLiteral("Cmd_Chiudi")), Qt::LeftButton);

        QVERIFY(!alarms->isVisible());
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiI")), QStringList());
        QVERIFY(!rig.supervisor.AlarmPending());
        QVERIFY(!rig.supervisor.AlarmBlinkActive());
        QCOMPARE(rig.acquisitionImage(), Supervisor::AcquiringImage);
        QCOMPARE(rig.panel(2), QStringLiteral("Acquisizione"));

        // The count starts again from nothing: five more failures list nothing yet.
        readPlant(rig, 5);
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiI")), QStringList());
        readPlant(rig, 1);
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiI")).size(), 1);
    }

    void zoneGoesToItsOwnList()
    {
        WindowRig rig;
        rig.startUp();
        rig.plant.rt.plant.zones.resize(1);
        rig.plant.rt.plant.zones[0].name = QStringLiteral("Soggiorno");
        configureZone(rig.plant.rt, 0, 9, 1, {{3, 0}, {3, 1}, {3, 2}, {3, 3}, {3, 4}});

        // Five quantities, five failures a round: the second round lists it.
        rig.clickButton(QStringLiteral("8"));
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiZ")), QStringList());
        rig.chooseFromAcquisitionButton(QStringLiteral("Rileggi"));
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiZ")).size(), 1);
        QVERIFY(rowsOf(list(rig, "Lst_AllarmiZ")).first().startsWith(QStringLiteral("Soggiorno (")));
        QCOMPARE(rowsOf(list(rig, "Lst_AllarmiI")), QStringList());
    }

    // A technician sees each item's failures and the line's last one, and may
    // acknowledge without closing the window.
    void technicianSeesTheFailures()
    {
        WindowRig rig;
        rig.startUp();
        addSilentSwitch(rig.plant);
        rig.plant.rt.user.IsTechnician = true;
        readPlant(rig, 3);

        rig.clickButton(QStringLiteral("8"));
        Allarmi *alarms = rig.window->alarmsWindow();
        auto *table = alarms->findChild<QTableView *>(QStringLiteral("Tab_ErroriCOM"));
        QVERIFY(table->isVisible());
        QCOMPARE(table->model()->rowCount(), 1);
        const auto cell = [table](int column) { return table->model()->index(0, column).data().toString(); };
        QCOMPARE(cell(CommErrorTable::NameColumn), QStringLiteral("Pompa"));
        QCOMPARE(cell(CommErrorTable::AddressColumn), QStringLiteral("7"));
        QCOMPARE(cell(CommErrorTable::ConsecutiveColumn), QStringLiteral("3"));
        QVERIFY(cell(CommErrorTable::LastFailureColumn).endsWith(QStringLiteral("Time out")));
        auto *lastFailure = alarms->findChild<QLabel *>(QStringLiteral("Lab_UltimoErrore"));
        QVERIFY2(lastFailure->text().contains(QStringLiteral("Interruttore Pompa")), qPrintable(lastFailure->text()));

        // Counts climb while the window is open.
        readPlant(rig, 1);
        QCOMPARE(cell(CommErrorTable::ConsecutiveColumn), QStringLiteral("4"));

        QTest::mouseClick(alarms->findChild<QPushButton *>(QStringLiteral("Cmd_Riconosci")), Qt::LeftButton);
        QVERIFY(alarms->isVisible());
        QCOMPARE(cell(CommErrorTable::ConsecutiveColumn), QStringLiteral("0"));
        QCOMPARE(cell(CommErrorTable::TotalColumn), QStringLiteral("0"));
        QCOMPARE(lastFailure->text(), QStringLiteral("Ultimo errore di linea: Nessun errore dall'ultimo riconoscimento"));
    }
};

QTEST_MAIN(TestAllarmi)
#include "tst_allarmi.moc"
