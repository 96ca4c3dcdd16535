#pragma once

// The program folder the file fuzz targets write their inputs into, made once per run.

#include "storage/programfolder.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace telvane {

// The folder, with `subFolder` made inside it.
inline const ProgramFolder &fuzzFolder(const QString &subFolder)
{
    static QTemporaryDir dir;
    static const ProgramFolder folder(dir.path());
    if (!QDir().mkpath(folder.filePath(subFolder)))
        std::abort();
    return folder;
}

inline void writeFuzzInput(const QString &path, const uint8_t *data, size_t size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        std::abort();
    file.write(reinterpret_cast<const char *>(data), static_cast<qint64>(size));
}

// Damaged files are the point of these runs; their warnings would only slow them down.
inline void quietStorageWarnings()
{
    QLoggingCategory::setFilterRules(QStringLiteral("telvane.storage.warning=false"));
}

} // namespace telvane
