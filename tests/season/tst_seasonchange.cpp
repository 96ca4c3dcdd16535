// The season change as the technician meets it: a recipe file of the "Ricetta" folder is
// read and checked, then sent row by row to the instruments, and the report of the send
// is kept.

#include "support/runtimefixture.h"

#include "season/seasonchange.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

using Kind = RecordingPrompts::Kind;
using Prompt = RecordingPrompts::Prompt;
using S = RowOutcome::Status;
using Outcome = SeasonChange::SendOutcome;

const QString Title = QStringLiteral("Configurazione strumenti");
const QString Failure = QStringLiteral("Attenzione: Un errore occorso durante l'invio della procedura ha impedito il "
                                       "completamento del cambio di stagione.\nVerificare il file e la linea di "
                                       "trasmissione dati.");
// The ID is matched without regard to case or blanks; the notes are for people.
const QByteArray Header = "[file]\r\nid =   telvane   \r\n\r\n[Note]\r\n< note >\r\n\r\n";

QByteArray zoneSection(int zone, const QByteArray &body)
{
    return "[Zona " + QByteArray::number(zone).rightJustified(2, '0') + "]\r\n" + body + "\r\n";
}

// A plant of `zones` zones, zone k on slave k; summer is current and each season has its
// recipe.
struct Plant : RuntimeFixture
{
    explicit Plant(int zones = 2, const QByteArray &stagione = "Attuale=0\r\nEstate=Estate.prg\r\nInverno=Inverno.prg\r\n")
    {
        writeFile(QStringLiteral("Telvane2.ini"), "[Stagione]\r\n" + stagione);
        rt.model.plant.zones.resize(zones);
        for (int zone = 0; zone < zones; ++zone) {
            rt.model.plant.zones[zone].name = QStringLiteral("Zona %1").arg(zone + 1);
            setRow(rt.model.editor.tables.ZoneWriteTable, zone, {zone + 1});
            slaves.insert(zone + 1);
        }
        writeRecipe(QStringLiteral("Inverno.prg"), zoneSection(1, "Linee=1\r\n01=6,2,200;SP") +
                                                   zoneSection(2, "Linee=1\r\n01=6,2,180;SP"));
        writeRecipe(QStringLiteral("Estate.prg"), zoneSection(1, "Linee=2\r\n01=0,MSGBOX,Valvole;A\r\n02=6,2,260;SP"));
        QObject::connect(&change, &SeasonChange::progressChanged,
                         [this](int, const QString &text) { progress.append(text); });
    }

    void writeRecipe(const QString &name, const QByteArray &zones) { writeFile("Ricetta/" + name, Header + zones); }

    // Loads `zones` as a recipe of no season, quietly; the load's message on failure.
    bool load(const QByteArray &zones, const QString &name = QStringLiteral("Prova.prg"))
    {
        writeRecipe(name, zones);
        return change.loadRecipeFile(name, std::nullopt, SeasonChange::LoadNotice::Quiet);
    }

    // The statuses of the rows of the last send.
    QList<S> statuses() const
    {
        QList<S> list;
        for (const RowOutcome &row : change.lastResult().rows)
            list.append(row.status);
        return list;
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

    SeasonChange change{rt, prompts};
    QStringList progress;
};

Prompt box(Kind kind, const QString &text)
{
    return {kind, Title, text};
}

// How the instrument answers the write of 260 to register 2 after a coil (-1: not at
// all), what register 2 then reads back as, and what becomes of the write.
struct Confirmation
{
    int echo = 260;
    bool readBack = false;
    int held = -1; // -1: the read goes unanswered
    QStringList requests;
    S status = S::Written;
    QString reason;
};

} // namespace

Q_DECLARE_METATYPE(Confirmation)

