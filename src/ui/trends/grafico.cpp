#include "ui/trends/grafico.h"

#include "ui/trends/trendchart.h"
#include "ui/trends/trendpanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace telvane {

Grafico::Grafico(IniStore &ini, PlantConfig &plant, std::function<bool()> chartLogging,
                 QWidget *parent)
    : QWidget(parent)
    , m_chartLogging(std::move(chartLogging))
    , m_panel(new TrendPanel(ini, plant))
    , m_memory(new QLabel)
{
    setObjectName(QStringLiteral("Grafico"));
    setWindowTitle(QStringLiteral("Grafico"));
    m_memory->setObjectName(QStringLiteral("Lab_Memoria"));
    m_panel->controls().insertWidget(0, m_memory);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_panel);

    m_panel->chart().setPoints(&m_live.points());
    m_live.onRound = [this] { roundArrived(); };
    updateMemoryText();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    resize(1000, 600);
}

void Grafico::roundArrived()
{
    if (!isVisible())
        return;
    m_panel->chart().pointsChanged();
    updateMemoryText();
}

void Grafico::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_panel->applySettings();
    m_panel->chart().pointsChanged();
    updateMemoryText();
}

QString Grafico::memoryText() const
{
    return m_memory->text();
}

void Grafico::updateMemoryText()
{
    const TrendSet &points = m_live.points();
    const qint64 hours = m_live.windowMs() / (3600 * 1000);
    QString text = QStringLiteral("In memoria le ultime %1 ore: %2 punti (%3 MB)")
                       .arg(hours)
                       .arg(QLocale().toString(qlonglong(points.pointCount())))
                       .arg(QLocale().toString(double(points.bytesHeld()) / (1024.0 * 1024.0), 'f', 1));
    if (m_chartLogging && !m_chartLogging())
        text += QStringLiteral(" - registrazione del grafico disattivata");
    m_memory->setText(text);
}

} // namespace telvane
