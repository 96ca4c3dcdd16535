#include "ui/synoptic/panelitem.h"

#include "ui/synoptic/planitem.h"

#include <QGraphicsSceneMouseEvent>

namespace telvane {

PanelItem::PanelItem(PlanItemKind kind, QWidget *panel, double twipsPerPixel, const PlacementRules &rules)
    : m_kind(kind)
    , m_rules(rules)
{
    setWidget(panel);
    setScale(twipsPerPixel);
    // Above every item of the plan.
    setZValue(10);
}

void PanelItem::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    if (!handlePlacementPress(*this, m_drag, m_rules, event))
        QGraphicsProxyWidget::mousePressEvent(event);
}

void PanelItem::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (!handlePlacementMove(*this, m_drag, m_rules, event))
        QGraphicsProxyWidget::mouseMoveEvent(event);
}

void PanelItem::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    if (const auto topLeft = handlePlacementRelease(*this, m_drag, event)) {
        emit placed(m_kind, m_index, *topLeft);
        return;
    }
    QGraphicsProxyWidget::mouseReleaseEvent(event);
}

} // namespace telvane
