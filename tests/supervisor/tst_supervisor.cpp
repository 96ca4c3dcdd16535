#include "plantrig.h"

#include "supervisor/supervisor.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

class TestSupervisor : public QObject
{
    Q_OBJECT

private:
    // One zone that answers, read in simulation or over the line.
    static void setUpZone(PlantRig &rig)
    {
        rig.rt.plant.zones.resize(1);
        configureZone(rig.rt, 0, 1, 1, {{3, 0}, {3, 1}, {3, 2}, {3, 3}, {3, 4}});
        for (int k = 0; k < 5; ++k)
            rig.setValue(1, 3, k, 200);
    }

    static QStringList messagesOf(StatusBar &bar, const std::function<void()> &action)
    {
        QStringList texts;
        QMetaObject::Connection c =
            QObject::connect(&bar, &StatusBar::panelChanged, [&texts](int panel, const QString &text) {
                if (panel == StatusBar::MessagePanel)
                    texts.append(text);
            });
        action();
        QObject::disconnect(c);
        return texts;
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false")); }

    void loadPreparesStandby()
    {
        PlantRig rig;
        rig.rt.alarms.ReportSwitchFailure(0);
        Supervisor supervisor(rig.rt);
        supervisor.load();

        QCOMPARE(rig.rt.statusBar.panel(StatusBar::StatePanel), QStringLiteral("Standby"));
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::ActivityPanel), QString());
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QString());
        QCOMPARE(supervisor.acquisitionButtonImage(), Supervisor::StandbyImage);
        QVERIFY(!supervisor.AcquisitionRunning());
        QVERIFY(supervisor.AutoStartPending());
        QCOMPARE(supervisor.CycleCounter(), 0);
        QCOMPARE(rig.rt.alarms.FailCount(AlarmItemKind::Switch, 0), 0);

        QCOMPARE(supervisor.Timer_Monitor().interval(), 1000);
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 700);
        QCOMPARE(supervisor.TimerAutoStart().interval(), 10000);
        QVERIFY(supervisor.TimerAutoStart().isSingleShot());
        QVERIFY(!supervisor.Timer_Monitor().isActive());
        QVERIFY(!supervisor.Timer_Lampeggio().isActive());
        QVERIFY(!supervisor.TimerAutoStart().isActive());

        for (const char *folder : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(rig.dir.filePath(QLatin1String(folder))).exists(), folder);
        QCOMPARE(rig.rt.mode.CurrentIniName, QStringLiteral("Telvane2.ini"));
    }

    void loadReadsTheCivilMode()
    {
        PlantRig rig;
        QVERIFY(rig.rt.ini.WriteModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"), QStringLiteral("1")));
        Supervisor supervisor(rig.rt);
        supervisor.load();
        QVERIFY(rig.rt.mode.CivilMode);
        QCOMPARE(rig.rt.ini.currentIniName(), QStringLiteral("Telvane1.ini"));
    }

    void startUpLoadsThePlantAndArmsTheStart_data()
    {
        QTest::addColumn<QString>("autoAvvio");
        QTest::addColumn<QString>("grafico");
        QTest::addColumn<bool>("portOpens");
        QTest::newRow("both options on") << "1" << "1" << true;
        QTest::newRow("both options off") << "0" << "0" << true;
        QTest::newRow("no port") << "0" << "1" << false;
    }

    void startUpLoadsThePlantAndArmsTheStart()
    {
        QFETCH(QString, autoAvvio);
        QFETCH(QString, grafico);
        QFETCH(bool, portOpens);

        PlantRig rig;
        rig.line.setOpenRefused(!portOpens);
        const QString general = QStringLiteral("Generale");
        const QString zone = QStringLiteral("Zona 01");
        IniStore &ini = rig.rt.ini;
        QVERIFY(ini.WriteIniKey(general, QStringLiteral("Zone"), QStringLiteral("1")));
        QVERIFY(ini.WriteIniKey(general, QStringLiteral("AutoAvvio"), autoAvvio));
        QVERIFY(ini.WriteIniKey(general, QStringLiteral("Grafico"), grafico));
        QVERIFY(ini.WriteIniKey(zone, QStringLiteral("Nome"), QStringLiteral("Soggiorno")));
        QVERIFY(ini.WriteIniKey(zone, QStringLiteral("Indirizzo"), QStringLiteral("5")));
        QVERIFY(ini.WriteIniKey(zone, QStringLiteral("PV_r"), QStringLiteral("3,40001")));
        QVERIFY(ini.WriteIniKey(QStringLiteral("COM"), QStringLiteral("Porta"), QStringLiteral("2")));
        Supervisor supervisor(rig.rt);

        supervisor.startUp();
        QCOMPARE(rig.rt.plant.zoneCount(), 1);
        QCOMPARE(rig.rt.editor.tables.ZoneReadTable.at(0, ZoneSlot::Address), 5);
        QCOMPARE(rig.rt.ChartLoggingOption, grafico == QLatin1String("1"));
        QCOMPARE(supervisor.TimerAutoStart().isActive(), autoAvvio == QLatin1String("1"));
        QCOMPARE(supervisor.SerialPortOpen(), portOpens);
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::PortPanel),
                 portOpens ? QStringLiteral("COM2:9600,N,8,1") : QStringLiteral("Nessuna COM"));
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel),
                 autoAvvio == QLatin1String("1") ? QStringLiteral("Avvio in corso...") : QString());
    }

    void acquisitionState_data()
    {
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("state");
        QTest::addColumn<int>("image");
        QTest::newRow("on") << true << "Acquisizione" << 4;
        QTest::newRow("off") << false << "Standby" << 3;
    }

    void acquisitionState()
    {
        QFETCH(bool, on);
        QFETCH(QString, state);
        QFETCH(int, image);

        PlantRig rig;
        Supervisor supervisor(rig.rt);
        supervisor.load();
        supervisor.SetAcquisitionState(!on);
        supervisor.SetAlarmBlink(true);
        rig.rt.statusBar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Remoto..."));
        rig.rt.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Accensione..."));
        QSignalSpy changed(&supervisor, &Supervisor::acquisitionStateChanged);

        supervisor.SetAcquisitionState(on);
        QCOMPARE(supervisor.AcquisitionRunning(), on);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::StatePanel), state);
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::ActivityPanel), QString());
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QString());
        QCOMPARE(supervisor.acquisitionButtonImage(), image);
        QCOMPARE(supervisor.Timer_Monitor().isActive(), on);
        if (!on)
            QVERIFY(!supervisor.Timer_Lampeggio().isActive());
    }

    void startNeedsAPortOnlyWhenCommunicating_data()
    {
        QTest::addColumn<bool>("communicate");
        QTest::addColumn<bool>("portOpen");
        QTest::addColumn<bool>("starts");
        QTest::newRow("simulation without port") << false << false << true;
        QTest::newRow("communicate with port") << true << true << true;
        QTest::newRow("communicate without port") << true << false << false;
    }

    void startNeedsAPortOnlyWhenCommunicating()
    {
        QFETCH(bool, communicate);
        QFETCH(bool, portOpen);
        QFETCH(bool, starts);

        PlantRig rig;
        setUpZone(rig);
        rig.rt.editor.comm.portAvailable = portOpen;
        Supervisor supervisor(rig.rt);
        supervisor.load();
        supervisor.setCommunicateWithInstruments(communicate);
        QCOMPARE(supervisor.CommunicateWithInstruments(), communicate);
        QCOMPARE(supervisor.SerialPortOpen(), portOpen);
        rig.rt.values.ZoneValues[0][0] = InvalidValue;

        supervisor.MenuStart();
        QCOMPARE(supervisor.AcquisitionRunning(), starts);
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::StatePanel), starts ? QString("Acquisizione") : QString("Standby"));
        QCOMPARE(rig.line.requests().size(), communicate && starts ? 5 : 0);
        QCOMPARE(rig.rt.values.ZoneValues[0][0] != InvalidValue, starts);
    }

    void startResumesThePendingAlarmAndLocksTheEditor()
    {
        PlantRig rig;
        setUpZone(rig);
        rig.rt.EditorOpen = true;
        Supervisor supervisor(rig.rt);
        supervisor.load();
        for (int i = 0; i < 6; ++i)
            rig.rt.alarms.ReportLedFailure(2);
        supervisor.SetAlarmBlink(false);
        QSignalSpy editor(&supervisor, &Supervisor::editorFrameEnabledRequested);

        supervisor.MenuStart();
        QVERIFY(supervisor.AlarmBlinkActive());
        QVERIFY(supervisor.Timer_Lampeggio().isActive());
        QCOMPARE(editor.size(), 1);
        QCOMPARE(editor.first().first().toBool(), false);
    }

    void stopClearsDisplaysAndUnlocksForAdministrators_data()
    {
        QTest::addColumn<bool>("administrator");
        QTest::addColumn<bool>("technician");
        QTest::addColumn<int>("unlocks");
        QTest::newRow("administrator") << true << false << 1;
        QTest::newRow("technician") << false << true << 0;
        QTest::newRow("anonymous") << false << false << 0;
    }

    void stopClearsDisplaysAndUnlocksForAdministrators()
    {
        QFETCH(bool, administrator);
        QFETCH(bool, technician);
        QFETCH(int, unlocks);

        PlantRig rig;
        setUpZone(rig);
        rig.rt.EditorOpen = true;
        rig.rt.user = {technician, administrator};
        Supervisor supervisor(rig.rt);
        supervisor.load();
        supervisor.MenuStart();
        supervisor.SetAlarmBlink(true);
        rig.rt.items.switches[0] = SwitchState::On;
        rig.rt.items.leds[1].lit = true;
        QSignalSpy zonesReset(&rig.rt.displayResets, &DisplayResets::ResetZoneDisplays);
        QSignalSpy indicatorsReset(&rig.rt.displayResets, &DisplayResets::ResetIndicatorDisplays);
        QSignalSpy editor(&supervisor, &Supervisor::editorFrameEnabledRequested);

        supervisor.MenuStop();
        QVERIFY(!supervisor.AcquisitionRunning());
        QVERIFY(!supervisor.AlarmBlinkActive());
        QCOMPARE(supervisor.acquisitionButtonImage(), Supervisor::StandbyImage);
        QCOMPARE(zonesReset.size(), 1);
        QCOMPARE(indicatorsReset.size(), 1);
        QCOMPARE(rig.rt.items.switches[0], SwitchState::Undetermined);
        QVERIFY(!rig.rt.items.leds[1].lit);
        QCOMPARE(editor.size(), unlocks);
        if (unlocks)
            QCOMPARE(editor.first().first().toBool(), true);
    }

    void reloadOnlyWhileAcquiring_data()
    {
        QTest::addColumn<bool>("acquiring");
        QTest::addColumn<bool>("portOpen");
        QTest::addColumn<int>("requests");
        QTest::newRow("standby: nothing") << false << true << 0;
        QTest::newRow("acquiring: reads again") << true << true << 5;
        QTest::newRow("acquiring, port gone: nothing") << true << false << 0;
    }

    void reloadOnlyWhileAcquiring()
    {
        QFETCH(bool, acquiring);
        QFETCH(bool, portOpen);
        QFETCH(int, requests);

        PlantRig rig;
        setUpZone(rig);
        Supervisor supervisor(rig.rt);
        supervisor.load();
        if (acquiring)
            supervisor.MenuStart();
        rig.takeRequests();
        rig.rt.editor.comm.portAvailable = portOpen;
        QSignalSpy changed(&supervisor, &Supervisor::acquisitionStateChanged);

        supervisor.MenuRileggi();
        QCOMPARE(rig.takeRequests().size(), requests);
        QCOMPARE(supervisor.AcquisitionRunning(), acquiring);
        QCOMPARE(changed.size(), requests > 0 ? 2 : 0);
        QCOMPARE(supervisor.Timer_Monitor().isActive(), acquiring);
    }

    void refusalsWhileAcquiring_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<bool>("acquiring");
        QTest::addColumn<bool>("proceeds");

        const char *names[] = {"exit", "about", "season"};
        for (int command = 0; command < 3; ++command) {
            QTest::addRow("%s while acquiring", names[command]) << command << true << false;
            QTest::addRow("%s in standby", names[command]) << command << false << true;
        }
    }

    void refusalsWhileAcquiring()
    {
        QFETCH(int, command);
        QFETCH(bool, acquiring);
        QFETCH(bool, proceeds);

        PlantRig rig;
        rig.rt.master.setCommunicate(false);
        Supervisor supervisor(rig.rt);
        supervisor.load();
        if (acquiring)
            supervisor.MenuStart();
        rig.pause.clear();

        bool result = false;
        const QStringList messages = messagesOf(rig.rt.statusBar, [&] {
            switch (command) {
            case 0:
                result = supervisor.MenuFine();
                break;
            case 1:
                result = supervisor.MenuAbout();
                break;
            default:
                result = supervisor.MenuStagione();
                break;
            }
        });
        QCOMPARE(result, proceeds);
        QCOMPARE(messages, proceeds ? QStringList() : QStringList({"Operazione non permessa", ""}));
        QCOMPARE(rig.pause.pauses(), proceeds ? QList<int>{} : QList<int>{500});
        QCOMPARE(supervisor.AcquisitionRunning(), acquiring);
    }

    void automaticStart()
    {
        PlantRig rig;
        rig.rt.master.setCommunicate(false);
        setUpZone(rig);
        Supervisor supervisor(rig.rt);
        supervisor.load();

        supervisor.armAutoStart(true);
        QVERIFY(supervisor.TimerAutoStart().isActive());
        QCOMPARE(supervisor.TimerAutoStart().interval(), 10000);
        QVERIFY(supervisor.AlarmBlinkActive());
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 350);
        QVERIFY(supervisor.Timer_Lampeggio().isActive());
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QStringLiteral("Avvio in corso..."));

        // While pending, the button blinks in standby.
        QList<int> images;
        for (int i = 0; i < 4; ++i) {
            supervisor.Timer_LampeggioTick();
            images.append(supervisor.acquisitionButtonImage());
            QVERIFY(supervisor.Timer_Lampeggio().isActive());
        }
        QCOMPARE(images, (QList<int>{3, 4, 3, 4}));

        supervisor.TimerAutoStartTick();
        QVERIFY(!supervisor.TimerAutoStart().isActive());
        QVERIFY(!supervisor.AutoStartPending());
        QVERIFY(supervisor.AcquisitionRunning());
        QVERIFY(!supervisor.AlarmBlinkActive());
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 700);
        QCOMPARE(supervisor.acquisitionButtonImage(), Supervisor::AcquiringImage);
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QString());
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::StatePanel), QStringLiteral("Acquisizione"));
    }

    void noAutomaticStartWhenTheOptionIsOff()
    {
        PlantRig rig;
        Supervisor supervisor(rig.rt);
        supervisor.load();
        supervisor.armAutoStart(false);
        QVERIFY(!supervisor.TimerAutoStart().isActive());
        QVERIFY(!supervisor.AlarmBlinkActive());
        QCOMPARE(rig.rt.statusBar.panel(StatusBar::MessagePanel), QString());
    }

    void alarmBlinkAndSound_data()
    {
        QTest::addColumn<QString>("sound");
        QTest::addColumn<int>("plays");
        QTest::newRow("sound configured") << "allarme.wav" << 2;
        QTest::newRow("no sound") << "" << 0;
    }

    void alarmBlinkAndSound()
    {
        QFETCH(QString, sound);
        QFETCH(int, plays);

        PlantRig rig;
        rig.rt.master.setCommunicate(false);
        rig.rt.plant.synoptic.alarmSound = sound;
        Supervisor supervisor(rig.rt);
        supervisor.load();
        supervisor.armAutoStart(false);
        supervisor.TimerAutoStartTick(); // acquiring, as after the automatic start
        QVERIFY(!supervisor.Timer_Lampeggio().isActive());
        rig.rt.plant.zones.resize(5);
        rig.rt.plant.zones[4].name = QStringLiteral("Cucina");

        for (int i = 0; i < 6; ++i)
            rig.rt.alarms.ReportZoneFailure(4);
        QVERIFY(supervisor.AlarmPending());
        QCOMPARE(rig.rt.alarms.zoneEntries(), QStringList{"Cucina (14/11/2026 22:20:09)"});
        QVERIFY(supervisor.AlarmBlinkActive());
        QVERIFY(supervisor.Timer_Lampeggio().isActive());
        QCOMPARE(supervisor.Timer_Lampeggio().interval(), 700);

        QList<int> images;
        for (int i = 0; i < 4; ++i) {
            supervisor.Timer_LampeggioTick();
            images.append(supervisor.acquisitionButtonImage());
            QCOMPARE(supervisor.BlinkPhase(), i % 2 == 0);
        }
        QCOMPARE(images, (QList<int>{3, 4, 3, 4}));
        QCOMPARE(rig.sound.played().size(), plays);
        if (plays)
            QCOMPARE(rig.sound.played().first(), rig.dir.filePath(QStringLiteral("allarme.wav")));

        // Acknowledged: the button shows the state again and the blink ends.
        supervisor.ResetAlarms();
        QVERIFY(!supervisor.AlarmPending());
        QVERIFY(!supervisor.AlarmBlinkActive());
        QCOMPARE(supervisor.acquisitionButtonImage(), Supervisor::AcquiringImage);
        supervisor.Timer_LampeggioTick();
        QVERIFY(!supervisor.Timer_Lampeggio().isActive());
        QCOMPARE(supervisor.acquisitionButtonImage(), Supervisor::AcquiringImage);
        QCOMPARE(rig.sound.played().size(), plays);
    }

    // The demo plant, simulated for ten minutes: the start's round and one round a
    // minute reach the day's file, each with a field per zone.
    void demoPlantInSimulation()
    {
        PlantRig rig;
        const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
        for (const QString &name : demo.entryList({QStringLiteral("*.ini")}, QDir::Files))
            QVERIFY(QFile::copy(demo.filePath(name), rig.dir.filePath(name)));
        Supervisor supervisor(rig.rt);
        supervisor.setCommunicateWithInstruments(false);
        supervisor.startUp();
        QVERIFY(rig.rt.plant.zoneCount() > 0);
        const int zones = rig.rt.plant.zoneCount();

        supervisor.MenuStart();
        QVERIFY(supervisor.AcquisitionRunning());
        for (int tick = 0; tick < 600; ++tick) {
            rig.clock.advance(1000);
            supervisor.MonitorCycle();
        }
        QVERIFY(supervisor.Timer_Monitor().isActive());
        QVERIFY(rig.line.requests().isEmpty());
        QCOMPARE(rig.pause.pauses(), QList<int>(11, 250));

        QFile log(rig.dir.filePath(QStringLiteral("Dati/2026_11_14.csv")));
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = log.readAll().split('\n');
        QCOMPARE(lines.size(), 11 + 1);
        QVERIFY(lines.last().isEmpty());
        for (int i = 0; i < 11; ++i) {
            QVERIFY(lines[i].endsWith(";\r"));
            QCOMPARE(lines[i].count(';'), 1 + zones);
        }
    }

    void blinkStopsInStandby()
    {
        PlantRig rig;
        rig.rt.editor.comm.portAvailable = false;
        Supervisor supervisor(rig.rt);
        supervisor.load();
        supervisor.armAutoStart(false);
        supervisor.TimerAutoStartTick(); // no longer pending; the port is missing, so standby
        QVERIFY(!supervisor.AcquisitionRunning());
        supervisor.SetAlarmBlink(true);
        supervisor.Timer_LampeggioTick();
        QCOMPARE(supervisor.acquisitionButtonImage(), Supervisor::StandbyImage);
        QVERIFY(!supervisor.Timer_Lampeggio().isActive());
    }
};

QTEST_GUILESS_MAIN(TestSupervisor)
#include "tst_supervisor.moc"
