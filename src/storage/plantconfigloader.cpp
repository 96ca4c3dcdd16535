#include "storage/plantconfigloader.h"

#include "storage/displayresets.h"
#include "storage/inistore.h"
#include "storage/numberkeys.h"
#include "storage/sectionnames.h"

#include <algorithm>

namespace telvane {

namespace {

const QString GeneralSection = QStringLiteral("Generale");
const QString DoorSection = QStringLiteral("Apriporta");
const QString WebcamSection = QStringLiteral("Webcam");
const QString SynopticSection = QStringLiteral("Sinottico");
const QString ChartSection = QStringLiteral("Grafico");

constexpr int ZoneQuantityCount = 5;

QString fieldKey(int field)
{
    return QStringLiteral("Campo_%1").arg(field + 1);
}

int readCount(const IniStore &store, const QString &key, int maximum)
{
    const int count = readIntegerKey(store, GeneralSection, key, 0);
    const int clamped = std::clamp(count, 0, maximum);
    if (clamped != count) {
        logBadSetting(GeneralSection, key, QString::number(count),
                      QStringLiteral("is outside 0..%1; using %2").arg(maximum).arg(clamped));
    }
    return clamped;
}

// One of a zone's quantities, 0 PV .. 4 AL3. Every view indexes the zone values with it,
// so a value outside the range never leaves here.
qint16 readQuantity(const IniStore &store, const QString &key, qint16 defaultValue)
{
    const int quantity = readIntegerKey(store, GeneralSection, key, defaultValue);
    if (quantity >= 0 && quantity < ZoneQuantityCount)
        return static_cast<qint16>(quantity);
    logBadSetting(GeneralSection, key, QString::number(quantity),
                  QStringLiteral("is not a zone quantity (0..4); using %1").arg(defaultValue));
    return defaultValue;
}

template <typename Item>
void readPosition(const IniStore &store, const QString &section, Item &item)
{
    item.x = readIntegerKey(store, section, QStringLiteral("X"), DefaultItemPosition);
    item.y = readIntegerKey(store, section, QStringLiteral("Y"), DefaultItemPosition);
}

template <typename Item>
void readNamedItem(const IniStore &store, const QString &section, Item &item)
{
    item.name = store.ReadIniKey(section, QStringLiteral("Nome"), QString());
    readPosition(store, section, item);
}

} // namespace

void LoadSynopticFields(const IniStore &store, SynopticFields &fields, int zoneCount)
{
    for (int f = 0; f < SynopticFieldCount; ++f)
        fields.names[f] = store.ReadIniKey(SynopticSection, fieldKey(f), QString()).trimmed();

    const int count = std::clamp(zoneCount, 0, MaxZones);
    for (int z = 0; z < MaxZones; ++z) {
        for (int f = 0; f < SynopticFieldCount; ++f) {
            fields.values[z][f] =
                z < count ? store.ReadIniKey(zoneSection(z), fieldKey(f), QString()).trimmed() : QString();
        }
    }
}

void LoadPlantConfig(const IniStore &store, PlantConfig &config, DisplayResets &resets)
{
    config = PlantConfig{};

    config.apriporta.name = store.ReadIniKey(DoorSection, QStringLiteral("Nome"), QStringLiteral("Apriporta"));
    config.apriporta.present = readIntegerKey(store, GeneralSection, QStringLiteral("Apriporta"), 0) > 0;
    readPosition(store, DoorSection, config.apriporta);

    config.SwitchControlMode =
        qint16(readIntegerKey(store, GeneralSection, QStringLiteral("Comando Interruttori"), 1));

    config.webcam.name = store.ReadIniKey(WebcamSection, QStringLiteral("Nome"), QStringLiteral("Webcam"));
    config.webcam.present = readIntegerKey(store, GeneralSection, QStringLiteral("Webcam"), 0) > 0;
    readPosition(store, WebcamSection, config.webcam);

    ZoneDisplaySettings &display = config.zoneDisplay;
    display.unit = store.ReadIniKey(GeneralSection, QStringLiteral("Zone Unita"), display.unit);
    display.textQuantity = readQuantity(store, QStringLiteral("Zone Testo"), 1);
    display.chartQuantity = readQuantity(store, QStringLiteral("Zone Grafico"), 1);
    display.chronoQuantity = readQuantity(store, QStringLiteral("Zone Crono"), 0);

    const int zoneCount = readCount(store, QStringLiteral("Zone"), MaxZones);
    LoadSynopticFields(store, config.fields, 0);
    config.zones.resize(zoneCount);
    QStringList zoneNames;
    for (int i = 0; i < zoneCount; ++i) {
        Zona &zone = config.zones[i];
        const QString section = zoneSection(i);
        readNamedItem(store, section, zone);
        zone.icon = store.ReadIniKey(section, QStringLiteral("Icona"), QString());
        zoneNames.append(zone.name);
    }

    config.chartMinAbs = readSingleKey(store, ChartSection, QStringLiteral("T_Min_Ass"), config.chartMinAbs);
    config.chartMaxAbs = readSingleKey(store, ChartSection, QStringLiteral("T_Max_Ass"), config.chartMaxAbs);
    config.chart = LoadChartSettings(store, zoneNames);

    config.switches.resize(readCount(store, QStringLiteral("Interruttori"), MaxSwitches));
    for (int i = 0; i < config.switchCount(); ++i)
        readNamedItem(store, switchSection(i), config.switches[i]);

    config.leds.resize(readCount(store, QStringLiteral("LED"), MaxLeds));
    for (int i = 0; i < config.ledCount(); ++i)
        readNamedItem(store, ledSection(i), config.leds[i]);

    resets.resetAll();

    SynopticSettings &synoptic = config.synoptic;
    synoptic.doorSound = store.ReadIniKey(SynopticSection, QStringLiteral("SuonoPorta"), QString());
    synoptic.alarmSound = store.ReadIniKey(SynopticSection, QStringLiteral("SuonoAllarme"), QString());
    synoptic.picture = store.ReadIniKey(SynopticSection, QStringLiteral("Immagine"), synoptic.picture);
    synoptic.picturePath = store.folder().filePath(synoptic.picture);
}

} // namespace telvane
