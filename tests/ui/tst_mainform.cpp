#include "windowrig.h"

#include "ui/about.h"
#include "ui/allarmi.h"
#include "ui/childwindows.h"
#include "ui/frmlogin.h"

#include <QAction>
#include <QLoggingCategory>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTest>
#include <QToolButton>

using namespace telvane;

namespace {

// One switch whose instrument answers its state register, so that every read of the
// plant puts exactly one request on the line.
void addAnsweringSwitch(PlantRig &plant)
{
    plant.rt.plant.switches.resize(1);
    plant.rt.plant.switches[0].name = QStringLiteral("Pompa");
    SwitchTable &table = plant.rt.editor.tables.SwitchReadTable;
    table.set(0, SwitchSlot::Address, 4);
    table.set(0, SwitchSlot::Decimals, 0);
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

private:
    // How a command reaches the supervisor: the menu bar, button "8"'s drop-down, or a
    // plain click on button "8" (which starts in standby and shows errors while acquiring).
    enum class Way { Menu, DropDown, Button };

    static void give(WindowRig &rig, Way way, const QString &command)
    {
        const QHash<QString, std::pair<QString, QString>> entries{
            {QStringLiteral("start"), {QStringLiteral("MenuStart"), QStringLiteral("Start")}},
            {QStringLiteral("stop"), {QStringLiteral("MenuStop"), QStringLiteral("Stop")}},
            {QStringLiteral("reload"), {QStringLiteral("MenuRileggi"), QStringLiteral("Rileggi")}},
        };
        switch (way) {
        case Way::Menu:
            rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), entries[command].first);
            break;
        case Way::DropDown:
            rig.chooseFromAcquisitionButton(entries[command].second);
            break;
        case Way::Button:
            QCOMPARE(command, QStringLiteral("start"));
            rig.clickButton(QStringLiteral("8"));
            break;
        }
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    void opensStandingBy_data()
    {
        QTest::addColumn<QString>("modo");
        QTest::addColumn<QString>("seasonCaption");
        QTest::addColumn<QString>("scheduleCaption");
        QTest::newRow("civil") << "1" << "Stagione" << "Impostazioni cronotermostato";
        QTest::newRow("industrial") << "0" << "Ricette" << "Impostazioni orologio";
    }

