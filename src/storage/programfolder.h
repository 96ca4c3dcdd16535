#pragma once

#include <QString>

namespace telvane {

// The one root for every file the program reads or writes: settings files, "Dati",
// "Crono" and "Ricetta". By default the executable's folder; `--dir` overrides it and
// tests point it at a temporary folder.
class ProgramFolder
{
public:
    explicit ProgramFolder(QString root);

    // The executable's own folder (QCoreApplication must exist).
    static ProgramFolder besideExecutable();

    const QString &root() const { return m_root; }
    // `name` may hold a sub-folder ("Dati/2026_11_14.csv"); the separator is always "/".
    QString filePath(const QString &name) const;

private:
    QString m_root;
};

} // namespace telvane