class TestSeasonChange : public QObject
{
    Q_OBJECT

private slots:
    // Each line becomes one row, in zone and line order, sent to the zone's own slave (the
    // steps' names in any case);
    // each write is followed by its zone's interval, each SLEEP by its own pause, and the
    // progress is the share of rows done before each row. A zone without an instrument is
    // listed, but its rows stop the send.
    void recipeLoadedAndSent()
    {
        Plant plant(6);
        plant.rt.model.editor.tables.ZoneWriteTable.set(2, ZoneSlot::Address, UnusedSlot);
        // Zone 4 counts its lines below zero, zone 5 does not count them, zone 6 has no
        // section; zones 7 and 8 are beyond the plant, one of them broken: none adds a row.
        QVERIFY2(plant.load(zoneSection(1, "Intervallo = 150\r\nLinee = 3\r\n01 = 6,2,260;Set point\r\n"
                                          "02 = 0,MsgBox,Chiudere, poi aprire;Avviso\r\n03 = 0,sleep,1000;pausa\r\n") +
                           zoneSection(2, "Linee=3\r\n01= 5 , 1 , 1 ; Comando remoto \r\n02=5,1,0;Off\r\n03=6,3,-1;N") +
                           zoneSection(3, "Linee=1\r\n01=6,40000,-5;Negativo\r\n") +
                           zoneSection(4, "Linee = -3\r\n01 = 6,1,1;P") + zoneSection(5, "Intervallo = 100\r\n01 = 6,1,1;P") +
                           zoneSection(7, "Linee = 1\r\n01 = 6,1,1;P") + zoneSection(8, "Linee = 1\r\n01 = garbage")),
                 qPrintable(plant.change.loadMessage()));
        QCOMPARE(plant.change.loadMessage(), QStringLiteral("Il file Prova.prg è stato caricato correttamente."));
        const QList<RecipeRow> &rows = plant.change.recipe().rows;
        QCOMPARE(rows.size(), 7);
        const RecipeRow &write = rows.at(0);
        QCOMPARE(write.kind, RecipeRow::Kind::WriteRegister);
        QCOMPARE(write.device, QStringLiteral("Zona 1"));
        QCOMPARE((QList<int>{write.zone, write.slave, write.functionCode, write.address, write.value}),
                 (QList<int>{1, 1, 6, 2, 260}));
        QCOMPARE(write.name, QStringLiteral("Set point"));
        // The text runs to the first ";", commas and all.
        QCOMPARE(rows.at(1).kind, RecipeRow::Kind::MsgBox);
        QCOMPARE(rows.at(1).valueText, QStringLiteral("Chiudere, poi aprire"));
        QCOMPARE(rows.at(2).kind, RecipeRow::Kind::Sleep);
        // A coil written with 1 is switched on with 0xFF00.
        const RecipeRow &coil = rows.at(3);
        QCOMPARE(coil.kind, RecipeRow::Kind::WriteCoil);
        QCOMPARE((QList<int>{coil.slave, coil.address, coil.value}), (QList<int>{2, 1, 0xFF00}));
        QCOMPARE(coil.name, QStringLiteral("Comando remoto"));
        const RecipeRow &unaddressed = rows.at(6);
        QCOMPARE((QList<int>{unaddressed.slave, unaddressed.address, unaddressed.value}), (QList<int>{-1, 40000, -5}));
        const auto &intervals = plant.change.recipe().intervalsMs;
        QCOMPARE(QList<int>(intervals.begin(), intervals.begin() + 6), (QList<int>{150, 200, 200, 200, 100, 200}));

        plant.prompts.scriptAcknowledge(true);
        QCOMPARE(plant.change.send(false), Outcome::Failed);
        QCOMPARE(plant.takeRequests(), (QStringList{"01 06 0002 0104", "02 05 0001 ff00", "02 05 0001 0000",
                                                    "02 06 0003 ffff"}));
        QCOMPARE(plant.pause.pauses(), (QList<int>{150, 1000, 200, 200, 200}));
        QCOMPARE(plant.progress, (QStringList{"0%", "0%", "14%", "28%", "42%", "57%", "71%", "85%"}));
        QCOMPARE(plant.statuses(), (QList<S>{S::Written, S::Acknowledged, S::Paused, S::Written, S::Written, S::Written,
                                             S::NoInstrument}));
        QCOMPARE(plant.prompts.asked(),
                 (QList<Prompt>{box(Kind::Acknowledge, "Chiudere, poi aprire\nPremere OK per continuare"),
                                box(Kind::Warning, Failure)}));
    }

