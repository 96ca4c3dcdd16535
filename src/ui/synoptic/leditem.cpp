#include "ui/synoptic/leditem.h"

#include "synoptic/planunits.h"
#include "ui/synoptic/plancolours.h"

#include <QPainter>
#include <QRadialGradient>

namespace telvane {

namespace {

constexpr int LampSidePx = 24;

} // namespace

LedItem::LedItem(int led, const QString &name, int colour, const PlanUnits &units, const PlacementRules &rules)
    : PlanItem(PlanItemKind::Led, led, rules)
    , m_rules(rules)
    , m_pixel(units.twipsPerPixel())
    , m_colour(colour)
    , m_lamp(0, 0, units.toTwips(LampSidePx), units.toTwips(LampSidePx))
{
    setObjectName(QStringLiteral("Img_L%1_%2").arg(colour).arg(led));
    setToolTip(name);
}

QRectF LedItem::boundingRect() const
{
    return m_lamp;
}

bool LedItem::setLit(bool lit)
{
    return repaintIfChanged(m_lit, lit);
}

void LedItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF lamp = m_lamp.adjusted(m_pixel, m_pixel, -m_pixel, -m_pixel);
    if (!m_lit) {
        if (m_rules.mayPlace && m_rules.mayPlace()) {
            painter->setPen(QPen(PlanColours::frame(), m_pixel, Qt::DashLine));
            painter->setBrush(Qt::NoBrush);
            painter->drawEllipse(lamp);
        }
        return;
    }
    const QColor colour = PlanColours::lamp(m_colour);
    QRadialGradient glow(lamp.center() - QPointF(lamp.width() / 6, lamp.height() / 6), lamp.width() / 2);
    glow.setColorAt(0, colour.lighter(170));
    glow.setColorAt(1, colour);
    painter->setPen(QPen(colour.darker(160), m_pixel));
    painter->setBrush(glow);
    painter->drawEllipse(lamp);
}

} // namespace telvane
