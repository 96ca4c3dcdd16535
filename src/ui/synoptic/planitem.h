#pragma once

#include "ui/synoptic/dragitem.h"

#include <QGraphicsObject>

#include <optional>

namespace telvane {

// An item drawn on the plan at a stored position (its top-left, in twips). A left
// click or double-click is its command; a right-button drag by a service or
// administrator user moves it, and on release tells where it now stands. Any other
// press leaves it where it is.
class PlanItem : public QGraphicsObject
{
    Q_OBJECT

public:
    PlanItem(PlanItemKind kind, int index, const PlacementRules &rules, QGraphicsItem *parent = nullptr);

    PlanItemKind kind() const { return m_kind; }
    int index() const { return m_index; }

signals:
    void clicked(QPointF itemPoint);
    void doubleClicked(QPointF itemPoint);
    void placed(telvane::PlanItemKind kind, int index, QPoint topLeft);

protected:
    // Sets `field` and repaints only when the value differs, so a refresh that changes
    // nothing paints nothing; true when it changed.
    template <typename T>
    bool repaintIfChanged(T &field, const T &value)
    {
        if (field == value)
            return false;
        field = value;
        update();
        return true;
    }

    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;

private:
    PlanItemKind m_kind;
    int m_index;
    const PlacementRules &m_rules;
    DragItem m_drag;
    bool m_leftDown = false;
};

// The shared right-button handling of items and panels: true when the event was a
// placement press, move or release and has been dealt with.
bool handlePlacementPress(QGraphicsItem &item, DragItem &drag, const PlacementRules &rules,
                          QGraphicsSceneMouseEvent *event);
bool handlePlacementMove(QGraphicsItem &item, const DragItem &drag, const PlacementRules &rules,
                         QGraphicsSceneMouseEvent *event);
// The top-left where a placement ended, or nothing when this release ends none.
std::optional<QPoint> handlePlacementRelease(QGraphicsItem &item, DragItem &drag, QGraphicsSceneMouseEvent *event);

} // namespace telvane
