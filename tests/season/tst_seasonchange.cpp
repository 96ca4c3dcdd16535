#include "support/runtimefixture.h"

#include "season/seasonchange.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

using Kind = RecordingPrompts::Kind;
using Prompt = RecordingPrompts::Prompt;

const QString Title = QStringLiteral("Configurazione strumenti");
const QString Confirmation = QStringLiteral("Modificare le impostazioni sugli strumenti ?");
const QString Completed = QStringLiteral("Il cambio delle impostazioni è stato completato correttamente.");
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
    // From summer the change goes to winter: its recipe is sent and winter stored.
    void completedChangeStoresTheSeason()
    {
        Plant plant;
        SeasonChange change(plant.rt, plant.prompts);
        QCOMPARE(change.currentSeason(), Season::Estate);
        QVERIFY(change.loadSeasonRecipe(otherSeason(change.currentSeason())));
        QSignalSpy stored(&change, &SeasonChange::seasonStored);
        plant.prompts.scriptQuestion(true);
        QCOMPARE(change.send(), SeasonChange::SendOutcome::Succeeded);
        QCOMPARE(plant.takeRequests(), (QStringList{"01 06 0002 00c8", "02 06 0002 00b4"}));
        QCOMPARE(plant.attuale(), QStringLiteral("1"));
        QCOMPARE(stored.size(), 1);
        QCOMPARE(plant.prompts.asked(),
                 (QList<Prompt>{box(Kind::Information, "Il file Inverno.prg è stato caricato correttamente."),
                                box(Kind::Question, Confirmation), box(Kind::Information, Completed)}));
    }

    // Any way the send does not complete leaves "Attuale" as it was.
    void unfinishedChangeKeepsTheSeason_data()
    {
        QTest::addColumn<bool>("confirmed");
        QTest::addColumn<bool>("slave2Answers");
        QTest::addColumn<QStringList>("requests");
        QTest::addColumn<QString>("lastBox");
        QTest::newRow("No at the confirmation") << false << true << QStringList{} << Confirmation;
        QTest::newRow("slave 2 silent") << true << false << QStringList{"01 06 0002 00c8", "02 06 0002 00b4"}
                                        << Failure;
    }
    void unfinishedChangeKeepsTheSeason()
    {
        QFETCH(bool, confirmed);
        QFETCH(bool, slave2Answers);
        QFETCH(QStringList, requests);
        QFETCH(QString, lastBox);
        Plant plant;
        if (!slave2Answers)
            plant.slaves.remove(2);
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(change.loadSeasonRecipe(Season::Inverno));
        plant.prompts.scriptQuestion(confirmed);
        QCOMPARE(change.send(), confirmed ? SeasonChange::SendOutcome::Failed : SeasonChange::SendOutcome::Declined);
        QCOMPARE(plant.takeRequests(), requests);
        QCOMPARE(plant.attuale(), QStringLiteral("0"));
        QCOMPARE(plant.prompts.asked().last().text, lastBox);
    }

    void cancelInMsgBox()
    {
        Plant plant("Attuale=1\r\nEstate=Estate.prg\r\n");
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(change.loadSeasonRecipe(otherSeason(change.currentSeason())));
        plant.prompts.scriptQuestion(true);
        plant.prompts.scriptAcknowledge(false);
        QCOMPARE(change.send(), SeasonChange::SendOutcome::Failed);
        QVERIFY(plant.line.requests().isEmpty());
        QCOMPARE(plant.attuale(), QStringLiteral("1"));
        QCOMPARE(plant.prompts.asked().last(), box(Kind::Warning, Failure));
    }

    void noRecipeNamed_data()
    {
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("message");
        QTest::newRow("to summer") << int(Season::Estate)
                                   << "Nessun file relativo al cambio stagione Inverno -> Estate è stato impostato.";
        QTest::newRow("to winter") << int(Season::Inverno)
                                   << "Nessun file relativo al cambio stagione Estate -> Inverno è stato impostato.";
    }
    void noRecipeNamed()
    {
        QFETCH(int, target);
        QFETCH(QString, message);
        Plant plant("Attuale=0\r\nEstate=  \r\n");
        SeasonChange change(plant.rt, plant.prompts);
        QVERIFY(!change.loadSeasonRecipe(Season(target)));
        QCOMPARE(plant.prompts.asked(), QList<Prompt>{box(Kind::Warning, message)});
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
        plant.line.setDuringYield([&] {
            if (!during.isEmpty())
                return;
            during.append(change.send(false));
            reloaded = change.loadSeasonRecipe(Season::Estate);
        });
        QSignalSpy sending(&change, &SeasonChange::sendingChanged);
        QCOMPARE(change.send(false), SeasonChange::SendOutcome::Succeeded);
        QCOMPARE(during, QList<SeasonChange::SendOutcome>{SeasonChange::SendOutcome::Busy});
        QVERIFY(!reloaded);
        QCOMPARE(plant.takeRequests().size(), 2);
        QCOMPARE(sending.size(), 2);
        QVERIFY(!change.sending());
    }
};

QTEST_GUILESS_MAIN(TestSeasonChange)
#include "tst_seasonchange.moc"
