#include "support/runtimefixture.h"

#include "season/seasonchange.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

using Kind = RecordingPrompts::Kind;
using Prompt = RecordingPrompts::Prompt;

const QString Title = QStringLiteral("Configurazione strumenti");
const QString Failure = QStringLiteral("Attenzione: Un errore occorso durante l'invio della procedura ha impedito il "
                                       "completamento del cambio di stagione.\nVerificare il file e la linea di "
                                       "trasmissione dati.");

// Two zones on slaves 1 and 2; summer is current; each season has its recipe.
struct Plant : RuntimeFixture
{
    explicit Plant(const QByteArray &stagione = "Attuale=0\r\nEstate=Estate.prg\r\nInverno=Inverno.prg\r\n")
    {
        writeFile(QStringLiteral("Telvane2.ini"), "[Stagione]\r\n" + stagione);
        rt.model.plant.zones.resize(2);
        setRow(rt.model.editor.tables.ZoneWriteTable, 0, {1});
        setRow(rt.model.editor.tables.ZoneWriteTable, 1, {2});
        slaves = {1, 2};
        writeRecipe(QStringLiteral("Inverno.prg"), "[Zona 01]\r\nLinee=1\r\n01=6,2,200;SP\r\n"
                                                   "[Zona 02]\r\nLinee=1\r\n01=6,2,180;SP\r\n");
        writeRecipe(QStringLiteral("Estate.prg"), "[Zona 01]\r\nLinee=2\r\n01=0,MSGBOX,Valvole;A\r\n02=6,2,260;SP\r\n");
    }

    void writeRecipe(const QString &name, const QByteArray &zones)
    {
        writeFile(QStringLiteral("Ricetta/") + name, "[File]\r\nID=Telvane\r\n" + zones);
    }

    // The recipe sends the operator journal holds, as "file: outcome".
    QStringList journalledSends() const
    {
        QStringList sends;
        for (const JournalEntry &entry : rt.services.journal.readJournal(JournalFileName(clock.now().date())))
            if (entry.event == QLatin1String("Invio ricetta"))
                sends.append(entry.detail + QStringLiteral(": ") + entry.outcome);
        return sends;
    }

    QString attuale() const { return rt.model.ini.ReadIniKey(QStringLiteral("Stagione"), QStringLiteral("Attuale"), "?"); }
};

Prompt box(Kind kind, const QString &text)
{
    return {kind, Title, text};
}

} // namespace

class TestSeasonChange : public QObject
{
    Q_OBJECT

private slots:
    // No at the confirmation sends nothing, keeps "Attuale" and leaves no report.
    void declinedChangeSendsNothing()
    {
        Plant plant;
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(change.loadSeasonRecipe(Season::Inverno));
        plant.prompts.scriptQuestion(false);
        QCOMPARE(change.send(), SeasonChange::SendOutcome::Declined);
        QVERIFY(plant.line.requests().isEmpty());
        QCOMPARE(plant.attuale(), QStringLiteral("0"));
        QVERIFY(change.lastReport().isEmpty());
    }

