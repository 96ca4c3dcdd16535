#pragma once

#include "supervisor/itemstates.h"

#include <QList>
#include <QString>

#include <utility>

namespace telvane {

struct PlantConfig;
struct SynopticFields;

// What decides the state pictures of a zone's information panel.
struct ZoneInfoFlags
{
    RemoteState remote = RemoteState::Unknown;
    bool inAlarm = false;        // listed in the alarms window
    bool masterSlaveZone = false; // takes part in master/slave operation
    int role = 0;                // 1 master, 2 or more slave
    bool masterOption = false;   // the plant's "Master" option
    bool chrono = false;         // the chrono-thermostat drives the zone
};

// The zone information panel (`Pic_Info`) of one zone. docs/synoptic.md tells the
// technician what each picture means.
struct ZoneInfo
{
    QString name;                                // Lab_Nome
    QList<std::pair<QString, QString>> fields;   // caption and value, named fields only
    bool imgCR = false;      // communication lost: the zone is in the alarms list
    bool imgMS = false;      // remote/local state not known
    bool imgMS_M = false;    // local: regulated on the instrument by hand
    bool imgMS_S = false;    // remote: regulated from the supervisor
    bool imgMaster = false;
    bool imgSlave = false;
    bool imgCro = false;     // follows the chrono-thermostat
};

// `fields` as the synoptic loads them for the plant's zones.
ZoneInfo zoneInfo(const PlantConfig &plant, const SynopticFields &fields, int zone, const ZoneInfoFlags &flags);

// The same fields as one text: the zone's name, then a line per named field in the
// form "[caption]: value".
QString zoneFieldsText(const ZoneInfo &info);

} // namespace telvane
