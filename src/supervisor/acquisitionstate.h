#pragma once

#include <QObject>

namespace telvane {

class Pause;
class StatusBar;

// Standing by or acquiring, as the operator sees it: the state panel, the acquisition
// button "8" and the refusal of the commands that are not allowed while acquiring.
// Between the start of the program and its automatic start (or the decision not to
// have one) the start is pending, and the alarm blink keeps going in standby.
class AcquisitionState final : public QObject
{
    Q_OBJECT

public:
    // Image-list entries of the acquisition button "8".
    static constexpr int StandbyImage = 3;
    static constexpr int AcquiringImage = 4;

    static constexpr int RefusalMs = 500;

    AcquisitionState(StatusBar &statusBar, Pause &pause, QObject *parent = nullptr);

    bool AcquisitionRunning() const { return m_running; }
    // The state panel and the button follow.
    void setRunning(bool on);

    bool AutoStartPending() const { return m_autoStartPending; }
    void setAutoStartPending(bool pending) { m_autoStartPending = pending; }

    int buttonImage() const { return m_buttonImage; }
    void showButtonImage(int image);
    // The button's image when no alarm blinks.
    int steadyImage() const { return m_running ? AcquiringImage : StandbyImage; }

    // True after "Operazione non permessa" stood in the message panel for half a second
    // because acquisition is running; false when the command may go ahead.
    bool refuseWhileAcquiring();

signals:
    void acquisitionButtonImageChanged(int image);

private:
    StatusBar &m_statusBar;
    Pause &m_pause;
    bool m_running = false;
    bool m_autoStartPending = false;
    int m_buttonImage = StandbyImage;
};

} // namespace telvane
