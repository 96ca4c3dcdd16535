#pragma once

#include <QtGlobal>

namespace telvane {

// A colour as the screen shows it. A stored colour may also name one of the system's
// colours (high byte 0x80, the low byte its index): then `systemIndex` holds that index
// and the window's palette decides.
struct ScreenColor
{
    int red = 0;
    int green = 0;
    int blue = 0;
    int systemIndex = -1;

    bool operator==(const ScreenColor &) const = default;
};

// The system colour of window text, the one stored colour of that kind in the defaults.
inline constexpr int SystemWindowTextIndex = 8;

// How a stored colour (blue-green-red, red in the low byte) is drawn. Values with 0xFFFF
// in the upper half are four-digit colours ("&H80FF") that were widened with their sign;
// their low 16 bits are the colour meant, so 0xFFFF80FF is drawn as 0x0080FF (orange).
ScreenColor screenColor(quint32 stored);

// The stored form of a colour picked on screen.
quint32 storedColor(int red, int green, int blue);

} // namespace telvane
