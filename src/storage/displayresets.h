#pragma once

#include <QObject>

namespace telvane {

// Tells the synoptic's windows to drop every shown value: after a plant (re)load and
// when acquisition stops. Zone texts go back to "--.-" first, then the switch and LED
// indicators are reset.
class DisplayResets : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // Both resets, in their fixed order.
    void resetAll();

signals:
    void ResetZoneDisplays();
    void ResetIndicatorDisplays();
};

} // namespace telvane
