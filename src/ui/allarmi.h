#pragma once

#include <QWidget>

class QGroupBox;
class QLabel;
class QListView;
class QPushButton;
class QTabWidget;
class QTableView;

namespace telvane {

class CommErrorTable;
class JournalView;
class Supervisor;
struct Runtime;

// The alarms window: the zones (`Lst_AllarmiZ`) and the switches and LEDs
// (`Lst_AllarmiI`) whose instruments stopped answering, above every other window.
// Closing it, by `Cmd_Chiudi` (also Enter and Escape, as the default button of a dialog)
// or by its frame, acknowledges every alarm.
//
// In its communication-error view a technician or administrator also sees, for every
// item, its failed reads and the last reason, and the line's last failure, and may
// acknowledge without closing to watch the counts start again; beside it, the operator
// journal.
class Allarmi final : public QWidget
{
    Q_OBJECT

public:
    // Rows of the communication-error table in sight without scrolling.
    static constexpr int VisibleRows = 15;

    Allarmi(Runtime &rt, Supervisor &supervisor, QWidget *parent = nullptr);

    // `MenuErroriCOM`: shows the window with the diagnostics for a privileged user.
    void showCommErrors(bool privileged);
    // The user changed while the window may be open.
    void setPrivileged(bool privileged);

    CommErrorTable &commErrors() { return *m_errors; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void Cmd_ChiudiClick();
    void fitColumns();

    const Runtime &m_rt;
    Supervisor &m_supervisor;
    CommErrorTable *m_errors;
    QListView *m_zoneList;
    QListView *m_switchList;
    QGroupBox *m_diagnostics;
    QLabel *m_reserved;
    QLabel *m_lastFailure;
    QLabel *m_lineState;
    QTableView *m_table;
    JournalView *m_journal;
    QTabWidget *m_technician;
};

} // namespace telvane
