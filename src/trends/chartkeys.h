#pragma once

#include <QString>
#include <QtGlobal>

namespace telvane {

class IniStore;

// The keys of section "Grafico" and the zones' "Colore" that the chart writes back
// when the operator changes them; the colours in their "&H" form.
bool writeChartColor(IniStore &store, const QString &key, quint32 color);
bool writeTraceColor(IniStore &store, int zoneIndex, quint32 color);
// "T_Min" and "T_Max", with "." as the decimal separator like every settings value.
bool writeValueLimits(IniStore &store, double min, double max);

// Where the chart's information box stands: "Info_X", "Info_Y", in twips from the
// chart's top-left corner like every position in the settings.
struct InfoPosition
{
    int x = 0;
    int y = 0;
};
InfoPosition readInfoPosition(const IniStore &store);
bool writeInfoPosition(IniStore &store, const InfoPosition &position);

inline constexpr int TwipsPerPixel = 15;

// The displayed value range after a zoom or scroll: never beyond the absolute limits,
// never empty; a range wider than the limits becomes the limits, one that sticks out
// is moved back inside keeping its width.
struct ValueRange
{
    double min;
    double max;
};
ValueRange clampedValueRange(ValueRange wanted, ValueRange absolute);

} // namespace telvane
