#include "ui/synoptic/dragitem.h"

#include <QGraphicsItem>

namespace telvane {

void DragItem::begin(const QGraphicsItem &item, QPointF scenePoint)
{
    m_grabOffset = scenePoint - item.pos();
    m_active = true;
}

void DragItem::follow(QGraphicsItem &item, QPointF scenePoint, const QRectF &plan) const
{
    if (!m_active)
        return;
    const QSize size = item.sceneBoundingRect().size().toSize();
    const QPoint wanted = (scenePoint - m_grabOffset).toPoint();
    item.setPos(clampToPlan(wanted, size, plan.toRect()));
}

QPoint DragItem::end(const QGraphicsItem &item)
{
    m_active = false;
    return item.pos().toPoint();
}

} // namespace telvane
