#include "supervisor/alarmindication.h"

#include "base/soundplayer.h"
#include "supervisor/acquisitionstate.h"
#include "supervisor/plantmodel.h"

namespace telvane {

AlarmIndication::AlarmIndication(AcquisitionState &state, const PlantModel &model, SoundPlayer &sound, QObject *parent)
    : QObject(parent)
    , m_state(state)
    , m_model(model)
    , m_sound(sound)
{
    m_blinkTimer.setInterval(BlinkIntervalMs);
    connect(&m_blinkTimer, &QTimer::timeout, this, &AlarmIndication::Timer_LampeggioTick);
}

void AlarmIndication::SetAlarmBlink(bool on)
{
    m_active = on;
    if (on) {
        // Keeps the rhythm when several alarms arrive in one round.
        if (!m_blinkTimer.isActive())
            m_blinkTimer.start();
    } else {
        m_state.showButtonImage(m_state.steadyImage());
    }
}

void AlarmIndication::setAutoStartPace(bool fast)
{
    m_blinkTimer.setInterval(fast ? AutoStartBlinkIntervalMs : BlinkIntervalMs);
}

void AlarmIndication::Timer_LampeggioTick()
{
    m_blinkTimer.stop();
    if (!m_active)
        return;
    m_phase = !m_phase;
    if (m_phase) {
        m_state.showButtonImage(AcquisitionState::StandbyImage);
        const QString sound = m_model.plant.synoptic.alarmSound;
        if (!sound.isEmpty())
            m_sound.play(m_model.ini.folder().filePath(sound));
    } else {
        m_state.showButtonImage(AcquisitionState::AcquiringImage);
    }
    if (m_state.AcquisitionRunning() || m_state.AutoStartPending())
        m_blinkTimer.start();
}

} // namespace telvane
