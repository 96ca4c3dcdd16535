#pragma once

#include "trends/livetrend.h"

#include <QWidget>

#include <functional>

class QLabel;

namespace telvane {

class IniStore;
class TrendPanel;
struct PlantConfig;

// The live trend (`Grafico`): the points of the measurement rounds while chart logging
// is on, over the last day kept in memory. Hidden, it only keeps the points; it draws
// them when it shows again.
class Grafico final : public QWidget
{
    Q_OBJECT

public:
    // `chartLogging` tells whether the rounds add points (the editor's option).
    Grafico(IniStore &ini, PlantConfig &plant, std::function<bool()> chartLogging,
            QWidget *parent = nullptr);

    // Where the measurement rounds put their points.
    LiveTrend &live() { return m_live; }
    TrendPanel &panel() { return *m_panel; }
    QString memoryText() const;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void roundArrived();
    void updateMemoryText();

    LiveTrend m_live;
    std::function<bool()> m_chartLogging;
    TrendPanel *m_panel;
    QLabel *m_memory;
};

} // namespace telvane
