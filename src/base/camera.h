#pragma once

#include <QObject>
#include <QString>

namespace telvane {

// The webcam of the synoptic's webcam panel: start and stop its picture and switch its
// sound. The picture goes to whatever video output the window hands over. A machine
// without a camera, or a camera that fails or is unplugged, reports it through
// `failed` with a line for the operator; nothing else stops.
class Camera : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // `output` is the window's video sink; the camera draws into it once started.
    virtual void setVideoOutput(QObject *output) = 0;
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual void setAudio(bool on) = 0;
    virtual bool isActive() const = 0;

signals:
    void started();
    void failed(const QString &message);
};

// A camera for tests and for the headless mode: records what it was asked and fails
// on start when told to.
class RecordingCamera final : public Camera
{
    Q_OBJECT

public:
    using Camera::Camera;

    void setVideoOutput(QObject *output) override { m_output = output; }
    void start() override
    {
        ++starts;
        if (!failure.isEmpty()) {
            emit failed(failure);
            return;
        }
        m_active = true;
        emit started();
    }
    void stop() override
    {
        ++stops;
        m_active = false;
    }
    void setAudio(bool on) override { audio = on; }
    bool isActive() const override { return m_active; }

    QObject *output() const { return m_output; }

    // Non-empty: every start fails with this text.
    QString failure;
    int starts = 0;
    int stops = 0;
    bool audio = false;

private:
    QObject *m_output = nullptr;
    bool m_active = false;
};

} // namespace telvane
