// The headless mode: its commands as typed, and its run of a plant tick by tick over a
// scripted line: what it prints, when it stops, how the operator commands go through the
// queue, and the start-up and reload it shares with the main window.

#include "support/runtimefixture.h"

#include "session/headlesscommand.h"
#include "session/headlessprompts.h"
#include "session/headlessrunner.h"
#include "session/plantsession.h"
#include "supervisor/supervisor.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>
#include <QTextStream>

using namespace telvane;

namespace {

constexpr int SwitchSlave = 7;

// Two zones on slaves 1 and 2 with all five quantities, a measurement round every
// other tick and no other poll, one switch and the log on. Zone 1 follows the
// chrono-thermostat, its set point written to register 2.
const char PlantIni[] = R"([Generale]
Zone=2
Interruttori=1
Grafico=1
Zone Grafico=0
Cronotermostato=1
Zone Crono=1

[COM]
Porta=/dev/ttyTEST
Retry=1
TimeOut=100
Base Misura=2
Base Remoto=0
Base LED=0
Remoto=0
Attivita=0

[Zona 01]
Nome=Soggiorno
Indirizzo=1
Decimali=1
PV_r=3,1
SP_r=3,2
AL1_r=3,3
AL2_r=3,4
AL3_r=3,5
SP_w=6,2
Cronotermostato=1

[Zona 02]
Nome=Cucina
Indirizzo=2
Decimali=0
PV_r=3,1
SP_r=3,2
AL1_r=3,3
AL2_r=3,4
AL3_r=3,5

[Interruttore 01]
Nome=Caldaia
Indirizzo=7
Decimali=0
On_w=5,1
Off_w=5,1
Val_on=1
Val_off=0
)";

HeadlessOptions withTicks(int ticks, bool communicate = true)
{
    HeadlessOptions options;
    options.communicate = communicate;
    options.ticks = ticks;
    return options;
}

// Logged in as the technician with `password`, the commands queued one a tick.
HeadlessOptions withCommands(const QString &password, const QStringList &commands, bool communicate = true)
{
    HeadlessOptions options = withTicks(int(commands.size()) + 1, communicate);
    options.login = HeadlessOptions::Credentials{QStringLiteral("Tecnico"), password};
    QString error;
    for (const QString &text : commands) {
        const std::optional<HeadlessCommand> command = parseHeadlessCommand(text, error);
        if (!command)
            qFatal("\"%s\" refused: %s", qPrintable(text), qPrintable(error));
        options.commands.append(*command);
    }
    return options;
}

// A plant rig with the plant above on disk and a runner printing into `output`.
struct HeadlessRig : RuntimeFixture
{
    explicit HeadlessRig(HeadlessOptions options = withTicks(0))
    {
        writeFile(QStringLiteral("Telvane0.ini"), "[Generale]\r\nModo=1\r\n");
        writeFile(QStringLiteral("Telvane1.ini"), PlantIni);
        for (int k = 0; k < 5; ++k) {
            setValue(1, 3, k + 1, 215 + k);
            setValue(2, 3, k + 1, 40 + k);
        }
        slaves.insert(SwitchSlave);
        runner = std::make_unique<HeadlessRunner>(rt, supervisor, session, prompts, out, std::move(options));
    }

    // One tick a second of the clock, as the timer would run them.
    void tick()
    {
        clock.advance(1000);
        supervisor.monitoring().MonitorCycle();
    }

    // Everything printed since the last call, line by line; the operator journal's
    // lines go to `journalled` instead, as "level;event;detail;outcome".
    QStringList takeLines()
    {
        out.flush();
        QStringList lines = printed.mid(m_taken).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        m_taken = printed.size();
        static const QRegularExpression journalLine(QStringLiteral("^Giornale: \\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d;(.*)$"));
        lines.removeIf([this](const QString &line) {
            const QRegularExpressionMatch match = journalLine.match(line);
            if (match.hasMatch())
                journalled.append(match.captured(1));
            return match.hasMatch() || line.startsWith(QLatin1String("Giornale:"));
        });
        return lines;
    }
    QStringList journalled;

