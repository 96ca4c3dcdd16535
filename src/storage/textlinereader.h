#pragma once

#include <QByteArray>

class QIODevice;

namespace telvane {

// Lines of the program's text files, whichever line end they carry (CRLF or LF), with a
// bound on the length of a line so that a damaged or foreign file never makes us hold
// megabytes of one line in memory. A last line without its line end is still a line.
class TextLineReader
{
public:
    enum class Result { Line, TooLong, End };

    TextLineReader(QIODevice &device, qsizetype maxLineLength);

    // Line: `line` holds the line without its line end. TooLong: the whole over-long line
    // has been skipped and `line` is empty. End: nothing more to read.
    Result readLine(QByteArray &line);

private:
    QIODevice &m_device;
    qsizetype m_maxLineLength;
};

} // namespace telvane
