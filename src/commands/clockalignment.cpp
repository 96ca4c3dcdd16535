#include "commands/clockalignment.h"

#include "base/clock.h"
#include "commands/commandslog.h"
#include "storage/numberkeys.h"
#include "storage/registerkey.h"
#include "storage/sectionnames.h"
#include "fieldbus/modbusmaster.h"
#include "supervisor/plantmodel.h"

#include <algorithm>
#include <cstdlib>

namespace telvane {

namespace {

const QString HourKey = QStringLiteral("Ora_w");
const QString MinuteKey = QStringLiteral("Minuti_w");
const QString WeekdayKey = QStringLiteral("Giorno_w");

bool isRegisterWrite(int functionCode)
{
    return functionCode == 6 || functionCode == 8;
}

} // namespace

ClockAlignment::ClockAlignment(const PlantModel &model, ModbusMaster &master, const Clock &clock)
    : m_model(model)
    , m_master(master)
    , m_clock(clock)
{
}

bool ClockAlignment::runTick()
{
    if (m_model.mode.CivilMode)
        return false;
    if (!due(m_clock.now(), m_clock.monotonicMs()))
        return false;
    return alignNow().sent > 0;
}

bool ClockAlignment::due(const QDateTime &now, qint64 monotonicMs) const
{
    if (!m_aligned)
        return true;
    if (now.date() != m_alignedAt.date() || now.time().hour() != m_alignedAt.time().hour())
        return true;
    if (now.offsetFromUtc() != m_alignedAt.offsetFromUtc())
        return true;
    const qint64 wallMs = m_alignedAt.msecsTo(now);
    const qint64 elapsedMs = monotonicMs - m_alignedAtMonotonicMs;
    return std::llabs(wallMs - elapsedMs) > ClockSetThresholdMs;
}

ClockAlignment::Result ClockAlignment::alignNow()
{
    // One reading of the clock for every instrument, so that none gets the hour before a
    // change and the minute after it.
    const QDateTime now = m_clock.now();
    m_aligned = true;
    m_alignedAt = now;
    m_alignedAtMonotonicMs = m_clock.monotonicMs();

    Result result;
    const int zones = std::clamp(m_model.plant.zoneCount(), 0, MaxZones);
    for (int zone = 0; zone < zones; ++zone)
        alignZone(zone, now, result);
    if (result.failed > 0)
        qCWarning(lcCommands, "Clock alignment: %d of %d writes not confirmed", result.failed, result.sent);
    return result;
}

void ClockAlignment::alignZone(int zone, const QDateTime &now, Result &result)
{
    const int slave = m_model.editor.tables.ZoneWriteTable.at(zone, ZoneSlot::Address);
    if (slave < 1 || slave > 255)
        return;
    writeClockValue(zone, slave, HourKey, now.time().hour(), result);
    writeClockValue(zone, slave, MinuteKey, now.time().minute(), result);
    writeClockValue(zone, slave, WeekdayKey, now.date().dayOfWeek(), result);
}

void ClockAlignment::writeClockValue(int zone, int slave, const QString &key, int value, Result &result)
{
    const QString section = zoneSection(zone);
    const QString text = m_model.ini.ReadIniKey(section, key, QString());
    RegisterKeyProblem problem = RegisterKeyProblem::None;
    const std::optional<RegisterKey> reg = parseRegisterKey(text, &problem);
    if (!reg) {
        if (problem == RegisterKeyProblem::Malformed)
            logBadSetting(section, key, text, QStringLiteral("is not \"function,register\": clock not written"));
        return;
    }
    if (!isRegisterWrite(reg->functionCode)) {
        logBadSetting(section, key, text, QStringLiteral("needs function code 6 or 8: clock not written"));
        return;
    }
    ++result.sent;
    const qint32 echo = m_master.WriteRegister(reg->functionCode, reg->registerNumber, value, slave);
    if (echo != value) {
        ++result.failed;
        qCWarning(lcCommands, "Clock alignment: zone %d %s: the instrument echoed %d for %d", zone + 1,
                  qPrintable(key), echo, value);
    }
}

} // namespace telvane
