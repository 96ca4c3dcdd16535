// The start-up and reload both the main window and the headless mode run a plant with.

#include "support/runtimefixture.h"

#include "session/plantsession.h"
#include "supervisor/supervisor.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTest>

using namespace telvane;

namespace {

// One zone following the chrono-thermostat, its set point written to register 2.
const char PlantIni[] = R"([Generale]
Zone=1
Cronotermostato=1
Zone Crono=1

[COM]
Porta=/dev/ttyTEST
Retry=1
TimeOut=100
Base Misura=0
Base Remoto=0
Base LED=0
Attivita=0

[Zona 01]
Nome=Soggiorno
Indirizzo=1
Decimali=1
SP_w=6,2
Cronotermostato=1
)";

} // namespace

class TestPlantSession : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    void pluggedInForItsLifetime()
    {
        RuntimeFixture rig;
        Supervisor supervisor(rig.rt);
        {
            PlantSession session(rig.rt, supervisor, rig.prompts);
            QCOMPARE(rig.rt.cycleTasks, (QList<CycleTask *>{&session.commands(), &session.chronoThermostat(),
                                                            &session.clockAlignment()}));
        }
        QVERIFY(rig.rt.cycleTasks.isEmpty());
    }

    // The editor's rebuild starts every set point at 20.0; start-up and reload both read
    // the schedule afterwards (start-up makes the missing files), and the instruments
    // get the current slot once more.
    void scheduleSurvivesStartUpAndReload()
    {
        RuntimeFixture rig;
        rig.writeFile(QStringLiteral("Telvane0.ini"), "[Generale]\r\nModo=1\r\n");
        rig.writeFile(QStringLiteral("Telvane1.ini"), PlantIni);
        rig.slaves.insert(1);
        Supervisor supervisor(rig.rt);
        PlantSession session(rig.rt, supervisor, rig.prompts);

        session.startUp();
        for (const char *file : {"Crono/Cronotermostato.cts", "Crono/Festivita.cts"})
            QVERIFY2(QFile::exists(rig.dir.filePath(QLatin1String(file))), file);
        supervisor.MenuStart();
        rig.takeRequests();
        supervisor.monitoring().MonitorCycle();
        QCOMPARE(rig.takeRequests(), QStringList{"01 06 0002 00c8"});
        supervisor.monitoring().MonitorCycle();
        QVERIFY(rig.takeRequests().isEmpty());

        rig.writeFile(QStringLiteral("Crono/Cronotermostato.cts"), "18.0\r\n");
        session.reload();
        QCOMPARE(rig.rt.model.chrono(ChronoSchedule::Slots - 1, ChronoSchedule::Zones - 1, ChronoSchedule::Days - 1), 18.0f);
        supervisor.monitoring().MonitorCycle();
        QCOMPARE(rig.takeRequests(), QStringList{"01 06 0002 00b4"});
    }
};

QTEST_GUILESS_MAIN(TestPlantSession)
#include "tst_plantsession.moc"
