#include "storage/displayresets.h"

namespace telvane {

void DisplayResets::resetAll()
{
    emit ResetZoneDisplays();
    emit ResetIndicatorDisplays();
}

} // namespace telvane
