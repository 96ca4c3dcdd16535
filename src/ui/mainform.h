#pragma once

#include <QHash>
#include <QMainWindow>

class QLabel;
class QMenu;
class QToolButton;

namespace telvane {

class About;
class Allarmi;
class Grafico;
class Camera;
class ChildWindows;
class Comunicazioni;
class Prompts;
class Storico;
class Sinottico;
class Supervisor;
class Workspace;
class frmLogin;
class Stagione;
struct Runtime;

// The main window: the workspace for the child windows, the menus, the toolbar with
// buttons keyed "1" to "8" and the four status-bar panels. It shows the supervisor's
// state and turns clicks into its commands; the acquisition state, the timers, the
// blink and the refusals all live in the `Supervisor`.
//
// Button "8" starts acquisition while standing by and opens the communication-error
// view while acquiring; its drop-down offers "Start", "Stop", "Rileggi" and the error
// view, and its image follows the supervisor's (3 standby, 4 acquiring, alternating
// while the alarm blinks).
class MainForm final : public QMainWindow
{
    Q_OBJECT

public:
    MainForm(Runtime &rt, Supervisor &supervisor, Prompts &prompts, Camera &camera, QWidget *parent = nullptr);
    ~MainForm() override;

    // The toolbar button with `key`; null for "6" (a separator) and unknown keys.
    QToolButton *toolbarButton(const QString &key) const;
    // Panel 1 to 4 of the status bar.
    QLabel *statusPanel(int number) const;
    // The serial port's state, kept in sight while panel 1 names the user.
    QLabel *portLabel() const { return m_portLabel; }

    ChildWindows &childWindows() { return *m_children; }
    frmLogin *loginWindow() const { return m_login; }
    Allarmi *alarmsWindow() const { return m_alarms; }
    Stagione *seasonWindow() const { return m_season; }
    Grafico *trendWindow() const { return m_trend; }
    Storico *historyWindow() const { return m_history; }
    Sinottico *synopticWindow() const { return m_synoptic; }
    // Null until `MenuAbout` first opens it.
    About *aboutWindow() const { return m_about; }

    // Puts the configuration editor behind `MenuComunicazione`, button "7" and the
    // schedule settings entry; the window takes it over.
    void plugEditor(Comunicazioni *editor);
    Comunicazioni *editorWindow() const { return m_editor; }

    // The captions that depend on the plant's mode ("Stagione" or "Ricette", the
    // schedule settings); again after every change of settings file.
    void applyMode();

protected:
    // The frame's close is the exit command, refused while acquiring.
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenus();
    void buildToolbar();
    void buildStatusBar();
    QAction *addEntry(QMenu *menu, const QString &name, const QString &text, const QString &iconName = QString());
    void addSeparator(QMenu *menu, const QString &name);

    void acquisitionButtonClicked();
    void acquisitionMenuTriggered(QAction *entry);
    void startAcquisition();
    void seasonSendingChanged(bool sending);
    void showAcquisitionImage(int image);
    void userChanged();

    void MenuFine();
    void MenuAbout();
    void MenuErroriCOM();
    void showAlarms();
    void placeAlarmsWindow();
    void showTitle();
    void panelOneChanged(const QString &text);

    Runtime &m_rt;
    Supervisor &m_supervisor;
    Workspace *m_workspace;
    ChildWindows *m_children;
    frmLogin *m_login;
    Allarmi *m_alarms;
    Stagione *m_season;
    Grafico *m_trend;
    Storico *m_history;
    Sinottico *m_synoptic;
    About *m_about = nullptr;
    Comunicazioni *m_editor = nullptr;

    QHash<QString, QAction *> m_entries;
    QHash<QString, QToolButton *> m_buttons;
    QToolButton *m_acquisitionButton = nullptr;
    QList<QLabel *> m_panels;
    QLabel *m_portLabel = nullptr;
    QString m_portText;
    bool m_exitAccepted = false;
};

} // namespace telvane
