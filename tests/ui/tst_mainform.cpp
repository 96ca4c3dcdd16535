#include "windowrig.h"

#include "support/datarows.h"
#include "ui/about.h"
#include "ui/allarmi.h"
#include "ui/childwindows.h"
#include "ui/frmlogin.h"
#include "ui/synoptic/sinottico.h"

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QLoggingCategory>
#include <QTest>
#include <QToolButton>

using namespace telvane;

namespace {

// One switch whose instrument answers: every read of the plant is one request.
void addAnsweringSwitch(PlantRig &plant)
{
    plant.rt.model.plant.switches.resize(1);
    SwitchTable &table = plant.rt.model.editor.tables.SwitchReadTable;
    table.set(0, SwitchSlot::Address, 4);
    table.set(0, SwitchSlot::OnFunction, 1);
    table.set(0, SwitchSlot::OnRegister, 10);
    plant.setValue(4, 1, 10, 1);
}

const QString Standby = QStringLiteral("Standby");
const QString Acquiring = QStringLiteral("Acquisizione");
const QString Refused = QStringLiteral("Operazione non permessa");

} // namespace

class TestMainForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    void opensStandingBy_data() { addRows({"1|Stagione", "0|Ricette"}); } // Modo|button 5's caption
    void opensStandingBy()
    {
        const QStringList cells = rowCells();
        WindowRig rig;
        QVERIFY(rig.plant.rt.model.ini.WriteModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"), cells[0]));
        rig.startUp();
        QCOMPARE(rig.panel(1), QStringLiteral("COM1:9600,N,8,1"));
        QCOMPARE(rig.panel(2), Standby);
        QCOMPARE(rig.acquisitionImage(), Supervisor::StandbyImage);
        QCOMPARE(rig.button(QStringLiteral("5"))->text(), cells[1]);
    }

    // The menu bar and button "8"'s drop-down give the same commands.
    void startStopAndReload_data() { addRows({"menu bar", "drop-down"}); }
    void startStopAndReload()
    {
        const bool dropDown = rowCells()[0] == QLatin1String("drop-down");
        WindowRig rig;
        rig.startUp();
        addAnsweringSwitch(rig.plant);
        const QHash<QString, QString> menuEntry{
            {"Start", "MenuStart"}, {"Stop", "MenuStop"}, {"Rileggi", "MenuRileggi"}};
        const auto give = [&](const QString &command) {
            if (dropDown)
                rig.chooseFromAcquisitionButton(command);
            else
                rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), menuEntry[command]);
        };
        const Supervisor &supervisor = rig.supervisor;

        give(QStringLiteral("Rileggi"));
        QCOMPARE(rig.plant.takeRequests().size(), 0);
        QCOMPARE(rig.panel(2), Standby);

        give(QStringLiteral("Start"));
        QCOMPARE(rig.plant.takeRequests().size(), 1);
        QCOMPARE(rig.panel(2), Acquiring);
        QCOMPARE(rig.acquisitionImage(), Supervisor::AcquiringImage);
        QCOMPARE(supervisor.Timer_Monitor().interval(), 1000);
        QVERIFY(supervisor.Timer_Monitor().isActive());

        give(QStringLiteral("Rileggi"));
        QCOMPARE(rig.plant.takeRequests().size(), 1);
        QVERIFY(supervisor.Timer_Monitor().isActive());

        give(QStringLiteral("Stop"));
        QCOMPARE(rig.panel(2), Standby);
        QCOMPARE(rig.acquisitionImage(), Supervisor::StandbyImage);
        QVERIFY(!supervisor.Timer_Monitor().isActive());
        QVERIFY(!supervisor.Timer_Lampeggio().isActive());
    }

    // Without a port only simulation starts; neither way says anything.
    void startWithoutPort_data() { addRows({"communicate|Standby", "simulate|Acquisizione"}); }
    void startWithoutPort()
    {
        const QStringList cells = rowCells();
        const bool communicate = cells[0] == QLatin1String("communicate");
        WindowRig rig;
        rig.plant.line.setOpenRefused(true);
        rig.supervisor.setCommunicateWithInstruments(communicate);
        rig.startUp();
        QCOMPARE(rig.panel(1), QStringLiteral("Nessuna COM"));
        const QStringList messages = rig.messagesDuring([&] { rig.clickButton(QStringLiteral("8")); });
        QCOMPARE(rig.panel(2), cells[1]);
        QVERIFY(!messages.contains(Refused));
        QVERIFY(rig.prompts.asked().isEmpty());
    }

    void refusedWhileAcquiring_data() { addRows({"close", "MenuAbout", "MenuStagione"}); }
    void refusedWhileAcquiring()
    {
        const QString command = rowCells()[0];
        WindowRig rig;
        rig.startUp();
        QWidget season; // a later version's window, plugged in as any child window
        rig.window->childWindows().plug(rig.entry(QStringLiteral("MenuStagione")), &season);
        const auto give = [&] {
            if (command == QLatin1String("close"))
                rig.window->close();
            else if (command == QLatin1String("MenuStagione"))
                rig.clickButton(QStringLiteral("5"));
            else
                rig.chooseMenuEntry(QStringLiteral("MenuAbout0"), command);
        };
        const auto opened = [&] {
            return command == QLatin1String("close") ? !rig.window->isVisible()
                   : command == QLatin1String("MenuAbout")
                       ? rig.window->aboutWindow() && rig.window->aboutWindow()->isVisible()
                       : season.isVisible() && rig.entry(QStringLiteral("MenuStagione"))->isChecked();
        };

        rig.clickButton(QStringLiteral("8"));
        rig.plant.pause.clear();
        QCOMPARE(rig.messagesDuring(give), (QStringList{Refused, QString()}));
        QCOMPARE(rig.plant.pause.pauses(), QList<int>{500});
        QVERIFY(!opened());
        QCOMPARE(rig.panel(2), Acquiring);

        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuStop"));
        QCOMPARE(rig.messagesDuring(give), QStringList());
        QVERIFY(opened());
    }

    void childWindowsAreExclusive()
    {
        WindowRig rig;
        rig.startUp();
        QWidget *synoptic = rig.window->synopticWindow();
        QWidget trend;
        rig.window->childWindows().plug(rig.entry(QStringLiteral("MenuGrafico")), &trend);
        QWidget *login = rig.window->loginWindow();
        // Shown, ticked and (for the first two) held down, as "login synoptic trend" flags.
        const auto state = [&] {
            QString shown, ticked, held;
            const char *entries[] = {"MenuLogin", "MenuSinottico", "MenuGrafico"};
            const QWidget *windows[] = {login, synoptic, &trend};
            for (int i = 0; i < 3; ++i) {
                shown += windows[i]->isVisible() ? '1' : '0';
                ticked += rig.entry(QLatin1String(entries[i]))->isChecked() ? '1' : '0';
                if (i < 2)
                    held += rig.button(QString::number(i + 1))->isChecked() ? '1' : '0';
            }
            return shown + ' ' + ticked + ' ' + held;
        };
        const auto expected = [](const QString &shown) { return shown + ' ' + shown + ' ' + shown.left(2); };

        QCOMPARE(state(), expected("000"));
        rig.clickButton(QStringLiteral("1"));
        QCOMPARE(state(), expected("100"));
        rig.clickButton(QStringLiteral("2"));
        QCOMPARE(state(), expected("010"));
        rig.chooseMenuEntry(QStringLiteral("MenuFunzioni"), QStringLiteral("MenuGrafico"));
        QCOMPARE(state(), expected("001"));
        rig.chooseMenuEntry(QStringLiteral("MenuFunzioni"), QStringLiteral("MenuGrafico"));
        QCOMPARE(state(), expected("000"));
        rig.clickButton(QStringLiteral("1"));
        login->parentWidget()->close(); // by its own frame
        QCOMPARE(state(), expected("000"));
    }

    void blinkWhileTheAutomaticStartIsPending()
    {
        WindowRig rig;
        QVERIFY(rig.plant.rt.model.ini.WriteIniKey(QStringLiteral("Generale"), QStringLiteral("AutoAvvio"), QStringLiteral("1")));
        rig.startUp();
        Supervisor &supervisor = rig.supervisor;
        QCOMPARE(rig.panel(4), QStringLiteral("Avvio in corso..."));
        QCOMPARE(supervisor.TimerAutoStart().interval(), 10000);
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 350);
        QVERIFY(supervisor.Timer_Lampeggio().isActive());
        QList<int> images;
        for (int tick = 0; tick < 4; ++tick) {
            supervisor.Timer_LampeggioTick();
            images.append(rig.acquisitionImage());
        }
        QCOMPARE(images, (QList<int>{3, 4, 3, 4}));

        supervisor.TimerAutoStartTick();
        QCOMPARE(rig.panel(2), Acquiring);
        QCOMPARE(rig.panel(4), QString());
        QCOMPARE(rig.acquisitionImage(), Supervisor::AcquiringImage);
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 700); // an alarm's pace from now on
    }

    // The blink of an alarm alternates the red alarm picture with the acquiring one.
    void alarmBlinkShowsTheAlarmPicture()
    {
        WindowRig rig;
        rig.startUp();
        rig.plant.rt.model.plant.switches.resize(1);
        for (int failure = 0; failure < 6; ++failure)
            rig.plant.rt.services.alarms.ReportSwitchFailure(0);
        rig.clickButton(QStringLiteral("8"));
        QVERIFY(rig.supervisor.AlarmBlinkActive());
        QToolButton *button = rig.button(QStringLiteral("8"));
        QList<bool> alarmPictures;
        for (int tick = 0; tick < 4; ++tick) {
            rig.supervisor.Timer_LampeggioTick();
            alarmPictures.append(button->property("alarmPicture").toBool());
        }
        QCOMPARE(alarmPictures, (QList<bool>{true, false, true, false}));
        rig.chooseFromAcquisitionButton(QStringLiteral("Stop"));
        QVERIFY(!button->property("alarmPicture").toBool());
    }

    void portStateStaysInSightAfterALogin()
    {
        WindowRig rig;
        rig.startUp();
        QLabel *port = rig.window->portLabel();
        QVERIFY(!port->isVisible()); // panel 1 shows it
        rig.plant.rt.display.statusBar.setPanel(StatusBar::PortPanel, QStringLiteral("Utente: Tecnico"));
        QCOMPARE(rig.panel(1), QStringLiteral("Utente: Tecnico"));
        QVERIFY(port->isVisible());
        QCOMPARE(port->text(), QStringLiteral("Porta: COM1:9600,N,8,1"));
        rig.plant.rt.display.statusBar.setPanel(StatusBar::PortPanel, QStringLiteral("Nessuna COM"));
        QVERIFY(!port->isVisible());
        rig.plant.rt.display.statusBar.setPanel(StatusBar::PortPanel, QStringLiteral("Utente: Anonimo"));
        QCOMPARE(port->text(), QStringLiteral("Porta: Nessuna COM"));
    }

    void simulationInTheTitle()
    {
        WindowRig rig;
        rig.supervisor.setCommunicateWithInstruments(false);
        rig.startUp();
        QVERIFY(rig.window->windowTitle().contains(QStringLiteral("SIMULAZIONE")));
        rig.supervisor.setCommunicateWithInstruments(true);
        rig.chooseFromAcquisitionButton(QStringLiteral("Start"));
        QVERIFY(!rig.window->windowTitle().contains(QStringLiteral("SIMULAZIONE")));
    }

    void keysForStartStopAndLogin()
    {
        WindowRig rig;
        rig.startUp();
        QApplication::setActiveWindow(rig.window.get());
        QVERIFY(QTest::qWaitForWindowActive(rig.window.get()));
        QTest::keyClick(rig.window.get(), Qt::Key_F5);
        QCOMPARE(rig.panel(2), Acquiring);
        QTest::keyClick(rig.window.get(), Qt::Key_F5, Qt::ShiftModifier);
        QCOMPARE(rig.panel(2), Standby);
        QTest::keyClick(rig.window.get(), Qt::Key_L, Qt::ControlModifier);
        QVERIFY(rig.window->loginWindow()->isVisible());
        // The toolbar's buttons take the focus from the keyboard.
        QCOMPARE(rig.button(QStringLiteral("2"))->focusPolicy(), Qt::TabFocus);
    }

    // Beside the content, never over the menus and the toolbar; fifteen rows and every
    // column whole for a technician.
    void alarmsWindowBesideTheContent()
    {
        WindowRig rig;
        rig.startUp();
        rig.plant.login(true, false);
        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuAllarmi"));
        Allarmi *alarms = rig.window->alarmsWindow();
        QVERIFY(alarms->isVisible());
        const QWidget *workspace = rig.window->centralWidget();
        const QRect content(workspace->mapToGlobal(QPoint(0, 0)), workspace->size());
        QVERIFY2(alarms->frameGeometry().top() >= content.top(), "over the menus or the toolbar");
        QVERIFY(alarms->frameGeometry().left() >= content.left());
        auto *table = alarms->findChild<QTableView *>(QStringLiteral("Tab_ErroriCOM"));
        QVERIFY(table->isVisible());
        QVERIFY2(table->viewport()->height() >= 15 * table->verticalHeader()->defaultSectionSize(),
                 qPrintable(QString::number(table->viewport()->height())));
        QHeaderView *header = table->horizontalHeader();
        for (int column = 0; column < header->count(); ++column)
            QVERIFY2(header->sectionSize(column) >= header->sectionSizeHint(column),
                     qPrintable(table->model()->headerData(column, Qt::Horizontal).toString()));
    }
};

QTEST_MAIN(TestMainForm)
#include "tst_mainform.moc"
