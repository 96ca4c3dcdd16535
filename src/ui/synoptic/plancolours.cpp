#include "ui/synoptic/plancolours.h"

#include <array>

namespace telvane::PlanColours {

QColor lamp(int colour)
{
    static const std::array<QColor, 7> lamps{
        QColor(0xe0, 0x20, 0x20), // 0 red
        QColor(0x20, 0xc0, 0x30), // 1 green
        QColor(0xf0, 0xc0, 0x10), // 2 yellow
        QColor(0x20, 0x70, 0xe0), // 3 blue
        QColor(0xf0, 0x80, 0x10), // 4 orange
        QColor(0xf8, 0xf8, 0xf0), // 5 white
        QColor(0xa0, 0x40, 0xd0), // 6 violet
    };
    return colour >= 0 && colour < int(lamps.size()) ? lamps[colour] : lamps[1];
}

} // namespace telvane::PlanColours