    // One bad line refuses the whole file, even after good lines, and empties the lists:
    // the recipe loaded before can no longer be sent.
    void refused_data()
    {
        QTest::addColumn<QByteArray>("recipe");
        const auto zone1 = [](const QByteArray &line) {
            return Header + zoneSection(1, "Linee = 2\r\n01 = 6,1,1;buona\r\n02 = " + line + "\r\n");
        };
        QTest::newRow("wrong ID") << "[File]\r\nID = Telvane2\r\n" + zoneSection(1, "Linee=0\r\n");
        QTest::newRow("code 3") << zone1("3,100,5;x");
        QTest::newRow("no semicolon") << zone1("6,100,5");
        QTest::newRow("semicolon before the second comma") << zone1("6,100;5,x");
        QTest::newRow("line missing") << Header + zoneSection(1, "Linee = 2\r\n01 = 6,1,1;P\r\n");
        QTest::newRow("unknown step") << zone1("0,WAIT,100;x");
        QTest::newRow("negative pause") << zone1("0,SLEEP,-1;x");
        QTest::newRow("register beyond 65535") << zone1("6,65536,100;x");
        QTest::newRow("value with decimals") << zone1("6,2,26.5;x");
        QTest::newRow("value too large") << zone1("6,2,65536;x");
        QTest::newRow("coil value 2") << zone1("5,1,2;x");
        QTest::newRow("Linee not a number") << Header + zoneSection(1, "Linee = due\r\n");
        QTest::newRow("negative Intervallo") << Header + zoneSection(1, "Intervallo = -1\r\nLinee = 0\r\n");
    }
    void refused()
    {
        QFETCH(QByteArray, recipe);
        Plant plant(1);
        QVERIFY(plant.change.loadSeasonRecipe(Season::Inverno, SeasonChange::LoadNotice::Quiet));
        plant.writeFile(QStringLiteral("Ricetta/Rotta.prg"), recipe);
        QVERIFY(!plant.change.loadRecipeFile(QStringLiteral("Rotta.prg"), Season::Inverno));
        const QString message = QStringLiteral("Il file Rotta.prg non è un file valido per il cambio stagione.");
        QCOMPARE(plant.prompts.asked(), QList<Prompt>{box(Kind::Warning, message)});
        QVERIFY(!plant.change.hasRecipe());
        QCOMPARE(plant.change.recipe().rows.size(), 0);
        QCOMPARE(plant.change.send(false), Outcome::NothingLoaded);
    }

    // A file beside the program, not in "Ricetta", is not found; nor is a season without
    // a file named.
    void missing()
    {
        Plant plant(1, "Attuale=0\r\nEstate=  \r\n");
        plant.writeFile(QStringLiteral("Autunno.prg"), Header);
        for (const QString &name : {QStringLiteral("Autunno.prg"), QString()}) {
            QVERIFY(!plant.change.loadRecipeFile(name, std::nullopt, SeasonChange::LoadNotice::Quiet));
            QCOMPARE(plant.change.loadMessage(), QStringLiteral("Il file ") + name + QStringLiteral(" è errato o mancante."));
        }
        plant.prompts.clear();
        QVERIFY(!plant.change.loadSeasonRecipe(Season::Estate));
        QCOMPARE(plant.prompts.asked(), QList<Prompt>{box(Kind::Warning, "Nessun file relativo al cambio stagione "
                                                                         "Inverno -> Estate è stato impostato.")});
        QCOMPARE(plant.change.send(), Outcome::NothingLoaded);
        QVERIFY(plant.line.requests().isEmpty());
    }

