#pragma once

#include "storage/plantlimits.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <array>

namespace telvane {

class IniStore;

// Trace colours of zones without their own "Colore", by zone. The entries with 0xFFFF
// in the upper half are what the chart has always been given; they stay as they are.
inline constexpr std::array<quint32, MaxZones> BuiltInTraceColors = {
    0x000000FF, 0xFFFF80FF, 0xFFFFFFFF, 0xFFFFFF00, 0x00FFFF00, 0x00FF0000,
    0x00FF00FF, 0x00000080, 0x00004080, 0xFFFF8080, 0x00C0C0FF, 0x00C0E0FF,
    0x00C0FFFF, 0x00C0FFC0, 0x00FFFFC0, 0x00FF8080, 0x00FFC0FF, 0x00404080,
    0x00004040, 0x00404000, 0x000000C0, 0x000040C0, 0xFFFFC0C0, 0xFFFF8000,
    0x00808000, 0x00C00000, 0x00C000C0, 0x00800080, 0x00808080, 0x80000008,
};

// What the live trend chart is drawn with: colours in blue-green-red order as the
// settings files hold them, the value limits, and one trace per zone position.
struct ChartSettings
{
    quint32 background = 0x00FFFFFF; // Colore_Sfondo
    quint32 border = 0x00FFFFFF;     // Colore_Bordo
    quint32 grid = 0x00000000;       // Colore_Griglia
    quint32 cursor = 0x00800000;     // Colore_Cursore
    quint32 off1 = 0x00C0C0C0;       // Colore_Off1
    quint32 off2 = 0x00E0E0E0;       // Colore_Off2

    float absoluteMax = 200.0f;  // T_Max_Ass
    float absoluteMin = -200.0f; // T_Min_Ass
    float displayMax = 50.0f;    // T_Max
    float displayMin = -50.0f;   // T_Min

    std::array<quint32, MaxZones> traceColors = BuiltInTraceColors;
    // The zone's name cut to 20 characters; "--------" on positions with no zone.
    std::array<QString, MaxZones> traceLabels;
    // Empty on positions with no zone.
    std::array<QString, MaxZones> traceToolTips;
};

// Reads section "Grafico" and each configured zone's "Colore" from the current settings
// file. `zoneNames` holds the configured zones in order (at most MaxZones are used).
// A value that is not a colour or a number keeps its built-in default and is logged.
ChartSettings LoadChartSettings(const IniStore &store, const QStringList &zoneNames);

} // namespace telvane
