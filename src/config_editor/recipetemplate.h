#pragma once

#include <QString>

namespace telvane {

class ProgramFolder;

inline constexpr char RecipeTemplateFileName[] = "Ricetta/InvioDati.prg";

// Writes the empty recipe "InvioDati.prg" in the folder "Ricetta" (made when missing),
// replacing an older one, for the technician to fill in: the file mark, a note section
// and thirty zone sections with no command lines. The path written, or an empty text
// when the file could not be written.
QString WriteRecipeTemplate(const ProgramFolder &folder);

} // namespace telvane
