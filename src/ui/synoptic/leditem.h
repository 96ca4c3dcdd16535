#pragma once

#include "ui/synoptic/planitem.h"

namespace telvane {

class PlanUnits;

// An LED output's lamp (`Img_L0` .. `Img_L6`, by its colour): seen only while lit. A
// user who may place items sees a dark lamp's outline, so it can still be found.
class LedItem final : public PlanItem
{
    Q_OBJECT

public:
    LedItem(int led, const QString &name, int colour, const PlanUnits &units, const PlacementRules &rules);

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    int colour() const { return m_colour; }
    bool isLit() const { return m_lit; }
    bool setLit(bool lit);

private:
    const PlacementRules &m_rules;
    double m_pixel;
    int m_colour;
    QRectF m_lamp;
    bool m_lit = false;
};

} // namespace telvane
