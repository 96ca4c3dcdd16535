#include "support/runtimefixture.h"

#include "supervisor/chartlogging.h"
#include "supervisor/supervisor.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QLoggingCategory>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::UserLevel)

namespace {

// A loaded supervisor over one zone whose instrument answers all five quantities.
struct SupervisorFixture : RuntimeFixture
{
    Supervisor supervisor{rt};

    SupervisorFixture()
    {
        rt.model.plant.zones.resize(1);
        setRow(rt.model.editor.tables.ZoneReadTable, 0, {1, 1, -1, -1, 3, 0, 3, 1, 3, 2, 3, 3, 3, 4});
        for (int k = 0; k < 5; ++k)
            setValue(1, 3, k, 200);
        supervisor.load();
    }
};

// The acquisition button's image after each of `phases` blink phases.
QList<int> blinkImages(Supervisor &supervisor, int phases)
{
    QList<int> images;
    for (int i = 0; i < phases; ++i) {
        supervisor.alarmIndication().Timer_LampeggioTick();
        images.append(supervisor.acquisition().buttonImage());
    }
    return images;
}

} // namespace

class TestSupervisor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    void load()
    {
        RuntimeFixture fx;
        fx.rt.services.alarms.ReportSwitchFailure(0);
        Supervisor supervisor(fx.rt);
        supervisor.load();

        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::StatePanel), QStringLiteral("Standby"));
        QVERIFY(!supervisor.AcquisitionRunning() && supervisor.acquisition().AutoStartPending());
        QCOMPARE(fx.rt.services.alarms.FailCount(AlarmItemKind::Switch, 0), 0);
        for (const char *folder : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(fx.dir.filePath(QLatin1String(folder))).exists(), folder);
    }

    void startUp_data()
    {
        QTest::addColumn<QString>("autoAvvio");
        QTest::addColumn<QString>("grafico");
        QTest::addColumn<bool>("portOpens");
        QTest::newRow("both options on") << "1" << "1" << true;
        QTest::newRow("both options off") << "0" << "0" << true;
        QTest::newRow("no port") << "0" << "1" << false;
    }
    void startUp()
    {
        QFETCH(QString, autoAvvio);
        QFETCH(QString, grafico);
        QFETCH(bool, portOpens);
        RuntimeFixture fx;
        fx.line.setOpenRefused(!portOpens);
        const QString ini = QStringLiteral("[Generale]\nZone=1\nAutoAvvio=%1\nGrafico=%2\n"
                                           "[Zona 01]\nIndirizzo=5\nPV_r=3,40001\n[COM]\nPorta=2\n");
        fx.writeFile(QStringLiteral("Telvane2.ini"), ini.arg(autoAvvio, grafico).toUtf8());
        Supervisor supervisor(fx.rt);

        supervisor.startUp();
        QCOMPARE(fx.rt.model.editor.tables.ZoneReadTable.at(0, ZoneSlot::Address), 5);
        QCOMPARE(fx.rt.display.ChartLoggingOption, grafico == QLatin1String("1"));
        QCOMPARE(supervisor.TimerAutoStart().isActive(), autoAvvio == QLatin1String("1"));
        QCOMPARE(supervisor.SerialPortOpen(), portOpens);
        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::PortPanel), QString(portOpens ? "COM2:9600,N,8,1" : "Nessuna COM"));
        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::MessagePanel), QString(autoAvvio == "1" ? "Avvio in corso..." : ""));
    }

    // The operator's choice from the editor's menu outlives the reload that follows every
    // confirmed editor page, and the next start of the program.
    void chartChoiceOutlivesEditorReload()
    {
        RuntimeFixture fx;
        fx.writeFile(QStringLiteral("Telvane2.ini"), "[Generale]\r\nZone=1\r\nGrafico=0\r\n");
        ReloadEditor(fx.rt);
        QVERIFY(!fx.rt.display.ChartLoggingOption);
        for (const bool chosen : {true, false}) {
            MenuVediGraf(fx.rt);
            QCOMPARE(fx.rt.display.ChartLoggingOption, chosen);
            ReloadEditor(fx.rt);
            QCOMPARE(fx.rt.display.ChartLoggingOption, chosen);
            RuntimeFixture restarted;
            QVERIFY(QFile::copy(fx.dir.filePath(QStringLiteral("Telvane2.ini")),
                                restarted.dir.filePath(QStringLiteral("Telvane2.ini"))));
            ReloadEditor(restarted.rt);
            QCOMPARE(restarted.rt.display.ChartLoggingOption, chosen);
        }
    }

    // Either way the activity and message panels are emptied; off also stops the blink.
    void acquisitionState()
    {
        SupervisorFixture fx;
        fx.supervisor.alarmIndication().SetAlarmBlink(true);
        for (const bool on : {true, false}) {
            fx.rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Remoto..."));
            fx.rt.display.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Accensione..."));
            fx.supervisor.SetAcquisitionState(on);
            QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::StatePanel), QString(on ? "Acquisizione" : "Standby"));
            QVERIFY(fx.rt.display.statusBar.panel(StatusBar::ActivityPanel).isEmpty());
            QVERIFY(fx.rt.display.statusBar.panel(StatusBar::MessagePanel).isEmpty());
            QCOMPARE(fx.supervisor.acquisition().buttonImage(),
                     on ? AcquisitionState::AcquiringImage : AcquisitionState::StandbyImage);
            QCOMPARE(fx.supervisor.monitoring().Timer_Monitor().isActive(), on);
            QCOMPARE(fx.supervisor.alarmIndication().Timer_Lampeggio().isActive(), on);
        }
    }

    // Start reads every zone once, Reload only while acquiring; both need an open port
    // only to talk to the instruments.
    void startAndReload_data()
    {
        QTest::addColumn<bool>("reload");
        QTest::addColumn<bool>("acquiring");
        QTest::addColumn<bool>("communicate");
        QTest::addColumn<bool>("portOpen");
        QTest::addColumn<int>("requests"); // -1: the command does nothing
        QTest::newRow("start, simulation without port") << false << false << false << false << 0;
        QTest::newRow("start, communicating") << false << false << true << true << 5;
        QTest::newRow("start, communicating without port") << false << false << true << false << -1;
        QTest::newRow("reload in standby") << true << false << true << true << -1;
        QTest::newRow("reload while acquiring") << true << true << true << true << 5;
        QTest::newRow("reload, port gone") << true << true << true << false << -1;
    }
    void startAndReload()
    {
        QFETCH(bool, reload);
        QFETCH(bool, acquiring);
        QFETCH(bool, communicate);
        QFETCH(bool, portOpen);
        QFETCH(int, requests);
        SupervisorFixture fx;
        if (acquiring)
            fx.supervisor.MenuStart();
        fx.takeRequests();
        fx.rt.model.values.ZoneValues[0][0] = InvalidValue;
        fx.rt.model.editor.comm.portAvailable = portOpen;
        fx.supervisor.setCommunicateWithInstruments(communicate);
        QSignalSpy changed(&fx.supervisor, &Supervisor::acquisitionStateChanged);

        reload ? fx.supervisor.MenuRileggi() : fx.supervisor.MenuStart();
        QCOMPARE(fx.takeRequests().size(), std::max(requests, 0));
        QCOMPARE(fx.rt.model.values.ZoneValues[0][0] != InvalidValue, requests >= 0);
        QCOMPARE(fx.supervisor.AcquisitionRunning(), acquiring || requests >= 0);
        QCOMPARE(fx.supervisor.monitoring().Timer_Monitor().isActive(), acquiring || requests >= 0);
        QCOMPARE(changed.size(), requests < 0 ? 0 : reload ? 2 : 1);
    }

    // A start with an alarm pending blinks again and locks the open editor.
    void startResumesTheAlarmAndLocksTheEditor()
    {
        SupervisorFixture fx;
        fx.rt.display.EditorOpen = true;
        for (int i = 0; i < 6; ++i)
            fx.rt.services.alarms.ReportLedFailure(2);
        fx.supervisor.alarmIndication().SetAlarmBlink(false);
        QSignalSpy editor(&fx.supervisor, &Supervisor::editorFrameEnabledRequested);

        fx.supervisor.MenuStart();
        QVERIFY(fx.supervisor.alarmIndication().AlarmBlinkActive());
        QVERIFY(fx.supervisor.alarmIndication().Timer_Lampeggio().isActive());
        QCOMPARE(QList<QVariantList>(editor), QList<QVariantList>{{false}});
    }

    void stop_data()
    {
        QTest::addColumn<UserLevel>("user");
        QTest::addColumn<QList<QVariantList>>("editorRequests");
        QTest::newRow("administrator") << UserLevel{false, true} << QList<QVariantList>{{true}};
        QTest::newRow("technician") << UserLevel{true, false} << QList<QVariantList>{};
        QTest::newRow("anonymous") << UserLevel{false, false} << QList<QVariantList>{};
    }
    // The displays are cleared; only an administrator gets the editor back.
    void stop()
    {
        QFETCH(UserLevel, user);
        QFETCH(QList<QVariantList>, editorRequests);
        SupervisorFixture fx;
        fx.rt.display.EditorOpen = true;
        fx.rt.services.user = user;
        fx.supervisor.MenuStart();
        fx.supervisor.alarmIndication().SetAlarmBlink(true);
        fx.rt.services.items.switches[0] = SwitchState::On;
        fx.rt.services.items.leds[1].lit = true;
        QSignalSpy zonesReset(&fx.rt.display.displayResets, &DisplayResets::ResetZoneDisplays);
        QSignalSpy editor(&fx.supervisor, &Supervisor::editorFrameEnabledRequested);

        fx.supervisor.MenuStop();
        QVERIFY(!fx.supervisor.AcquisitionRunning());
        QVERIFY(!fx.supervisor.alarmIndication().AlarmBlinkActive());
        QCOMPARE(fx.supervisor.acquisition().buttonImage(), AcquisitionState::StandbyImage);
        QCOMPARE(zonesReset.size(), 1);
        QCOMPARE(fx.rt.services.items.switches[0], SwitchState::Undetermined);
        QVERIFY(!fx.rt.services.items.leds[1].lit);
        QCOMPARE(QList<QVariantList>(editor), editorRequests);
    }

    void refusalsWhileAcquiring_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<bool>("acquiring");
        const char *names[] = {"exit", "about", "season"};
        for (int command = 0; command < 3; ++command) {
            QTest::addRow("%s while acquiring", names[command]) << command << true;
            QTest::addRow("%s in standby", names[command]) << command << false;
        }
    }
    void refusalsWhileAcquiring()
    {
        QFETCH(int, command);
        QFETCH(bool, acquiring);
        SupervisorFixture fx;
        fx.rt.services.master.setCommunicate(false);
        if (acquiring)
            fx.supervisor.MenuStart();
        fx.pause.clear();
        fx.panelTexts[StatusBar::MessagePanel].clear();

        const std::function<bool()> commands[] = {[&] { return fx.supervisor.MenuFine(); },
                                                  [&] { return fx.supervisor.MenuAbout(); },
                                                  [&] { return fx.supervisor.MenuStagione(); }};
        QCOMPARE(commands[command](), !acquiring);
        QCOMPARE(fx.panelTexts[StatusBar::MessagePanel],
                 (acquiring ? QStringList{"Operazione non permessa", ""} : QStringList{}));
        QCOMPARE(fx.pause.pauses(), acquiring ? QList<int>{500} : QList<int>{});
        QCOMPARE(fx.supervisor.AcquisitionRunning(), acquiring);
    }

    // While the automatic start is pending the button blinks every 350 ms, then every 700 ms.
    void automaticStart()
    {
        SupervisorFixture fx;
        Supervisor &supervisor = fx.supervisor;
        fx.rt.services.master.setCommunicate(false);
        supervisor.armAutoStart(true);
        QVERIFY(supervisor.TimerAutoStart().isActive());
        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::MessagePanel), QStringLiteral("Avvio in corso..."));
        QCOMPARE(blinkImages(supervisor, 4), (QList<int>{3, 4, 3, 4}));
        QVERIFY(supervisor.alarmIndication().Timer_Lampeggio().isActive());

        supervisor.TimerAutoStartTick();
        QVERIFY(!supervisor.acquisition().AutoStartPending());
        QVERIFY(supervisor.AcquisitionRunning());
        QVERIFY(!supervisor.alarmIndication().AlarmBlinkActive());
        QCOMPARE(supervisor.acquisition().buttonImage(), AcquisitionState::AcquiringImage);
        QCOMPARE(fx.rt.display.statusBar.panel(StatusBar::MessagePanel), QString());
    }

    // The sixth failure blinks the button and plays the sound on every other phase;
    // acknowledging ends both.
    void alarmBlinkAndSound_data()
    {
        QTest::addColumn<QString>("sound");
        QTest::newRow("sound configured") << "allarme.wav";
        QTest::newRow("no sound") << "";
    }
    void alarmBlinkAndSound()
    {
        QFETCH(QString, sound);
        SupervisorFixture fx;
        Supervisor &supervisor = fx.supervisor;
        fx.rt.services.master.setCommunicate(false);
        fx.rt.model.plant.synoptic.alarmSound = sound;
        supervisor.TimerAutoStartTick(); // acquiring, as after the automatic start
        QVERIFY(!supervisor.alarmIndication().Timer_Lampeggio().isActive());

        for (int i = 0; i < 6; ++i)
            fx.rt.services.alarms.ReportZoneFailure(0);
        QVERIFY(supervisor.alarmIndication().AlarmBlinkActive());
        QVERIFY(supervisor.alarmIndication().Timer_Lampeggio().isActive());
        QCOMPARE(blinkImages(supervisor, 3), (QList<int>{3, 4, 3}));
        const QString played = fx.dir.filePath(QStringLiteral("allarme.wav"));
        QCOMPARE(fx.sound.played(), (sound.isEmpty() ? QStringList{} : QStringList{played, played}));

        supervisor.ResetAlarms();
        QVERIFY(!supervisor.AlarmPending());
        QCOMPARE(supervisor.acquisition().buttonImage(), AcquisitionState::AcquiringImage);
        supervisor.alarmIndication().Timer_LampeggioTick();
        QVERIFY(!supervisor.alarmIndication().Timer_Lampeggio().isActive());
        QCOMPARE(supervisor.acquisition().buttonImage(), AcquisitionState::AcquiringImage);

        // Neither acquiring nor about to start: a blink stops at its next phase.
        supervisor.MenuStop();
        supervisor.alarmIndication().SetAlarmBlink(true);
        supervisor.alarmIndication().Timer_LampeggioTick();
        QVERIFY(!supervisor.alarmIndication().Timer_Lampeggio().isActive());
    }

};

QTEST_GUILESS_MAIN(TestSupervisor)
#include "tst_supervisor.moc"
