#include "platform/messageboxprompts.h"

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace telvane {

namespace {

int execInForeground(QDialog &box)
{
    // Above an always-on-top parent only if always on top itself: the window manager
    // would otherwise keep the modal box hidden under it, and every click refused.
    if (box.parentWidget() && box.parentWidget()->window()->windowFlags().testFlag(Qt::WindowStaysOnTopHint))
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
    box.setWindowModality(Qt::ApplicationModal);
    box.show();
    box.raise();
    box.activateWindow();
    return box.exec();
}

void showMessage(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text)
{
    QMessageBox box(icon, title, text, QMessageBox::Ok, parent);
    box.button(QMessageBox::Ok)->setText(QStringLiteral("OK"));
    execInForeground(box);
}

} // namespace

QWidget *MessageBoxPrompts::parentWidget() const
{
    // The alarms window stays above every other window of ours: a box must open over it.
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->isVisible() && window->windowFlags().testFlag(Qt::WindowStaysOnTopHint)
            && !qobject_cast<QDialog *>(window))
            return window;
    }
    return m_parent ? m_parent.data() : QApplication::activeWindow();
}

bool MessageBoxPrompts::question(const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, parentWidget());
    box.button(QMessageBox::Yes)->setText(QStringLiteral("Sì"));
    box.button(QMessageBox::No)->setText(QStringLiteral("No"));
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
    execInForeground(box);
    return box.clickedButton() == box.button(QMessageBox::Yes);
}

void MessageBoxPrompts::warning(const QString &title, const QString &text)
{
    showMessage(parentWidget(), QMessageBox::Warning, title, text);
}

void MessageBoxPrompts::information(const QString &title, const QString &text)
{
    showMessage(parentWidget(), QMessageBox::Information, title, text);
}

std::optional<QString> MessageBoxPrompts::textInput(const QString &title, const QString &prompt,
                                                    const QString &initialText)
{
    QInputDialog box(parentWidget());
    box.setWindowTitle(title);
    box.setLabelText(prompt);
    box.setTextValue(initialText);
    box.setOkButtonText(QStringLiteral("OK"));
    box.setCancelButtonText(QStringLiteral("Annulla"));
    if (execInForeground(box) != QDialog::Accepted)
        return std::nullopt;
    return box.textValue();
}

bool MessageBoxPrompts::acknowledge(const QString &title, const QString &text, Icon icon, bool cancellable)
{
    QMessageBox::Icon boxIcon = QMessageBox::Information;
    switch (icon) {
    case Icon::Information:
        break;
    case Icon::Question:
        boxIcon = QMessageBox::Question;
        break;
    case Icon::Exclamation:
        boxIcon = QMessageBox::Warning;
        break;
    case Icon::Critical:
        boxIcon = QMessageBox::Critical;
        break;
    }
    const QMessageBox::StandardButtons buttons = cancellable ? QMessageBox::Ok | QMessageBox::Cancel : QMessageBox::Ok;
    QMessageBox box(boxIcon, title, text, buttons, parentWidget());
    box.button(QMessageBox::Ok)->setText(QStringLiteral("OK"));
    if (cancellable) {
        box.button(QMessageBox::Cancel)->setText(QStringLiteral("Annulla"));
        box.setEscapeButton(QMessageBox::Cancel);
    }
    box.setDefaultButton(QMessageBox::Ok);
    execInForeground(box);
    return box.clickedButton() == box.button(QMessageBox::Ok);
}

} // namespace telvane
