#pragma once

#include "config_editor/registertables.h"
#include "storage/plantlimits.h"

#include <QList>
#include <QString>

#include <array>

namespace telvane {

class IniStore;
struct PlantConfig;

// Every box about recipes and season changes carries this title.
inline const QString RecipeBoxTitle = QStringLiteral("Configurazione strumenti");

// The pause after each write of a zone whose section has no "Intervallo".
inline constexpr int DefaultRecipeIntervalMs = 200;

// One command line of a recipe, as the send lists show it.
struct RecipeRow
{
    enum class Kind { WriteCoil, WriteRegister, Sleep, MsgBox };

    Kind kind = Kind::WriteRegister;
    int zone = 0;       // 1-based, as in the section name ("Zona 03" is 3)
    QString device;     // the zone's name
    int slave = -1;     // the zone instrument's address; -1 when the zone has none
    int functionCode = 0;
    QString target;     // the register or coil address, or the keyword as written
    QString valueText;  // the value, the pause or the text, as written
    QString name;       // the parameter's name, after ";"

    // Filled for the writes and for SLEEP (the pause in ms).
    int address = 0;
    qint32 value = 0;
};

struct Recipe
{
    QString fileName;
    QList<RecipeRow> rows;
    // Pause after each write, by 0-based zone.
    std::array<int, MaxZones> intervalsMs{};
};

struct RecipeLoad
{
    enum class Status { Loaded, Missing, Invalid };

    Status status = Status::Missing;
    // The box to show: an information for Loaded, otherwise a warning.
    QString message;
    // Empty unless loaded.
    Recipe recipe;

    bool loaded() const { return status == Status::Loaded; }
};

// Reads recipe `fileName` from the "Ricetta" folder for the plant's configured zones,
// each row's instrument taken from `zoneTable` (not from the file). The whole file is
// refused for a wrong "ID", a zone whose "Intervallo" or "Linee" is not a number, or a
// line that is missing, lacks its two commas and its ";", names a code other than 0, 5
// and 6, a step other than SLEEP and MSGBOX, or a register, value or pause that is not
// a whole number in range (a garbled value must never reach an instrument as 0).
// Zones beyond the plant's count and lines beyond "Linee" are never read.
RecipeLoad LoadRecipe(const IniStore &ini, const QString &fileName, const PlantConfig &plant,
                      const ZoneTable &zoneTable);

} // namespace telvane
