#pragma once

#include "ui/synoptic/dragitem.h"

#include <QGraphicsProxyWidget>

namespace telvane {

// A panel on the plan (the zone information panel, the webcam panel): an ordinary
// widget, scaled from pixels to the plan's twips, that a service or administrator user
// moves with the right button like any other item; every other press goes to the
// widget's own controls.
class PanelItem final : public QGraphicsProxyWidget
{
    Q_OBJECT

public:
    PanelItem(PlanItemKind kind, QWidget *panel, double twipsPerPixel, const PlacementRules &rules);

    PlanItemKind kind() const { return m_kind; }
    // The zone the information panel shows; 0 for the webcam panel.
    int index() const { return m_index; }
    void setIndex(int index) { m_index = index; }

signals:
    void placed(telvane::PlanItemKind kind, int index, QPoint topLeft);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;

private:
    PlanItemKind m_kind;
    int m_index = 0;
    const PlacementRules &m_rules;
    DragItem m_drag;
};

} // namespace telvane
