#pragma once

#include <QObject>
#include <QString>

#include <array>

namespace telvane {

// The texts of the main window's status bar, kept in the core so that the window and
// the headless mode show the same thing. Panels are numbered from 1:
// 1 serial port or user, 2 state, 3 cycle activity, 4 transient messages.
class StatusBar final : public QObject
{
    Q_OBJECT

public:
    static constexpr int PortPanel = 1;
    static constexpr int StatePanel = 2;
    static constexpr int ActivityPanel = 3;
    static constexpr int MessagePanel = 4;

    using QObject::QObject;

    // Empty for a panel number outside 1..4.
    QString panel(int number) const;
    // A number outside 1..4 is ignored with a warning.
    void setPanel(int number, const QString &text);

signals:
    // Only when the text actually changes.
    void panelChanged(int number, const QString &text);

private:
    std::array<QString, 4> m_panels;
};

} // namespace telvane
