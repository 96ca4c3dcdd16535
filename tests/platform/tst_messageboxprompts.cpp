#include "platform/messageboxprompts.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
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

} // namespace

class TestMessageBoxPrompts : public QObject
{
    Q_OBJECT

    QWidget m_window;
    MessageBoxPrompts m_prompts;

private slots:
    void init()
    {
        m_prompts.setParent(&m_window);
        seen = {};
    }

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
};

QTEST_MAIN(TestMessageBoxPrompts)
#include "tst_messageboxprompts.moc"
