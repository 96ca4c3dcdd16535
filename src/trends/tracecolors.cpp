#include "trends/tracecolors.h"

namespace telvane {

ScreenColor screenColor(quint32 stored)
{
    if ((stored & 0xFF000000u) == 0x80000000u)
        return {0, 0, 0, static_cast<int>(stored & 0xFFu)};
    const quint32 bgr = (stored & 0xFFFF0000u) == 0xFFFF0000u ? (stored & 0xFFFFu) : (stored & 0xFFFFFFu);
    return {static_cast<int>(bgr & 0xFF), static_cast<int>((bgr >> 8) & 0xFF), static_cast<int>((bgr >> 16) & 0xFF)};
}

quint32 storedColor(int red, int green, int blue)
{
    return (static_cast<quint32>(blue & 0xFF) << 16) | (static_cast<quint32>(green & 0xFF) << 8)
           | static_cast<quint32>(red & 0xFF);
}

} // namespace telvane
