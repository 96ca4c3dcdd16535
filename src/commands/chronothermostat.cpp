#include "commands/chronothermostat.h"

#include "base/clock.h"
#include "commands/commandslog.h"
#include "commands/zonewriteregister.h"
#include "storage/chronoslots.h"
#include "storage/numbertext.h"
#include "storage/valueconversion.h"
#include "fieldbus/modbusmaster.h"
#include "supervisor/plantmodel.h"

#include <algorithm>

namespace telvane {

namespace {

constexpr int Sunday = ChronoSchedule::Days - 1;

} // namespace

ChronoThermostat::ChronoThermostat(const PlantModel &model, ModbusMaster &master, const Clock &clock)
    : m_model(model)
    , m_master(master)
    , m_clock(clock)
{
}

bool ChronoThermostat::runTick()
{
    if (!m_model.editor.chronoThermostat) {
        // Switching the option on later sends the slot of that moment at once.
        restart();
        return false;
    }
    const QDateTime now = m_clock.now();
    const int slot = chronoSlotAt(now.time());
    if (slot < 0)
        return false;
    QDateTime slotStart = now;
    slotStart.setTime(chronoSlotStart(slot));
    if (slotStart == m_lastSlotStart)
        return false;
    m_lastSlotStart = slotStart;
    return sendSlot(now.date(), slot);
}

bool ChronoThermostat::sendSlot(const QDate &date, int slot)
{
    const int day = m_model.holidays.containsDate(date) ? Sunday : date.dayOfWeek() - 1;
    const int quantity = m_model.plant.zoneDisplay.chronoQuantity;
    const ZoneTable &table = m_model.editor.tables.ZoneWriteTable;
    const int zones = std::clamp(m_model.plant.zoneCount(), 0, ChronoSchedule::Zones);
    int sent = 0;

    for (int zone = 0; zone < zones; ++zone) {
        if (!m_model.editor.chronoZoneEnabled[zone])
            continue;
        const std::optional<ZoneWriteRegister> target = zoneWriteRegister(table, zone, quantity);
        if (!target) {
            qCWarning(lcCommands, "Chrono-thermostat: zone %d has no write register for quantity %d", zone + 1,
                      quantity);
            continue;
        }

        const float setPoint = m_model.chrono(slot, zone, day);
        // Scaled as an operator's value would be: extra decimals are cut, never rounded.
        const QString text = formatFixed(setPoint, 3);
        const std::optional<qint16> raw = registerFromText(text, target->decimals);
        if (!raw) {
            qCWarning(lcCommands) << "Chrono-thermostat: zone" << zone + 1 << "set point" << text
                                  << "does not fit a register with" << target->decimals << "decimals";
            continue;
        }
        const qint32 echo = m_master.WriteRegister(target->functionCode, target->registerNumber, *raw, target->slave);
        ++sent;
        if (echo != *raw)
            qCWarning(lcCommands, "Chrono-thermostat: zone %d slot %s: the instrument echoed %d for %d", zone + 1,
                      qPrintable(chronoSlotLabel(slot)), echo, int(*raw));
    }
    // One line a quarter of an hour tells whoever reads the log that the schedule runs.
    if (sent > 0)
        qCInfo(lcCommands, "Chrono-thermostat: slot %s (day %d) sent to %d zone(s)",
               qPrintable(chronoSlotLabel(slot)), day + 1, sent);
    return sent > 0;
}

} // namespace telvane
