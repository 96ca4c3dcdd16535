#pragma once

#include <QFrame>
#include <QImage>

class QCheckBox;
class QLabel;
class QVideoSink;

namespace telvane {

class Camera;

// Shows the frames of a video sink, scaled into its rectangle (`Video_OCX`).
class VideoView final : public QWidget
{
    Q_OBJECT

public:
    explicit VideoView(QWidget *parent = nullptr);

    QVideoSink *sink() const { return m_sink; }
    void clear();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QVideoSink *m_sink;
    QImage m_frame;
};

// The webcam panel (`Pic_WebCam`): the camera's name (`Lab_Nome_WC`), its picture
// (`Video_OCX`), the sound switch (`Chk_Audio`) and `Cmd_ChiudiWC`, which stops the
// camera and hides the panel. A camera that is missing or fails says so in one line
// under the picture.
class WebcamPanel final : public QFrame
{
    Q_OBJECT

public:
    WebcamPanel(Camera &camera, QWidget *parent = nullptr);

    // Shows `name` and starts the picture.
    void start(const QString &name);
    void stop();

    QString statusText() const;

signals:
    void closeClicked();

private:
    Camera &m_camera;
    QLabel *m_name;
    VideoView *m_video;
    QLabel *m_status;
    QCheckBox *m_audio;
};

} // namespace telvane
