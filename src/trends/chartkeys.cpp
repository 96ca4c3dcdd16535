#include "trends/chartkeys.h"

#include "storage/colortext.h"
#include "storage/inistore.h"
#include "storage/numbertext.h"
#include "storage/sectionnames.h"

#include <algorithm>
#include <utility>

namespace telvane {

namespace {

const QString ChartSection = QStringLiteral("Grafico");

QString numberText(double value)
{
    return QString::number(value, 'g', 7);
}

} // namespace

bool writeChartColor(IniStore &store, const QString &key, quint32 color)
{
    return store.WriteIniKey(ChartSection, key, formatColorText(color));
}

bool writeTraceColor(IniStore &store, int zoneIndex, quint32 color)
{
    return store.WriteIniKey(zoneSection(zoneIndex), QStringLiteral("Colore"), formatColorText(color));
}

bool writeValueLimits(IniStore &store, double min, double max)
{
    return store.writeIniKeys({{ChartSection, QStringLiteral("T_Min"), numberText(min)},
                               {ChartSection, QStringLiteral("T_Max"), numberText(max)}});
}

InfoPosition readInfoPosition(const IniStore &store)
{
    return {leadingInteger(store.ReadIniKey(ChartSection, QStringLiteral("Info_X"), QStringLiteral("1000"))),
            leadingInteger(store.ReadIniKey(ChartSection, QStringLiteral("Info_Y"), QStringLiteral("1000")))};
}

bool writeInfoPosition(IniStore &store, const InfoPosition &position)
{
    return store.writeIniKeys({{ChartSection, QStringLiteral("Info_X"), QString::number(position.x)},
                               {ChartSection, QStringLiteral("Info_Y"), QString::number(position.y)}});
}

ValueRange clampedValueRange(ValueRange wanted, ValueRange absolute)
{
    if (absolute.min > absolute.max)
        std::swap(absolute.min, absolute.max);
    if (wanted.min > wanted.max)
        std::swap(wanted.min, wanted.max);
    const double absoluteSpan = absolute.max - absolute.min;
    double span = wanted.max - wanted.min;
    if (span <= 0)
        span = std::min(1.0, absoluteSpan);
    if (span >= absoluteSpan)
        return absolute;
    const double min = std::clamp(wanted.min, absolute.min, absolute.max - span);
    return {min, min + span};
}

} // namespace telvane
