#include "platform/qtsoundplayer.h"

#include "platform/platformlog.h"

#include <QAudioDevice>
#include <QFileInfo>
#include <QMediaDevices>
#include <QUrl>

namespace telvane {

QtSoundPlayer::QtSoundPlayer()
{
    QObject::connect(&m_effect, &QSoundEffect::statusChanged, [this] {
        if (m_effect.status() == QSoundEffect::Error)
            warnOnce(m_source, "cannot be played (not a WAV file, or the audio output refused it)");
    });
}

void QtSoundPlayer::play(const QString &filePath)
{
    const QFileInfo file(filePath);
    if (!file.isFile()) {
        warnOnce(filePath, "does not exist");
        return;
    }
    if (!hasOutput())
        return;
    if (m_source != filePath) {
        m_source = filePath;
        m_effect.setSource(QUrl::fromLocalFile(file.absoluteFilePath()));
    }
    // Plays as soon as the file is loaded; returns at once either way.
    m_effect.play();
}

bool QtSoundPlayer::hasOutput()
{
    if (!QMediaDevices::defaultAudioOutput().isNull())
        return true;
    if (!m_noOutputReported) {
        m_noOutputReported = true;
        qCWarning(lcPlatform, "No audio output: sounds stay silent");
    }
    return false;
}

void QtSoundPlayer::warnOnce(const QString &filePath, const char *why)
{
    if (m_reported.contains(filePath))
        return;
    m_reported.insert(filePath);
    qCWarning(lcPlatform) << "Sound file" << filePath << why;
}

} // namespace telvane
