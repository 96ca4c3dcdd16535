#pragma once

#include <QList>
#include <QString>

namespace telvane {

// One text of a printed line, starting at a tab column: columns count characters of the
// current font from the left margin, as on the plant's old printouts.
struct PrintTab
{
    int column = 0;
    QString text;

    bool operator==(const PrintTab &) const = default;
};

// The printer a print command writes to, line by line from the top of the page. A line
// that does not fit the page any more starts a new one by itself.
class PrinterSink
{
public:
    virtual ~PrinterSink() = default;

    virtual void setFontName(const QString &name) = 0;
    virtual void setFontSize(int points) = 0;
    virtual void setBold(bool bold) = 0;
    // One line in the current font; no texts print an empty line.
    virtual void printLine(const QList<PrintTab> &texts) = 0;
    virtual void newPage() = 0;
    // The document is complete and goes to the printer.
    virtual void endDocument() = 0;
};

} // namespace telvane
