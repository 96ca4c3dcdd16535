#pragma once

#include "config_editor/registertables.h"
#include "storage/valuetables.h"

#include <QLatin1String>

#include <array>

namespace telvane {

// What the synoptic shows for a switch: exactly one of its three pictures.
enum class SwitchState { Off, On, Undetermined };

// The remote/local state an instrument reports in its `REM_r` register.
enum class RemoteState { Local, Remote, Unknown };

struct LedLamp
{
    bool lit = false;
    // The `P1_r` reading scaled by the LED's decimals, or the invalid marker.
    float value = InvalidValue;
};

// The states the polls derive from the instruments' answers, beside the value tables.
struct ItemStates
{
    ItemStates() { reset(); }

    // Everything back to "not known": switches undetermined, lamps dark.
    void reset();

    std::array<SwitchState, MaxSwitches> switches;
    std::array<LedLamp, MaxLeds> leds;
    std::array<RemoteState, MaxZones> zoneRemote;
    std::array<RemoteState, MaxSwitches> switchRemote;
    std::array<RemoteState, MaxLeds> ledRemote;
    RemoteState doorRemote;
};

// "ON", "OFF" or "--.-".
QLatin1String stateText(SwitchState state);
QLatin1String stateText(RemoteState state);

} // namespace telvane
