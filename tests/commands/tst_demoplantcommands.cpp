#include "support/runtimefixture.h"

#include "commands/chronothermostat.h"
#include "commands/plantcommands.h"
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
    void queuedDoorAndChronoInOneTick()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.fieldbus=false"));
        RuntimeFixture fx;
        const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
        for (const QString &name : demo.entryList({QStringLiteral("*.ini")}, QDir::Files))
            QVERIFY(QFile::copy(demo.filePath(name), fx.dir.filePath(name)));
        // Instruments echo every write and leave reads unanswered.
        fx.line.setResponder([](const QByteArray &request) {
            return quint8(request[1]) >= 5 ? ScriptedLine::Reply(request) : ScriptedLine::Reply();
        });
        Supervisor supervisor(fx.rt);
        supervisor.startUp();
        // Saturday's set points: 21.5 for zone 1, 22.5 for zone 2, ...
        for (int slot = 0; slot < ChronoSchedule::Slots; ++slot)
            for (int zone = 0; zone < ChronoSchedule::Zones; ++zone)
                fx.rt.model.chrono(slot, zone, 5) = 21.5f + float(zone);
        ChronoThermostat chrono(fx.rt.model, fx.rt.services.master, fx.clock);
        PlantCommands commands(fx.rt, fx.prompts, supervisor);
        fx.rt.cycleTasks = {&commands, &chrono};
        fx.login(true, false);

        supervisor.MenuStart();
        fx.takeRequests();
        commands.doorOpenerClicked();
        QVERIFY(fx.takeRequests().isEmpty());
        fx.clock.advance(1000);
        supervisor.MonitorCycle();
        QCOMPARE(fx.takeRequests(), (QStringList{"07 05 0005 ff00", "07 05 0005 0000", "01 06 0002 00d7",
                                                 "02 06 0002 00e1", "03 06 0002 00eb", "04 06 0002 00f5"}));
        QCOMPARE(fx.pause.pauses().last(), 1500);
        QVERIFY(fx.prompts.asked().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDemoPlantCommands)
#include "tst_demoplantcommands.moc"
