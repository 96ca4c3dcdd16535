#pragma once

#include <QList>
#include <QObject>

#include <functional>

class QAction;
class QMdiArea;
class QMdiSubWindow;
class QWidget;

namespace telvane {

// The main window's exclusive child windows (`ShowChild`). Each has a checkable menu
// entry, which is also its toolbar button: a click on it hides every other child window,
// then shows its own if the entry was unticked and hides it if ticked. The entry is
// ticked, and the button held down, exactly while the window shows; closing a window by
// its frame unticks it too.
class ChildWindows final : public QObject
{
    Q_OBJECT

public:
    // Allows or refuses a click, for windows that cannot open in every state.
    using Guard = std::function<bool()>;

    explicit ChildWindows(QMdiArea &area, QObject *parent = nullptr);

    // An entry whose window does not exist yet: it stays disabled until plug().
    void addEntry(QAction *entry, Guard allowed = {});
    // Puts `window` in the workspace behind its entry, hidden, and enables the entry.
    QMdiSubWindow *plug(QAction *entry, QWidget *window);

    void ShowChild(QWidget *window, bool show);
    // Hides every child window.
    void hideAll();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Child
    {
        QAction *entry = nullptr;
        Guard allowed;
        QWidget *window = nullptr;
        QMdiSubWindow *subWindow = nullptr;
        bool placed = false;
    };

    void entryTriggered(QAction *entry, bool checked);
    Child *childOf(const QAction *entry);
    Child *childOf(const QWidget *window);
    void place(Child &child);

    QMdiArea &m_area;
    QList<Child> m_children;
};

} // namespace telvane
