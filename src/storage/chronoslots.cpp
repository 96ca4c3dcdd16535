#include "storage/chronoslots.h"

namespace telvane {

QTime chronoSlotStart(int slot)
{
    if (slot < 0 || slot >= ChronoDaySlots)
        return {};
    const int minutes = slot * ChronoSlotMinutes;
    return QTime(minutes / 60, minutes % 60);
}

QString chronoSlotLabel(int slot)
{
    const QTime start = chronoSlotStart(slot);
    return start.isValid() ? start.toString(QStringLiteral("HH:mm")) : QString();
}

int chronoSlotAt(const QTime &time)
{
    if (!time.isValid())
        return -1;
    return (time.hour() * 60 + time.minute()) / ChronoSlotMinutes;
}

} // namespace telvane
