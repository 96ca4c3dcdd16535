#include "supervisor/acquisitionstate.h"

#include "base/pause.h"
#include "supervisor/statusbar.h"

namespace telvane {

AcquisitionState::AcquisitionState(StatusBar &statusBar, Pause &pause, QObject *parent)
    : QObject(parent)
    , m_statusBar(statusBar)
    , m_pause(pause)
{
}

void AcquisitionState::setRunning(bool on)
{
    m_running = on;
    showButtonImage(steadyImage());
    m_statusBar.setPanel(StatusBar::StatePanel, on ? QStringLiteral("Acquisizione") : QStringLiteral("Standby"));
}

void AcquisitionState::showButtonImage(int image)
{
    if (m_buttonImage == image)
        return;
    m_buttonImage = image;
    emit acquisitionButtonImageChanged(image);
}

bool AcquisitionState::refuseWhileAcquiring()
{
    if (!m_running)
        return false;
    m_statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Operazione non permessa"));
    m_pause.pause(RefusalMs);
    m_statusBar.setPanel(StatusBar::MessagePanel, QString());
    return true;
}

} // namespace telvane
