#include "platform/qtcamera.h"

#include "platform/platformlog.h"

#include <QAudioDevice>
#include <QAudioInput>
#include <QAudioOutput>
#include <QCamera>
#include <QCameraDevice>
#include <QMediaDevices>
#include <QVideoSink>

namespace telvane {

QtCamera::QtCamera(QObject *parent)
    : Camera(parent)
{
}

QtCamera::~QtCamera()
{
    if (m_camera)
        m_camera->disconnect(this);
    m_session.setCamera(nullptr);
    m_session.setAudioInput(nullptr);
    m_session.setAudioOutput(nullptr);
}

void QtCamera::setVideoOutput(QObject *output)
{
    m_session.setVideoSink(qobject_cast<QVideoSink *>(output));
}

void QtCamera::start()
{
    stop();
    const QCameraDevice device = QMediaDevices::defaultVideoInput();
    if (device.isNull()) {
        emit failed(QStringLiteral("Nessuna telecamera collegata."));
        return;
    }
    m_camera = std::make_unique<QCamera>(device);
    connect(m_camera.get(), &QCamera::errorOccurred, this, &QtCamera::cameraFailed);
    connect(m_camera.get(), &QCamera::activeChanged, this, [this](bool active) {
        if (active)
            emit started();
    });
    m_session.setCamera(m_camera.get());
    setAudio(m_audio);
    m_camera->start();
}

void QtCamera::stop()
{
    m_session.setAudioInput(nullptr);
    m_session.setAudioOutput(nullptr);
    m_audioInput.reset();
    m_audioOutput.reset();
    if (!m_camera)
        return;
    m_camera->disconnect(this);
    m_camera->stop();
    m_session.setCamera(nullptr);
    // A failing camera stops from inside its own signal: let it return first.
    m_camera.release()->deleteLater();
}

// Without a microphone or a speaker the picture goes on silent.
void QtCamera::setAudio(bool on)
{
    m_audio = on;
    if (!m_camera)
        return;
    if (on && !QMediaDevices::defaultAudioInput().isNull()) {
        m_audioInput = std::make_unique<QAudioInput>();
        m_audioOutput = std::make_unique<QAudioOutput>();
        m_session.setAudioInput(m_audioInput.get());
        m_session.setAudioOutput(m_audioOutput.get());
    } else {
        m_session.setAudioInput(nullptr);
        m_session.setAudioOutput(nullptr);
        m_audioInput.reset();
        m_audioOutput.reset();
    }
}

bool QtCamera::isActive() const
{
    return m_camera && m_camera->isActive();
}

// An unplugged camera ends up here too.
void QtCamera::cameraFailed()
{
    const QString reason = m_camera ? m_camera->errorString() : QString();
    qCWarning(lcPlatform).noquote() << "Camera failed:" << reason;
    stop();
    emit failed(QStringLiteral("Telecamera non disponibile: %1").arg(reason.isEmpty() ? QStringLiteral("errore") : reason));
}

} // namespace telvane