    // The procedure stops at the row the instrument did not confirm; the line's own
    // attempts are the only retries. Read-back (an option): a register written and
    // echoed must also read back as the value written; coils are not read back.
    void writeConfirmed_data()
    {
        QTest::addColumn<Confirmation>("c");
        const QStringList sent{"01 05 0001 ff00", "01 06 0002 0104"};
        const QStringList readBack = sent + QStringList{"01 03 0002 0001"};
        QTest::newRow("echo of another value") << Confirmation{.echo = 259, .requests = sent, .status = S::NotAcknowledged};
        QTest::newRow("no answer") << Confirmation{.echo = -1, .requests = sent + QStringList(2, sent.last()),
                                                   .status = S::NotAcknowledged, .reason = "Time out"};
        QTest::newRow("read back the same") << Confirmation{.readBack = true, .held = 260, .requests = readBack};
        QTest::newRow("read back another value") << Confirmation{.readBack = true, .held = 259, .requests = readBack,
                                                                 .status = S::Mismatch};
        QTest::newRow("read back unanswered") << Confirmation{.readBack = true, .requests = readBack + QStringList(2, readBack.last()),
                                                              .status = S::Mismatch, .reason = "Time out"};
    }
    void writeConfirmed()
    {
        QFETCH(Confirmation, c);
        Plant plant(1);
        plant.rt.services.master.setAttempts(3);
        plant.line.setResponder([&c](const QByteArray &request) -> ScriptedLine::Reply {
            if (request[1] == 3)
                return c.held < 0 ? ScriptedLine::Reply() : ScriptedLine::withCrc(request.left(2) + char(2) + char(c.held >> 8) + char(c.held));
            const int echo = request[1] == 6 ? c.echo : 0xFF00;
            return echo < 0 ? ScriptedLine::Reply() : ScriptedLine::withCrc(request.left(4) + char(echo >> 8) + char(echo));
        });
        plant.change.setVerifyReadBack(c.readBack);
        QVERIFY(plant.load(zoneSection(1, "Linee=2\r\n01=5,1,1;Remoto\r\n02=6,2,260;SP")));
        QCOMPARE(plant.change.send(false), c.status == S::Written ? Outcome::Succeeded : Outcome::Failed);
        QCOMPARE(plant.takeRequests(), c.requests);
        QCOMPARE(plant.statuses(), (QList<S>{S::Written, c.status}));
        const RowOutcome &last = plant.change.lastResult().rows.last();
        QCOMPARE(last.reason, c.reason);
        QCOMPARE(last.echo, c.echo >= 0 ? c.echo : ModbusMaster::InvalidValue);
        if (c.status == S::Mismatch)
            QCOMPARE(last.readBack, c.held >= 0 ? c.held : ModbusMaster::InvalidValue);
    }

