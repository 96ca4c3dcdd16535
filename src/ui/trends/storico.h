#pragma once

#include "platform/qtprintersink.h"
#include "trends/historyrange.h"

#include <QDate>
#include <QWidget>

#include <atomic>
#include <functional>
#include <optional>
#include <utility>
#include <memory>

class QCalendarWidget;
class QDateEdit;
class QLabel;
class QProgressBar;
class QPushButton;
class QThread;
class QTimer;

namespace telvane {

class IniStore;
class Prompts;
class TrendPanel;
struct PlantConfig;

// The history viewer (`Storico`): a calendar whose days with a file in "Dati" stand in
// bold, a range of days shown as one chart, exported to a spreadsheet file or a picture
// and printed. The files are read away from the window's thread, so the window keeps
// answering and shows how far the reading has got.
class Storico final : public QWidget
{
    Q_OBJECT

public:
    Storico(const DailyLog &log, IniStore &ini, PlantConfig &plant, Prompts &prompts, QWidget *parent = nullptr);
    ~Storico() override;

    // Reads the days `from` to `to` (at most a month) and shows them.
    void showDays(const QDate &from, const QDate &to);
    bool loading() const { return m_thread != nullptr; }

    // The shown days to a spreadsheet file and to a picture; false (and a message) when
    // the file could not be written.
    bool exportCsv(const QString &path);
    bool exportPng(const QString &path);
    // To the default printer; without one to a PDF in the plant folder, whose path is
    // returned (empty when printed or nothing was shown).
    QString print();
    using PrintTargetOpener = std::function<PrintTarget()>;
    // Where printouts go; by default the system's printer, or a PDF in the plant folder.
    void setPrintTargetOpener(PrintTargetOpener opener) { m_printTarget = std::move(opener); }

    TrendPanel &panel() { return *m_panel; }
    QCalendarWidget &calendar() { return *m_calendar; }
    // The one-line outcome of the last reading.
    QString statusText() const;
    const TrendSet *shownPoints() const { return m_shown.get(); }

signals:
    void daysShown();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void markDaysWithFiles();
    void readingFinished();
    void askExportCsv();
    void askExportPng();
    QString rangeText() const;
    QString suggestedName(const QString &suffix) const;

    const DailyLog &m_log;
    PlantConfig &m_plant;
    Prompts &m_prompts;
    TrendPanel *m_panel;
    QCalendarWidget *m_calendar;
    QDateEdit *m_fromEdit;
    QDateEdit *m_toEdit;
    QPushButton *m_showRange;
    QPushButton *m_exportCsv;
    QPushButton *m_exportPng;
    QPushButton *m_print;
    QProgressBar *m_progressBar;
    QLabel *m_status;
    PrintTargetOpener m_printTarget;
    QTimer *m_progressTimer;

    QDate m_from;
    QDate m_to;
    std::unique_ptr<TrendSet> m_shown;
    std::unique_ptr<TrendSet> m_reading;
    QList<DayResult> m_results;
    std::atomic<int> m_progress{0};
    QThread *m_thread = nullptr;
    std::optional<std::pair<QDate, QDate>> m_pending;
};

} // namespace telvane