    // The report kept in "Ricetta": what was sent where, each row's time and outcome,
    // and the rows the failure kept from the instruments.
    void reportOfAStoppedSend()
    {
        Plant plant;
        plant.slaves.remove(2);
        plant.rt.model.editor.comm.statusText = QStringLiteral("COM1:9600,N,8,1");
        plant.writeRecipe(QStringLiteral("Inverno.prg"), "[Zona 01]\r\nIntervallo=1500\r\nLinee=1\r\n01=6,2,200;SP\r\n"
                                                         "[Zona 02]\r\nLinee=2\r\n01=6,2,180;SP\r\n02=5,1,1;Remoto\r\n");
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(change.loadSeasonRecipe(Season::Inverno));
        plant.prompts.scriptQuestion(true);
        QCOMPARE(change.send(), SeasonChange::SendOutcome::Failed);
        QCOMPARE(plant.attuale(), QStringLiteral("0"));
        QCOMPARE(plant.prompts.asked().last(), box(Kind::Warning, Failure));
        QCOMPARE(plant.journalledSends(), QStringList{"Inverno.prg: non riuscito"});

        const QString path = plant.dir.filePath(QStringLiteral("Ricetta/Resoconto Inverno 2026-11-14 22-20-09.txt"));
        QCOMPARE(change.lastReportPath(), path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList expected{
            "Resoconto dell'invio della ricetta Inverno.prg",
            "Cambio: Estate -> Inverno",
            "Linea: COM1:9600,N,8,1",
            "Rilettura di verifica: no",
            "Inizio: 14/11/2026 22:20:09",
            "Fine: 14/11/2026 22:20:10",
            "Esito: interrotto alla riga 2 di 3; la stagione non è cambiata",
            "",
            "22:20:09  Riga 1, zona 01, slave 1, registro 2 = 200 (SP): scritto",
            "22:20:10  Riga 2, zona 02, slave 2, registro 2 = 180 (SP): nessuna risposta dallo strumento (Time out)",
            "--:--:--  Riga 3, zona 02, slave 2, bobina 1 = 1 (Remoto): non inviato",
            "",
        };
        QCOMPARE(QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n")), expected);
        QCOMPARE(change.lastReport(), expected.mid(0, expected.size() - 1));
    }

    void noRecipeNamed()
    {
        Plant plant("Attuale=0\r\nEstate=  \r\n");
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(!change.loadSeasonRecipe(Season::Estate));
        QCOMPARE(plant.prompts.asked(), QList<Prompt>{box(Kind::Warning, "Nessun file relativo al cambio stagione "
                                                                         "Inverno -> Estate è stato impostato.")});
        QCOMPARE(change.send(), SeasonChange::SendOutcome::NothingLoaded);
        QVERIFY(plant.line.requests().isEmpty());
    }

    // A failed load empties the lists: the previous recipe can no longer be sent.
    void failedLoadClearsTheLists()
    {
        Plant plant;
        plant.writeRecipe(QStringLiteral("Rotta.prg"), "[Zona 01]\r\nLinee=1\r\n01=3,100,5;x\r\n");
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(change.loadSeasonRecipe(Season::Inverno));
        QVERIFY(!change.loadRecipeFile(QStringLiteral("Rotta.prg"), Season::Inverno));
        QVERIFY(!change.hasRecipe());
        QVERIFY(change.recipe().rows.isEmpty());
        QCOMPARE(plant.prompts.asked().last(),
                 box(Kind::Warning, "Il file Rotta.prg non è un file valido per il cambio stagione."));
    }

    // A recipe that belongs to no season is sent without touching "Attuale".
    void recipeOfNoSeason()
    {
        Plant plant;
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(change.loadRecipeFile(QStringLiteral("Inverno.prg"), std::nullopt));
        QCOMPARE(change.send(false), SeasonChange::SendOutcome::Succeeded);
        QCOMPARE(plant.takeRequests().size(), 2);
        QCOMPARE(plant.attuale(), QStringLiteral("0"));
    }

    // While the master waits for a reply the window stays live: a second click on send,
    // or a new choice of recipe, is refused until the send has ended.
    void cannotStartTwice()
    {
        Plant plant;
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(change.loadSeasonRecipe(Season::Inverno));
        QList<SeasonChange::SendOutcome> during;
        bool reloaded = true;
        bool lineHeld = false;
        plant.line.setDuringYield([&] {
            if (!during.isEmpty())
                return;
            lineHeld = plant.rt.services.lineHolds.held();
            during.append(change.send(false));
            reloaded = change.loadSeasonRecipe(Season::Estate);
        });
        QSignalSpy sending(&change, &SeasonChange::sendingChanged);
        QCOMPARE(change.send(false), SeasonChange::SendOutcome::Succeeded);
        QCOMPARE(during, QList<SeasonChange::SendOutcome>{SeasonChange::SendOutcome::Busy});
        QVERIFY(!reloaded);
        QVERIFY2(lineHeld, "a monitoring tick could run between the writes");
        QCOMPARE(plant.takeRequests().size(), 2);
        QCOMPARE(sending.size(), 2);
        QVERIFY(!change.sending());
    }
};

QTEST_GUILESS_MAIN(TestSeasonChange)
#include "tst_seasonchange.moc"
