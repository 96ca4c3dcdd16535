#pragma once

#include "base/prompts.h"

#include <QPointer>
#include <QWidget>

namespace telvane {

// The operator's message boxes and input boxes, modal and brought to the foreground so
// that a box raised by a poll is never lost behind another window. Buttons read "Sì",
// "No", "OK" and "Annulla".
class MessageBoxPrompts final : public Prompts
{
public:
    // The boxes are centred on `parent` (the main window) once it exists; until then on
    // whichever window is active. While an always-on-top window (the alarms window) is
    // shown, they open over it instead, always on top themselves.
    void setParent(QWidget *parent) { m_parent = parent; }

    bool question(const QString &title, const QString &text) override;
    void warning(const QString &title, const QString &text) override;
    void information(const QString &title, const QString &text) override;
    std::optional<QString> textInput(const QString &title, const QString &prompt,
                                     const QString &initialText = QString()) override;
    bool acknowledge(const QString &title, const QString &text, Icon icon, bool cancellable) override;

private:
    QWidget *parentWidget() const;

    QPointer<QWidget> m_parent;
};

} // namespace telvane
