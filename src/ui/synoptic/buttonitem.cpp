#include "ui/synoptic/buttonitem.h"

#include "synoptic/planunits.h"
#include "ui/synoptic/plancolours.h"

#include <QCursor>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace telvane {

namespace {

QFont captionFont()
{
    QFont font;
    font.setBold(true);
    return font;
}

// Wide enough for the plant's own name of the door or the camera ("Porta ingresso"),
// which an elided caption would hide; never narrower than the usual button.
double widthFor(const QString &caption)
{
    QFont font = captionFont();
    font.setPixelSize(12);
    return std::clamp(QFontMetricsF(font).horizontalAdvance(caption) + 20, 104.0, 260.0);
}

} // namespace

ButtonItem::ButtonItem(PlanItemKind kind, const QString &objectName, const QString &caption,
                       const PlanUnits &units, const PlacementRules &rules)
    : PlanItem(kind, 0, rules)
    , m_caption(caption)
    , m_pixel(units.twipsPerPixel())
    , m_body(0, 0, units.toTwips(widthFor(caption)), units.toTwips(28))
{
    setObjectName(objectName);
    setCursor(Qt::PointingHandCursor);
}

QRectF ButtonItem::boundingRect() const
{
    return m_body;
}

void ButtonItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF body = m_body.adjusted(m_pixel, m_pixel, -m_pixel, -m_pixel);
    painter->setPen(QPen(PlanColours::frame(), m_pixel));
    painter->setBrush(QColor(0xf4, 0xf6, 0xf8));
    painter->drawRoundedRect(body, 4 * m_pixel, 4 * m_pixel);
    QFont font = captionFont();
    font.setPixelSize(int(12 * m_pixel));
    painter->setFont(font);
    painter->setPen(PlanColours::frame());
    painter->drawText(body, Qt::AlignCenter,
                      painter->fontMetrics().elidedText(m_caption, Qt::ElideRight, int(body.width() - 4 * m_pixel)));
}

} // namespace telvane
