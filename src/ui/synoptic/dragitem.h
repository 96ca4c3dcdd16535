#pragma once

#include "synoptic/itemplacement.h"

#include <QPointF>
#include <QRectF>

#include <functional>

class QGraphicsItem;

namespace telvane {

// What every movable item of the plan needs to know to be placed: whether the user
// may move items at all, and the plan they must stay on.
struct PlacementRules
{
    std::function<bool()> mayPlace;
    QRectF plan;
};

// Moves an item with the mouse inside the plan (`DragItem`): the grab point stays under
// the cursor and the item never leaves the plan's rectangle, whatever the cursor does.
class DragItem
{
public:
    // Starts a drag of `item` grabbed at `scenePoint`.
    void begin(const QGraphicsItem &item, QPointF scenePoint);
    // Moves the item toward the cursor at `scenePoint`, clamped to `plan`.
    void follow(QGraphicsItem &item, QPointF scenePoint, const QRectF &plan) const;
    // Ends the drag; the item's top-left in whole twips.
    QPoint end(const QGraphicsItem &item);

    bool active() const { return m_active; }

private:
    QPointF m_grabOffset;
    bool m_active = false;
};

} // namespace telvane
