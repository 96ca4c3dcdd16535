#pragma once

namespace telvane {

// How the program names itself on screen and on paper.
inline constexpr char ProductName[] = "Telvane";
inline constexpr char ProductDescription[] = "Supervisore Modbus RTU per piccoli impianti";
inline constexpr char ProductVersion[] = TELVANE_VERSION;

} // namespace telvane
