#include "windowrig.h"

#include "ui/about.h"
#include "ui/allarmi.h"
#include "ui/childwindows.h"
#include "ui/frmlogin.h"
#include "ui/splash.h"
#include "ui/stagione.h"
#include "ui/trends/grafico.h"
#include "ui/synoptic/sinottico.h"

#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
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

struct LoginCase
{
    QString name;
    QString password;
    QString confirm = QStringLiteral("cmdOK"); // or "cmdCancel", "Enter", "Escape"
    QString panel1;
    bool technician = false;
    bool administrator = false;
    bool refused = false;
};

QLineEdit *loginField(WindowRig &rig, const char *name)
{
    return rig.window->loginWindow()->findChild<QLineEdit *>(QLatin1String(name));
}

// Opens the login by button "1", types and confirms.
void logIn(WindowRig &rig, const QString &name, const QString &password, const QString &confirm = "cmdOK")
{
    rig.clickButton(QStringLiteral("1"));
    loginField(rig, "txtUserName")->clear();
    QTest::keyClicks(loginField(rig, "txtUserName"), name);
    QTest::keyClicks(loginField(rig, "txtPassword"), password);
    if (confirm == QLatin1String("Enter") || confirm == QLatin1String("Escape"))
        QTest::keyClick(loginField(rig, "txtPassword"), confirm == QLatin1String("Enter") ? Qt::Key_Return : Qt::Key_Escape);
    else
        QTest::mouseClick(rig.window->loginWindow()->findChild<QPushButton *>(confirm), Qt::LeftButton);
}

} // namespace

Q_DECLARE_METATYPE(LoginCase)