    // The writes put on the wire since the last call (reads left out).
    QStringList takeWrites()
    {
        return takeRequests().filter(QRegularExpression(QStringLiteral("^.. 0[5-9]")));
    }

    QStringList logLines()
    {
        QFile log(dir.filePath(QStringLiteral("Dati/2026_11_14.csv")));
        if (!log.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(log.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    }

    QString printed;
    QTextStream out{&printed};
    HeadlessPrompts prompts{out};
    Supervisor supervisor{rt};
    PlantSession session{rt, supervisor, prompts};
    std::unique_ptr<HeadlessRunner> runner;

private:
    qsizetype m_taken = 0;
};

} // namespace

class TestHeadlessRunner : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    // Start-up, the start's round, the ticks, an absent slave reaching its sixth failure
    // in the second round, and the stop after the fourth tick.
    void printsWhatTheWindowWouldShow()
    {
        HeadlessRig rig(withTicks(4));
        rig.slaves.remove(2);
        QSignalSpy finished(rig.runner.get(), &HeadlessRunner::finished);

        rig.runner->start();
        QVERIFY(rig.supervisor.AcquisitionRunning());
        QCOMPARE(rig.takeLines(), (QStringList{"Pannello 2: Standby", "Pannello 1: COM/dev/ttyTEST:9600,N,8,1",
                                               "Pannello 3: Lettura...", "Pannello 3:", "Pannello 2: Acquisizione"}));

        rig.tick();
        QCOMPARE(rig.takeLines(), QStringList());
        rig.tick();
        const QStringList entries = rig.rt.services.alarms.zoneEntries();
        QCOMPARE(entries.size(), 1);
        QVERIFY2(entries.first().startsWith(QStringLiteral("Cucina (14/11/2026 22:20:")), qPrintable(entries.first()));
        const QString alarm = QStringLiteral("Allarme: ") + entries.first();
        QCOMPARE(rig.takeLines(), (QStringList{"Pannello 3: Lettura...", alarm, "Pannello 3:"}));
        rig.tick();
        QCOMPARE(finished.count(), 0);
        rig.tick();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toInt(), 0);
        QCOMPARE(rig.runner->ticksRun(), 4);
        // Listed once: the third round adds nothing.
        QCOMPARE(rig.takeLines(), (QStringList{"Pannello 3: Lettura...", "Pannello 3:", "Pannello 2: Standby"}));
        QCOMPARE(rig.journalled, (QStringList{"Anonimo;Start;automatico;", "Anonimo;Stop;;"}));
        QVERIFY(!rig.supervisor.AcquisitionRunning());
        QVERIFY(!rig.supervisor.monitoring().Timer_Monitor().isActive());
        QVERIFY(!rig.line.isOpen());

