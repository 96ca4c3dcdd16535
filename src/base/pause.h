#pragma once

#include <QList>

namespace telvane {

class ManualClock;

// A blocking wait, as after a refusal message or in a simulated measurement round.
// The real one lets the window repaint meanwhile; tests record the pauses instead of
// waiting.
class Pause
{
public:
    virtual ~Pause() = default;
    virtual void pause(int ms) = 0;
};

// Records every pause; with a clock, also moves it on by the paused time, so code that
// reads the time after a pause sees it pass.
class RecordingPause final : public Pause
{
public:
    explicit RecordingPause(ManualClock *clock = nullptr);

    void pause(int ms) override;

    const QList<int> &pauses() const { return m_pauses; }
    void clear() { m_pauses.clear(); }

private:
    ManualClock *m_clock;
    QList<int> m_pauses;
};

} // namespace telvane
