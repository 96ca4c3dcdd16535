#include "synoptic/itemplacement.h"

#include "storage/inistore.h"
#include "storage/plantconfig.h"
#include "storage/sectionnames.h"

#include <algorithm>

namespace telvane {

PositionKeys positionKeys(PlanItemKind kind, int index)
{
    const QString x = QStringLiteral("X");
    const QString y = QStringLiteral("Y");
    const QString infoX = QStringLiteral("Info_X");
    const QString infoY = QStringLiteral("Info_Y");
    switch (kind) {
    case PlanItemKind::ZoneMarker:
        return {zoneSection(index), x, y};
    case PlanItemKind::ZoneInfoPanel:
        return {zoneSection(index), infoX, infoY};
    case PlanItemKind::Switch:
        return {switchSection(index), x, y};
    case PlanItemKind::Led:
        return {ledSection(index), x, y};
    case PlanItemKind::DoorOpener:
        return {QStringLiteral("Apriporta"), x, y};
    case PlanItemKind::WebcamButton:
        return {QStringLiteral("Webcam"), x, y};
    case PlanItemKind::WebcamPanel:
        return {QStringLiteral("Webcam"), infoX, infoY};
    }
    return {};
}

QPoint clampToPlan(QPoint wanted, QSize size, QRect plan)
{
    const int right = std::max(plan.left(), plan.left() + plan.width() - size.width());
    const int bottom = std::max(plan.top(), plan.top() + plan.height() - size.height());
    return {std::clamp(wanted.x(), plan.left(), right), std::clamp(wanted.y(), plan.top(), bottom)};
}

bool storeItemPosition(IniStore &ini, PlanItemKind kind, int index, QPoint topLeft)
{
    const PositionKeys keys = positionKeys(kind, index);
    return ini.writeIniKeys({{keys.section, keys.xKey, QString::number(topLeft.x()).trimmed()},
                             {keys.section, keys.yKey, QString::number(topLeft.y()).trimmed()}});
}

QPoint readPanelPosition(const IniStore &ini, PlanItemKind panel, int index)
{
    const PositionKeys keys = positionKeys(panel, index);
    const QString fallback = QString::number(DefaultItemPosition);
    bool xOk = false;
    bool yOk = false;
    const int x = ini.ReadIniKey(keys.section, keys.xKey, fallback).trimmed().toInt(&xOk);
    const int y = ini.ReadIniKey(keys.section, keys.yKey, fallback).trimmed().toInt(&yOk);
    return {xOk ? x : DefaultItemPosition, yOk ? y : DefaultItemPosition};
}

} // namespace telvane