class TestMainForm : public QObject
{
    Q_OBJECT

private slots:
    // The menu bar, button "8"'s drop-down and the keys give the same commands; the blink
    // of an alarm alternates the red alarm picture with the acquiring one; the title says
    // when the plant is simulated; some commands wait for a stop.
    void startStopAndReload()
    {
        WindowRig rig;
        rig.startUp();
        addAnsweringSwitch(rig.plant);
        const QHash<QString, QString> menuEntry{{"Start", "MenuStart"}, {"Stop", "MenuStop"}, {"Rileggi", "MenuRileggi"}};
        for (const bool dropDown : {false, true}) {
            const auto give = [&](const QString &command) {
                if (dropDown)
                    rig.chooseFromAcquisitionButton(command);
                else
                    rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), menuEntry[command]);
            };
            const char *way = dropDown ? "drop-down" : "menu bar";
            give(QStringLiteral("Rileggi"));
            QVERIFY2(rig.plant.takeRequests().isEmpty(), way);
            give(QStringLiteral("Start"));
            QVERIFY2(rig.plant.takeRequests().size() == 1, way);
            QCOMPARE(rig.panel(2), Acquiring);
            QCOMPARE(rig.acquisitionImage(), AcquisitionState::AcquiringImage);
            give(QStringLiteral("Rileggi"));
            QVERIFY2(rig.plant.takeRequests().size() == 1, way);
            give(QStringLiteral("Stop"));
            QCOMPARE(rig.panel(2), Standby);
            QCOMPARE(rig.acquisitionImage(), AcquisitionState::StandbyImage);
        }
        QApplication::setActiveWindow(rig.window.get());
        QVERIFY(QTest::qWaitForWindowActive(rig.window.get()));
        QTest::keyClick(rig.window.get(), Qt::Key_F5);
        QCOMPARE(rig.panel(2), Acquiring);
        QTest::keyClick(rig.window.get(), Qt::Key_F5, Qt::ShiftModifier);
        QCOMPARE(rig.panel(2), Standby);

        for (int failure = 0; failure < 6; ++failure)
            rig.plant.rt.services.alarms.ReportSwitchFailure(0);
        rig.clickButton(QStringLiteral("8"));
        QVERIFY(rig.supervisor.alarmIndication().AlarmBlinkActive());
        QToolButton *button = rig.button(QStringLiteral("8"));
        QList<bool> alarmPictures;
        for (int tick = 0; tick < 4; ++tick) {
            rig.supervisor.alarmIndication().Timer_LampeggioTick();
            alarmPictures.append(button->property("alarmPicture").toBool());
        }
        QCOMPARE(alarmPictures, (QList<bool>{true, false, true, false}));
        rig.chooseFromAcquisitionButton(QStringLiteral("Stop"));
        QVERIFY(!button->property("alarmPicture").toBool());

        QVERIFY(!rig.window->windowTitle().contains(QStringLiteral("SIMULAZIONE")));
        rig.supervisor.setCommunicateWithInstruments(false);
        rig.chooseFromAcquisitionButton(QStringLiteral("Start"));
        QVERIFY(rig.window->windowTitle().contains(QStringLiteral("SIMULAZIONE")));

        // While acquiring, closing, the about box and the season window are refused with
        // a message and a pause; stopped, each works.
        const QWidget *season = rig.window->seasonWindow();
        const auto about = [&] { rig.chooseMenuEntry(QStringLiteral("MenuAbout0"), QStringLiteral("MenuAbout")); };
        const auto aboutShown = [&] { return rig.window->aboutWindow() && rig.window->aboutWindow()->isVisible(); };
        const auto openSeason = [&] { rig.clickButton(QStringLiteral("5")); };
        const auto seasonShown = [&] { return season->isVisible() && rig.entry(QStringLiteral("MenuStagione"))->isChecked(); };
        const auto close = [&] { rig.window->close(); };

        rig.plant.pause.clear();
        QCOMPARE(rig.messagesDuring(about), (QStringList{Refused, QString()}));
        QCOMPARE(rig.messagesDuring(openSeason), (QStringList{Refused, QString()}));
        QCOMPARE(rig.messagesDuring(close), (QStringList{Refused, QString()}));
        QCOMPARE(rig.plant.pause.pauses(), (QList<int>{500, 500, 500}));
        QVERIFY(!aboutShown());
        QVERIFY(!seasonShown());
        QVERIFY(rig.window->isVisible());
        QCOMPARE(rig.panel(2), Acquiring);

        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuStop"));
        QCOMPARE(rig.messagesDuring(about), QStringList());
        QVERIFY(aboutShown());
        QCOMPARE(rig.messagesDuring(openSeason), QStringList());
        QVERIFY(seasonShown());
        QCOMPARE(rig.messagesDuring(close), QStringList());
        QVERIFY(!rig.window->isVisible());
    }

    // The child windows exclude each other; the port stays in sight after a login; the
    // alarms window opens beside the content, never over the menus and the toolbar, with
    // fifteen rows and every column whole for a technician.
    void windows()
    {
        WindowRig rig;
        rig.startUp();
        const QList<QWidget *> windows{rig.window->loginWindow(), rig.window->synopticWindow(), rig.window->trendWindow()};
        const QStringList entries{"MenuLogin", "MenuSinottico", "MenuGrafico"};
        // Each window shown exactly when its menu entry is ticked and (login and synoptic)
        // its button held down.
        const auto expectShown = [&](const QList<bool> &shown) {
            for (int i = 0; i < 3; ++i) {
                QVERIFY2(windows[i]->isVisible() == shown[i], qPrintable(entries[i]));
                QVERIFY2(rig.entry(entries[i])->isChecked() == shown[i], qPrintable(entries[i]));
                if (i < 2)
                    QVERIFY2(rig.button(QString::number(i + 1))->isChecked() == shown[i], qPrintable(entries[i]));
            }
        };
        rig.clickButton(QStringLiteral("1"));
        expectShown({true, false, false});
        rig.clickButton(QStringLiteral("2"));
        expectShown({false, true, false});
        rig.chooseMenuEntry(QStringLiteral("MenuFunzioni"), QStringLiteral("MenuGrafico"));
        expectShown({false, false, true});
        // The chart takes most of the workspace; the login form keeps its own size.
        const int room = rig.window->centralWidget()->width();
        QVERIFY2(windows[2]->parentWidget()->width() > room * 9 / 10, qPrintable(QString::number(room)));
        QVERIFY2(windows[0]->parentWidget()->width() < room / 2, qPrintable(QString::number(room)));
        rig.chooseMenuEntry(QStringLiteral("MenuFunzioni"), QStringLiteral("MenuGrafico"));
        expectShown({false, false, false});
        rig.clickButton(QStringLiteral("1"));
        windows[0]->parentWidget()->close(); // by its own frame
        expectShown({false, false, false});
        QApplication::setActiveWindow(rig.window.get());
        QVERIFY(QTest::qWaitForWindowActive(rig.window.get()));
        QTest::keyClick(rig.window.get(), Qt::Key_L, Qt::ControlModifier);
        expectShown({true, false, false});

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

    // Only "No" at the start simulates.
    void splashAnswers_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("communicate");
        QTest::newRow("cmdSi") << "cmdSi" << true;
        QTest::newRow("cmdNo") << "cmdNo" << false;
        QTest::newRow("Enter") << "Enter" << true;
        QTest::newRow("Esc") << "Esc" << true;
        QTest::newRow("close") << "close" << true;
    }
    void splashAnswers()
    {
        QFETCH(QString, answer);
        QFETCH(bool, communicate);
        Splash splash;
        splash.show();
        if (answer == QLatin1String("Enter") || answer == QLatin1String("Esc"))
            QTest::keyClick(&splash, answer == QLatin1String("Enter") ? Qt::Key_Return : Qt::Key_Escape);
        else if (answer == QLatin1String("close"))
            splash.close();
        else
            QTest::mouseClick(splash.findChild<QPushButton *>(answer), Qt::LeftButton);
        QVERIFY(!splash.isVisible());
        QCOMPARE(splash.communicate(), communicate);
    }

    // Service was logged in before: every attempt logs out first, Annulla (or Escape)
    // keeps him.
    void loginAsEachUser_data()
    {
        QTest::addColumn<LoginCase>("login");
        const QString admin = QStringLiteral("Utente: Amministratore");
        QTest::newRow("technician") << LoginCase{"Tecnico", "Qx7", "cmdOK", "Utente: Tecnico", true};
        QTest::newRow("admin by Enter") << LoginCase{"Admin", "Wm4", "Enter", admin, false, true};
        QTest::newRow("password case") << LoginCase{"Tecnico", "qx7", "cmdOK", "Utente: Anonimo", false, false, true};
        QTest::newRow("Annulla") << LoginCase{"Tecnico", "Qx7", "cmdCancel", admin, false, true};
        QTest::newRow("Escape") << LoginCase{"Tecnico", "Qx7", "Escape", admin, false, true};
    }
    void loginAsEachUser()
    {
        QFETCH(LoginCase, login);
        WindowRig rig;
        rig.startUp();
        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuErroriCOM"));
        auto *details = rig.window->alarmsWindow()->findChild<QGroupBox *>(QStringLiteral("Fra_ErroriCOM"));
        QVERIFY(!details->isVisible());
        logIn(rig, QStringLiteral("Service"), QStringLiteral("7ubl4ko"));
        QVERIFY(details->isVisible());
        QCOMPARE(loginField(rig, "txtPassword")->echoMode(), QLineEdit::Password);

        logIn(rig, login.name, login.password, login.confirm);
        QCOMPARE(rig.panel(1), login.panel1);
        QCOMPARE(rig.plant.rt.services.user.IsTechnician, login.technician);
        QCOMPARE(rig.plant.rt.services.user.IsAdministrator, login.administrator);
        const QList<RecordingPrompts::Prompt> refusal{
            {RecordingPrompts::Kind::Warning, QStringLiteral("Accesso"), QStringLiteral("Password errata.")}};
        QCOMPARE(rig.prompts.asked(), login.refused ? refusal : QList<RecordingPrompts::Prompt>{});
        // A refused login stays open for another try, with the password cleared.
        QCOMPARE(rig.window->loginWindow()->isVisible(), login.refused);
        QCOMPARE(rig.entry(QStringLiteral("MenuLogin"))->isChecked(), login.refused);
        QCOMPARE(loginField(rig, "txtPassword")->text(), QString());
        QCOMPARE(details->isVisible(), login.technician || login.administrator);
    }
};

QTEST_MAIN(TestMainForm)
#include "tst_mainform.moc"
