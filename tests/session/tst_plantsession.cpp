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

// Every set point of the schedule, as a file holding one line repeats it to the end.
void writeSchedule(const RuntimeFixture &rig, const QByteArray &setPoint)
{
    rig.writeFile(QStringLiteral("Crono/Cronotermostato.cts"), setPoint + "\r\n");
}

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
    // the schedule again afterwards, and the instruments get the current slot once more.
    void scheduleSurvivesStartUpAndReload()
    {
        RuntimeFixture rig;
        rig.writeFile(QStringLiteral("Telvane0.ini"), "[Generale]\r\nModo=1\r\n");
        rig.writeFile(QStringLiteral("Telvane1.ini"), PlantIni);
        rig.writeFile(QStringLiteral("Crono/Festivita.cts"), "\r\n");
        writeSchedule(rig, "21.5");
        rig.slaves.insert(1);
        Supervisor supervisor(rig.rt);
        PlantSession session(rig.rt, supervisor, rig.prompts);

        session.startUp();
        QCOMPARE(rig.rt.model.chrono(ChronoSchedule::Slots - 1, ChronoSchedule::Zones - 1, ChronoSchedule::Days - 1), 21.5f);
        supervisor.MenuStart();
        rig.takeRequests();
        supervisor.MonitorCycle();
        QCOMPARE(rig.takeRequests(), QStringList{"01 06 0002 00d7"});
        supervisor.MonitorCycle();
        QVERIFY(rig.takeRequests().isEmpty());

        writeSchedule(rig, "18.0");
        session.reload();
        QCOMPARE(rig.rt.model.chrono(0, 0, 0), 18.0f);
        supervisor.MonitorCycle();
        QCOMPARE(rig.takeRequests(), QStringList{"01 06 0002 00b4"});
    }

    // Without the files, start-up makes them with the default set point.
    void missingScheduleStartsAtTwenty()
    {
        RuntimeFixture rig;
        rig.writeFile(QStringLiteral("Telvane0.ini"), "[Generale]\r\nModo=1\r\n");
        rig.writeFile(QStringLiteral("Telvane1.ini"), PlantIni);
        Supervisor supervisor(rig.rt);
        PlantSession session(rig.rt, supervisor, rig.prompts);
        session.startUp();
        QCOMPARE(rig.rt.model.chrono(10, 0, 3), 20.0f);
        QVERIFY(QFile::exists(rig.dir.filePath(QStringLiteral("Crono/Cronotermostato.cts"))));
        QVERIFY(QFile::exists(rig.dir.filePath(QStringLiteral("Crono/Festivita.cts"))));
    }
};

QTEST_GUILESS_MAIN(TestPlantSession)
#include "tst_plantsession.moc"