    void opensStandingBy()
    {
        QFETCH(QString, modo);
        QFETCH(QString, seasonCaption);
        QFETCH(QString, scheduleCaption);

        WindowRig rig;
        QVERIFY(rig.plant.rt.ini.WriteModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"), modo));
        rig.startUp();

        QCOMPARE(rig.panel(1), QStringLiteral("COM1:9600,N,8,1"));
        QCOMPARE(rig.panel(2), Standby);
        QCOMPARE(rig.panel(3), QString());
        QCOMPARE(rig.panel(4), QString());
        QCOMPARE(rig.acquisitionImage(), Supervisor::StandbyImage);
        QCOMPARE(rig.entry(QStringLiteral("MenuStagione"))->text(), seasonCaption);
        QCOMPARE(rig.button(QStringLiteral("5"))->text(), seasonCaption);
        QCOMPARE(rig.entry(QStringLiteral("MenuCrono"))->text(), scheduleCaption);
    }

    void menusAndButtonsAreWhereTheOperatorLooks_data()
    {
        QTest::addColumn<QString>("menu");
        QTest::addColumn<QStringList>("entries");
        QTest::newRow("File") << "MenuFile" << QStringList{"MenuLogin", "MenuNullF0", "MenuFine"};
        QTest::newRow("Acquisizione") << "MenuAcquisizione"
                                      << QStringList{"MenuStart", "MenuStop", "MenuRileggi", "MenuNullF1",
                                                     "MenuErroriCOM"};
        QTest::newRow("Funzioni") << "MenuFunzioni"
                                  << QStringList{"MenuSinottico", "MenuGrafico", "MenuStorico", "MenuNullF2",
                                                 "MenuStagione", "MenuNullF2A", "MenuComunicazione", "MenuCrono"};
        QTest::newRow("?") << "MenuAbout0" << QStringList{"MenuAbout"};
    }

    void menusAndButtonsAreWhereTheOperatorLooks()
    {
        QFETCH(QString, menu);
        QFETCH(QStringList, entries);

        WindowRig rig;
        rig.startUp();
        auto *found = rig.window->findChild<QMenu *>(menu);
        QVERIFY(found);
        QStringList names;
        for (const QAction *action : found->actions())
            names.append(action->objectName());
        QCOMPARE(names, entries);

        // The toolbar's keys and the entries they share; "6" is the separator.
        const QHash<QString, QString> keyed{{"1", "MenuLogin"},   {"2", "MenuSinottico"}, {"3", "MenuGrafico"},
                                           {"4", "MenuStorico"}, {"5", "MenuStagione"},  {"7", "MenuComunicazione"}};
        for (auto it = keyed.cbegin(); it != keyed.cend(); ++it)
            QCOMPARE(rig.button(it.key())->defaultAction(), rig.entry(it.value()));
        QVERIFY(!rig.button(QStringLiteral("6")));
        QVERIFY(rig.button(QStringLiteral("8")));
        // Windows of later versions: present, not usable yet.
        for (const char *later : {"MenuSinottico", "MenuGrafico", "MenuStorico", "MenuStagione", "MenuComunicazione"})
            QVERIFY2(!rig.entry(QLatin1String(later))->isEnabled(), later);
        QVERIFY(rig.entry(QStringLiteral("MenuLogin"))->isEnabled());
    }

    void startStopAndReload_data()
    {
        QTest::addColumn<int>("way");
        QTest::newRow("menu bar") << int(Way::Menu);
        QTest::newRow("drop-down of button 8") << int(Way::DropDown);
    }

    void startStopAndReload()
    {
        QFETCH(int, way);
        const Way by = Way(way);

        WindowRig rig;
        rig.startUp();
        addAnsweringSwitch(rig.plant);
        const Supervisor &supervisor = rig.supervisor;

        give(rig, by, QStringLiteral("reload"));
        QCOMPARE(rig.plant.takeRequests().size(), 0);
        QCOMPARE(rig.panel(2), Standby);

        give(rig, by, QStringLiteral("start"));
        QCOMPARE(rig.plant.takeRequests().size(), 1);
        QCOMPARE(rig.panel(2), Acquiring);
        QCOMPARE(rig.acquisitionImage(), Supervisor::AcquiringImage);
        QVERIFY(supervisor.Timer_Monitor().isActive());
        QCOMPARE(supervisor.Timer_Monitor().interval(), 1000);

        rig.plant.rt.statusBar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Remoto..."));
        give(rig, by, QStringLiteral("reload"));
        QCOMPARE(rig.plant.takeRequests().size(), 1);
        QCOMPARE(rig.panel(2), Acquiring);
        QCOMPARE(rig.panel(3), QString());
        QVERIFY(supervisor.Timer_Monitor().isActive());

        give(rig, by, QStringLiteral("start"));
        QCOMPARE(rig.plant.takeRequests().size(), 1);
        QCOMPARE(rig.panel(2), Acquiring);

        give(rig, by, QStringLiteral("stop"));
        QCOMPARE(rig.panel(2), Standby);
        QCOMPARE(rig.acquisitionImage(), Supervisor::StandbyImage);
        QVERIFY(!supervisor.Timer_Monitor().isActive());
        QVERIFY(!supervisor.Timer_Lampeggio().isActive());
        QCOMPARE(rig.plant.takeRequests().size(), 0);
    }

    void buttonEightStartsThenShowsErrors()
    {
        WindowRig rig;
        rig.startUp();
        addAnsweringSwitch(rig.plant);

        rig.clickButton(QStringLiteral("8"));
        QCOMPARE(rig.panel(2), Acquiring);
        QCOMPARE(rig.plant.takeRequests().size(), 1);
        QVERIFY(!rig.window->alarmsWindow()->isVisible());

        rig.clickButton(QStringLiteral("8"));
        QVERIFY(rig.window->alarmsWindow()->isVisible());
        QCOMPARE(rig.panel(2), Acquiring);
        QCOMPARE(rig.plant.takeRequests().size(), 0);
    }

    void startWithoutPortIsIgnored_data()
    {
        QTest::addColumn<bool>("communicate");
        QTest::addColumn<QString>("state");
        QTest::newRow("communicating: nothing, no message") << true << Standby;
        QTest::newRow("simulating: starts") << false << Acquiring;
    }

    void startWithoutPortIsIgnored()
    {
        QFETCH(bool, communicate);
        QFETCH(QString, state);

        WindowRig rig;
        rig.plant.line.setOpenRefused(true);
        rig.supervisor.setCommunicateWithInstruments(communicate);
        rig.startUp();
        QCOMPARE(rig.panel(1), QStringLiteral("Nessuna COM"));

        const QStringList messages = rig.messagesDuring([&] { rig.clickButton(QStringLiteral("8")); });
        QCOMPARE(rig.panel(2), state);
        QVERIFY(!messages.contains(Refused));
        QVERIFY(rig.prompts.asked().isEmpty());
    }

    void refusedWhileAcquiring_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("close by the frame") << "close";
        QTest::newRow("MenuFine") << "MenuFine";
        QTest::newRow("MenuAbout") << "MenuAbout";
        QTest::newRow("MenuStagione") << "MenuStagione";
    }

