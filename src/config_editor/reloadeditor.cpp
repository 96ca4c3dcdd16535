#include "config_editor/reloadeditor.h"

#include "config_editor/commlistbuilder.h"
#include "storage/inistore.h"
#include "storage/numberkeys.h"
#include "storage/plantconfig.h"
#include "storage/plantconfigloader.h"
#include "storage/sectionnames.h"
#include "storage/valuetables.h"

namespace telvane {

namespace {

const QString General = QStringLiteral("Generale");

ChronoZoneEnabled loadChronoZoneEnabled(const IniStore &ini, bool chronoThermostat)
{
    ChronoZoneEnabled enabled{};
    if (chronoThermostat) {
        for (int zone = 0; zone < ChronoSchedule::Zones; ++zone)
            enabled[zone] = readFlagKey(ini, zoneSection(zone), QStringLiteral("Cronotermostato"));
    }
    return enabled;
}

} // namespace

void ReloadEditor(const EditorServices &services, EditorState &state)
{
    const IniStore &ini = services.ini;
    LoadPlantConfig(ini, services.plant, services.resets);

    ClearCommLists(state.lists);
    const PlantConfig &plant = services.plant;
    const bool door = plant.apriporta.present;
    BuildZoneReadList(ini, plant.zoneCount(), state.lists, state.tables);
    BuildLedReadList(ini, plant.ledCount(), state.lists, state.tables);
    BuildDoorReadList(ini, door, state.lists, state.tables);
    BuildSwitchReadList(ini, plant.switchCount(), state.lists, state.tables);
    BuildZoneWriteList(ini, plant.zoneCount(), state.lists, state.tables);
    BuildLedWriteList(ini, plant.ledCount(), state.lists, state.tables);
    BuildDoorWriteList(ini, door, state.lists, state.tables);
    BuildSwitchWriteList(ini, plant.switchCount(), state.lists, state.tables);

    state.chronoThermostat = readFlagKey(ini, General, QStringLiteral("Cronotermostato"));
    state.chronoZoneEnabled = loadChronoZoneEnabled(ini, state.chronoThermostat);
    state.doorPulseMs = readIntegerKey(ini, QStringLiteral("Apriporta"), QStringLiteral("Tempo"), 1000);

    LoadLineOptions(ini, state.comm);
    state.lineProbe = ParseLineProbe(state.comm.lineActivity, state.lists.Lst_Letture.lines);
    LoadCommSettings(ini, services.master, services.line, state.comm);
    InitValueTables(services.values, services.schedule);
    EnableCommLists(state.lists);

    state.options.autoStart = readFlagKey(ini, General, QStringLiteral("AutoAvvio"));
    state.options.chart = readFlagKey(ini, General, QStringLiteral("Grafico"));
    state.options.recipes = readFlagKey(ini, General, QStringLiteral("Ricette"));
    state.options.master = readFlagKey(ini, General, QStringLiteral("Master"));
}

} // namespace telvane
