#include "config_editor/commlists.h"
#include "config_editor/printlayout.h"
#include "platform/qtprintersink.h"

#include <QApplication>
#include <QProcess>
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
    }
};

QTEST_MAIN(TestQtPrinterSink)
#include "tst_qtprintersink.moc"
