// What reaches the operator journal from where things happen: the acquisition's start,
// stop and re-read, the acknowledgement of alarms and the operator's commands.

#include "support/runtimefixture.h"

#include "commands/plantcommands.h"
#include "journal/operatorjournal.h"
#include "supervisor/supervisor.h"

#include <QLocale>
#include <QLoggingCategory>
#include <QTest>

using namespace telvane;

namespace {

struct JournalFixture : RuntimeFixture
{
    Supervisor supervisor{rt};
    // Each entry's line in the month's file, without its time.
    QStringList seen;

    JournalFixture()
    {
        QObject::connect(&rt.services.journal, &OperatorJournal::recorded, [this](const JournalEntry &entry) {
            seen.append(journalLine(entry).section(QLatin1Char(';'), 1));
        });
    }
};

} // namespace

class TestJournalHooks : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    // The automatic start is told from the operator's; a re-read is not a stop and a
    // start; a Stop while standing by does nothing. Closing the alarms window
    // acknowledges every time; only an acknowledgement of listed alarms is journalled,
    // with how many there were.
    void acquisitionAndAcknowledgement()
    {
        JournalFixture fx;
        fx.supervisor.load();
        fx.rt.model.plant.zones.resize(2);
        fx.rt.model.editor.comm.portAvailable = false;
        fx.supervisor.MenuStart();
        fx.rt.services.master.setCommunicate(false);
        fx.supervisor.TimerAutoStartTick();
        fx.login(true, false);
        fx.supervisor.MenuRileggi();
        fx.supervisor.MenuStop();
        fx.supervisor.MenuStop();
        for (int i = 0; i < 6; ++i) {
            fx.rt.services.alarms.ReportZoneFailure(0);
            fx.rt.services.alarms.ReportZoneFailure(1);
        }
        fx.supervisor.ResetAlarms();
        fx.supervisor.ResetAlarms();
        fx.login(false, true);
        fx.supervisor.MenuStart();

        QCOMPARE(fx.seen, (QStringList{"Anonimo;Start;;porta seriale non disponibile", "Anonimo;Start;automatico;",
                                       "Tecnico;Rileggi;;", "Tecnico;Stop;;", "Tecnico;Riconoscimento allarmi;2 in elenco;",
                                       "Amministratore;Start;;"}));
    }

    // Every command that ran, at once or from the queue, with the item's name and its
    // outcome; a set value with the user's decimal separator, as the day file has it.
    void commands()
    {
        QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
        JournalFixture fx;
        PlantCommands commands(fx.rt, fx.prompts, fx.supervisor.acquisition());
        fx.rt.cycleTasks.append(&commands);
        fx.rt.model.plant.SwitchControlMode = 1;
        fx.rt.model.plant.switches.resize(2);
        fx.rt.model.plant.switches[0].name = QStringLiteral("Pompa");
        fx.rt.model.plant.zones.resize(1);
        fx.rt.model.plant.zones[0].name = QStringLiteral("Soggiorno");
        RegisterTables &t = fx.rt.model.editor.tables;
        setRow(t.SwitchWriteTable, 0, {4, 0, -1, -1, 5, 0x30, 5, 0x31, 1, 0});
        setRow(t.ZoneWriteTable, 0, {12, 1, -1, -1, -1, -1, 6, 0x50});
        fx.slaves = {4, 12};
        fx.rt.model.editor.comm.remotePeriod = fx.rt.model.editor.comm.measurementPeriod = fx.rt.model.editor.comm.ledPeriod = 0;
        fx.login(true, false);

        commands.switchOffImageClicked(0); // standing by: at once
        commands.doorOpenerClicked();      // no door configured
        fx.supervisor.SetAcquisitionState(true);
        commands.queueSwitch(1, false);    // unnamed and not configured
        commands.queueSetValue(0, QStringLiteral("21.5"));
        fx.supervisor.monitoring().MonitorCycle();
        QLocale::setDefault(QLocale::c());

        QCOMPARE(fx.seen, (QStringList{"Tecnico;Comando;Accensione Pompa;confermato",
                                       "Tecnico;Comando;Apertura porta;non configurato",
                                       "Tecnico;Comando;Spegnimento interruttore 2;non configurato",
                                       "Tecnico;Comando;Valore Soggiorno: 21,5;confermato"}));
        fx.rt.cycleTasks.removeOne(&commands);
    }
};

QTEST_GUILESS_MAIN(TestJournalHooks)
#include "tst_journalhooks.moc"
