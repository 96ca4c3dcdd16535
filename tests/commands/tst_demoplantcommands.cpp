#include "commandrig.h"

#include "commands/chronothermostat.h"
#include "commands/plantcommands.h"
#include "storage/chronofiles.h"
#include "supervisor/supervisor.h"

#include <QDir>
#include <QLoggingCategory>
#include <QTest>

using namespace telvane;

// The demo plant (civil mode, chrono-thermostat on for zones 1 to 4, a door opener on
// slave 7) acquiring without a window, as the headless mode runs it.
class TestDemoPlantCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus.debug=false\ntelvane.fieldbus.warning=false"));
    }

    void queuedDoorAndChronoInOneTick()
    {
        CommandRig rig;
        const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
        for (const QString &name : demo.entryList({QStringLiteral("*.ini")}, QDir::Files))
            QVERIFY(QFile::copy(demo.filePath(name), rig.dir.filePath(name)));
        // Instruments echo every write and leave reads unanswered.
        rig.line.setResponder([](const QByteArray &request) -> ScriptedLine::Reply {
            return quint8(request[1]) >= 5 ? ScriptedLine::Reply(request) : ScriptedLine::Reply();
        });

        Supervisor supervisor(rig.rt);
        supervisor.startUp();
        QVERIFY(rig.rt.editor.chronoThermostat);
        LoadChronoFiles(ProgramFolder(rig.dir.path()), rig.rt.chrono, rig.rt.holidays);
        // Saturday's set points: 21.5 for zone 1, 22.5 for zone 2, ...
        for (int slot = 0; slot < ChronoSchedule::Slots; ++slot)
            for (int zone = 0; zone < ChronoSchedule::Zones; ++zone)
                rig.rt.chrono(slot, zone, 5) = 21.5f + float(zone);

        ChronoThermostat chrono(rig.rt);
        rig.rt.cycleTasks.append(&chrono);
        PlantCommands commands(rig.rt, rig.prompts, supervisor);
        rig.rt.operatorCommands = &commands;
        rig.login(true, false);

        supervisor.MenuStart();
        QVERIFY(supervisor.AcquisitionRunning());
        rig.takeRequests();
        QCOMPARE(commands.requestDoorOpen(), std::nullopt);

        rig.clock.advance(1000);
        supervisor.MonitorCycle();
        QCOMPARE(rig.takeRequests(), (QList<QByteArray>{
                                         PlantRig::writeRequest(7, 5, 5, 0xFF00),
                                         PlantRig::writeRequest(7, 5, 5, 0),
                                         PlantRig::writeRequest(1, 6, 2, 215),
                                         PlantRig::writeRequest(2, 6, 2, 225),
                                         PlantRig::writeRequest(3, 6, 2, 235),
                                         PlantRig::writeRequest(4, 6, 2, 245),
                                     }));
        QCOMPARE(rig.pause.pauses().last(), 1500);
        QVERIFY(rig.prompts.asked().isEmpty());

        // The same slot is not sent again.
        rig.clock.advance(1000);
        supervisor.MonitorCycle();
        for (const QByteArray &request : rig.takeRequests())
            QVERIFY(quint8(request[1]) < 5);
    }
};

QTEST_GUILESS_MAIN(TestDemoPlantCommands)
#include "tst_demoplantcommands.moc"
