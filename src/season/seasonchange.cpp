#include "season/seasonchange.h"

#include "base/clock.h"
#include "base/prompts.h"
#include "season/seasonlog.h"
#include "season/sendreport.h"
#include "supervisor/runtime.h"

namespace telvane {

namespace {

const QString Confirmation = QStringLiteral("Modificare le impostazioni sugli strumenti ?");
const QString Completed = QStringLiteral("Il cambio delle impostazioni è stato completato correttamente.");
const QString Failure =
    QStringLiteral("Attenzione: Un errore occorso durante l'invio della procedura ha impedito il completamento del "
                   "cambio di stagione.\nVerificare il file e la linea di trasmissione dati.");

} // namespace

SeasonChange::SeasonChange(Runtime &rt, Prompts &prompts, QObject *parent)
    : QObject(parent)
    , m_rt(rt)
    , m_prompts(prompts)
{
}

Season SeasonChange::currentSeason() const
{
    return readCurrentSeason(m_rt.model.ini);
}

bool SeasonChange::loadSeasonRecipe(Season target, LoadNotice notice)
{
    if (m_sending)
        return false;
    const QString fileName = readSeasonRecipe(m_rt.model.ini, target);
    if (fileName.isEmpty()) {
        clearRecipe();
        m_loadMessage = noRecipeMessage(target);
        m_prompts.warning(RecipeBoxTitle, m_loadMessage);
        return false;
    }
    return loadRecipeFile(fileName, target, notice);
}

bool SeasonChange::loadRecipeFile(const QString &fileName, std::optional<Season> target, LoadNotice notice)
{
    if (m_sending)
        return false;
    RecipeLoad load = LoadRecipe(m_rt.model.ini, fileName, m_rt.model.plant, m_rt.model.editor.tables.ZoneWriteTable);
    m_loadMessage = load.message;
    if (!load.loaded()) {
        clearRecipe();
        m_prompts.warning(RecipeBoxTitle, load.message);
        return false;
    }
    m_recipe = std::move(load.recipe);
    m_loaded = true;
    m_target = target;
    emit recipeChanged();
    if (notice == LoadNotice::Box)
        m_prompts.information(RecipeBoxTitle, load.message);
    return true;
}

void SeasonChange::clearRecipe()
{
    if (m_sending)
        return;
    m_recipe = Recipe();
    m_loaded = false;
    m_target.reset();
    emit recipeChanged();
}

SeasonChange::SendOutcome SeasonChange::send(bool confirm)
{
    if (m_sending)
        return SendOutcome::Busy;
    if (!m_loaded)
        return SendOutcome::NothingLoaded;
    // Read before asking, as the window always has: the answer may take a while.
    const Season before = currentSeason();
    if (confirm && !m_prompts.question(RecipeBoxTitle, Confirmation))
        return SendOutcome::Declined;

    setSending(true);
    SendRecord record;
    record.recipeFile = m_recipe.fileName;
    record.line = m_rt.services.master.communicate() ? m_rt.model.editor.comm.statusText : QStringLiteral("simulazione");
    record.from = before;
    record.to = m_target;
    record.verifyReadBack = m_options.verifyReadBack;
    record.started = m_rt.devices.clock.now();
    ProcedureObserver observer;
    observer.progress = [this](int percent, const QString &text) { emit progressChanged(percent, text); };
    observer.rowDone = [this](const RecipeRow &row, const RowOutcome &outcome) {
        emit rowDone(outcome.row, outcome.text(row), outcome.ok());
    };
    // A copy: the lists must not change under the send, even if a handler reloads them.
    const Recipe recipe = m_recipe;
    {
        const LineHold hold(m_rt.services.lineHolds);
        m_lastResult = InviaProcedura(m_rt.services.master, m_rt.devices.pause, m_prompts, m_rt.devices.clock, recipe, observer, m_options);
    }
    record.finished = m_rt.devices.clock.now();
    record.rows = recipe.rows;
    record.result = m_lastResult;
    m_lastReport = sendReportLines(record);
    m_lastReportPath = writeSendReport(m_rt.model.ini.folder(), record);
    setSending(false);
    emit reportReady(m_lastReportPath);

    m_rt.services.journal.record(m_rt.services.user.levelName(), QStringLiteral("Invio ricetta"), recipe.fileName,
                        m_lastResult.ok ? QStringLiteral("completato") : QStringLiteral("non riuscito"));
    if (!m_lastResult.ok) {
        m_prompts.warning(RecipeBoxTitle, Failure);
        return SendOutcome::Failed;
    }
    if (m_target) {
        writeCurrentSeason(m_rt.model.ini, *m_target);
        qCInfo(lcSeason).noquote() << "Season changed from" << seasonName(before) << "to" << seasonName(*m_target)
                                   << "with" << recipe.fileName;
        emit seasonStored(*m_target);
    }
    m_prompts.information(RecipeBoxTitle, Completed);
    return SendOutcome::Succeeded;
}

void SeasonChange::setSending(bool sending)
{
    m_sending = sending;
    emit sendingChanged(sending);
}

} // namespace telvane
