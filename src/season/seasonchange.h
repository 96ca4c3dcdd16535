#pragma once

#include "season/inviaprocedura.h"
#include "season/recipe.h"
#include "season/seasons.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace telvane {

class Prompts;
struct Runtime;

// The season change as the window `Stagione` and the headless mode run it: the recipe
// in the send lists, the confirmation, the send with its progress, and "Attuale".
//
// While a send is under way the master lets the event loop run, so the operator can
// click again: a second send is refused until the first one has ended, and the send
// holds the line so that no monitoring tick or Start's re-read runs between its writes.
// Every send that went out leaves a report in "Ricetta".
class SeasonChange final : public QObject
{
    Q_OBJECT

public:
    enum class SendOutcome { Succeeded, Failed, Declined, Busy, NothingLoaded };

    SeasonChange(Runtime &rt, Prompts &prompts, QObject *parent = nullptr);

    Season currentSeason() const;

    // How a load that went well is told: in a box, or only in loadMessage() (for the
    // window's own reload each time it opens, where the lists show what was loaded).
    enum class LoadNotice { Box, Quiet };

    // Loads the recipe named for the change to `target` into the send lists, telling the
    // operator how the load went (or that no recipe is named); a failure always in a
    // box. False leaves the lists empty. Refused while sending.
    bool loadSeasonRecipe(Season target, LoadNotice notice = LoadNotice::Box);
    // Loads a recipe by file name; on success "Attuale" becomes `target` (if any).
    bool loadRecipeFile(const QString &fileName, std::optional<Season> target,
                        LoadNotice notice = LoadNotice::Box);
    void clearRecipe();
    // What the last load told, or would have told, the operator.
    const QString &loadMessage() const { return m_loadMessage; }

    const Recipe &recipe() const { return m_recipe; }
    bool hasRecipe() const { return m_loaded; }
    // The season a successful send of the loaded recipe stores.
    std::optional<Season> target() const { return m_target; }

    // `Cmd_Invio_Stagione`: asks for confirmation (unless `confirm` is false: the
    // headless command line is the operator's confirmation), sends, stores the target
    // season on success and tells the operator how it ended.
    SendOutcome send(bool confirm = true);
    bool sending() const { return m_sending; }
    // The rows of the last send, in order, the failed one last.
    const ProcedureResult &lastResult() const { return m_lastResult; }
    // The last send's report and the file in "Ricetta" that keeps it (empty when the
    // file could not be written); empty before the first send.
    const QStringList &lastReport() const { return m_lastReport; }
    const QString &lastReportPath() const { return m_lastReportPath; }

    void setVerifyReadBack(bool verify) { m_options.verifyReadBack = verify; }
    bool verifyReadBack() const { return m_options.verifyReadBack; }

signals:
    void recipeChanged();
    void sendingChanged(bool sending);
    void progressChanged(int percent, const QString &text);
    void rowDone(int row, const QString &text, bool ok);
    void seasonStored(telvane::Season season);
    // A send has ended and its report is ready (written to `path`, or not when empty).
    void reportReady(const QString &path);

private:
    void setSending(bool sending);

    Runtime &m_rt;
    Prompts &m_prompts;
    Recipe m_recipe;
    bool m_loaded = false;
    std::optional<Season> m_target;
    bool m_sending = false;
    ProcedureOptions m_options;
    ProcedureResult m_lastResult;
    QString m_loadMessage;
    QStringList m_lastReport;
    QString m_lastReportPath;
};

} // namespace telvane
