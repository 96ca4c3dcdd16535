#include "season/seasons.h"

#include "storage/inistore.h"

namespace telvane {

namespace {

const QString Section = QStringLiteral("Stagione");

} // namespace

QString seasonName(Season season)
{
    return season == Season::Estate ? QStringLiteral("Estate") : QStringLiteral("Inverno");
}

Season otherSeason(Season season)
{
    return season == Season::Estate ? Season::Inverno : Season::Estate;
}

Season readCurrentSeason(const IniStore &ini)
{
    const QString text = ini.ReadIniKey(Section, QStringLiteral("Attuale"), QStringLiteral("0")).trimmed();
    return text == QLatin1String("1") ? Season::Inverno : Season::Estate;
}

void writeCurrentSeason(IniStore &ini, Season season)
{
    ini.WriteIniKey(Section, QStringLiteral("Attuale"), QString::number(int(season)));
}

QString readSeasonRecipe(const IniStore &ini, Season season)
{
    return ini.ReadIniKey(Section, seasonName(season), QString()).trimmed();
}

void writeSeasonRecipe(IniStore &ini, Season season, const QString &fileName)
{
    ini.WriteIniKey(Section, seasonName(season), fileName);
}

QString noRecipeMessage(Season season)
{
    return season == Season::Estate
               ? QStringLiteral("Nessun file relativo al cambio stagione Inverno -> Estate è stato impostato.")
               : QStringLiteral("Nessun file relativo al cambio stagione Estate -> Inverno è stato impostato.");
}

} // namespace telvane
