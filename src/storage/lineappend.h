#pragma once

#include <QByteArray>
#include <QString>

namespace telvane {

// Appends `line` and CR LF to the file at `path` (made if missing, its folder too), closing it again at
// once: a failure loses this line only, never the lines already written. A short write
// (a full disk, a size limit) is cut back off, so the next line does not continue it; a
// fragment left by a crash in the middle of a line gets its line end first. `header`
// (with its own CR LF added) goes before the line when the file is new or empty.
// False, logged, when the line could not be written whole.
bool AppendTextLine(const QString &path, const QByteArray &line, const QByteArray &header = {});

} // namespace telvane
