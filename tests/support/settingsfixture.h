#pragma once

#include "storage/inistore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace telvane {

// Writes `bytes` to the file at `path`, making its folders as needed.
inline void writeTestFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    QCOMPARE(file.write(bytes), bytes.size());
}

// A program folder of one test's own: files written into it and read back, and
// settings stores on it. Until a mode is loaded a store's current file is the
// industrial one, so that is where settings go unless told otherwise.
class SettingsFolder
{
public:
    static inline const QString Industrial = QStringLiteral("Telvane2.ini");

    ProgramFolder folder() const { return ProgramFolder(m_dir.path()); }
    QString path(const QString &name) const { return folder().filePath(name); }

    // Makes the file's folders as needed.
    void write(const QString &name, const QByteArray &bytes) const { writeTestFile(path(name), bytes); }
    // Empty when the file cannot be read.
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // A store whose current file `name` holds `settings`.
    IniStore store(const QByteArray &settings, const QString &name = Industrial) const
    {
        write(name, settings);
        IniStore store(folder());
        store.setCurrentIniName(name);
        return store;
    }

private:
    QTemporaryDir m_dir;
};

} // namespace telvane
