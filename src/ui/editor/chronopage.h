#pragma once

#include "config_editor/chronopagemodel.h"
#include "config_editor/printlayout.h"

#include <QWidget>

class QCalendarWidget;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;

namespace telvane {

struct PlantConfig;

// The chrono-thermostat page: the zone (`Cmb_ZonaCT`), the seven day lists `Lst_CT`
// under their captions `Lab_CTg`, the set point typed in `Txt_CT` for the slots chosen
// in the lists, and the holidays `Lst_Festa` under `Lab_CTf` with a calendar. The button
// array `Cmd_OK_CT`: 0 confirms, 1 closes without saving, 2 sets the chosen slots, 3
// copies the day to the whole week, 4 and 5 add and remove a holiday, 6 prints.
class ChronoPage final : public QWidget
{
    Q_OBJECT

public:
    explicit ChronoPage(QWidget *parent = nullptr);

    ChronoPageModel &model() { return m_model; }
    // Shows the model, with the configured zones to choose from.
    void showModel(const PlantConfig &plant);
    // The texts the page shows now, as the schedule print takes them.
    ChronoPrintout printout() const;

signals:
    // Index 0 confirms, 1 closes without saving.
    void closeRequested(int index);
    void printRequested();
    void previewRequested();

private:
    void buttonClicked(int index);
    int zone() const;
    int focusedDay() const;
    void showZone();
    void showHolidays();
    void applySetPoint();

    ChronoPageModel m_model;
    QComboBox *m_zone;
    QCheckBox *m_zoneEnabled;
    QList<QLabel *> m_dayCaptions;
    QList<QListWidget *> m_days;
    QLineEdit *m_setPoint;
    QLabel *m_problem;
    QLabel *m_holidayCaption;
    QListWidget *m_holidays;
    QCalendarWidget *m_calendar;
};

} // namespace telvane
