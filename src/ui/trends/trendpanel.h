#pragma once

#include <QWidget>

class QColorDialog;
class QHBoxLayout;
class QTimer;

namespace telvane {

class IniStore;
class TraceLabelList;
class TrendChart;
class TrendSet;
struct PlantConfig;

// The trace labels and the chart, as both trend windows show them, with the settings
// they are drawn with: a colour the operator picks and the value range he zooms to go
// back to the settings file at once, so the next start shows the same.
class TrendPanel final : public QWidget
{
    Q_OBJECT

public:
    TrendPanel(IniStore &ini, PlantConfig &plant, QWidget *parent = nullptr);

    // Labels, colours and limits again from the plant's settings (after a reload or a
    // change made in the other window).
    void applySettings();

    TrendChart &chart() { return *m_chart; }
    TraceLabelList &labels() { return *m_labels; }
    // Room for the window's own controls, left of "Tutto" and "Colori".
    QHBoxLayout &controls() { return *m_controls; }
    QStringList zoneNames() const;
    int zoneCount() const;

    // The colour dialog that is open, if any.
    QColorDialog *colourDialog() const { return m_dialog; }

private:
    void chooseTraceColour(int zoneIndex);
    void chooseChartColour(const QString &key, quint32 *color, const QString &title);
    void askColour(quint32 current, const QString &title, std::function<void(quint32)> chosen);
    void saveValueRange();

    IniStore &m_ini;
    PlantConfig &m_plant;
    TraceLabelList *m_labels;
    TrendChart *m_chart;
    QHBoxLayout *m_controls;
    QTimer *m_saveRange;
    QColorDialog *m_dialog = nullptr;
};

} // namespace telvane