    void refusedWhileAcquiring()
    {
        QFETCH(QString, command);

        WindowRig rig;
        rig.startUp();
        // The season window of a later version, plugged in as any child window.
        QWidget season;
        rig.window->childWindows().plug(rig.entry(QStringLiteral("MenuStagione")), &season);

        const auto give = [&] {
            if (command == QLatin1String("close"))
                rig.window->close();
            else if (command == QLatin1String("MenuStagione"))
                rig.clickButton(QStringLiteral("5"));
            else
                rig.chooseMenuEntry(command == QLatin1String("MenuFine") ? QStringLiteral("MenuFile")
                                                                         : QStringLiteral("MenuAbout0"),
                                    command);
        };

        rig.clickButton(QStringLiteral("8"));
        QCOMPARE(rig.panel(2), Acquiring);
        rig.plant.pause.clear();

        QCOMPARE(rig.messagesDuring(give), (QStringList{Refused, QString()}));
        QCOMPARE(rig.plant.pause.pauses(), QList<int>{500});
        QVERIFY(rig.window->isVisible());
        QCOMPARE(rig.panel(2), Acquiring);
        QVERIFY(!rig.window->aboutWindow());
        QVERIFY(!season.isVisible());
        QVERIFY(!rig.entry(QStringLiteral("MenuStagione"))->isChecked());

        // The same commands go ahead once acquisition stands by.
        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuStop"));
        rig.plant.pause.clear();
        QCOMPARE(rig.messagesDuring(give), QStringList());
        QVERIFY(rig.plant.pause.pauses().isEmpty());
        if (command == QLatin1String("MenuAbout")) {
            QVERIFY(rig.window->aboutWindow() && rig.window->aboutWindow()->isVisible());
            rig.window->aboutWindow()->close();
        } else if (command == QLatin1String("MenuStagione")) {
            QVERIFY(season.isVisible());
            QVERIFY(rig.entry(QStringLiteral("MenuStagione"))->isChecked());
        } else {
            QVERIFY(!rig.window->isVisible());
        }
    }

    void childWindowsAreExclusive()
    {
        WindowRig rig;
        rig.startUp();
        QWidget synoptic;
        QWidget trend;
        ChildWindows &children = rig.window->childWindows();
        children.plug(rig.entry(QStringLiteral("MenuSinottico")), &synoptic);
        children.plug(rig.entry(QStringLiteral("MenuGrafico")), &trend);
        QWidget *login = rig.window->loginWindow();

        // What shows and what is ticked, as "login synoptic trend" flags.
        const auto state = [&] {
            const auto flags = [](std::initializer_list<bool> on) {
                QString text;
                for (bool flag : on)
                    text += flag ? QLatin1Char('1') : QLatin1Char('0');
                return text;
            };
            return QStringLiteral("shown %1, ticked %2, held %3")
                .arg(flags({login->isVisible(), synoptic.isVisible(), trend.isVisible()}),
                     flags({rig.entry(QStringLiteral("MenuLogin"))->isChecked(),
                            rig.entry(QStringLiteral("MenuSinottico"))->isChecked(),
                            rig.entry(QStringLiteral("MenuGrafico"))->isChecked()}),
                     flags({rig.button(QStringLiteral("1"))->isChecked(), rig.button(QStringLiteral("2"))->isChecked()}));
        };
        // The menu entry is ticked and the button held down exactly while the window shows.
        const auto expected = [](const char *shown) {
            const QString flags = QLatin1String(shown);
            return QStringLiteral("shown %1, ticked %1, held %2").arg(flags, flags.left(2));
        };

        QCOMPARE(state(), expected("000"));
        rig.clickButton(QStringLiteral("1"));
        QCOMPARE(state(), expected("100"));
        rig.clickButton(QStringLiteral("2"));
        QCOMPARE(state(), expected("010"));
        rig.chooseMenuEntry(QStringLiteral("MenuFunzioni"), QStringLiteral("MenuGrafico"));
        QCOMPARE(state(), expected("001"));
        rig.chooseMenuEntry(QStringLiteral("MenuFunzioni"), QStringLiteral("MenuGrafico"));
        QCOMPARE(state(), expected("000"));
        rig.chooseMenuEntry(QStringLiteral("MenuFile"), QStringLiteral("MenuLogin"));
        QCOMPARE(state(), expected("100"));

        // Closed by its own frame, a window unticks its entry; the next click opens it.
        login->parentWidget()->close();
        QCOMPARE(state(), expected("000"));
        rig.clickButton(QStringLiteral("1"));
        QCOMPARE(state(), expected("100"));

        // Acquiring changes nothing here.
        rig.clickButton(QStringLiteral("8"));
        rig.clickButton(QStringLiteral("2"));
        QCOMPARE(state(), expected("010"));
    }
    void blinkWhileTheAutomaticStartIsPending()
    {
        WindowRig rig;
        QVERIFY(rig.plant.rt.ini.WriteIniKey(QStringLiteral("Generale"), QStringLiteral("AutoAvvio"), QStringLiteral("1")));
        rig.startUp();
        Supervisor &supervisor = rig.supervisor;

        QCOMPARE(rig.panel(4), QStringLiteral("Avvio in corso..."));
        QVERIFY(supervisor.TimerAutoStart().isActive());
        QCOMPARE(supervisor.TimerAutoStart().interval(), 10000);
        QVERIFY(supervisor.Timer_Lampeggio().isActive());
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 350);

