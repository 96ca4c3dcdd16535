#pragma once

#include <QObject>
#include <QTimer>

namespace telvane {

class AcquisitionState;
struct PlantModel;
class SoundPlayer;

// An alarm shown to the operator: the acquisition button blinks on `Timer_Lampeggio`
// and, if the plant names an alarm sound, the sound plays at every other phase. The
// same blink, faster, says that the automatic start is coming.
class AlarmIndication final : public QObject
{
    Q_OBJECT

public:
    static constexpr int BlinkIntervalMs = 700;
    static constexpr int AutoStartBlinkIntervalMs = 350;

    AlarmIndication(AcquisitionState &state, const PlantModel &model, SoundPlayer &sound, QObject *parent = nullptr);

    void SetAlarmBlink(bool on);
    // The timer handler; tests call it directly.
    void Timer_LampeggioTick();
    // The blink pauses with acquisition; the next alarm or Start resumes it.
    void pause() { m_blinkTimer.stop(); }
    // The fast pace announces the automatic start; an alarm blinks at the normal one.
    void setAutoStartPace(bool fast);

    bool AlarmBlinkActive() const { return m_active; }
    bool BlinkPhase() const { return m_phase; }
    const QTimer &Timer_Lampeggio() const { return m_blinkTimer; }

private:
    AcquisitionState &m_state;
    const PlantModel &m_model;
    SoundPlayer &m_sound;
    QTimer m_blinkTimer;
    bool m_active = false;
    bool m_phase = false;
};

} // namespace telvane
