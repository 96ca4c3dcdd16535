#include "supervisor/measurementacquisition.h"

#include "alarms/alarmbook.h"
#include "base/clock.h"
#include "base/pause.h"
#include "fieldbus/modbusmaster.h"
#include "storage/dailylog.h"
#include "supervisor/chartsink.h"
#include "supervisor/registerreading.h"
#include "supervisor/runtime.h"
#include "supervisor/statusbar.h"
#include "supervisor/supervisorlog.h"
#include "supervisor/synopticrefresh.h"

#include <QVarLengthArray>

namespace telvane {

namespace {

// A simulated round takes about as long as a real one.
constexpr int SimulatedRoundMs = 250;

// Decimals the log and the chart formats know.
bool hasDecimalFormat(int decimals)
{
    return decimals >= 0 && decimals < int(DecimalFormats.size());
}

// Reads quantity `k` of zone `zone` into `ZoneValues` and counts it toward the zone's
// alarm. The order matters: it decides at which read a zone reaches its sixth failure.
void readQuantity(Runtime &rt, int zone, int k)
{
    const ZoneTable &table = rt.model.editor.tables.ZoneReadTable;

    const ScaledReading reading =
        readScaledRegister(rt.services.master, table.at(zone, ZoneSlot::Address), table.at(zone, zoneQuantityFunctionSlot(k)),
                           table.at(zone, zoneQuantityRegisterSlot(k)), table.at(zone, ZoneSlot::Decimals));
    const bool configured = reading.bus.result != BusResult::NotConfigured;
    if (!configured && k >= int(ZoneQuantity::AL1)) {
        // An alarm quantity that is not read counts against the zone here and again
        // below; plants are set up knowing that a zone without its alarm registers is
        // listed after its first round.
        rt.services.alarms.ReportZoneFailure(zone, reading.bus.reason());
    }
    rt.model.values.ZoneValues[zone][k] = reading.value;

    // Unlike every other exchange, a quantity not in use counts as a failed read here.
    if (reading.bus.answered())
        rt.services.alarms.clearFailCount(AlarmItemKind::Zone, zone);
    else if (reading.bus.instrumentFailed() || !configured)
        rt.services.alarms.ReportZoneFailure(zone, reading.bus.reason());
}

} // namespace

void ReadAllMeasurements(Runtime &rt)
{
    rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QStringLiteral("Lettura..."));

    const QDateTime lineTime = rt.devices.clock.now();
    QVarLengthArray<LoggedValue, MaxZones> logged;

    const int zones = std::clamp(rt.model.plant.zoneCount(), 0, MaxZones);
    const int chartQuantity = rt.model.plant.zoneDisplay.chartQuantity;
    const bool chartQuantityKnown = chartQuantity >= 0 && chartQuantity < ValueTables::Quantities;
    if (rt.display.ChartLoggingOption && !chartQuantityKnown)
        qCWarning(lcSupervisor, "\"Zone Grafico\" is %d, not a zone quantity (0..4): nothing charted or logged",
                  chartQuantity);

    for (int zone = 0; zone < zones; ++zone) {
        for (int k = 0; k < ValueTables::Quantities; ++k)
            readQuantity(rt, zone, k);

        if (rt.display.ChartLoggingOption && chartQuantityKnown) {
            const float value = rt.model.values.ZoneValues[zone][chartQuantity];
            if (rt.display.chart)
                rt.display.chart->addPoint(zone + 1, rt.devices.clock.now(), value);
            const int decimals = rt.model.editor.tables.ZoneReadTable.at(zone, ZoneSlot::Decimals);
            if (hasDecimalFormat(decimals))
                logged.append({value, decimals});
        }
    }

    if (rt.display.chart)
        rt.display.chart->roundFinished();
    emit rt.display.synoptic.zoneTextsChanged();

    if (rt.display.ChartLoggingOption)
        rt.services.dailyLog.AppendDailyLogLine(dailyLogLine(lineTime, logged));

    if (!rt.services.master.communicate())
        rt.devices.pause.pause(SimulatedRoundMs);

    rt.display.statusBar.setPanel(StatusBar::ActivityPanel, QString());
}

} // namespace telvane
