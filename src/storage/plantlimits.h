#pragma once

namespace telvane {

// The plant's item limits: counts read from the settings are clamped to these, and
// every table has a row for each possible item.
inline constexpr int MaxZones = 30;
inline constexpr int MaxSwitches = 10;
inline constexpr int MaxLeds = 10;

} // namespace telvane
