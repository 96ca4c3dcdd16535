#pragma once

#include "trends/trendseries.h"

#include <span>
#include <vector>

namespace telvane {

// The unbroken stretches of a trace as they are drawn over [from, to] on a chart `columns`
// pixels wide. A gap ends a stretch. When a stretch holds more samples than the pixels
// can show, each pixel column keeps only its first, lowest, highest and last sample, in
// time order, so the drawn line looks the same and no peak is lost. The sample just
// before `from` and the one just after `to` are kept, so the line reaches the edges.
std::vector<std::vector<TrendPoint>> drawnSegments(std::span<const TrendPoint> points, qint64 from, qint64 to,
                                                   int columns);

} // namespace telvane
