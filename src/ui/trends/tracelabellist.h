#pragma once

#include "storage/chartsettings.h"

#include <QListWidget>

namespace telvane {

// The trace labels beside the chart (`Lst_Tracce`): one row per zone position with the
// trace's colour, its name and the tool tip that tells how to change the colour; the
// positions without a zone read "--------". A zone's tick shows or hides its trace; a
// double-click asks for its colour. Hidden traces and empty positions are drawn in the
// two "off" shades (Colore_Off1 the text, Colore_Off2 the background).
class TraceLabelList final : public QListWidget
{
    Q_OBJECT

public:
    explicit TraceLabelList(QWidget *parent = nullptr);

    void setLabels(const ChartSettings &settings, int zoneCount);
    QString label(int trace) const;
    QString toolTipOf(int trace) const;

signals:
    void traceToggled(int trace, bool visible);
    // The operator double-clicked zone `zoneIndex` (0-based).
    void colourRequested(int zoneIndex);

private:
    void paintRow(QListWidgetItem *row);

    ChartSettings m_settings;
    int m_zoneCount = 0;
};

} // namespace telvane
