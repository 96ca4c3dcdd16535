#include "storage/chartsettings.h"

#include "storage/colortext.h"
#include "storage/inistore.h"
#include "storage/numberkeys.h"
#include "storage/sectionnames.h"

#include <algorithm>

namespace telvane {

namespace {

const QString ChartSection = QStringLiteral("Grafico");
constexpr int TraceLabelLength = 20;

// The default goes to the key read as decimal text, so an absent key reads back as it.
void readColor(const IniStore &store, const QString &section, const QString &key, quint32 &color)
{
    const QString text = store.ReadIniKey(section, key, QString::number(static_cast<qint32>(color)));
    if (const auto parsed = parseColorText(text)) {
        color = *parsed;
        return;
    }
    logBadSetting(section, key, text, QStringLiteral("is not a colour; using ") + formatColorText(color));
}

} // namespace

ChartSettings LoadChartSettings(const IniStore &store, const QStringList &zoneNames)
{
    ChartSettings chart;

    readColor(store, ChartSection, QStringLiteral("Colore_Sfondo"), chart.background);
    readColor(store, ChartSection, QStringLiteral("Colore_Bordo"), chart.border);
    readColor(store, ChartSection, QStringLiteral("Colore_Griglia"), chart.grid);
    readColor(store, ChartSection, QStringLiteral("Colore_Cursore"), chart.cursor);
    readColor(store, ChartSection, QStringLiteral("Colore_Off1"), chart.off1);
    readColor(store, ChartSection, QStringLiteral("Colore_Off2"), chart.off2);

    chart.absoluteMax = readSingleKey(store, ChartSection, QStringLiteral("T_Max_Ass"), chart.absoluteMax);
    chart.absoluteMin = readSingleKey(store, ChartSection, QStringLiteral("T_Min_Ass"), chart.absoluteMin);
    chart.displayMax = readSingleKey(store, ChartSection, QStringLiteral("T_Max"), chart.displayMax);
    chart.displayMin = readSingleKey(store, ChartSection, QStringLiteral("T_Min"), chart.displayMin);

    const int zoneCount = std::min<int>(zoneNames.size(), MaxZones);
    for (int i = 0; i < MaxZones; ++i) {
        if (i >= zoneCount) {
            chart.traceLabels[i] = QStringLiteral("--------");
            continue;
        }
        readColor(store, zoneSection(i), QStringLiteral("Colore"), chart.traceColors[i]);
        const QString &name = zoneNames[i];
        chart.traceLabels[i] = name.left(TraceLabelLength).trimmed();
        chart.traceToolTips[i] =
            QStringLiteral("Doppio click per modificare il colore della traccia <") + name + QLatin1Char('>');
    }
    return chart;
}

} // namespace telvane