        // Button "8" alternates its two images at each tick of the blink.
        QList<int> images;
        for (int tick = 0; tick < 4; ++tick) {
            supervisor.Timer_LampeggioTick();
            images.append(rig.acquisitionImage());
            QVERIFY(supervisor.Timer_Lampeggio().isActive());
        }
        QCOMPARE(images, (QList<int>{3, 4, 3, 4}));

        supervisor.TimerAutoStartTick();
        QCOMPARE(rig.panel(2), Acquiring);
        QCOMPARE(rig.panel(4), QString());
        QCOMPARE(rig.acquisitionImage(), Supervisor::AcquiringImage);
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 700);
        QVERIFY(!supervisor.TimerAutoStart().isActive());

        // An alarm now blinks at the normal pace.
        rig.plant.rt.plant.switches.resize(1);
        for (int failure = 0; failure < 6; ++failure)
            rig.plant.rt.alarms.ReportSwitchFailure(0);
        QVERIFY(supervisor.Timer_Lampeggio().isActive());
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 700);
        supervisor.Timer_LampeggioTick();
        QCOMPARE(rig.acquisitionImage(), Supervisor::StandbyImage);
        supervisor.Timer_LampeggioTick();
        QCOMPARE(rig.acquisitionImage(), Supervisor::AcquiringImage);
    }

    // The master lets the event loop run while it waits for a reply: a Start clicked in
    // that wait must not put a second transaction on the line.
    void startClickedDuringAPollWaitsForTheTick()
    {
        WindowRig rig;
        QVERIFY(rig.plant.rt.ini.WriteIniKey(QStringLiteral("COM"), QStringLiteral("Base Misura"), QStringLiteral("1")));
        rig.startUp();
        addAnsweringSwitch(rig.plant);
        rig.clickButton(QStringLiteral("8"));
        rig.plant.takeRequests();

        bool clicked = false;
        qsizetype requestsAtClick = -1;
        qsizetype requestsAfterClick = -1;
        rig.plant.line.setDuringYield([&] {
            if (clicked)
                return;
            clicked = true;
            requestsAtClick = rig.plant.line.requests().size();
            rig.chooseFromAcquisitionButton(QStringLiteral("Start"));
            requestsAfterClick = rig.plant.line.requests().size();
        });
        rig.supervisor.MonitorCycle();
        rig.plant.line.setDuringYield({});

        QVERIFY(clicked);
        QCOMPARE(requestsAfterClick, requestsAtClick);
        // The start ran once the tick was over: its read follows the tick's own.
        QCOMPARE(rig.plant.takeRequests().size(), 2);
        QCOMPARE(rig.supervisor.CycleCounter(), 0);
        QCOMPARE(rig.panel(2), Acquiring);
    }
};

QTEST_MAIN(TestMainForm)
#include "tst_mainform.moc"
