#include "storage/atomicfile.h"

#include "storage/storagelog.h"

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

} // namespace telvane
