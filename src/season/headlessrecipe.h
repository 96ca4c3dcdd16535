#pragma once

#include <QString>

class QTextStream;

namespace telvane {

class Prompts;
struct Runtime;

// Sends a recipe from the command line of a box with no screen, on a plant already
// started up (and not acquiring): `name` is a season ("Estate", "Inverno": the recipe
// named for the change to it) or a file in "Ricetta". The command line is the
// operator's confirmation; a MSGBOX step has nobody to answer it and ends the send as
// Cancel would. Each row's outcome is one line on `out`, then the report file kept in
// "Ricetta", then the season stored:
//
//   Riga 1, zona 01 (Soggiorno), slave 1, registro 2 = 200 (Set point): scritto
//   Resoconto: /srv/impianto/Ricetta/Resoconto Inverno 2026-11-14 22-20-09.txt
//   Stagione attuale: Inverno
//
// On success "Attuale" becomes the season the recipe is named for, if any, as in the
// window. Returns the exit code: 0 when every row was sent, 1 otherwise.
int sendRecipeHeadless(Runtime &rt, Prompts &prompts, QTextStream &out, const QString &name);

} // namespace telvane
