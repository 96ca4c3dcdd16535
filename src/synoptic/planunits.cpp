#include "synoptic/planunits.h"

namespace telvane {

// A screen that reports no resolution is taken as a standard one rather than dividing
// by zero.
PlanUnits::PlanUnits(double logicalDpi)
    : m_twipsPerPixel(TwipsPerInch / (logicalDpi > 0.0 ? logicalDpi : StandardDpi))
{
}

} // namespace telvane
