#include "storage/inifilecache.h"

#include "storage/storagelog.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace telvane {

std::shared_ptr<const IniFile> IniFileCache::load(const QString &path, bool *readable)
{
    if (readable)
        *readable = true;
    static const auto missing = std::make_shared<const IniFile>();

    // Taken before looking at the file: whatever changes it later is stamped after this.
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const QFileInfo info(path);
    if (!info.isFile()) {
        m_entries.remove(path);
        return missing;
    }
    const Stamp stamp{info.size(), info.lastModified().toMSecsSinceEpoch(),
                      info.metadataChangeTime().toMSecsSinceEpoch()};
    const auto cached = m_entries.find(path);
    const bool sameStamp = cached != m_entries.end() && cached->stamp == stamp;
    if (sameStamp && cached->settled) {
        if (readable)
            *readable = cached->readable;
        return cached->file;
    }

    const bool settled = m_settleMs < 0 || now - std::max(stamp.modifiedMs, stamp.changedMs) > m_settleMs;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        // One warning per state of the file, not one per key of a full reload.
        if (!sameStamp)
            qCWarning(lcStorage).noquote() << "Cannot read" << path << ":" << file.errorString();
        m_entries.insert(path, Entry{stamp, settled, false, {}, missing});
        if (readable)
            *readable = false;
        return missing;
    }
    QByteArray bytes = file.readAll();
    if (cached != m_entries.end() && cached->readable && cached->bytes == bytes) {
        cached->stamp = stamp;
        cached->settled = settled;
        return cached->file;
    }
    auto parsed = std::make_shared<const IniFile>(IniFile::parse(bytes));
    m_entries.insert(path, Entry{stamp, settled, true, std::move(bytes), parsed});
    return parsed;
}

} // namespace telvane
