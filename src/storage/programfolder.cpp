#include "storage/programfolder.h"

#include <QCoreApplication>
#include <QDir>

namespace telvane {

ProgramFolder::ProgramFolder(QString root)
    : m_root(QDir::cleanPath(QDir(root).absolutePath()))
{
}

ProgramFolder ProgramFolder::besideExecutable()
{
    return ProgramFolder(QCoreApplication::applicationDirPath());
}

QString ProgramFolder::filePath(const QString &name) const
{
    return m_root + QLatin1Char('/') + name;
}

} // namespace telvane
