#pragma once

namespace telvane {

class IniStore;
struct Runtime;

// Whether measurement rounds feed the chart and the daily log, as the editor's option
// "Grafico" (key `Grafico` of section `Generale`) was saved: on unless "0".
bool ReadChartLoggingOption(const IniStore &ini);

// The full measurement read of every configured zone: stores the five quantities in
// `ZoneValues`, keeps each zone's failure count, feeds the chart, refreshes the
// synoptic's zone texts and, with `ChartLoggingOption`, appends the day's log line.
void ReadAllMeasurements(Runtime &rt);

} // namespace telvane
