#pragma once

#include <QString>

namespace telvane {

class IniStore;

// The two seasons, numbered as "Attuale" stores them.
enum class Season { Estate = 0, Inverno = 1 };

// "Estate" or "Inverno": the season's name, and its key in "Stagione" naming the recipe
// sent on the change to it.
QString seasonName(Season season);
Season otherSeason(Season season);

// "Attuale" of "Stagione" in the current settings file; any text but "1" is summer, as
// the original read it with a default of "0".
Season readCurrentSeason(const IniStore &ini);
void writeCurrentSeason(IniStore &ini, Season season);

// The recipe file named for the change to `season`, trimmed; empty when none is.
QString readSeasonRecipe(const IniStore &ini, Season season);
void writeSeasonRecipe(IniStore &ini, Season season, const QString &fileName);

// The box for a change to `season` that has no recipe named.
QString noRecipeMessage(Season season);

} // namespace telvane
