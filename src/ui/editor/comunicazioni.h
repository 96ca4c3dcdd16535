#pragma once

#include "config_editor/printlayout.h"
#include "platform/qtprintersink.h"

#include <QHash>
#include <QWidget>

#include <functional>

class QAction;
class QFrame;
class QLabel;
class QListView;
class QMenu;
class QMenuBar;
class QPushButton;
class QStackedWidget;
class QStringListModel;

namespace telvane {

class ChronoPage;
class FieldPage;
class PageModel;
class Prompts;
class Supervisor;
struct Runtime;

// The configuration editor `Comunicazioni`: the four communication lists as the last
// reload built them, and the pages that edit the plant's settings. A confirmed page is
// saved in one write and the plant reloaded at once through the one reload path, so the
// lists, the cycle and the synoptic follow. While acquisition runs the frame with the
// pages and menus is disabled: the configuration cannot change under a running cycle.
class Comunicazioni final : public QWidget
{
    Q_OBJECT

public:
    using Reload = std::function<void()>;
    using PrintTargetOpener = std::function<PrintTarget()>;

    Comunicazioni(Runtime &rt, Supervisor &supervisor, Prompts &prompts, Reload reload, QWidget *parent = nullptr);
    ~Comunicazioni() override;

    // Where printouts go; by default the system's printer, or a PDF in the plant folder.
    void setPrintTargetOpener(PrintTargetOpener opener) { m_printTarget = std::move(opener); }

    // The pages by name ("RS232", "Zone", "Interruttori", "Apriporta", "Opzioni",
    // "Orologio"), the chrono-thermostat page, and the page shown now (null: the lists).
    FieldPage *fieldPage(const QString &name) const { return m_fieldPages.value(name); }
    ChronoPage *chronoPage() const { return m_chronoPage; }
    QWidget *currentPage() const;
    QFrame *settingsFrame() const { return m_frame; }

    // Opens a page by name ("Crono" for the chrono-thermostat); the mode's schedule page
    // with "Pianificazione".
    void openPage(const QString &name);
    // The schedule page of the current mode: the chrono-thermostat (civil) or the clocks
    // (industrial).
    void openSchedulePage();

    void MenuRileggiIni();
    void MenuCambiaIni();
    void PrintCommLists();
    void PrintChronoSchedule();
    // The same printouts shown in a preview window first, printed from there.
    void previewCommLists();
    void previewChronoSchedule();

    // Room for the four lists side by side and for the largest page.
    QSize sizeHint() const override { return QSize(1060, 640); }

signals:
    // The plant's mode changed: the main window's captions follow.
    void modeChanged();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void buildMenus(QMenuBar *bar);
    QAction *addEntry(QMenu *menu, const QString &name, const QString &text);
    FieldPage *addFieldPage(PageModel model, const QString &menuText);
    void closeFieldPage(FieldPage *page, int index);
    void closeChronoPage(int index);
    void journalConfirmedPage(const QString &title, bool saved);
    void showLists();
    void refresh();
    void applyMode();
    void setFrameEnabled(bool enabled);
    void toggleOption(const QString &key, QAction *entry);
    void writeRecipeTemplate();
    void tryInstrument(FieldPage *page, const QString &section);
    void print(const std::function<bool(PrinterSink &)> &job);
    void preview(const std::function<PrintJob()> &makeJob);

    Runtime &m_rt;
    Supervisor &m_supervisor;
    Prompts &m_prompts;
    Reload m_reload;
    PrintTargetOpener m_printTarget;

    QFrame *m_frame;
    QStackedWidget *m_stack;
    QWidget *m_listsPage;
    QHash<QString, QListView *> m_lists;
    QHash<QString, QStringListModel *> m_listModels;
    QHash<QString, FieldPage *> m_fieldPages;
    ChronoPage *m_chronoPage = nullptr;
    QHash<QString, QAction *> m_entries;
    QList<QMenu *> m_settingsMenus;
    QPushButton *m_print = nullptr;
    bool m_loaded = false;
};

} // namespace telvane
