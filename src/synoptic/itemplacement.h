#pragma once

#include <QPoint>
#include <QRect>
#include <QString>

namespace telvane {

class IniStore;

// Everything on the plan that a service or administrator user may move.
enum class PlanItemKind { ZoneMarker, ZoneInfoPanel, Switch, Led, DoorOpener, WebcamButton, WebcamPanel };

// Where an item's position lives in the settings.
struct PositionKeys
{
    QString section;
    QString xKey;
    QString yKey;
};

// The section and keys of item `index` (from 0) of `kind`; the info panel uses its
// zone's section, the door opener and the webcam have no index.
PositionKeys positionKeys(PlanItemKind kind, int index);

// The top-left corner an item of `size` may take when asked for `wanted`: inside
// `plan` whole, or at its top-left edge when the item is larger than the plan.
QPoint clampToPlan(QPoint wanted, QSize size, QRect plan);

// Writes the position as trimmed integer twips, both keys in one write of the settings.
bool storeItemPosition(IniStore &ini, PlanItemKind kind, int index, QPoint topLeft);

// A panel's stored top-left ("Info_X", "Info_Y"), 300 twips each when never stored or
// not a number.
QPoint readPanelPosition(const IniStore &ini, PlanItemKind panel, int index);

} // namespace telvane
