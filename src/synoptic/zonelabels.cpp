#include "synoptic/zonelabels.h"

#include "storage/valueconversion.h"

namespace telvane {

ZoneLabelQuantities zoneLabelQuantities(int textQuantity)
{
    const auto shown = static_cast<ZoneQuantity>(textQuantity >= 0 && textQuantity <= 4 ? textQuantity : 1);
    return {shown, shown == ZoneQuantity::PV ? ZoneQuantity::SP : ZoneQuantity::PV};
}

QString zoneLabelText(const ValueTables &values, const ZoneTable &readTable, int zone, ZoneQuantity quantity,
                      const QString &unit)
{
    return FormatZoneValue(values.zoneValue(zone, quantity), readTable.at(zone, ZoneSlot::Decimals), unit);
}

} // namespace telvane
