#include "season/recipe.h"

#include "season/seasonlog.h"
#include "storage/inistore.h"
#include "storage/plantconfig.h"
#include "storage/sectionnames.h"

#include <QFileInfo>

#include <limits>
#include <optional>

namespace telvane {

namespace {

const QString RecipeFolder = QStringLiteral("Ricetta");
constexpr int CoilOn = 0xFF00;

QString twoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

std::optional<qint64> wholeNumber(const QString &text, qint64 min, qint64 max)
{
    bool ok = false;
    const qint64 number = text.trimmed().toLongLong(&ok);
    if (!ok || number < min || number > max)
        return std::nullopt;
    return number;
}

struct LineFields
{
    QString code;
    QString target;
    QString value;
    QString name;
};

// F1,F2,F3;Name: the first ",", the next ",", then the first ";" of the rest.
std::optional<LineFields> splitLine(const QString &line)
{
    const qsizetype firstComma = line.indexOf(QLatin1Char(','));
    if (firstComma < 0)
        return std::nullopt;
    const qsizetype secondComma = line.indexOf(QLatin1Char(','), firstComma + 1);
    if (secondComma < 0)
        return std::nullopt;
    const qsizetype semicolon = line.indexOf(QLatin1Char(';'), secondComma + 1);
    if (semicolon < 0)
        return std::nullopt;
    return LineFields{line.left(firstComma).trimmed(), line.mid(firstComma + 1, secondComma - firstComma - 1).trimmed(),
                      line.mid(secondComma + 1, semicolon - secondComma - 1).trimmed(),
                      line.mid(semicolon + 1).trimmed()};
}

// Fills the row from the fields; the reason when the line cannot be sent.
QString parseFields(const LineFields &fields, RecipeRow &row)
{
    row.target = fields.target;
    row.valueText = fields.value;
    row.name = fields.name;
    if (fields.code == QLatin1String("0")) {
        row.functionCode = 0;
        const QString keyword = fields.target.toUpper();
        if (keyword == QLatin1String("MSGBOX")) {
            row.kind = RecipeRow::Kind::MsgBox;
            return {};
        }
        if (keyword != QLatin1String("SLEEP"))
            return QStringLiteral("step \"%1\" is neither SLEEP nor MSGBOX").arg(fields.target);
        row.kind = RecipeRow::Kind::Sleep;
        const std::optional<qint64> ms = wholeNumber(fields.value, 0, std::numeric_limits<qint32>::max());
        if (!ms)
            return QStringLiteral("pause \"%1\" is not a number of milliseconds").arg(fields.value);
        row.value = qint32(*ms);
        return {};
    }
    if (fields.code != QLatin1String("5") && fields.code != QLatin1String("6"))
        return QStringLiteral("function code \"%1\" is not 0, 5 or 6").arg(fields.code);
    row.functionCode = fields.code.toInt();
    const std::optional<qint64> address = wholeNumber(fields.target, 0, 65535);
    if (!address)
        return QStringLiteral("address \"%1\" is not 0..65535").arg(fields.target);
    row.address = int(*address);
    if (row.functionCode == 6) {
        row.kind = RecipeRow::Kind::WriteRegister;
        const std::optional<qint64> value = wholeNumber(fields.value, -32768, 65535);
        if (!value)
            return QStringLiteral("value \"%1\" does not fit a register").arg(fields.value);
        row.value = qint32(*value);
        return {};
    }
    // A coil is switched on by 0xFF00; recipes are written with 1 for on, as switches.
    row.kind = RecipeRow::Kind::WriteCoil;
    const std::optional<qint64> value = wholeNumber(fields.value, -256, 65535);
    if (!value || (*value != 0 && *value != 1 && *value != CoilOn && *value != -256))
        return QStringLiteral("coil value \"%1\" is not 0 (off) or 1 (on)").arg(fields.value);
    row.value = *value == 0 ? 0 : CoilOn;
    return {};
}

RecipeLoad refused(RecipeLoad::Status status, const QString &fileName)
{
    RecipeLoad load;
    load.status = status;
    load.message = status == RecipeLoad::Status::Missing
                       ? QStringLiteral("Il file ") + fileName + QStringLiteral(" è errato o mancante.")
                       : QStringLiteral("Il file ") + fileName +
                             QStringLiteral(" non è un file valido per il cambio stagione.");
    return load;
}

RecipeLoad invalidLine(const QString &fileName, const QString &section, const QString &key, const QString &why)
{
    qCWarning(lcSeason).noquote() << "Recipe" << fileName << "[" + section + "]" << key << ":" << why
                                  << "- the whole recipe is refused";
    return refused(RecipeLoad::Status::Invalid, fileName);
}

} // namespace

RecipeLoad LoadRecipe(const IniStore &ini, const QString &fileName, const PlantConfig &plant,
                      const ZoneTable &zoneTable)
{
    const QString relative = RecipeFolder + QLatin1Char('/') + fileName;
    const QFileInfo file(ini.folder().filePath(relative));
    if (fileName.trimmed().isEmpty() || !file.isFile()) {
        qCWarning(lcSeason).noquote() << "Recipe" << file.filePath() << "not found";
        return refused(RecipeLoad::Status::Missing, fileName);
    }
    const QString id = ini.ReadIniKeyFrom(QStringLiteral("File"), QStringLiteral("ID"), QString(), relative);
    if (id.trimmed().toUpper() != QLatin1String("TELVANE")) {
        qCWarning(lcSeason).noquote() << "Recipe" << fileName << "has ID" << id << "instead of Telvane";
        return refused(RecipeLoad::Status::Invalid, fileName);
    }

    RecipeLoad load;
    load.recipe.fileName = fileName;
    for (int zone = 0; zone < plant.zoneCount(); ++zone) {
        const QString section = zoneSection(zone);
        const QString intervalText = ini.ReadIniKeyFrom(section, QStringLiteral("Intervallo"),
                                                        QString::number(DefaultRecipeIntervalMs), relative);
        const std::optional<qint64> interval = wholeNumber(intervalText, 0, std::numeric_limits<qint32>::max());
        if (!interval)
            return invalidLine(fileName, section, QStringLiteral("Intervallo"), QStringLiteral("not a pause in ms"));
        load.recipe.intervalsMs[zone] = int(*interval);

        const QString linesText = ini.ReadIniKeyFrom(section, QStringLiteral("Linee"), QStringLiteral("0"), relative);
        const std::optional<qint64> lines = wholeNumber(linesText, -32768, 32767);
        if (!lines)
            return invalidLine(fileName, section, QStringLiteral("Linee"), QStringLiteral("not a number of lines"));

        for (int number = 1; number <= *lines; ++number) {
            const QString key = twoDigits(number);
            const QString text = ini.ReadIniKeyFrom(section, key, QString(), relative);
            const std::optional<LineFields> fields = splitLine(text);
            if (!fields)
                return invalidLine(fileName, section, key,
                                   QStringLiteral("\"%1\" is not code,target,value;name").arg(text));
            RecipeRow row;
            row.zone = zone + 1;
            row.device = plant.zones.at(zone).name;
            const int slave = zoneTable.at(zone, ZoneSlot::Address);
            row.slave = slave >= 1 && slave <= 255 ? slave : -1;
            const QString why = parseFields(*fields, row);
            if (!why.isEmpty())
                return invalidLine(fileName, section, key, why);
            load.recipe.rows.append(row);
        }
    }
    load.status = RecipeLoad::Status::Loaded;
    load.message = QStringLiteral("Il file ") + fileName + QStringLiteral(" è stato caricato correttamente.");
    qCInfo(lcSeason).noquote() << "Recipe" << fileName << "loaded:" << load.recipe.rows.size() << "rows";
    return load;
}

} // namespace telvane