    // OK goes on; Cancel ends the procedure there; a box styled 4-7 cannot be cancelled.
    void msgBox_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<bool>("completed");
        QTest::newRow("OK") << "Avviso" << true << true;
        QTest::newRow("Cancel") << "Avviso" << false << false;
        QTest::newRow("style 3, Cancel") << "3" << false << false;
        QTest::newRow("style 4 has no Cancel") << "4" << false << true;
        QTest::newRow("style 7 has no Cancel") << "7" << false << true;
        QTest::newRow("8 is no style") << "8" << false << false;
    }
    void msgBox()
    {
        QFETCH(QString, name);
        QFETCH(bool, ok);
        QFETCH(bool, completed);
        Plant plant(1);
        plant.prompts.scriptAcknowledge(ok);
        QVERIFY(plant.load(zoneSection(1, "Linee=2\r\n01=0,MSGBOX,Chiudere le valvole.;" + name.toUtf8() + "\r\n02=6,2,260;P")));
        QCOMPARE(plant.change.send(false), completed ? Outcome::Succeeded : Outcome::Failed);
        QCOMPARE(plant.prompts.asked().first(), box(Kind::Acknowledge, "Chiudere le valvole.\nPremere OK per continuare"));
        QCOMPARE(plant.takeRequests().size(), completed ? 1 : 0);
        // Steps alone never touch the line.
        QCOMPARE(plant.line.openCalls() > 0, completed);
        QCOMPARE(plant.change.lastResult().rows.first().status, completed ? S::Acknowledged : S::Cancelled);
    }

    // No at the confirmation sends nothing; a failed send keeps "Attuale" too, and the
    // report kept in "Ricetta" tells what was sent where, each row's time and outcome,
    // and the rows the failure kept from the instruments.
    void reportOfAStoppedSend()
    {
        Plant plant;
        plant.slaves.remove(2);
        plant.rt.model.editor.comm.statusText = QStringLiteral("COM1:9600,N,8,1");
        plant.writeRecipe(QStringLiteral("Inverno.prg"), zoneSection(1, "Intervallo=1500\r\nLinee=1\r\n01=6,2,200;SP") +
                                                         zoneSection(2, "Linee=2\r\n01=6,2,180;SP\r\n02=5,1,1;Remoto"));
        QVERIFY(plant.change.loadSeasonRecipe(Season::Inverno));
        plant.prompts.scriptQuestion(false);
        QCOMPARE(plant.change.send(), Outcome::Declined);
        QVERIFY(plant.line.requests().isEmpty());
        QVERIFY(plant.change.lastReport().isEmpty());

        plant.prompts.scriptQuestion(true);
        QCOMPARE(plant.change.send(), Outcome::Failed);
        QCOMPARE(plant.takeRequests(), (QStringList{"01 06 0002 00c8", "02 06 0002 00b4"}));
        QCOMPARE(plant.attuale(), QStringLiteral("0"));
        QCOMPARE(plant.prompts.asked().last(), box(Kind::Warning, Failure));
        QCOMPARE(plant.journalledSends(), QStringList{"Inverno.prg: non riuscito"});

        const QString path = plant.dir.filePath(QStringLiteral("Ricetta/Resoconto Inverno 2026-11-14 22-20-09.txt"));
        QCOMPARE(plant.change.lastReportPath(), path);
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
            "22:20:09  Riga 1, zona 01 (Zona 1), slave 1, registro 2 = 200 (SP): scritto",
            "22:20:10  Riga 2, zona 02 (Zona 2), slave 2, registro 2 = 180 (SP): nessuna risposta dallo strumento (Time out)",
            "--:--:--  Riga 3, zona 02 (Zona 2), slave 2, bobina 1 = 1 (Remoto): non inviato",
            "",
        };
        QCOMPARE(QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n")), expected);
        QCOMPARE(plant.change.lastReport(), expected.mid(0, expected.size() - 1));
    }

    // While the master waits for a reply the window stays live: a second click on send,
    // or a new choice of recipe, is refused until the send has ended. A recipe that
    // belongs to no season is sent without touching "Attuale".
    void cannotStartTwice()
    {
        Plant plant;
        QVERIFY(plant.change.loadRecipeFile(QStringLiteral("Inverno.prg"), std::nullopt));
        QList<Outcome> during;
        bool reloaded = true;
        bool lineHeld = false;
        plant.line.setDuringYield([&] {
            if (!during.isEmpty())
                return;
            lineHeld = plant.rt.services.lineHolds.held();
            during.append(plant.change.send(false));
            reloaded = plant.change.loadSeasonRecipe(Season::Estate);
        });
        QSignalSpy sending(&plant.change, &SeasonChange::sendingChanged);
        QCOMPARE(plant.change.send(false), Outcome::Succeeded);
        QCOMPARE(during, QList<Outcome>{Outcome::Busy});
        QVERIFY(!reloaded);
        QVERIFY2(lineHeld, "a monitoring tick could run between the writes");
        QCOMPARE(plant.takeRequests().size(), 2);
        QCOMPARE(sending.size(), 2);
        QVERIFY(!plant.change.sending());
        QCOMPARE(plant.attuale(), QStringLiteral("0"));
    }
};

QTEST_GUILESS_MAIN(TestSeasonChange)
#include "tst_seasonchange.moc"
