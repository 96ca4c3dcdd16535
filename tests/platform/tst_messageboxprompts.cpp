#include "platform/messageboxprompts.h"

#include "support/datarows.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace telvane;

namespace {

// What the operator saw in the box (title|text, then a message's icon|buttons), and its parent.
QString seen;
QWidget *seenParent = nullptr;
bool seenOnTop = false;

// Answers the box that the next call opens, from inside its modal loop: `answer` is a
// button's text, or "Esc"; `typed` goes into an input box's field.
void answerNextBox(const QString &answer, const QString &typed)
{
    QTimer::singleShot(0, [answer, typed] {
        QWidget *box = QApplication::activeModalWidget();
        if (!box)
            return answerNextBox(answer, typed); // not open yet: its own loop runs this again
        const QList<QPushButton *> all = box->findChildren<QPushButton *>();
        QStringList buttons;
        for (QPushButton *button : all)
            buttons.append(button->text());
        seenParent = box->parentWidget();
        seenOnTop = box->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
        seen = box->windowTitle();
        if (auto *message = qobject_cast<QMessageBox *>(box))
            seen += QStringList{"", message->text(), QString::number(message->icon()), buttons.join(',')}.join('|');
        if (auto *input = qobject_cast<QInputDialog *>(box)) {
            seen += '|' + input->labelText();
            input->findChild<QLineEdit *>()->selectAll();
            QTest::keyClicks(input->findChild<QLineEdit *>(), typed);
        }
        if (answer == QLatin1String("Esc"))
            return QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY2(buttons.contains(answer), qPrintable(answer));
        QTest::mouseClick(all.at(buttons.indexOf(answer)), Qt::LeftButton);
    });
}

} // namespace

class TestMessageBoxPrompts : public QObject
{
    Q_OBJECT

private slots:
    // kind|answer|returned (typed, for an input)|what the operator saw.
    void boxes_data()
    {
        addRows({"question|Sì|yes|Stagione|Testo?|4|Sì,No", "question|No|no|Stagione|Testo?|4|Sì,No",
                 "question|Esc|no|Stagione|Testo?|4|Sì,No", "warning|OK||Accesso|Testo?|2|OK",
                 "information|OK||Accesso|Testo?|1|OK", "input|OK|21,5|Set point|Nuovo valore:",
                 "input|OK| 7 |Set point|Nuovo valore:", "input|Annulla|none|Set point|Nuovo valore:",
                 "input|Esc|none|Set point|Nuovo valore:"});
    }
    void boxes()
    {
        const QStringList cells = rowCells();
        QWidget window;
        MessageBoxPrompts prompts;
        prompts.setParent(&window);
        answerNextBox(cells[1], cells[2] == QLatin1String("none") ? QStringLiteral("21,5") : cells[2]);
        QString returned;
        if (cells[0] == QLatin1String("question"))
            returned = prompts.question(cells[3], cells[4]) ? QStringLiteral("yes") : QStringLiteral("no");
        else if (cells[0] == QLatin1String("warning"))
            prompts.warning(cells[3], cells[4]);
        else if (cells[0] == QLatin1String("information"))
            prompts.information(cells[3], cells[4]);
        else
            returned = prompts.textInput(cells[3], cells[4], QStringLiteral("20.0")).value_or(QStringLiteral("none"));
        QCOMPARE(returned, cells[2]);
        QCOMPARE(seen, cells.mid(3).join('|'));
        QCOMPARE(seenParent, &window);
    }

    // While the always-on-top alarms window shows, a box opens over it and on top itself:
    // under it the modal box would refuse every click, unseen. Closed, the main window
    // is the parent again.
    void boxOpensAboveAnAlwaysOnTopWindow()
    {
        QWidget window;
        window.show();
        QWidget alarms(&window, Qt::Window | Qt::WindowStaysOnTopHint);
        MessageBoxPrompts prompts;
        prompts.setParent(&window);
        for (const bool alarmsShown : {true, false}) {
            alarms.setVisible(alarmsShown);
            answerNextBox(QStringLiteral("OK"), QString());
            prompts.warning(QStringLiteral("Accesso"), QStringLiteral("Password errata."));
            QCOMPARE(seenParent, alarmsShown ? &alarms : &window);
            QCOMPARE(seenOnTop, alarmsShown);
            answerNextBox(QStringLiteral("Sì"), QString());
            QVERIFY(prompts.question(QStringLiteral("Stagione"), QStringLiteral("Testo?")));
            QCOMPARE(seenParent, alarmsShown ? &alarms : &window);
            QCOMPARE(seenOnTop, alarmsShown);
        }
    }
};

QTEST_MAIN(TestMessageBoxPrompts)
#include "tst_messageboxprompts.moc"
