#include "storage/textlinereader.h"

#include <QIODevice>

namespace telvane {

TextLineReader::TextLineReader(QIODevice &device, qsizetype maxLineLength)
    : m_device(device)
    , m_maxLineLength(maxLineLength)
{
}

TextLineReader::Result TextLineReader::readLine(QByteArray &line)
{
    line.clear();
    if (m_device.atEnd())
        return Result::End;
    // Room for the longest accepted line and its CR LF (readLine keeps one byte back).
    line = m_device.readLine(m_maxLineLength + 3);
    if (line.endsWith('\n')) {
        line.chop(1);
        if (line.endsWith('\r'))
            line.chop(1);
    } else if (!m_device.atEnd()) {
        // The line goes on: drop the rest of it in bounded pieces.
        QByteArray rest;
        do {
            rest = m_device.readLine(64 * 1024);
        } while (!rest.isEmpty() && !rest.endsWith('\n'));
        line.clear();
        return Result::TooLong;
    } else if (line.endsWith('\r')) {
        line.chop(1);
    }
    if (line.size() > m_maxLineLength) {
        line.clear();
        return Result::TooLong;
    }
    return Result::Line;
}

} // namespace telvane
