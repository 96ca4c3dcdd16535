#pragma once

#include "base/camera.h"

#include <QMediaCaptureSession>

#include <memory>

class QAudioInput;
class QAudioOutput;
class QCamera;

namespace telvane {

// The first camera of the machine over Qt Multimedia. Chosen when the picture starts,
// so a camera plugged in after start-up is found; its sound is the default microphone
// played on the default speaker.
class QtCamera final : public Camera
{
    Q_OBJECT

public:
    explicit QtCamera(QObject *parent = nullptr);
    ~QtCamera() override;

    void setVideoOutput(QObject *output) override;
    void start() override;
    void stop() override;
    void setAudio(bool on) override;
    bool isActive() const override;

private:
    void cameraFailed();

    QMediaCaptureSession m_session;
    std::unique_ptr<QCamera> m_camera;
    std::unique_ptr<QAudioInput> m_audioInput;
    std::unique_ptr<QAudioOutput> m_audioOutput;
    bool m_audio = false;
};

} // namespace telvane
