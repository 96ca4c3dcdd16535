#include "storage/lineappend.h"

#include "storage/storagelog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace telvane {

bool AppendTextLine(const QString &path, const QByteArray &line, const QByteArray &header)
{
    // The folder is made at start-up; should someone remove it while we run, make it again
    // rather than lose every line until the next start.
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) {
        qCWarning(lcStorage).noquote() << "Cannot create the folder" << folder << "; a line is lost";
        return false;
    }
    QFile file(path);
    // Unbuffered: what a failed write did not take must not be tried again on close.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered)) {
        qCWarning(lcStorage).noquote() << "Cannot open" << path << ":" << file.errorString() << "; a line is lost";
        return false;
    }
    const qint64 sizeBefore = file.size();
    QByteArray bytes = line + QByteArrayLiteral("\r\n");
    if (sizeBefore == 0 && !header.isEmpty())
        bytes.prepend(header + QByteArrayLiteral("\r\n"));
    // A fragment left by a crash in the middle of a line must not swallow this one.
    if (sizeBefore > 0 && file.seek(sizeBefore - 1) && file.peek(1) != QByteArrayLiteral("\n"))
        bytes.prepend(QByteArrayLiteral("\r\n"));
    // One write call for the whole line: another program reading the file never sees
    // half of it, and a crash right after still leaves it to the system.
    const bool written = file.write(bytes) == bytes.size() && file.flush();
    if (!written) {
        qCWarning(lcStorage).noquote() << "Cannot write to" << path << ":" << file.errorString() << "; a line is lost";
        if (file.size() != sizeBefore && !file.resize(sizeBefore))
            qCWarning(lcStorage).noquote() << "Cannot remove the part of the lost line from" << path << ":"
                                           << file.errorString();
    }
    file.close();
    return written;
}

} // namespace telvane
