#pragma once

#include "ui/synoptic/planitem.h"

namespace telvane {

class PlanUnits;

// A command button on the plan: the door opener (`Cmd_Apriporta`) or the webcam
// (`Cmd_Webcam`).
class ButtonItem final : public PlanItem
{
    Q_OBJECT

public:
    ButtonItem(PlanItemKind kind, const QString &objectName, const QString &caption, const PlanUnits &units,
               const PlacementRules &rules);

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    QString m_caption;
    double m_pixel;
    QRectF m_body;
};

} // namespace telvane
