#include "platform/qtprintersink.h"

#include "base/prompts.h"
#include "platform/platformlog.h"

#include <QDateTime>
#include <QDir>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPrinter>
#include <QPrinterInfo>

namespace telvane {

namespace {

// Narrow margins and lines 1.1 times the type size, so that a day's schedule up to 18:15
// fits one A4 page in size 8, as on the plants' old printers.
constexpr qreal MarginMm = 5;
constexpr qreal LineSpacing = 1.1;
// A tab column is Arial's average character (904/2048 of the type size) whatever font
// stands in for Arial here: the fallback fonts are wider on average, and with their
// width the fourth column of the communication lists (tab 130) fell off an A4 page.
constexpr qreal ArialAverageWidth = 904.0 / 2048.0;

} // namespace

QtPrinterSink::QtPrinterSink(std::unique_ptr<QPrinter> printer)
    : QtPrinterSink(*printer)
{
    m_owned = std::move(printer);
}

QtPrinterSink::QtPrinterSink(QPrinter &printer)
    : m_printer(&printer)
    , m_font(QStringLiteral("Arial"), 10)
{
    m_printer->setPageMargins(QMarginsF(MarginMm, MarginMm, MarginMm, MarginMm), QPageLayout::Millimeter);
}

QtPrinterSink::~QtPrinterSink()
{
    if (m_painter.isActive())
        m_painter.end();
}

std::unique_ptr<QtPrinterSink> QtPrinterSink::defaultPrinter()
{
    const QPrinterInfo info = QPrinterInfo::defaultPrinter();
    if (info.isNull())
        return nullptr;
    return std::make_unique<QtPrinterSink>(std::make_unique<QPrinter>(info, QPrinter::HighResolution));
}

std::unique_ptr<QtPrinterSink> QtPrinterSink::pdfFile(const QString &path)
{
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setPageSize(QPageSize(QPageSize::A4));
    printer->setOutputFileName(path);
    return std::make_unique<QtPrinterSink>(std::move(printer));
}

bool QtPrinterSink::begin()
{
    if (m_painter.isActive() || !m_ok)
        return m_ok;
    if (!m_painter.begin(m_printer)) {
        qCWarning(lcPlatform).noquote() << "Cannot print on" << m_printer->printerName() << m_printer->outputFileName();
        m_ok = false;
        return false;
    }
    m_painter.setFont(m_font);
    m_y = 0;
    return true;
}

void QtPrinterSink::setFontName(const QString &name)
{
    m_font.setFamily(name);
}

void QtPrinterSink::setFontSize(int points)
{
    m_font.setPointSize(points);
}

void QtPrinterSink::setBold(bool bold)
{
    m_font.setBold(bold);
}

void QtPrinterSink::printLine(const QList<PrintTab> &texts)
{
    if (!begin())
        return;
    m_painter.setFont(m_font);
    const QFontMetricsF metrics(m_font, m_printer);
    const qreal pageHeight = m_printer->pageLayout().paintRectPixels(m_printer->resolution()).height();
    const qreal lineHeight = m_font.pointSizeF() * LineSpacing * m_printer->resolution() / 72.0;
    if (m_y > 0 && m_y + lineHeight > pageHeight)
        newPage();
    const qreal column = m_font.pointSizeF() * ArialAverageWidth * m_printer->resolution() / 72.0;
    for (const PrintTab &text : texts)
        m_painter.drawText(QPointF(text.column * column, m_y + metrics.ascent()), text.text);
    m_y += lineHeight;
}

void QtPrinterSink::newPage()
{
    if (!begin())
        return;
    if (!m_printer->newPage()) {
        qCWarning(lcPlatform).noquote() << "Cannot start a new page on" << m_printer->printerName();
        m_ok = false;
    }
    m_y = 0;
}

void QtPrinterSink::endDocument()
{
    // A document without a line is still a (blank) page, as the printer would give.
    if (begin())
        m_painter.end();
}

void QtPrinterSink::printPicture(const std::function<void(QPainter &, const QRectF &)> &paint, qreal aspect)
{
    if (!begin())
        return;
    const QRectF page = m_printer->pageLayout().paintRectPixels(m_printer->resolution());
    const qreal width = page.width();
    const qreal height = aspect > 0 ? width / aspect : page.height();
    // Less than half the picture's height left: better on a page of its own.
    if (m_y > 0 && m_y + std::min(height, page.height()) / 2 > page.height())
        newPage();
    const qreal room = page.height() - m_y;
    const QRectF area(0, m_y, height > room ? room * aspect : width, std::min(height, room));
    m_painter.save();
    paint(m_painter, area);
    m_painter.restore();
    m_y += area.height();
}

PrintTarget openPrintTarget(const QString &pdfPath)
{
    PrintTarget target;
    target.sink = QtPrinterSink::defaultPrinter();
    if (!target.sink) {
        target.pdfPath = pdfPath;
        target.sink = QtPrinterSink::pdfFile(target.pdfPath);
    }
    return target;
}

QString printoutPdfPath(const QString &folder, const QDateTime &now)
{
    return QDir(folder).filePath(QStringLiteral("Stampa %1.pdf").arg(now.toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"))));
}

void reportPrintout(const PrintTarget &target, Prompts &prompts)
{
    if (target.pdfPath.isEmpty())
        return;
    if (target.sink->ok())
        prompts.information(QStringLiteral("Stampa"),
                            QStringLiteral("Nessuna stampante predefinita: la stampa è stata salvata nel file\n%1")
                                .arg(QDir::toNativeSeparators(target.pdfPath)));
    else
        prompts.warning(QStringLiteral("Stampa"), QStringLiteral("Impossibile scrivere la stampa nel file\n%1")
                                                      .arg(QDir::toNativeSeparators(target.pdfPath)));
}

void printTo(PrintTarget target, Prompts &prompts, const std::function<bool(PrinterSink &)> &job)
{
    if (job(*target.sink))
        reportPrintout(target, prompts);
}

} // namespace telvane
