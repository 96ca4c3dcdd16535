#include "storage/atomicfile.h"

#include "storage/programfolder.h"
#include "storage/storagelog.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>

namespace telvane {

bool writeFileAtomically(const QString &path, QByteArrayView bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qCWarning(lcStorage).noquote() << "Cannot write" << path << ":" << file.errorString();
        return false;
    }
    // Qt 6.4's commit() ignores a failed flush and would rename a truncated file over the
    // old one on a full disk, so the flush and the size are checked here first.
    if (file.write(bytes.data(), bytes.size()) != bytes.size() || !file.flush() || file.size() != bytes.size()) {
        qCWarning(lcStorage).noquote() << "Cannot write" << path << ":" << file.errorString();
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        qCWarning(lcStorage).noquote() << "Cannot write" << path << ":" << file.errorString();
        return false;
    }
    return true;
}

int removeLeftoverSaveFiles(const ProgramFolder &folder)
{
    // QSaveFile's temporary name: the file's own name, a dot and six letters or digits.
    static const QRegularExpression leftover(QStringLiteral("^.+\\.(ini|cts|prg)\\.[A-Za-z0-9]{6}$"),
                                             QRegularExpression::CaseInsensitiveOption);
    int removed = 0;
    for (const char *sub : {".", "Crono", "Ricetta"}) {
        const QDir dir(folder.filePath(QLatin1String(sub)));
        const QStringList names = dir.entryList(QDir::Files | QDir::Hidden);
        for (const QString &name : names) {
            if (!leftover.match(name).hasMatch())
                continue;
            const QString path = QDir::cleanPath(dir.filePath(name));
            if (QFile::remove(path)) {
                ++removed;
                qCWarning(lcStorage).noquote() << "Removed" << path << ", left over from a save that was interrupted";
            } else {
                qCWarning(lcStorage).noquote() << "Cannot remove" << path << ", left over from an interrupted save";
            }
        }
    }
    return removed;
}

} // namespace telvane
