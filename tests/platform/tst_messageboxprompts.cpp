#include "platform/messageboxprompts.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace telvane;

namespace {

// What the operator saw in the box, and the button they pressed.
struct Seen
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
    QWidget *parent = nullptr;
};

QPushButton *buttonWithText(QWidget *box, const QString &text)
{
    for (QPushButton *button : box->findChildren<QPushButton *>()) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

// Answers the box that the next call opens, from inside its modal loop: `answer` is a
// button's text, or "Esc".
void answerNextBox(Seen &seen, const QString &answer, const QString &typed = QString())
{
    QTimer::singleShot(0, [&seen, answer, typed] {
        QWidget *box = QApplication::activeModalWidget();
        if (!box) {
            // Not open yet: the box's own loop will run this again.
            answerNextBox(seen, answer, typed);
            return;
        }
        seen.title = box->windowTitle();
        seen.parent = box->parentWidget();
        for (QPushButton *button : box->findChildren<QPushButton *>())
            seen.buttons.append(button->text());
        seen.buttons.sort();
        if (auto *message = qobject_cast<QMessageBox *>(box)) {
            seen.text = message->text();
            seen.icon = message->icon();
        }
        if (auto *input = qobject_cast<QInputDialog *>(box)) {
            seen.text = input->labelText();
            if (!typed.isNull()) {
                QLineEdit *field = input->findChild<QLineEdit *>();
                field->selectAll();
                QTest::keyClicks(field, typed);
            }
        }
        if (answer == QLatin1String("Esc")) {
            QTest::keyClick(box, Qt::Key_Escape);
            return;
        }
        QPushButton *button = buttonWithText(box, answer);
        QVERIFY2(button, qPrintable(answer));
        QTest::mouseClick(button, Qt::LeftButton);
    });
}

} // namespace

class TestMessageBoxPrompts : public QObject
{
    Q_OBJECT

private slots:
    void questionAnswers_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("yes");
        QTest::newRow("Sì") << "Sì" << true;
        QTest::newRow("No") << "No" << false;
        QTest::newRow("Esc is No") << "Esc" << false;
    }

    void questionAnswers()
    {
        QFETCH(QString, answer);
        QFETCH(bool, yes);

        QWidget window;
        MessageBoxPrompts prompts;
        prompts.setParent(&window);
        Seen seen;
        answerNextBox(seen, answer);
        QCOMPARE(prompts.question(QStringLiteral("Stagione"), QStringLiteral("Inviare la ricetta?")), yes);
        QCOMPARE(seen.title, QStringLiteral("Stagione"));
        QCOMPARE(seen.text, QStringLiteral("Inviare la ricetta?"));
        QCOMPARE(seen.icon, QMessageBox::Question);
        QCOMPARE(seen.buttons, (QStringList{QStringLiteral("No"), QStringLiteral("Sì")}));
        QCOMPARE(seen.parent, &window);
    }

    void messagesShowTheirIcon_data()
    {
        QTest::addColumn<bool>("warning");
        QTest::addColumn<int>("icon");
        QTest::newRow("warning: exclamation") << true << int(QMessageBox::Warning);
        QTest::newRow("information") << false << int(QMessageBox::Information);
    }

    void messagesShowTheirIcon()
    {
        QFETCH(bool, warning);
        QFETCH(int, icon);

        MessageBoxPrompts prompts;
        Seen seen;
        answerNextBox(seen, QStringLiteral("OK"));
        if (warning)
            prompts.warning(QStringLiteral("Accesso"), QStringLiteral("Password errata."));
        else
            prompts.information(QStringLiteral("Accesso"), QStringLiteral("Password errata."));
        QCOMPARE(seen.title, QStringLiteral("Accesso"));
        QCOMPARE(seen.text, QStringLiteral("Password errata."));
        QCOMPARE(int(seen.icon), icon);
        QCOMPARE(seen.buttons, QStringList{QStringLiteral("OK")});
    }

    void textInput_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("result");
        QTest::newRow("typed and OK") << "21,5" << "OK" << "21,5";
        QTest::newRow("blanks kept") << " 7 " << "OK" << " 7 ";
        QTest::newRow("Annulla") << "21,5" << "Annulla" << QString();
        QTest::newRow("Esc") << "21,5" << "Esc" << QString();
    }

    void textInput()
    {
        QFETCH(QString, typed);
        QFETCH(QString, answer);
        QFETCH(QString, result);

        MessageBoxPrompts prompts;
        Seen seen;
        answerNextBox(seen, answer, typed);
        const std::optional<QString> value =
            prompts.textInput(QStringLiteral("Set point"), QStringLiteral("Nuovo valore:"), QStringLiteral("20.0"));
        QCOMPARE(seen.title, QStringLiteral("Set point"));
        QCOMPARE(seen.text, QStringLiteral("Nuovo valore:"));
        QCOMPARE(value.has_value(), !result.isNull());
        if (value)
            QCOMPARE(*value, result);
    }
};

QTEST_MAIN(TestMessageBoxPrompts)
#include "tst_messageboxprompts.moc"
