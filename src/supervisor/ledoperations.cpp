#include "supervisor/ledoperations.h"

#include "alarms/alarmbook.h"
#include "supervisor/itemexchange.h"
#include "supervisor/registerreading.h"

namespace telvane {

namespace {

bool ledValid(int led)
{
    return itemIndexValid("LED", led, MaxLeds);
}

void readLamp(Runtime &rt, int led)
{
    const LedTable &table = rt.model.editor.tables.LedReadTable;
    LedLamp lamp;
    const int functionCode = table.at(led, LedSlot::P1Function);
    const ScaledReading reading = readScaledRegister(rt.services.master, table.at(led, LedSlot::Address), functionCode,
                                                     table.at(led, LedSlot::P1Register),
                                                     table.at(led, LedSlot::Decimals));
    if (countFailure(rt, AlarmItemKind::Led, led, reading.bus)) {
        rt.services.alarms.clearFailCount(AlarmItemKind::Led, led);
        lamp.value = reading.value;
        lamp.lit = LedConditionHolds(table.at(led, LedSlot::Condition), reading.bus.value,
                                     table.at(led, LedSlot::Threshold));
    }
    rt.services.items.leds[led] = lamp;
}

} // namespace

bool LedRemoteRead(Runtime &rt, int led)
{
    if (!ledValid(led))
        return false;
    if (countFailure(rt, AlarmItemKind::Led, led,
                     remoteRead(rt, rt.model.editor.tables.LedReadTable, led, rt.services.items.ledRemote[led])))
        return true;
    forgetRemoteState(rt, rt.services.items.ledRemote[led]);
    return false;
}

bool LedLocalWrite(Runtime &rt, int led, int supervisorState)
{
    return ledValid(led)
           && countFailure(rt, AlarmItemKind::Led, led,
                           localWrite(rt, rt.model.editor.tables.LedWriteTable, led, supervisorState));
}

bool LedConditionHolds(int condition, qint32 reading, qint32 threshold)
{
    switch (condition) {
    case 2:
        return reading <= threshold;
    case 3:
        return reading == threshold;
    case 4:
        return reading > threshold;
    case 5:
        return reading < threshold;
    case 6:
        return reading != threshold;
    default:
        return reading >= threshold;
    }
}

void ReadAllLedLamps(Runtime &rt)
{
    const int leds = std::clamp(rt.model.plant.ledCount(), 0, MaxLeds);
    for (int led = 0; led < leds; ++led)
        readLamp(rt, led);
    emit rt.display.synoptic.ledLampsChanged();
}

} // namespace telvane
