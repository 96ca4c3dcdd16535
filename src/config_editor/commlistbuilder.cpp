#include "config_editor/commlistbuilder.h"

#include "storage/inistore.h"
#include "storage/numberkeys.h"
#include "storage/numbertext.h"
#include "storage/registerkey.h"
#include "storage/sectionnames.h"
#include "storage/valueconversion.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

namespace telvane {

namespace {

template <typename Slot>
constexpr int slot(Slot s)
{
    return static_cast<int>(s);
}

// What a register line carries after " @ ".
enum class LineValue {
    None,
    WrittenValue, // the value written through this register ("Val_on", "Val_off")
    LampCondition // the LED's operator and threshold
};

// One register key of an object kind: where its pair of slots starts (the register
// number follows the function code) and which list shows it.
struct RegisterKeySlots
{
    const char *key;
    int functionSlot;
    CommListId list;
    LineValue value = LineValue::None;
    const char *valueKey = nullptr; // LineValue::WrittenValue: the key of the value
    int valueSlot = -1;             // ... and its slot
};

struct ObjectKind
{
    int firstCode; // object code of the first object; the others follow
    QString (*section)(int index);
    std::span<const RegisterKeySlots> keys;
    bool lamp = false; // LED read: threshold, colour and condition
};

QString doorSection(int)
{
    return QStringLiteral("Apriporta");
}

const RegisterKeySlots ZoneReadKeys[] = {
    {"REM_r", slot(ZoneSlot::RemFunction), CommListId::RemL},
    {"PV_r", zoneQuantityFunctionSlot(0), CommListId::Letture},
    {"SP_r", zoneQuantityFunctionSlot(1), CommListId::Letture},
    {"AL1_r", zoneQuantityFunctionSlot(2), CommListId::Letture},
    {"AL2_r", zoneQuantityFunctionSlot(3), CommListId::Letture},
    {"AL3_r", zoneQuantityFunctionSlot(4), CommListId::Letture},
};
const RegisterKeySlots ZoneWriteKeys[] = {
    {"REM_w", slot(ZoneSlot::RemFunction), CommListId::RemW},
    {"PV_w", zoneQuantityFunctionSlot(0), CommListId::Scritture},
    {"SP_w", zoneQuantityFunctionSlot(1), CommListId::Scritture},
    {"AL1_w", zoneQuantityFunctionSlot(2), CommListId::Scritture},
    {"AL2_w", zoneQuantityFunctionSlot(3), CommListId::Scritture},
    {"AL3_w", zoneQuantityFunctionSlot(4), CommListId::Scritture},
};
const RegisterKeySlots SwitchReadKeys[] = {
    {"REM_r", slot(SwitchSlot::RemFunction), CommListId::RemL},
    {"On_r", slot(SwitchSlot::OnFunction), CommListId::Letture},
    {"Off_r", slot(SwitchSlot::OffFunction), CommListId::Letture},
};
const RegisterKeySlots SwitchWriteKeys[] = {
    {"REM_w", slot(SwitchSlot::RemFunction), CommListId::RemW},
    {"On_w", slot(SwitchSlot::OnFunction), CommListId::Scritture, LineValue::WrittenValue, "Val_on",
     slot(SwitchSlot::ValOn)},
    {"Off_w", slot(SwitchSlot::OffFunction), CommListId::Scritture, LineValue::WrittenValue, "Val_off",
     slot(SwitchSlot::ValOff)},
};
const RegisterKeySlots LedReadKeys[] = {
    {"REM_r", slot(LedSlot::RemFunction), CommListId::RemL},
    {"P1_r", slot(LedSlot::P1Function), CommListId::Letture, LineValue::LampCondition},
};
const RegisterKeySlots LedWriteKeys[] = {
    {"REM_w", slot(LedSlot::RemFunction), CommListId::RemW},
};
const RegisterKeySlots DoorReadKeys[] = {
    {"REM_r", slot(DoorSlot::RemFunction), CommListId::RemL},
};
const RegisterKeySlots DoorWriteKeys[] = {
    {"REM_w", slot(DoorSlot::RemFunction), CommListId::RemW},
    {"On_w", slot(DoorSlot::OnFunction), CommListId::Scritture, LineValue::WrittenValue, "Val_on",
     slot(DoorSlot::ValOn)},
    {"Off_w", slot(DoorSlot::OffFunction), CommListId::Scritture, LineValue::WrittenValue, "Val_off",
     slot(DoorSlot::ValOff)},
};

const ObjectKind ZoneRead{100, zoneSection, ZoneReadKeys};
const ObjectKind ZoneWrite{100, zoneSection, ZoneWriteKeys};
const ObjectKind SwitchRead{200, switchSection, SwitchReadKeys};
const ObjectKind SwitchWrite{200, switchSection, SwitchWriteKeys};
const ObjectKind LedRead{300, ledSection, LedReadKeys, true};
const ObjectKind LedWrite{300, ledSection, LedWriteKeys};
const ObjectKind DoorRead{400, doorSection, DoorReadKeys};
const ObjectKind DoorWrite{400, doorSection, DoorWriteKeys};

void warn(const QString &section, const char *key, const QString &text, const char *consequence)
{
    logBadSetting(section, QLatin1String(key), text, QLatin1String(consequence));
}

struct Decimals
{
    int value = 0;
    QString text = QStringLiteral("0");
};

Decimals readDecimals(const IniStore &ini, const QString &section)
{
    const QString text = ini.ReadIniKey(section, QStringLiteral("Decimali"), QStringLiteral("0")).trimmed();
    if (const std::optional<int> value = wholeNumberIn(text, 0, 3))
        return {*value, text};
    warn(section, "Decimali", text, "is not 0..3: using 0");
    return {};
}

// "function,register"; nothing when the key is empty or unusable.
std::optional<RegisterKey> readRegister(const IniStore &ini, const QString &section, const char *key,
                                        QString *keyText)
{
    *keyText = ini.ReadIniKey(section, QLatin1String(key), QString()).trimmed();
    RegisterKeyProblem problem = RegisterKeyProblem::None;
    const std::optional<RegisterKey> reg = parseRegisterKey(*keyText, &problem);
    if (problem == RegisterKeyProblem::Malformed)
        warn(section, key, *keyText,
             "is not \"function,register\" with a function code 1..127 and a register 0..65535: "
             "register not used");
    return reg;
}

// Bit reads carry no decimals.
bool isBitFunction(int function)
{
    return function == 1 || function == 2;
}

// A value as the register that receives it stores it.
qint16 rawRegisterValue(const QString &section, const char *key, const QString &text, int decimals)
{
    const std::optional<double> number = parseNumber(text);
    if (!number) {
        warn(section, key, text, "is not a number: using 0");
    } else {
        const double scaled = std::trunc(*number * std::pow(10.0, decimals));
        if (scaled < -32768.0 || scaled > 32767.0)
            warn(section, key, text, "does not fit a register: using 0");
    }
    return TextToRegister(text, decimals);
}

QString conditionOperator(int condition)
{
    switch (condition) {
    case 2:
        return QStringLiteral("<=");
    case 3:
        return QStringLiteral("=");
    case 4:
        return QStringLiteral(">");
    case 5:
        return QStringLiteral("<");
    case 6:
        return QStringLiteral("<>");
    default:
        return QStringLiteral(">=");
    }
}

struct Lamp
{
    QString threshold; // "Val" as written
    int colour = 1;
    int condition = 1;
};

Lamp readLamp(const IniStore &ini, const QString &section)
{
    Lamp lamp;
    lamp.threshold = ini.ReadIniKey(section, QStringLiteral("Val"), QStringLiteral("0")).trimmed();

    const QString colour = ini.ReadIniKey(section, QStringLiteral("Col"), QStringLiteral("1")).trimmed();
    if (const std::optional<int> value = wholeNumberIn(colour, 0, 32767))
        lamp.colour = *value;
    else
        warn(section, "Col", colour, "is not a colour index: using 1");

    const QString condition = ini.ReadIniKey(section, QStringLiteral("Condizione"), QStringLiteral("1")).trimmed();
    if (const std::optional<int> value = wholeNumberIn(condition, 1, 6))
        lamp.condition = *value;
    else
        warn(section, "Condizione", condition, "is not 1..6: using 1 (>=)");
    return lamp;
}

QString listLine(int code, int address, const QString &keyText, const QString &value, const QString &decimals)
{
    QString line = QStringLiteral("%1>%2:").arg(code, 3, 10, QLatin1Char('0')).arg(address) + keyText;
    if (!value.isNull())
        line += QLatin1String(" @ ") + value;
    return line + QLatin1String(" [") + decimals + QLatin1Char(']');
}

template <typename Table>
void buildRow(const IniStore &ini, const ObjectKind &kind, int index, CommLists &lists, Table &table)
{
    table.clearRow(index);
    const QString section = kind.section(index);

    const QString addressText = ini.ReadIniKey(section, QStringLiteral("Indirizzo"), QString()).trimmed();
    const std::optional<int> address = wholeNumberIn(addressText, 1, 255);
    if (!address) {
        warn(section, "Indirizzo", addressText, "is not an address 1..255: object not used");
        return;
    }
    table.set(index, 0, qint16(*address));

    const Decimals decimals = readDecimals(ini, section);
    table.set(index, 1, qint16(decimals.value));

    std::optional<Lamp> lamp;
    if (kind.lamp)
        lamp = readLamp(ini, section);
    int lampDecimals = decimals.value;

    const int code = kind.firstCode + index;
    for (const RegisterKeySlots &key : kind.keys) {
        QString keyText;
        const std::optional<RegisterKey> reg = readRegister(ini, section, key.key, &keyText);
        if (!reg)
            continue;
        table.set(index, key.functionSlot, qint16(reg->functionCode));
        // Registers above 32767 keep their bit pattern: readers take the slot as unsigned.
        table.set(index, key.functionSlot + 1, qint16(quint16(reg->registerNumber)));

        const bool bits = isBitFunction(reg->functionCode);
        const int effectiveDecimals = bits ? 0 : decimals.value;
        const QString decimalsText = bits ? QStringLiteral("0") : decimals.text;

        QString value;
        switch (key.value) {
        case LineValue::None:
            break;
        case LineValue::WrittenValue:
            value = ini.ReadIniKey(section, QLatin1String(key.valueKey), QStringLiteral("0")).trimmed();
            table.set(index, key.valueSlot, rawRegisterValue(section, key.valueKey, value, effectiveDecimals));
            break;
        case LineValue::LampCondition:
            value = conditionOperator(lamp->condition) + lamp->threshold;
            lampDecimals = effectiveDecimals;
            break;
        }
        commList(lists, key.list).lines.append(listLine(code, *address, keyText, value, decimalsText));
    }

    if (lamp) {
        // Compared with the raw reading of "P1_r", so scaled the way that register is.
        table.set(index, slot(LedSlot::Threshold), rawRegisterValue(section, "Val", lamp->threshold, lampDecimals));
        table.set(index, slot(LedSlot::Colour), qint16(lamp->colour));
        table.set(index, slot(LedSlot::Condition), qint16(lamp->condition));
    }
}

template <typename Table>
void buildList(const IniStore &ini, const ObjectKind &kind, int count, CommLists &lists, Table &table)
{
    count = std::clamp(count, 0, Table::rows());
    for (int i = 0; i < count; ++i)
        buildRow(ini, kind, i, lists, table);
    for (int i = count; i < Table::rows(); ++i)
        table.clearRow(i);
}

} // namespace

void BuildZoneReadList(const IniStore &ini, int zoneCount, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, ZoneRead, zoneCount, lists, tables.ZoneReadTable);
    zoneCount = std::clamp(zoneCount, 0, MaxZones);
    for (int i = 0; i < MaxZones; ++i) {
        tables.zoneSlaveFlags[i] =
            i > 0 && i < zoneCount && ini.ReadIniKey(zoneSection(i), QStringLiteral("Slave"), QString()) != QLatin1String("0");
    }
}

void BuildLedReadList(const IniStore &ini, int ledCount, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, LedRead, ledCount, lists, tables.LedReadTable);
}

void BuildDoorReadList(const IniStore &ini, bool doorPresent, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, DoorRead, doorPresent ? 1 : 0, lists, tables.DoorReadTable);
}

void BuildSwitchReadList(const IniStore &ini, int switchCount, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, SwitchRead, switchCount, lists, tables.SwitchReadTable);
}

void BuildZoneWriteList(const IniStore &ini, int zoneCount, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, ZoneWrite, zoneCount, lists, tables.ZoneWriteTable);
}

void BuildLedWriteList(const IniStore &ini, int ledCount, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, LedWrite, ledCount, lists, tables.LedWriteTable);
}

void BuildDoorWriteList(const IniStore &ini, bool doorPresent, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, DoorWrite, doorPresent ? 1 : 0, lists, tables.DoorWriteTable);
}

void BuildSwitchWriteList(const IniStore &ini, int switchCount, CommLists &lists, RegisterTables &tables)
{
    buildList(ini, SwitchWrite, switchCount, lists, tables.SwitchWriteTable);
}

} // namespace telvane
