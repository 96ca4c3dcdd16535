#include "support/runtimefixture.h"

#include "season/inviaprocedura.h"

#include <QTest>

using namespace telvane;

namespace {

RecipeRow write(int zone, int slave, int address, qint32 value, int functionCode = 6)
{
    RecipeRow row;
    row.kind = functionCode == 5 ? RecipeRow::Kind::WriteCoil : RecipeRow::Kind::WriteRegister;
    row.zone = zone;
    row.slave = slave;
    row.functionCode = functionCode;
    row.address = address;
    row.value = value;
    row.valueText = QString::number(value);
    row.name = QStringLiteral("Parametro");
    return row;
}

RecipeRow sleep(int zone, int ms)
{
    RecipeRow row;
    row.kind = RecipeRow::Kind::Sleep;
    row.zone = zone;
    row.value = ms;
    return row;
}

RecipeRow messageRow(int zone, const QString &text, const QString &name = QStringLiteral("Avviso"))
{
    RecipeRow row;
    row.kind = RecipeRow::Kind::MsgBox;
    row.zone = zone;
    row.valueText = text;
    row.name = name;
    return row;
}

Recipe recipeOf(const QList<RecipeRow> &rows)
{
    Recipe recipe;
    recipe.fileName = QStringLiteral("Prova.prg");
    recipe.rows = rows;
    recipe.intervalsMs.fill(DefaultRecipeIntervalMs);
    recipe.intervalsMs[0] = 150;
    return recipe;
}

struct Run
{
    ProcedureResult result;
    QStringList progress;
    QList<int> rowsDone;
};

Run send(RuntimeFixture &fx, const Recipe &recipe, ProcedureOptions options = {})
{
    Run run;
    ProcedureObserver observer;
    observer.progress = [&run](int, const QString &text) { run.progress.append(text); };
    observer.rowDone = [&run](const RecipeRow &, const RowOutcome &outcome) { run.rowsDone.append(outcome.row); };
    run.result = InviaProcedura(fx.rt.services.master, fx.pause, fx.prompts, fx.clock, recipe, observer, options);
    return run;
}

QList<RowOutcome::Status> statuses(const ProcedureResult &result)
{
    QList<RowOutcome::Status> list;
    for (const RowOutcome &row : result.rows)
        list.append(row.status);
    return list;
}

using S = RowOutcome::Status;

} // namespace

class TestInviaProcedura : public QObject
{
    Q_OBJECT

private slots:
    // Each write is followed by its zone's interval, each SLEEP by its own pause; the
    // progress is the share of rows done before each row.
    void writesAndPausesInOrder()
    {
        RuntimeFixture fx;
        fx.slaves = {1, 2};
        const Run run = send(fx, recipeOf({write(1, 1, 2, 260), sleep(1, 1000), write(2, 2, 3, 320),
                                           write(2, 2, 1, 0xFF00, 5), write(2, 2, 1, 0, 5), write(2, 2, 7, -1)}));
        QVERIFY(run.result.ok);
        QCOMPARE(fx.takeRequests(), (QStringList{"01 06 0002 0104", "02 06 0003 0140", "02 05 0001 ff00",
                                                 "02 05 0001 0000", "02 06 0007 ffff"}));
        QCOMPARE(fx.pause.pauses(), (QList<int>{150, 1000, 200, 200, 200, 200}));
        QCOMPARE(run.progress, (QStringList{"0%", "0%", "16%", "33%", "50%", "66%", "83%", "100%"}));
        QCOMPARE(run.rowsDone, (QList<int>{0, 1, 2, 3, 4, 5}));
        QCOMPARE(statuses(run.result), (QList<S>{S::Written, S::Paused, S::Written, S::Written, S::Written,
                                                  S::Written}));
        QVERIFY(fx.prompts.asked().isEmpty());
    }

