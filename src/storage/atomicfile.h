#pragma once

#include <QByteArrayView>
#include <QString>

namespace telvane {

// Replaces the file at `path` with `bytes` in one step: the new content is written to a
// temporary file beside it and renamed over the old one, so a crash, a full disk or a
// read-only folder leaves the previous file whole. False (and a warning in the storage
// log) when the file could not be written.
bool writeFileAtomically(const QString &path, QByteArrayView bytes);

class ProgramFolder;

// A kill in the middle of such a save may leave its temporary file ("Telvane1.ini.aB3xYz")
// beside the real one. Removes those of the settings, chrono and recipe files in the
// program folder, "Crono" and "Ricetta", each named in the storage log; the number removed.
int removeLeftoverSaveFiles(const ProgramFolder &folder);

} // namespace telvane
