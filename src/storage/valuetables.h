#pragma once

#include "storage/chronoschedule.h"

#include <QLatin1String>

#include <array>

namespace telvane {

// The marker of a value that is not known: never read, or the instrument did not answer.
// It is compared exactly, never formatted.
inline constexpr float InvalidValue = -99999.0f;
// The same marker as the Modbus master returns it for a read or write without a valid answer.
inline constexpr int InvalidRegister = -99999;

// Texts of switch and LED states; the last one stands for any value that is not known.
inline constexpr std::array<QLatin1String, 3> StateTexts{
    QLatin1String("OFF"), QLatin1String("ON"), QLatin1String("--.-")};
inline constexpr int InvalidStateText = 2;

// Display patterns indexed by a zone's number of decimals (0..3).
inline constexpr std::array<QLatin1String, 4> DecimalFormats{
    QLatin1String("######0"), QLatin1String("#####0.0"), QLatin1String("####0.00"), QLatin1String("###0.000")};

// The five quantities every zone instrument holds, in table order.
enum class ZoneQuantity { PV = 0, SP = 1, AL1 = 2, AL2 = 3, AL3 = 4 };

// The latest values read from the plant. A new table holds the invalid marker everywhere.
struct ValueTables
{
    static constexpr int Zones = 30;
    static constexpr int Quantities = 5;
    static constexpr int Switches = 10;
    static constexpr int SwitchReadings = 2;

    ValueTables();

    float &zoneValue(int zone, ZoneQuantity quantity) { return ZoneValues[zone][static_cast<int>(quantity)]; }
    float zoneValue(int zone, ZoneQuantity quantity) const { return ZoneValues[zone][static_cast<int>(quantity)]; }

    std::array<std::array<float, Quantities>, Zones> ZoneValues;
    std::array<std::array<float, SwitchReadings>, Switches> SwitchValues;
};

// Every zone and switch value back to the invalid marker, every set point to the default.
void InitValueTables(ValueTables &tables, ChronoSchedule &schedule);

} // namespace telvane
