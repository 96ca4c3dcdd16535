#include "ui/synoptic/webcampanel.h"

#include "base/camera.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <QVideoFrame>
#include <QVideoSink>

namespace telvane {

VideoView::VideoView(QWidget *parent)
    : QWidget(parent)
    , m_sink(new QVideoSink(this))
{
    setObjectName(QStringLiteral("Video_OCX"));
    setFixedSize(320, 240);
    connect(m_sink, &QVideoSink::videoFrameChanged, this, [this](const QVideoFrame &frame) {
        m_frame = frame.toImage();
        update();
    });
}

void VideoView::clear()
{
    m_frame = QImage();
    update();
}

void VideoView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x20, 0x24, 0x28));
    if (m_frame.isNull())
        return;
    const QSize fitted = m_frame.size().scaled(size(), Qt::KeepAspectRatio);
    const QRect target(QPoint((width() - fitted.width()) / 2, (height() - fitted.height()) / 2), fitted);
    painter.drawImage(target, m_frame);
}

WebcamPanel::WebcamPanel(Camera &camera, QWidget *parent)
    : QFrame(parent)
    , m_camera(camera)
    , m_name(new QLabel(this))
    , m_video(new VideoView(this))
    , m_status(new QLabel(this))
    , m_audio(new QCheckBox(QStringLiteral("Audio"), this))
{
    setObjectName(QStringLiteral("Pic_WebCam"));
    setFrameStyle(QFrame::Panel | QFrame::Raised);
    setAutoFillBackground(true);
    m_name->setObjectName(QStringLiteral("Lab_Nome_WC"));
    QFont bold = m_name->font();
    bold.setBold(true);
    m_name->setFont(bold);
    m_status->setObjectName(QStringLiteral("Lab_StatoWC"));
    m_status->setWordWrap(true);
    m_audio->setObjectName(QStringLiteral("Chk_Audio"));
    auto *close = new QPushButton(QStringLiteral("Chiudi"), this);
    close->setObjectName(QStringLiteral("Cmd_ChiudiWC"));

    m_camera.setVideoOutput(m_video->sink());
    connect(&m_camera, &Camera::failed, this, [this](const QString &message) {
        m_video->clear();
        m_status->setText(message);
        m_status->show();
    });
    connect(&m_camera, &Camera::started, this, [this] { m_status->hide(); });
    connect(m_audio, &QCheckBox::toggled, this, [this](bool on) { m_camera.setAudio(on); });
    connect(close, &QPushButton::clicked, this, &WebcamPanel::closeClicked);

    auto *top = new QHBoxLayout;
    top->addWidget(m_name, 1);
    top->addWidget(close);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 8);
    layout->addLayout(top);
    layout->addWidget(m_video);
    layout->addWidget(m_status);
    layout->addWidget(m_audio);
    m_status->hide();
}

void WebcamPanel::start(const QString &name)
{
    m_name->setText(name);
    m_status->hide();
    m_camera.setAudio(m_audio->isChecked());
    m_camera.start();
}

void WebcamPanel::stop()
{
    m_camera.stop();
    m_video->clear();
}

QString WebcamPanel::statusText() const
{
    return m_status->isVisibleTo(this) ? m_status->text() : QString();
}

} // namespace telvane
