#include "windowrig.h"

#include "alarms/commerrortable.h"
#include "base/datetimetext.h"
#include "ui/allarmi.h"

#include <QListView>
#include <QLoggingCategory>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTest>

using namespace telvane;

class TestAllarmi : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.warning=false")); }

    // A technician acknowledges without closing; then the sixth failure lists the switch
    // and starts the blink; each way of closing the window (its button, its frame, Enter
    // and Escape as "Chiudi", the default button) acknowledges, and the count starts
    // again from nothing.
    void sixthFailureListedUntilClosed()
    {
        // Started, with a switch whose instrument has gone silent: every read of it fails.
        WindowRig rig;
        rig.startUp();
        rig.plant.rt.model.plant.switches.resize(1);
        rig.plant.rt.model.plant.switches[0].name = QStringLiteral("Pompa");
        SwitchTable &switches = rig.plant.rt.model.editor.tables.SwitchReadTable;
        switches.set(0, SwitchSlot::Address, 7);
        switches.set(0, SwitchSlot::OnFunction, 1);
        switches.set(0, SwitchSlot::OnRegister, 3);
        rig.plant.rt.model.plant.synoptic.alarmSound = QStringLiteral("allarme.wav");
        // Reads the plant through the drop-down as often as asked; the first starts acquisition.
        const auto readPlant = [&rig](int times) {
            for (int i = 0; i < times; ++i)
                rig.chooseFromAcquisitionButton(QStringLiteral("Start"));
        };
        const auto rows = [&rig](const char *list) {
            const QAbstractItemModel *model = rig.window->alarmsWindow()->findChild<QListView *>(QLatin1String(list))->model();
            QStringList texts;
            for (int row = 0; row < model->rowCount(); ++row)
                texts.append(model->index(row, 0).data().toString());
            return texts;
        };
        // A technician sees each item's failures and may acknowledge without closing.
        rig.plant.rt.services.user.IsTechnician = true;
        readPlant(3);
        rig.clickButton(QStringLiteral("8"));
        Allarmi *alarms = rig.window->alarmsWindow();
        const QAbstractItemModel *table = alarms->findChild<QTableView *>(QStringLiteral("Tab_ErroriCOM"))->model();
        const QModelIndex consecutive = table->index(0, CommErrorTable::ConsecutiveColumn);
        QCOMPARE(consecutive.data().toString(), QStringLiteral("3"));
        QTest::mouseClick(alarms->findChild<QPushButton *>(QStringLiteral("Cmd_Riconosci")), Qt::LeftButton);
        QVERIFY(alarms->isVisible());
        QCOMPARE(consecutive.data().toString(), QStringLiteral("0"));
        // Beside the errors, the operator journal: newest entry on top, new ones as they
        // happen. Acknowledging three failures that listed nothing is not journalled.
        const QTableWidget *journal = alarms->findChild<QTableWidget *>(QStringLiteral("Tab_Giornale"));
        QCOMPARE(journal->rowCount(), 3);
        QCOMPARE(journal->item(0, 2)->text(), QStringLiteral("Start"));
        rig.chooseFromAcquisitionButton(QStringLiteral("Stop"));
        QCOMPARE(journal->rowCount(), 4);
        QCOMPARE(journal->item(0, 1)->text(), QStringLiteral("Tecnico"));
        QCOMPARE(journal->item(0, 2)->text(), QStringLiteral("Stop"));
        alarms->close();

        readPlant(5);
        QCOMPARE(rows("Lst_AllarmiI"), QStringList());
        QVERIFY(!rig.supervisor.alarmIndication().AlarmBlinkActive());
        readPlant(1);
        const QString when = rig.plant.clock.now().toString(QLatin1String(DateTimeTextFormat));
        QCOMPARE(rows("Lst_AllarmiI"), QStringList{QStringLiteral("Pompa (%1)").arg(when)});
        QCOMPARE(rows("Lst_AllarmiZ"), QStringList());
        // The blink alternates the button's images and sounds the alarm on one phase.
        rig.supervisor.alarmIndication().Timer_LampeggioTick();
        QCOMPARE(rig.acquisitionImage(), AcquisitionState::StandbyImage);
        QCOMPARE(rig.plant.sound.played(), QStringList{rig.plant.dir.filePath(QStringLiteral("allarme.wav"))});
        rig.supervisor.alarmIndication().Timer_LampeggioTick();
        QCOMPARE(rig.acquisitionImage(), AcquisitionState::AcquiringImage);

        const std::pair<const char *, std::function<void()>> ways[] = {
            {"Cmd_Chiudi", [&] { QTest::mouseClick(alarms->findChild<QPushButton *>(QStringLiteral("Cmd_Chiudi")), Qt::LeftButton); }},
            {"frame", [&] { alarms->close(); }},
            {"Return", [&] { QTest::keyClick(alarms->focusWidget() ? alarms->focusWidget() : alarms, Qt::Key_Return); }},
            {"Escape", [&] { QTest::keyClick(alarms->focusWidget() ? alarms->focusWidget() : alarms, Qt::Key_Escape); }}};
        for (const auto &[way, close] : ways) {
            rig.clickButton(QStringLiteral("8")); // while acquiring it shows the alarms
            QVERIFY2(alarms->isVisible(), way);
            QVERIFY(alarms->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
            close();
            QVERIFY2(!alarms->isVisible(), way);
            QVERIFY2(rows("Lst_AllarmiI").isEmpty(), way);
            QVERIFY2(!rig.supervisor.alarmIndication().AlarmBlinkActive(), way);
            QCOMPARE(rig.acquisitionImage(), AcquisitionState::AcquiringImage);
            readPlant(5);
            QVERIFY2(rows("Lst_AllarmiI").isEmpty(), way);
            readPlant(1);
            QVERIFY2(rows("Lst_AllarmiI").size() == 1, way);
        }
    }
};

QTEST_MAIN(TestAllarmi)
#include "tst_allarmi.moc"
