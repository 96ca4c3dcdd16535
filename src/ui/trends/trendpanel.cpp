#include "ui/trends/trendpanel.h"

#include "storage/inistore.h"
#include "storage/plantconfig.h"
#include "trends/chartkeys.h"
#include "trends/tracecolors.h"
#include "ui/trends/tracelabellist.h"
#include "ui/trends/trendchart.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace telvane {

namespace {

// Zooming with the wheel changes the range many times a second; the file is written
// once the operator stops.
constexpr int SaveRangeDelayMs = 1000;

} // namespace

TrendPanel::TrendPanel(IniStore &ini, PlantConfig &plant, QWidget *parent)
    : QWidget(parent)
    , m_ini(ini)
    , m_plant(plant)
    , m_labels(new TraceLabelList)
    , m_chart(new TrendChart)
    , m_controls(new QHBoxLayout)
    , m_saveRange(new QTimer(this))
{
    auto *all = new QPushButton(QStringLiteral("Tutto"));
    all->setObjectName(QStringLiteral("Cmd_Tutto"));
    all->setToolTip(QStringLiteral("Mostra tutto il periodo e i limiti impostati"));
    connect(all, &QPushButton::clicked, this, [this] {
        m_chart->showAll();
        m_chart->setValueRange({m_plant.chart.displayMin, m_plant.chart.displayMax});
    });

    auto *colours = new QToolButton;
    colours->setObjectName(QStringLiteral("Cmd_Colori"));
    colours->setText(QStringLiteral("Colori"));
    colours->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(colours);
    const struct
    {
        const char *text;
        const char *key;
        quint32 ChartSettings::*member;
    } entries[] = {
        {"Sfondo", "Colore_Sfondo", &ChartSettings::background}, {"Bordo", "Colore_Bordo", &ChartSettings::border},
        {"Griglia", "Colore_Griglia", &ChartSettings::grid},     {"Cursore", "Colore_Cursore", &ChartSettings::cursor},
        {"Spento 1", "Colore_Off1", &ChartSettings::off1},       {"Spento 2", "Colore_Off2", &ChartSettings::off2},
    };
    for (const auto &entry : entries) {
        const QString text = QLatin1String(entry.text);
        const QString key = QLatin1String(entry.key);
        const auto member = entry.member;
        connect(menu->addAction(text + QStringLiteral("...")), &QAction::triggered, this,
                [this, key, member, text] { chooseChartColour(key, &(m_plant.chart.*member), text); });
    }
    colours->setMenu(menu);

    m_controls->addStretch();
    m_controls->addWidget(all);
    m_controls->addWidget(colours);

    m_labels->setMaximumWidth(220);
    auto *split = new QSplitter;
    split->addWidget(m_labels);
    split->addWidget(m_chart);
    split->setStretchFactor(1, 1);
    split->setSizes({170, 800});

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_controls);
    layout->addWidget(split, 1);

    m_saveRange->setObjectName(QStringLiteral("SalvaLimiti"));
    m_saveRange->setSingleShot(true);
    m_saveRange->setInterval(SaveRangeDelayMs);
    connect(m_saveRange, &QTimer::timeout, this, &TrendPanel::saveValueRange);
    connect(m_chart, &TrendChart::valueRangeChangedByUser, this, [this] { m_saveRange->start(); });
    connect(m_chart, &TrendChart::infoMoved, this, [this](InfoPosition at) { writeInfoPosition(m_ini, at); });
    connect(m_labels, &TraceLabelList::traceToggled, m_chart, &TrendChart::setTraceVisible);
    connect(m_labels, &TraceLabelList::colourRequested, this, &TrendPanel::chooseTraceColour);

    applySettings();
}

QStringList TrendPanel::zoneNames() const
{
    QStringList names;
    for (int i = 0; i < zoneCount(); ++i)
        names.append(m_plant.chart.traceLabels[i]);
    return names;
}

int TrendPanel::zoneCount() const
{
    return std::min<int>(m_plant.zones.size(), MaxZones);
}

void TrendPanel::applySettings()
{
    m_labels->setLabels(m_plant.chart, zoneCount());
    m_chart->applySettings(m_plant.chart, zoneCount(), zoneNames(), readInfoPosition(m_ini));
}

void TrendPanel::askColour(quint32 current, const QString &title, std::function<void(quint32)> chosen)
{
    delete m_dialog;
    m_dialog = new QColorDialog(drawnColor(current, palette()), this);
    m_dialog->setObjectName(QStringLiteral("ColoreTraccia"));
    m_dialog->setWindowTitle(title);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_dialog, &QColorDialog::colorSelected, this, [chosen = std::move(chosen)](const QColor &color) {
        chosen(storedColor(color.red(), color.green(), color.blue()));
    });
    m_dialog->open();
}

void TrendPanel::chooseTraceColour(int zoneIndex)
{
    askColour(m_plant.chart.traceColors[zoneIndex],
              QStringLiteral("Colore della traccia <%1>").arg(m_plant.chart.traceLabels[zoneIndex]),
              [this, zoneIndex](quint32 color) {
                  m_plant.chart.traceColors[zoneIndex] = color;
                  writeTraceColor(m_ini, zoneIndex, color);
                  applySettings();
              });
}

void TrendPanel::chooseChartColour(const QString &key, quint32 *color, const QString &title)
{
    askColour(*color, QStringLiteral("Colore del grafico: ") + title, [this, key, color](quint32 chosen) {
        *color = chosen;
        writeChartColor(m_ini, key, chosen);
        applySettings();
    });
}

void TrendPanel::saveValueRange()
{
    const ValueRange range = m_chart->valueRange();
    m_plant.chart.displayMin = float(range.min);
    m_plant.chart.displayMax = float(range.max);
    writeValueLimits(m_ini, range.min, range.max);
}

} // namespace telvane
