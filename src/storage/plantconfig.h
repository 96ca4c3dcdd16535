#pragma once

#include "storage/chartsettings.h"
#include "storage/plantlimits.h"

#include <QList>
#include <QString>
#include <QtGlobal>
#include <array>

namespace telvane {

// Positions are in the plan's scale units (twips), as stored in the settings.
inline constexpr int DefaultItemPosition = 300;

// The five free text fields of the synoptic ("Campo_1" .. "Campo_5").
inline constexpr int SynopticFieldCount = 5;

// The door opener.
struct Apriporta
{
    QString name = QStringLiteral("Apriporta");
    bool present = false;
    int x = DefaultItemPosition;
    int y = DefaultItemPosition;
};

struct Webcam
{
    QString name = QStringLiteral("Webcam");
    bool present = false;
    int x = DefaultItemPosition;
    int y = DefaultItemPosition;
};

// Which of a zone's five quantities (0 PV, 1 SP, 2 AL1, 3 AL2, 4 AL3) each view uses.
struct ZoneDisplaySettings
{
    QString unit = QStringLiteral("°C");
    qint16 textQuantity = 1;   // shown as the zone's text on the synoptic
    qint16 chartQuantity = 1;  // drawn in the chart and written to the daily log
    qint16 chronoQuantity = 0; // set by the chrono-thermostat
};

struct Zona
{
    QString name;
    int x = DefaultItemPosition;
    int y = DefaultItemPosition;
    QString icon; // picture file in the program folder shown as the marker; empty: none
};

struct Interruttore
{
    QString name;
    int x = DefaultItemPosition;
    int y = DefaultItemPosition;
};

struct LED
{
    QString name;
    int x = DefaultItemPosition;
    int y = DefaultItemPosition;
};

struct SynopticSettings
{
    QString doorSound;  // SuonoPorta
    QString alarmSound; // SuonoAllarme
    QString picture = QStringLiteral("Pianta.jpg");
    QString picturePath; // the picture in the program folder
};

// Names of the free text fields, and each zone's value of each field, all trimmed.
// Only fields with a name are shown.
struct SynopticFields
{
    std::array<QString, SynopticFieldCount> names;
    std::array<std::array<QString, SynopticFieldCount>, MaxZones> values;
};

// The plant as the synoptic, the chart and the acquisition see it. Replaced as a whole
// by every LoadPlantConfig; the lists never hold more than the maxima.
struct PlantConfig
{
    Apriporta apriporta;
    Webcam webcam;
    ZoneDisplaySettings zoneDisplay;
    QList<Zona> zones;            // at most MaxZones
    QList<Interruttore> switches; // at most MaxSwitches
    QList<LED> leds;              // at most MaxLeds
    float chartMinAbs = -200.0f;  // T_Min_Ass
    float chartMaxAbs = 200.0f;   // T_Max_Ass
    ChartSettings chart;
    SynopticSettings synoptic;
    SynopticFields fields;
    // Switches may be commanded from the synoptic only when this is 1 (key
    // "Comando Interruttori" of section `Generale`; absent: 1).
    qint16 SwitchControlMode = 1;

    int zoneCount() const { return static_cast<int>(zones.size()); }
    int switchCount() const { return static_cast<int>(switches.size()); }
    int ledCount() const { return static_cast<int>(leds.size()); }
};

} // namespace telvane
