#pragma once

#include <QString>
#include <QStringList>

namespace telvane {

// Plays a sound file without waiting for it to end. A missing file or a machine without
// a sound device stays silent: an alarm sound is a courtesy, never a reason to stop.
class SoundPlayer
{
public:
    virtual ~SoundPlayer() = default;
    virtual void play(const QString &filePath) = 0;
};

// Plays nothing: the supervisor of a cabinet without loudspeakers, the headless mode.
class SilentSoundPlayer final : public SoundPlayer
{
public:
    void play(const QString &) override {}
};

// Records the files it was asked to play.
class RecordingSoundPlayer final : public SoundPlayer
{
public:
    void play(const QString &filePath) override { m_played.append(filePath); }

    const QStringList &played() const { return m_played; }
    void clear() { m_played.clear(); }

private:
    QStringList m_played;
};

} // namespace telvane
