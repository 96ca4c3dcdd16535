#pragma once

#include "ui/synoptic/planitem.h"

#include <QPixmap>

namespace telvane {

class PlanUnits;

// A zone on the plan: its marker (`Cmd_PuntoMon`, the zone's name or its icon) with the
// two value labels `Lab_Temp` and `Lab_Temp_1` under it. A click on the marker opens the
// zone's information panel, a double-click on `Lab_Temp` sets its value.
class ZoneMarkerItem final : public PlanItem
{
    Q_OBJECT

public:
    ZoneMarkerItem(int zone, const QString &name, const QPixmap &icon, const PlanUnits &units,
                   const PlacementRules &rules);

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    // In item coordinates.
    QRectF markerRect() const { return m_marker; }
    QRectF labTempRect() const { return m_labTemp; }
    QRectF labTemp1Rect() const { return m_labTemp1; }

    QString labTempText() const { return m_labTempText; }
    QString labTemp1Text() const { return m_labTemp1Text; }
    // False when nothing changed, so nothing is repainted.
    bool setTexts(const QString &labTemp, const QString &labTemp1);

    bool isStale() const { return m_stale; }
    bool setStale(bool stale);
    // An item listed in the alarms window is framed red; while the alarm blinks the
    // frame follows the blink.
    bool setAlarm(bool inAlarm, bool framed);

signals:
    void markerClicked(int zone);
    void labTempDoubleClicked(int zone, const QString &shownText);

private:
    QString m_name;
    QPixmap m_icon;
    QRectF m_marker;
    QRectF m_labTemp;
    QRectF m_labTemp1;
    double m_pixel;
    QString m_labTempText;
    QString m_labTemp1Text;
    bool m_stale = false;
    bool m_alarmFramed = false;
};

} // namespace telvane