        const QStringList log = rig.logLines();
        QCOMPARE(log.size(), 3);
        for (const QString &line : log)
            QVERIFY2(line.endsWith(QStringLiteral(";21.5;-99999;")), qPrintable(line));
    }

    // Each command waits for its own tick, in the order given, and its outcome is told.
    // The commands run first in a tick: the chrono-thermostat's slot follows.
    void commandsRunOneATick()
    {
        HeadlessRig rig(withCommands(QStringLiteral("Qx7"), {"  SWITCH   1  On ", "set 1 21,5", "door", "set 1 caldo",
                                                             "set 2 19", "switch 1 off", "switch 10 off", "set 30 -3.25"}));
        rig.runner->start();
        QVERIFY(rig.takeLines().contains(QStringLiteral("Pannello 1: Utente: Tecnico")));
        QVERIFY(rig.takeWrites().isEmpty());
        // Told with blanks tidied; the items count from 1, up to the last one a plant may
        // have. The value is the command's to judge, and the operator is told why not.
        const QList<std::pair<QStringList, QStringList>> ticks{
            {{"07 05 0001 ff00", "01 06 0002 00c8"}, {"Comando \"SWITCH 1 On\": confermato"}},
            {{"01 06 0002 00d7"}, {"Comando \"set 1 21,5\": confermato"}},
            {{}, {"Comando \"door\": non configurato"}},
            {{}, {"Avviso (Modifica parametro...): Valore non valido: \"caldo\". Nessun valore è stato inviato allo "
                  "strumento.", "Comando \"set 1 caldo\": rifiutato"}},
            {{}, {"Comando \"set 2 19\": non configurato"}},
            {{"07 05 0001 0000"}, {"Comando \"switch 1 off\": confermato"}},
            {{}, {"Comando \"switch 10 off\": non configurato"}},
            {{}, {"Comando \"set 30 -3.25\": non configurato"}}};
        for (const auto &[writes, told] : ticks) {
            rig.tick();
            QCOMPARE(rig.takeWrites(), writes);
            const QStringList lines = rig.takeLines();
            for (const QString &line : told)
                QVERIFY2(lines.contains(line), qPrintable(lines.join('\n')));
        }
        QCOMPARE(rig.journalled.filter(QStringLiteral(";Comando;")).size(), ticks.size());
        QVERIFY2(rig.journalled.contains(QStringLiteral("Tecnico;Login;Tecnico;")), qPrintable(rig.journalled.join('\n')));
    }

    // The editor's rebuild starts every set point at 20.0; start-up and reload both read
    // the schedule afterwards (start-up makes the missing files), and the instruments get
    // the current slot once more, as after every start.
    void scheduleSurvivesStartUpAndReload()
    {
        HeadlessRig rig;
        rig.runner->start();
        for (const char *file : {"Crono/Cronotermostato.cts", "Crono/Festivita.cts"})
            QVERIFY2(QFile::exists(rig.dir.filePath(QLatin1String(file))), file);
        rig.tick();
        QCOMPARE(rig.takeWrites(), QStringList{"01 06 0002 00c8"});
        rig.tick();
        QCOMPARE(rig.takeWrites(), QStringList{});
        // A stop and a start inside the slot send it again.
        rig.supervisor.SetAcquisitionState(false);
        rig.supervisor.SetAcquisitionState(true);
        rig.tick();
        QCOMPARE(rig.takeWrites(), QStringList{"01 06 0002 00c8"});
        rig.writeFile(QStringLiteral("Crono/Cronotermostato.cts"), "18.0\r\n");
        rig.session.reload();
        QCOMPARE(rig.rt.model.chrono(ChronoSchedule::Slots - 1, ChronoSchedule::Zones - 1, ChronoSchedule::Days - 1), 18.0f);
        rig.tick();
        QCOMPARE(rig.takeWrites(), QStringList{"01 06 0002 00b4"});
    }

    // The session's tasks run in the cycle for as long as it lives, and no longer.
    void pluggedInForItsLifetime()
    {
        RuntimeFixture rig;
        Supervisor supervisor(rig.rt);
        std::optional<PlantSession> session(std::in_place, rig.rt, supervisor, rig.prompts);
        QCOMPARE(rig.rt.cycleTasks.size(), 3);
        session.reset();
        QCOMPARE(rig.rt.cycleTasks, QList<CycleTask *>{});
    }

    // A stop (SIGTERM) that arrives while a tick waits for a reply: that exchange ends,
    // no other is sent, the unfinished round writes no line, and the run finishes with
    // the port closed.
    void stopDuringATickEndsItAfterTheExchange()
    {
        HeadlessRig rig; // no tick limit
        QSignalSpy finished(rig.runner.get(), &HeadlessRunner::finished);
        rig.runner->start();
        rig.tick();
        QCOMPARE(rig.logLines().size(), 1);
        rig.takeRequests();

        qsizetype sentAtStop = -1;
        rig.line.setDuringYield([&] {
            if (sentAtStop >= 0)
                return;
            sentAtStop = rig.line.requests().size();
            rig.runner->requestStop();
            QCOMPARE(finished.count(), 0);
        });
        rig.tick();
        QCOMPARE(rig.line.requests().size(), sentAtStop);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toInt(), 0);
        QCOMPARE(rig.runner->ticksRun(), 2);
        QCOMPARE(rig.logLines().size(), 1);
        QCOMPARE(rig.takeLines().last(), QStringLiteral("Pannello 2: Standby"));
        QVERIFY(!rig.supervisor.monitoring().Timer_Monitor().isActive());
        QVERIFY(!rig.line.isOpen());
    }

    // A stop that comes before the start: finished at once, and neither a second signal
    // nor the start does anything.
    void stopBeforeTheStart()
    {
        HeadlessRig rig;
        QSignalSpy finished(rig.runner.get(), &HeadlessRunner::finished);
        rig.runner->requestStop();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toInt(), 0);
        rig.runner->requestStop();
        rig.runner->start();
        QCOMPARE(finished.count(), 1);
        QVERIFY(rig.line.requests().isEmpty());
        QVERIFY(!rig.supervisor.AcquisitionRunning());
        QCOMPARE(rig.takeLines(), QStringList());
    }

    // Talking to the instruments needs the port: without it the run ends at once.
    void noPortEndsACommunicatingRun()
    {
        HeadlessRig rig(withTicks(1));
        rig.line.setOpenRefused(true);
        QSignalSpy finished(rig.runner.get(), &HeadlessRunner::finished);
        rig.runner->start();
        const QStringList lines = rig.takeLines();
        QVERIFY2(lines.contains(QStringLiteral("Pannello 1: Nessuna COM")), qPrintable(lines.join('\n')));
        QCOMPARE(lines.last(), QStringLiteral("Nessuna COM"));
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toInt(), 1);
        QVERIFY(!rig.supervisor.AcquisitionRunning());
        QVERIFY(rig.line.requests().isEmpty());
    }

    // A simulation runs without the port. Nobody answers a box: a wrong password is told
    // on a line, and the command that follows is refused for want of rights.
    void simulationWithoutPortAndWrongPassword()
    {
        HeadlessRig rig(withCommands(QStringLiteral("qx7"), {"switch 1 on"}, false));
        rig.line.setOpenRefused(true);
        rig.runner->start();
        const QStringList start = rig.takeLines();
        QVERIFY2(start.contains(QStringLiteral("Pannello 1: Nessuna COM")) &&
                     start.contains(QStringLiteral("Avviso (Accesso): Password errata.")) &&
                     !start.contains(QStringLiteral("Pannello 1: Utente: Tecnico")),
                 qPrintable(start.join('\n')));
        QVERIFY(rig.supervisor.AcquisitionRunning());
        rig.tick();
        const QStringList tick = rig.takeLines();
        QVERIFY2(tick.contains(QStringLiteral("Pannello 4: Privilegi insufficienti")) &&
                     tick.contains(QStringLiteral("Comando \"switch 1 on\": rifiutato")),
                 qPrintable(tick.join('\n')));
    }

    // Nobody is there to answer: No and Cancel, so nothing is done on a guess.
    void boxesBecomeLines()
    {
        QString printed;
        QTextStream out(&printed);
        HeadlessPrompts prompts(out);
        const QString title = QStringLiteral("Titolo");
        prompts.warning(title, QStringLiteral("Il comando potrebbe non essere stato eseguito."));
        prompts.warning(title, QStringLiteral("Prima riga\r\nseconda riga\n"));
        prompts.information(title, QStringLiteral("Fatto."));
        QVERIFY(!prompts.question(title, QStringLiteral("Procedo?")));
        QCOMPARE(prompts.textInput(title, QStringLiteral("Nuovo valore"), QStringLiteral("20")), std::nullopt);
        QCOMPARE(printed.split(QLatin1Char('\n')),
                 (QStringList{"Avviso (Titolo): Il comando potrebbe non essere stato eseguito.",
                              "Avviso (Titolo): Prima riga seconda riga", "Informazione (Titolo): Fatto.",
                              "Domanda (Titolo): Procedo? -> No", "Richiesta (Titolo): Nuovo valore -> Annulla", ""}));
    }
};

QTEST_GUILESS_MAIN(TestHeadlessRunner)
#include "tst_headlessrunner.moc"
