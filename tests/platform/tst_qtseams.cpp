// The Qt side of what the operator is shown: message boxes (over whichever window is on
// top) and printed pages.

#include "config_editor/commlists.h"
#include "config_editor/printlayout.h"
#include "platform/messageboxprompts.h"
#include "platform/qtprintersink.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace telvane;

using OptionalText = std::optional<QString>;

namespace {


// What the operator saw in the last box.
struct Seen
{
    QWidget *parent = nullptr;
    QString title;
    QString text; // a message's text or an input box's label
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
    bool onTop = false;
} seen;

// Answers the box that the next call opens, from inside its modal loop: `answer` is a
// button's text, or "Esc"; `typed` goes into an input box's field.
void answerNextBox(const QString &answer, const QString &typed = {})
{
    QTimer::singleShot(0, [answer, typed] {
        QWidget *box = QApplication::activeModalWidget();
        if (!box)
            return answerNextBox(answer, typed); // not open yet: its own loop runs this again
        const QList<QPushButton *> all = box->findChildren<QPushButton *>();
        seen = Seen{};
        seen.parent = box->parentWidget();
        seen.title = box->windowTitle();
        seen.onTop = box->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
        for (QPushButton *button : all)
            seen.buttons.append(button->text());
        if (auto *message = qobject_cast<QMessageBox *>(box)) {
            seen.text = message->text();
            seen.icon = message->icon();
        }
        if (auto *input = qobject_cast<QInputDialog *>(box)) {
            seen.text = input->labelText();
            input->findChild<QLineEdit *>()->selectAll();
            QTest::keyClicks(input->findChild<QLineEdit *>(), typed);
        }
        if (answer == QLatin1String("Esc"))
            return QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY2(seen.buttons.contains(answer), qPrintable(answer));
        QTest::mouseClick(all.at(seen.buttons.indexOf(answer)), Qt::LeftButton);
    });
}

const QDateTime Now(QDate(2026, 11, 23), QTime(9, 5, 7));

// What pdftotext makes of the PDF at `path` with `option` ("-layout", "-bbox").
QString pdfToText(const QString &option, const QString &path)
{
    QProcess tool;
    tool.start(QStringLiteral("pdftotext"), {option, path, QStringLiteral("-")});
    return tool.waitForFinished(30000) && tool.exitCode() == 0 ? QString::fromUtf8(tool.readAllStandardOutput()) : QString();
}

// The PDF's text as pdftotext lays it out, one string per page.
QStringList pdfPages(const QString &path)
{
    QStringList pages = pdfToText(QStringLiteral("-layout"), path).split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

// How far right any word of the PDF reaches, against its page's width (points).
std::pair<double, double> rightmostWordAndPageWidth(const QString &path)
{
    const QString html = pdfToText(QStringLiteral("-bbox"), path);
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

class TestQtSeams : public QObject
{
    Q_OBJECT

    QWidget m_window;
    MessageBoxPrompts m_prompts;

public:
    TestQtSeams() { m_prompts.setParent(&m_window); }

private slots:
    // A question opens over the window with Sì and No, Escape being No; a text input
    // keeps what was typed, a comma included, and Escape gives nothing.
    void questionAndTextInput()
    {
        answerNextBox(QString::fromUtf8("Sì"));
        QVERIFY(m_prompts.question("Stagione", "Testo?"));
        QCOMPARE(seen.parent, &m_window);
        QCOMPARE(seen.title, QStringLiteral("Stagione"));
        QCOMPARE(seen.text, QStringLiteral("Testo?"));
        QCOMPARE(seen.icon, QMessageBox::Question);
        QCOMPARE(seen.buttons, QStringList({QString::fromUtf8("Sì"), "No"}));
        answerNextBox("Esc");
        QVERIFY(!m_prompts.question("Stagione", "Testo?"));

        answerNextBox("OK", "21,5");
        QCOMPARE(m_prompts.textInput("Set point", "Nuovo valore:", "20.0"), OptionalText("21,5"));
        QCOMPARE(seen.parent, &m_window);
        QCOMPARE(seen.title, QStringLiteral("Set point"));
        QCOMPARE(seen.text, QStringLiteral("Nuovo valore:"));
        answerNextBox("Esc", "21,5");
        QCOMPARE(m_prompts.textInput("Set point", "Nuovo valore:", "20.0"), OptionalText());
        // A recipe's step box that may be cancelled: Escape is Annulla.
        answerNextBox("Esc");
        QVERIFY(!m_prompts.acknowledge("Ricetta", "Controllare la zona 2", Prompts::Icon::Exclamation, true));
        QCOMPARE(seen.buttons, QStringList({"OK", "Annulla"}));
    }

    // While the always-on-top alarms window shows, a box opens over it and on top itself:
    // under it the modal box would refuse every click, unseen. Closed, the main window
    // is the parent again.
    void boxOpensAboveAnAlwaysOnTopWindow()
    {
        m_window.show();
        QWidget alarms(&m_window, Qt::Window | Qt::WindowStaysOnTopHint);
        for (const bool alarmsShown : {true, false}) {
            alarms.setVisible(alarmsShown);
            answerNextBox("OK");
            m_prompts.warning("Accesso", "Password errata.");
            QCOMPARE(seen.parent, alarmsShown ? &alarms : &m_window);
            QCOMPARE(seen.onTop, alarmsShown);
            QCOMPARE(seen.icon, QMessageBox::Warning);
            QCOMPARE(seen.buttons, QStringList{"OK"});
            answerNextBox(QString::fromUtf8("Sì"));
            QVERIFY(m_prompts.question("Stagione", "Testo?"));
            QCOMPARE(seen.parent, alarmsShown ? &alarms : &m_window);
        }
    }

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

QTEST_MAIN(TestQtSeams)
#include "tst_qtseams.moc"
