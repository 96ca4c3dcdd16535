#include "supervisor/statusbar.h"

#include "supervisor/supervisorlog.h"

namespace telvane {

QString StatusBar::panel(int number) const
{
    if (number < 1 || number > int(m_panels.size()))
        return {};
    return m_panels[number - 1];
}

void StatusBar::setPanel(int number, const QString &text)
{
    if (number < 1 || number > int(m_panels.size())) {
        qCWarning(lcSupervisor, "No status bar panel %d", number);
        return;
    }
    QString &current = m_panels[number - 1];
    if (current == text)
        return;
    current = text;
    emit panelChanged(number, text);
}

} // namespace telvane
