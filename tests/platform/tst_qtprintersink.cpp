#include "config_editor/commlists.h"
#include "config_editor/printlayout.h"
#include "platform/qtprintersink.h"

#include <QApplication>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

const QDateTime Now(QDate(2026, 11, 23), QTime(9, 5, 7));

// The PDF's text as pdftotext lays it out, one string per page.
QStringList pdfPages(const QString &path)
{
    QProcess tool;
    tool.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    if (!tool.waitForFinished(30000) || tool.exitCode() != 0)
        return {};
    QStringList pages = QString::fromUtf8(tool.readAllStandardOutput()).split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// How far right any word of the PDF reaches, against its page's width (points).
std::pair<double, double> rightmostWordAndPageWidth(const QString &path)
{
    QProcess tool;
    tool.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), path, QStringLiteral("-")});
    if (!tool.waitForFinished(30000) || tool.exitCode() != 0)
        return {-1, -1};
    const QString html = QString::fromUtf8(tool.readAllStandardOutput());
    double rightmost = 0;
    for (const QRegularExpressionMatch &word : QRegularExpression(QStringLiteral("xMax=\"([0-9.]+)\"")).globalMatch(html))
        rightmost = std::max(rightmost, word.captured(1).toDouble());
    const QRegularExpressionMatch page = QRegularExpression(QStringLiteral("<page width=\"([0-9.]+)\"")).match(html);
    return {rightmost, page.captured(1).toDouble()};
}

QString lineWith(const QString &page, const QString &text)
{
    for (const QString &line : page.split(QLatin1Char('\n'))) {
        if (line.contains(text))
            return line;
    }
    return {};
}

QString printToPdf(const QTemporaryDir &dir, const PrintJob &job)
{
    const QString path = dir.filePath(QStringLiteral("stampa.pdf"));
    auto printer = QtPrinterSink::pdfFile(path);
    playPrintJob(job, *printer);
    return printer->ok() ? path : QString();
}

} // namespace

class TestQtPrinterSink : public QObject
{
    Q_OBJECT

private slots:

    void scheduleReachesThePdf()
    {
        QTemporaryDir dir;
        ChronoPrintout schedule;
        schedule.zone = "Zona 01";
        schedule.dayCaptions = {"Lunedì", "Martedì", "Mercoledì", "Giovedì", "Venerdì", "Sabato", "Domenica"};
        for (int day = 0; day < 7; ++day) {
            QStringList lines;
            for (int slot = 0; slot < 96; ++slot)
                lines.append(QStringLiteral("%1:%2   %3").arg(slot / 4, 2, 10, QChar('0')).arg(slot % 4 * 15, 2, 10, QChar('0')).arg(20 + day));
            schedule.dayLines.append(lines);
        }
        schedule.holidayCaption = "Festività";
        // The layout itself is the print job's; what the PDF must show is its pages, and
        // the columns side by side in the job's order.
        const QStringList pages = pdfPages(printToPdf(dir, chronoSchedulePrintJob(schedule, "Telvane", Now)));
        QCOMPARE(pages.size(), 2);
        QVERIFY(pages[0].contains("Stampato il 23/11/2026 alle ore 09:05:07"));
        const QString midnight = lineWith(pages[0], "00:00 20");
        QVERIFY2(midnight.indexOf("00:00 20") < midnight.indexOf("00:00 23") && midnight.indexOf("00:00 23") < midnight.indexOf("00:00 26"),
                 qPrintable(midnight));
        QVERIFY(!pages[0].contains("18:30"));
        QVERIFY(pages[1].contains("18:30 26"));
        // The last column stays on the paper, whatever font stands in for Arial, also on
        // a printer of the screen's resolution as the print preview draws.
        QPrinter screen(QPrinter::ScreenResolution);
        screen.setOutputFormat(QPrinter::PdfFormat);
        screen.setPageSize(QPageSize(QPageSize::A4));
        screen.setOutputFileName(dir.filePath(QStringLiteral("anteprima.pdf")));
        QtPrinterSink preview(screen);
        playPrintJob(chronoSchedulePrintJob(schedule, "Telvane", Now), preview);
        const auto [rightmost, pageWidth] = rightmostWordAndPageWidth(screen.outputFileName());
        QVERIFY2(rightmost > 0 && rightmost < pageWidth, qPrintable(QStringLiteral("%1 of %2").arg(rightmost).arg(pageWidth)));
    }
};

QTEST_MAIN(TestQtPrinterSink)
#include "tst_qtprintersink.moc"
