#pragma once

#include "base/printersink.h"

#include <QFont>
#include <QPainter>

#include <functional>
#include <memory>

class QPrinter;

namespace telvane {
class Prompts;
}

namespace telvane {

class Prompts;

// Prints on a QPrinter: a real printer or a PDF file. Text runs down the page from the
// top margin; a line that no longer fits goes on a new page. A tab column is that many
// average characters of the current font from the left margin.
class QtPrinterSink final : public PrinterSink
{
public:
    explicit QtPrinterSink(std::unique_ptr<QPrinter> printer);
    // On a printer owned by someone else, such as a print preview.
    explicit QtPrinterSink(QPrinter &printer);
    ~QtPrinterSink() override;

    // The system's default printer; null when the system has none.
    static std::unique_ptr<QtPrinterSink> defaultPrinter();
    // A PDF file at `path`, written when the document ends.
    static std::unique_ptr<QtPrinterSink> pdfFile(const QString &path);

    void setFontName(const QString &name) override;
    void setFontSize(int points) override;
    void setBold(bool bold) override;
    void printLine(const QList<PrintTab> &texts) override;
    void newPage() override;
    void endDocument() override;
    // A picture `aspect` times as wide as high, as wide as the page allows, below the
    // lines printed so far (on a new page when it no longer fits well).
    void printPicture(const std::function<void(QPainter &, const QRectF &)> &paint, qreal aspect);

    // False when the printer could not be opened or a page could not be added.
    bool ok() const { return m_ok; }

private:
    bool begin();

    std::unique_ptr<QPrinter> m_owned;
    QPrinter *m_printer;
    QPainter m_painter;
    QFont m_font;
    qreal m_y = 0;
    bool m_ok = true;
};

// Where a printout goes: the default printer, or when the system has none the PDF file
// `pdfPath`, which is then kept for telling the user.
struct PrintTarget
{
    std::unique_ptr<QtPrinterSink> sink;
    QString pdfPath;
};
PrintTarget openPrintTarget(const QString &pdfPath);
// A printout's PDF in `folder`, named after `now`.
QString printoutPdfPath(const QString &folder, const QDateTime &now);
// Tells the user where a printout went when it went to a file, or that the file could
// not be written.
void reportPrintout(const PrintTarget &target, Prompts &prompts);

// Runs `job` (false: nothing was printed) on `target`. A printout that went to a PDF
// file is announced with the file's path, or with a warning when it could not be written;
// the user must learn where a printout without a printer went.
void printTo(PrintTarget target, Prompts &prompts, const std::function<bool(PrinterSink &)> &job);

} // namespace telvane
