#include "synoptic/zoneinfo.h"

#include "storage/plantconfig.h"

namespace telvane {

ZoneInfo zoneInfo(const PlantConfig &plant, const SynopticFields &fields, int zone, const ZoneInfoFlags &flags)
{
    ZoneInfo info;
    if (zone < 0 || zone >= plant.zoneCount())
        return info;
    info.name = plant.zones[zone].name;
    for (int field = 0; field < SynopticFieldCount; ++field) {
        const QString &caption = fields.names[field];
        if (!caption.isEmpty())
            info.fields.append({caption, fields.values[zone][field]});
    }
    info.imgCR = flags.inAlarm;
    info.imgMS = flags.remote == RemoteState::Unknown;
    info.imgMS_M = flags.remote == RemoteState::Local;
    info.imgMS_S = flags.remote == RemoteState::Remote;
    const bool masterSlave = flags.masterSlaveZone && flags.masterOption;
    info.imgMaster = masterSlave && flags.role == 1;
    info.imgSlave = masterSlave && flags.role >= 2;
    info.imgCro = flags.chrono;
    return info;
}

QString zoneFieldsText(const ZoneInfo &info)
{
    QString text = info.name;
    for (const auto &[caption, value] : info.fields)
        text += QLatin1Char('\n') + QStringLiteral(" [") + caption + QStringLiteral("]:") + QLatin1Char(' ') + value;
    return text;
}

} // namespace telvane
