#include "storage/inistore.h"

#include "storage/atomicfile.h"
#include "storage/storagelog.h"

#include <QDir>
#include <QFileInfo>

namespace telvane {

IniStore::IniStore(ProgramFolder folder)
    : m_folder(std::move(folder))
{
}

QString IniStore::pathOf(const QString &fileName) const
{
    return QDir::isAbsolutePath(fileName) ? QDir::cleanPath(fileName) : m_folder.filePath(fileName);
}

QString IniStore::readKey(const QString &fileName, const QString &section, const QString &key,
                          const QString &defaultValue) const
{
    return m_cache.load(pathOf(fileName))->value(section, key, defaultValue);
}

bool IniStore::writeKeys(const QString &fileName, const QList<IniKeyValue> &keys)
{
    const QString path = pathOf(fileName);
    bool readable = true;
    const auto current = m_cache.load(path, &readable);
    if (!readable) {
        // Writing now would replace a file we could not read with these keys alone.
        for (const IniKeyValue &entry : keys)
            qCWarning(lcStorage).noquote() << "Key" << entry.key << "of section" << entry.section
                                           << "not written to" << path;
        return false;
    }
    IniFile updated = *current;
    if (!updated.setValues(keys))
        return false;
    const QByteArray bytes = updated.toBytes();
    // An editor page saves every key it shows; rewriting a file that would not change
    // only costs a disk flush.
    if (bytes == current->toBytes())
        return true;
    m_cache.forget(path);
    return writeFileAtomically(path, bytes);
}

QString IniStore::ReadModeKey(const QString &section, const QString &key, const QString &defaultValue) const
{
    return readKey(ModeFileName, section, key, defaultValue);
}

QString IniStore::ReadIniKey(const QString &section, const QString &key, const QString &defaultValue) const
{
    return readKey(m_currentIniName, section, key, defaultValue);
}

QString IniStore::ReadIniKeyFrom(const QString &section, const QString &key, const QString &defaultValue,
                                 const QString &fileName) const
{
    return readKey(fileName, section, key, defaultValue);
}

bool IniStore::WriteModeKey(const QString &section, const QString &key, const QString &value)
{
    return writeKeys(ModeFileName, {{section, key, value}});
}

bool IniStore::WriteIniKey(const QString &section, const QString &key, const QString &value)
{
    return writeKeys(m_currentIniName, {{section, key, value}});
}

bool IniStore::writeIniKeys(const QList<IniKeyValue> &keys)
{
    return writeKeys(m_currentIniName, keys);
}

bool IniStore::EnsureFolder(const QString &name)
{
    const QString path = m_folder.filePath(name);
    const QFileInfo info(path);
    if (info.isDir())
        return true;
    if (info.exists()) {
        qCWarning(lcStorage).noquote() << "Cannot create folder" << path << ": a file has that name";
        return false;
    }
    if (!QDir(m_folder.root()).mkdir(name)) {
        qCWarning(lcStorage).noquote() << "Cannot create folder" << path;
        return false;
    }
    return true;
}

} // namespace telvane
