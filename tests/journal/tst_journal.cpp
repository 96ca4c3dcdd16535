// The operator journal: its file, one per month, what a crash or a full disk leaves of it,
// and the operator's commands it records.

#include "filesizelimit.h"
#include "support/runtimefixture.h"

#include "commands/plantcommands.h"
#include "journal/operatorjournal.h"
#include "supervisor/supervisor.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QLoggingCategory>
#include <QTest>

using namespace telvane;

namespace {

const QDateTime Evening(QDate(2026, 11, 30), QTime(23, 59, 58));

// A plant whose journal entries are collected as their lines, without the time.
struct JournalFixture : RuntimeFixture
{
    OperatorJournal &journal = rt.services.journal;
    QStringList seen;

    JournalFixture()
    {
        QObject::connect(&journal, &OperatorJournal::recorded, [this](const JournalEntry &entry) {
            seen.append(journalLine(entry).section(QLatin1Char(';'), 1));
        });
    }
    bool record(const char *event) { return journal.record(QStringLiteral("Tecnico"), QLatin1String(event)); }
    // The events read back from November's file.
    QStringList events() const
    {
        QStringList events;
        for (const JournalEntry &entry : journal.readJournal(QStringLiteral("Giornale_2026_11.csv")))
            events << entry.event;
        return events;
    }
};

} // namespace

class TestJournal : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false\ntelvane.storage.warning=false")); }

    // Entries land in the file of the month they happen in, each announced; the view
    // and the spreadsheet read them back in order, the newest month listed first. An
    // entry a full disk does not take is not half-written, and it is still announced, so
    // that the headless output keeps it. A folder "Dati" removed while running is made again.
    void monthFilesLoseNothing()
    {
        JournalFixture rig;
        rig.clock.setNow(Evening);
        QVERIFY(rig.journal.record(QStringLiteral("Anonimo"), QStringLiteral("Start"), QStringLiteral("automatico")));
        rig.clock.advance(1000);
        // Separators and quotes are quoted, line breaks become blanks.
        const QString detail = QStringLiteral("Zona \"nord\";\r\nx\ny");
        QVERIFY(rig.journal.record(QStringLiteral("Tecnico"), QStringLiteral("Comando"), detail, QStringLiteral("confermato")));
        QFile file(rig.dir.filePath(QStringLiteral("Dati/Giornale_2026_11.csv")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), "Data e ora;Livello utente;Evento;Dettaglio;Esito\r\n"
                                 "30/11/2026 23:59:58;Anonimo;Start;automatico;\r\n"
                                 "30/11/2026 23:59:59;Tecnico;Comando;\"Zona \"\"nord\"\"; x y\";confermato\r\n");
        file.close();
        const JournalEntry read = rig.journal.readJournal(QStringLiteral("Giornale_2026_11.csv")).last();
        QCOMPARE(read.detail, QStringLiteral("Zona \"nord\"; x y"));
        QCOMPARE(read.time, Evening.addSecs(1));
        QCOMPARE(read.outcome, QStringLiteral("confermato"));

        // Damaged lines (a quote never closed, no such date, a field too many, a line cut
        // by a crash) are skipped, and the next entry starts on a line of its own.
        QVERIFY(file.open(QIODevice::Append));
        file.write("30/11/2026 23:59:58;Tecnico;Comando;Zona;\"x;confermato\r\n31/11/2026 10:00:00;Tecnico;Start;;\r\n"
                   "30/11/2026 23:59:58;Tecnico;Start;;;\r\n30/11/2026 23:59:59;Tecn");
        file.close();
        QVERIFY(rig.record("Stop"));
        QCOMPARE(rig.events(), (QStringList{"Start", "Comando", "Stop"}));
        const qint64 size = QFileInfo(file).size();
        {
            const FileSizeLimit limit(size + 10);
            QVERIFY(!rig.record("Comando"));
        }
        QCOMPARE(QFileInfo(file).size(), size);
        QCOMPARE(rig.seen.size(), 4);

        rig.clock.advance(1000);
        QVERIFY(rig.record("Rileggi"));
        QCOMPARE(rig.journal.journalFiles(), (QStringList{"Giornale_2026_12.csv", "Giornale_2026_11.csv"}));
        const QList<JournalEntry> december = rig.journal.readJournal(QStringLiteral("Giornale_2026_12.csv"));
        QCOMPARE(december, (QList<JournalEntry>{{QDateTime(QDate(2026, 12, 1), QTime(0, 0)), "Tecnico", "Rileggi", "", ""}}));
        QCOMPARE(rig.seen.last(), QStringLiteral("Tecnico;Rileggi;;"));
        QCOMPARE(rig.events(), (QStringList{"Start", "Comando", "Stop"}));

        rig.clock.setNow(Evening);
        QVERIFY(QDir(rig.dir.filePath(QStringLiteral("Dati"))).removeRecursively());
        QVERIFY(rig.record("Login"));
        QCOMPARE(rig.events(), QStringList{"Login"});
    }

    // Every command that ran, at once or from the queue, with the item's name and its
    // outcome; a set value with the user's decimal separator, as the day file has it.
    void commands()
    {
        QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
        JournalFixture fx;
        Supervisor supervisor(fx.rt);
        PlantCommands commands(fx.rt, fx.prompts, supervisor.acquisition());
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
        supervisor.SetAcquisitionState(true);
        commands.queueSwitch(1, false);    // unnamed and not configured
        commands.queueSetValue(0, QStringLiteral("21.5"));
        supervisor.monitoring().MonitorCycle();
        QLocale::setDefault(QLocale::c());

        QCOMPARE(fx.seen, (QStringList{"Tecnico;Comando;Accensione Pompa;confermato",
                                       "Tecnico;Comando;Apertura porta;non configurato",
                                       "Tecnico;Comando;Spegnimento interruttore 2;non configurato",
                                       "Tecnico;Comando;Valore Soggiorno: 21,5;confermato"}));
        fx.rt.cycleTasks.removeOne(&commands);
    }
};

QTEST_GUILESS_MAIN(TestJournal)
#include "tst_journal.moc"
