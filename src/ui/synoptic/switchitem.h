#pragma once

#include "supervisor/itemstates.h"
#include "ui/synoptic/planitem.h"

namespace telvane {

class PlanUnits;

// A switch on the plan: exactly one of its pictures `Img_on`, `Img_off` and `Img_ind`
// shows, by the state the polls found. Clicking the "on" picture asks to switch off,
// the "off" picture to switch on; the undetermined picture commands nothing.
class SwitchItem final : public PlanItem
{
    Q_OBJECT

public:
    SwitchItem(int sw, const QString &name, const PlanUnits &units, const PlacementRules &rules);

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    SwitchState state() const { return m_state; }
    // "Img_on", "Img_off" or "Img_ind".
    QString visiblePicture() const;
    bool setState(SwitchState state);
    bool setAlarm(bool inAlarm, bool framed);

signals:
    void onImageClicked(int sw);
    void offImageClicked(int sw);

private:
    QString m_name;
    double m_pixel;
    QRectF m_picture;
    SwitchState m_state = SwitchState::Undetermined;
    bool m_alarmFramed = false;
};

} // namespace telvane
