#pragma once

#include "base/soundplayer.h"

#include <QSet>
#include <QSoundEffect>

namespace telvane {

// Plays WAV files through the default audio output without waiting for them. A file
// that is missing or not a WAV, or a machine with no audio output, leaves the program
// silent with one warning per file in the platform log; the alarm blink goes on.
// A sound asked for while another plays replaces it, as the alarm repeats every blink.
class QtSoundPlayer final : public SoundPlayer
{
public:
    QtSoundPlayer();

    void play(const QString &filePath) override;

private:
    bool hasOutput();
    void warnOnce(const QString &filePath, const char *why);

    QSoundEffect m_effect;
    QString m_source;
    bool m_noOutputReported = false;
    QSet<QString> m_reported;
};

} // namespace telvane
