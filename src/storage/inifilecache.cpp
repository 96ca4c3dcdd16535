#include "storage/inifilecache.h"

#include "storage/legacytext.h"
#include "storage/storagelog.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#ifdef Q_OS_LINUX
#include <sys/stat.h>
#endif

namespace telvane {

std::optional<IniFileCache::Stamp> IniFileCache::stampOf(const QString &path)
{
#ifdef Q_OS_LINUX
    // QFileInfo hands file times out as local date-times, and converting them costs ten
    // times the stat itself; a full reload stats the file for every key.
    struct stat status;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    const auto ns = [](const timespec &time) { return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec; };
    return Stamp{qint64(status.st_size), ns(status.st_mtim), ns(status.st_ctim)};
#else
    const QFileInfo info(path);
    if (!info.isFile())
        return std::nullopt;
    return Stamp{info.size(), info.lastModified().toMSecsSinceEpoch() * 1'000'000,
                 info.metadataChangeTime().toMSecsSinceEpoch() * 1'000'000};
#endif
}

std::shared_ptr<const IniFile> IniFileCache::load(const QString &path, bool *readable)
{
    if (readable)
        *readable = true;
    static const auto missing = std::make_shared<const IniFile>();

    // Taken before looking at the file: whatever changes it later is stamped after this.
    const qint64 nowNs = QDateTime::currentMSecsSinceEpoch() * 1'000'000;
    const std::optional<Stamp> found = stampOf(path);
    if (!found) {
        m_entries.remove(path);
        return missing;
    }
    const Stamp stamp = *found;
    const auto cached = m_entries.find(path);
    const bool sameStamp = cached != m_entries.end() && cached->stamp == stamp;
    if (sameStamp && cached->settled) {
        if (readable)
            *readable = cached->readable;
        return cached->file;
    }

    const bool settled =
        m_settleMs < 0 || nowNs - std::max(stamp.modifiedNs, stamp.changedNs) > m_settleMs * 1'000'000;
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
    if (const QString problem = settingsTextProblem(bytes); !problem.isEmpty())
        qCWarning(lcStorage).noquote() << path << problem;
    m_entries.insert(path, Entry{stamp, settled, true, std::move(bytes), parsed});
    return parsed;
}

} // namespace telvane
