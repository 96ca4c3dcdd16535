#pragma once

namespace telvane {

struct Runtime;

// The full measurement read of every configured zone: stores the five quantities in
// `ZoneValues`, keeps each zone's failure count, feeds the chart, refreshes the
// synoptic's zone texts and, with `ChartLoggingOption`, appends the day's log line.
void ReadAllMeasurements(Runtime &rt);

} // namespace telvane
