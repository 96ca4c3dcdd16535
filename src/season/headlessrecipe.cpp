#include "season/headlessrecipe.h"

#include "season/seasonchange.h"
#include "supervisor/runtime.h"

#include <QTextStream>

#include <optional>

namespace telvane {

namespace {

std::optional<Season> seasonNamed(const QString &name)
{
    for (Season season : {Season::Estate, Season::Inverno}) {
        if (name.compare(seasonName(season), Qt::CaseInsensitive) == 0)
            return season;
    }
    return std::nullopt;
}

// The season whose recipe `fileName` is, if any.
std::optional<Season> seasonOfFile(const IniStore &ini, const QString &fileName)
{
    for (Season season : {Season::Estate, Season::Inverno}) {
        if (fileName.compare(readSeasonRecipe(ini, season), Qt::CaseInsensitive) == 0)
            return season;
    }
    return std::nullopt;
}

} // namespace

int sendRecipeHeadless(Runtime &rt, Prompts &prompts, QTextStream &out, const QString &name)
{
    SeasonChange change(rt, prompts);
    QObject::connect(&change, &SeasonChange::rowDone, [&out](int, const QString &text, bool) {
        out << text << Qt::endl;
    });
    const QString trimmed = name.trimmed();
    const std::optional<Season> season = seasonNamed(trimmed);
    const bool loaded = season ? change.loadSeasonRecipe(*season)
                               : change.loadRecipeFile(trimmed, seasonOfFile(rt.model.ini, trimmed));
    const bool sent = loaded && change.send(false) == SeasonChange::SendOutcome::Succeeded;
    if (!change.lastReport().isEmpty()) {
        out << (change.lastReportPath().isEmpty() ? QStringLiteral("Resoconto non salvato: cartella Ricetta non scrivibile")
                                                  : QStringLiteral("Resoconto: ") + change.lastReportPath())
            << Qt::endl;
    }
    out << "Stagione attuale: " << seasonName(change.currentSeason()) << Qt::endl;
    return sent ? 0 : 1;
}

} // namespace telvane
