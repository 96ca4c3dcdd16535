#pragma once

#include "storage/inifile.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <memory>
#include <optional>

namespace telvane {

// Parsed settings files by absolute path. A full reload reads thousands of keys from one
// file, and parsing it each time would dominate; yet an edit made by another program
// must be seen by the very next read. So every read checks the file's size, modification
// time and status-change time, and an entry is trusted on those alone only once the file
// had stood still for `settleMs` when it was read: file times are coarse on some file
// systems, and a same-size rewrite within one tick would otherwise go unseen. Until then
// the bytes are read again and compared with the ones parsed.
class IniFileCache
{
public:
    static constexpr qint64 DefaultSettleMs = 2000;

    // A negative `settleMs` trusts the stamp at once, for file systems with exact times.
    explicit IniFileCache(qint64 settleMs = DefaultSettleMs) : m_settleMs(settleMs) {}

    // The file as it is now; an empty document when it is missing or cannot be read
    // (the latter with a warning and `*readable` false, so that nobody writes over it).
    std::shared_ptr<const IniFile> load(const QString &path, bool *readable = nullptr);

    // Forgets `path`; our own writes call it so the next read starts afresh.
    void forget(const QString &path) { m_entries.remove(path); }

private:
    struct Stamp
    {
        qint64 size = -1;
        qint64 modifiedNs = 0; // since the epoch
        qint64 changedNs = 0;
        bool operator==(const Stamp &) const = default;
    };
    // Nothing when `path` is not a regular file.
    static std::optional<Stamp> stampOf(const QString &path);
    struct Entry
    {
        Stamp stamp;
        bool settled = false;
        bool readable = true;
        QByteArray bytes;
        std::shared_ptr<const IniFile> file;
    };

    qint64 m_settleMs;
    QHash<QString, Entry> m_entries;
};

} // namespace telvane
