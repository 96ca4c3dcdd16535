#pragma once

#include <QByteArrayView>
#include <QString>

namespace telvane {

// Replaces the file at `path` with `bytes` in one step: the new content is written to a
// temporary file beside it and renamed over the old one, so a crash, a full disk or a
// read-only folder leaves the previous file whole. False (and a warning in the storage
// log) when the file could not be written.
bool writeFileAtomically(const QString &path, QByteArrayView bytes);

} // namespace telvane
