#include "ui/synoptic/planitem.h"

#include <QGraphicsSceneMouseEvent>

namespace telvane {

bool handlePlacementPress(QGraphicsItem &item, DragItem &drag, const PlacementRules &rules,
                          QGraphicsSceneMouseEvent *event)
{
    if (event->button() != Qt::RightButton)
        return false;
    // A right press that may not move still belongs to this item: nothing beneath
    // it should react either.
    event->accept();
    if (rules.mayPlace && rules.mayPlace())
        drag.begin(item, event->scenePos());
    return true;
}

bool handlePlacementMove(QGraphicsItem &item, const DragItem &drag, const PlacementRules &rules,
                         QGraphicsSceneMouseEvent *event)
{
    if (!drag.active())
        return false;
    drag.follow(item, event->scenePos(), rules.plan);
    event->accept();
    return true;
}

std::optional<QPoint> handlePlacementRelease(QGraphicsItem &item, DragItem &drag, QGraphicsSceneMouseEvent *event)
{
    if (event->button() != Qt::RightButton || !drag.active())
        return std::nullopt;
    event->accept();
    return drag.end(item);
}

PlanItem::PlanItem(PlanItemKind kind, int index, const PlacementRules &rules, QGraphicsItem *parent)
    : QGraphicsObject(parent)
    , m_kind(kind)
    , m_index(index)
    , m_rules(rules)
{
    setAcceptedMouseButtons(Qt::LeftButton | Qt::RightButton);
}

void PlanItem::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    if (handlePlacementPress(*this, m_drag, m_rules, event))
        return;
    m_leftDown = event->button() == Qt::LeftButton;
    event->setAccepted(m_leftDown);
}

void PlanItem::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    handlePlacementMove(*this, m_drag, m_rules, event);
}

void PlanItem::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    if (const auto topLeft = handlePlacementRelease(*this, m_drag, event)) {
        emit placed(m_kind, m_index, *topLeft);
        return;
    }
    if (event->button() == Qt::LeftButton && m_leftDown) {
        m_leftDown = false;
        if (contains(event->pos()))
            emit clicked(event->pos());
    }
}

void PlanItem::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        mousePressEvent(event);
        return;
    }
    m_leftDown = false;
    event->accept();
    emit doubleClicked(event->pos());
}

} // namespace telvane
