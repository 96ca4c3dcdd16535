#pragma once

#include "storage/inifilecache.h"
#include "storage/programfolder.h"

#include <QList>
#include <QString>

#include <utility>

namespace telvane {

// Single keys of the program's settings files, with the semantics of the Windows
// profile functions the files were made for. Every read goes to the file, so an edit
// made by another program is seen at once; every write replaces the file atomically.
class IniStore
{
public:
    // The mode selector, always in the program folder.
    static inline const QString ModeFileName = QStringLiteral("Telvane0.ini");

    // Until LoadSettings runs, the current settings file is the industrial one.
    explicit IniStore(ProgramFolder folder);

    const ProgramFolder &folder() const { return m_folder; }
    const QString &currentIniName() const { return m_currentIniName; }
    void setCurrentIniName(const QString &fileName) { m_currentIniName = fileName; }

    // Values are at most 254 characters; an absent key reads as `defaultValue`.
    QString ReadModeKey(const QString &section, const QString &key, const QString &defaultValue) const;
    QString ReadIniKey(const QString &section, const QString &key, const QString &defaultValue) const;
    QString ReadIniKeyFrom(const QString &section, const QString &key, const QString &defaultValue,
                           const QString &fileName) const;

    // True when the file was written. Callers may ignore it: a failed write leaves the
    // previous file whole and is logged.
    bool WriteModeKey(const QString &section, const QString &key, const QString &value);
    bool WriteIniKey(const QString &section, const QString &key, const QString &value);
    // Several keys of the current settings file in one replace of the file, in order (a
    // key given twice keeps its last value): an editor page saves hundreds of keys, and
    // a replace per key would cost a disk flush each. All or nothing: when one key cannot
    // be written (see IniFile::setValue) or the file cannot be replaced, the file stays
    // as it was.
    bool writeIniKeys(const QList<IniKeyValue> &keys);

    // Makes sure the sub-folder `name` of the program folder exists.
    bool EnsureFolder(const QString &name);

private:
    // `fileName` is relative to the program folder unless it is an absolute path.
    QString pathOf(const QString &fileName) const;
    QString readKey(const QString &fileName, const QString &section, const QString &key,
                    const QString &defaultValue) const;
    bool writeKeys(const QString &fileName, const QList<IniKeyValue> &keys);

    ProgramFolder m_folder;
    // Reads stay cheap during a full reload; the cache checks the file on every read.
    mutable IniFileCache m_cache;
    QString m_currentIniName = QStringLiteral("Telvane2.ini");
};

} // namespace telvane
