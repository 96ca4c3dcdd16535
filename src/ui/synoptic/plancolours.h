#pragma once

#include <QColor>

namespace telvane {

// The few colours the plan's items share, so that a zone and a switch in alarm, or two
// stale zones, look alike.
namespace PlanColours {

inline QColor frame() { return {0x1f, 0x3b, 0x53}; }
inline QColor alarm() { return {0xd0, 0x10, 0x10}; }
inline QColor markerHeader() { return {0x1f, 0x5f, 0x8b}; }
inline QColor labelBody() { return {255, 255, 255, 225}; }
inline QColor valueText() { return {0x10, 0x20, 0x30}; }
inline QColor staleHeader() { return {0x8a, 0x8f, 0x94}; }
inline QColor staleBody() { return {0xd8, 0xda, 0xdc, 225}; }
inline QColor staleText() { return {0x70, 0x74, 0x78}; }

// The seven lamp colours of an LED, by its "Col" index 0 .. 6.
QColor lamp(int colour);

} // namespace PlanColours

} // namespace telvane