    // The procedure stops at the row that failed: nothing after it is sent or paused.
    void stopsAtFailedRow_data()
    {
        QTest::addColumn<int>("echo"); // -1: the slave stays silent
        QTest::addColumn<QString>("reason");
        QTest::newRow("no answer") << -1 << "Time out";
        QTest::newRow("echo of another value") << 259 << "";
    }
    void stopsAtFailedRow()
    {
        QFETCH(int, echo);
        QFETCH(QString, reason);
        RuntimeFixture fx;
        fx.slaves = {1};
        const Recipe recipe = recipeOf({write(1, 1, 2, 260), write(2, 2, 3, 320), write(2, 1, 4, 1)});
        if (echo >= 0)
            fx.line.setResponder([](const QByteArray &request) -> ScriptedLine::Reply {
                if (quint8(request[0]) != 2)
                    return ScriptedLine::withCrc(request.left(6));
                return ScriptedLine::withCrc(request.left(4) + QByteArray::fromHex("0103"));
            });
        const Run run = send(fx, recipe);
        QVERIFY(!run.result.ok);
        QCOMPARE(fx.takeRequests(), (QStringList{"01 06 0002 0104", "02 06 0003 0140"}));
        QCOMPARE(fx.pause.pauses(), QList<int>{150});
        QCOMPARE(statuses(run.result), (QList<S>{S::Written, S::NotAcknowledged}));
        QCOMPARE(run.result.rows.last().reason, reason);
        QCOMPARE(run.result.rows.last().echo, echo >= 0 ? echo : ModbusMaster::InvalidValue);
        QVERIFY(!run.progress.contains(QStringLiteral("100%")));
    }

    // The line's own attempts are the only retries.
    void noRetriesBeyondTheLine()
    {
        RuntimeFixture fx;
        fx.rt.services.master.setAttempts(3);
        send(fx, recipeOf({write(1, 1, 2, 260)}));
        QCOMPARE(fx.takeRequests().size(), 3);
    }

    void zoneWithoutInstrumentSendsNothing()
    {
        RuntimeFixture fx;
        const Run run = send(fx, recipeOf({write(1, -1, 2, 260), write(1, 1, 2, 260)}));
        QVERIFY(!run.result.ok);
        QCOMPARE(statuses(run.result), QList<S>{S::NoInstrument});
        QVERIFY(fx.line.requests().isEmpty());
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
        RuntimeFixture fx;
        fx.slaves = {1};
        fx.prompts.scriptAcknowledge(ok);
        const Run run = send(fx, recipeOf({messageRow(1, QStringLiteral("Chiudere le valvole."), name),
                                           write(1, 1, 2, 260)}));
        QCOMPARE(fx.prompts.asked(),
                 (QList<RecordingPrompts::Prompt>{{RecordingPrompts::Kind::Acknowledge,
                                                   QStringLiteral("Configurazione strumenti"),
                                                   QStringLiteral("Chiudere le valvole.\nPremere OK per continuare")}}));
        QCOMPARE(run.result.ok, completed);
        QCOMPARE(fx.takeRequests().size(), completed ? 1 : 0);
        QCOMPARE(run.result.rows.first().status, completed ? S::Acknowledged : S::Cancelled);
    }

    // A recipe of steps only never touches the line and completes.
    void stepsOnly()
    {
        RuntimeFixture fx;
        fx.prompts.scriptAcknowledge(true);
        const Run run = send(fx, recipeOf({sleep(1, 500), messageRow(1, QStringLiteral("Fatto?")), sleep(2, 0)}));
        QVERIFY(run.result.ok);
        QCOMPARE(fx.line.openCalls(), 0);
        QCOMPARE(fx.pause.pauses(), (QList<int>{500, 0}));
        QCOMPARE(run.progress.last(), QStringLiteral("100%"));
    }

    // Read-back (an option): a register written and echoed must also read back as the
    // value written; coils are not read back.
    void readBack_data()
    {
        QTest::addColumn<int>("held"); // -1: the register does not answer
        QTest::addColumn<bool>("ok");
        QTest::newRow("same value") << 260 << true;
        QTest::newRow("another value") << 259 << false;
        QTest::newRow("no answer") << -1 << false;
    }
    void readBack()
    {
        QFETCH(int, held);
        QFETCH(bool, ok);
        RuntimeFixture fx;
        fx.slaves = {1};
        if (held >= 0)
            fx.setValue(1, 3, 2, held);
        const Run run = send(fx, recipeOf({write(1, 1, 1, 0xFF00, 5), write(1, 1, 2, 260)}), {.verifyReadBack = true});
        QCOMPARE(run.result.ok, ok);
        QCOMPARE(fx.takeRequests(), (QStringList{"01 05 0001 ff00", "01 06 0002 0104", "01 03 0002 0001"}));
        QCOMPARE(run.result.rows.last().status, ok ? S::Written : S::Mismatch);
        if (!ok)
            QCOMPARE(run.result.rows.last().readBack, held >= 0 ? held : ModbusMaster::InvalidValue);
    }
};

QTEST_GUILESS_MAIN(TestInviaProcedura)
#include "tst_inviaprocedura.moc"
