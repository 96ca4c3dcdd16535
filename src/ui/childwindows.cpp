#include "ui/childwindows.h"

#include <QAction>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace telvane {

namespace {

// Of the workspace, for a window that expands: a margin stays to reach the others.
constexpr double ExpandedShare = 0.94;

} // namespace

ChildWindows::ChildWindows(QMdiArea &area, QObject *parent)
    : QObject(parent)
    , m_area(area)
{
}

void ChildWindows::addEntry(QAction *entry, Guard allowed)
{
    entry->setCheckable(true);
    entry->setEnabled(false);
    m_children.append({entry, std::move(allowed)});
    connect(entry, &QAction::triggered, this, [this, entry](bool checked) { entryTriggered(entry, checked); });
}

QMdiSubWindow *ChildWindows::plug(QAction *entry, QWidget *window)
{
    Child *child = childOf(entry);
    if (!child)
        return nullptr;
    auto *subWindow = new QMdiSubWindow;
    // Hidden, never destroyed: the window keeps what the operator typed in it.
    subWindow->setAttribute(Qt::WA_DeleteOnClose, false);
    subWindow->setWidget(window);
    subWindow->setWindowTitle(window->windowTitle());
    subWindow->setWindowIcon(entry->icon());
    m_area.addSubWindow(subWindow);
    subWindow->hide();
    subWindow->installEventFilter(this);
    child->window = window;
    child->subWindow = subWindow;
    entry->setEnabled(true);
    return subWindow;
}

void ChildWindows::ShowChild(QWidget *window, bool show)
{
    Child *child = childOf(window);
    if (!child || !child->subWindow)
        return;
    if (show) {
        place(*child);
        // Closing the frame closed the window inside it too.
        child->window->show();
        child->subWindow->show();
        child->subWindow->raise();
        m_area.setActiveSubWindow(child->subWindow);
    } else {
        child->subWindow->hide();
    }
    child->entry->setChecked(show);
}

void ChildWindows::hideAll()
{
    for (const Child &child : std::as_const(m_children)) {
        if (child.window)
            ShowChild(child.window, false);
    }
}

bool ChildWindows::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Close) {
        for (const Child &child : std::as_const(m_children)) {
            if (child.subWindow == watched)
                child.entry->setChecked(false);
        }
    }
    return QObject::eventFilter(watched, event);
}

// The entry has already changed its tick when this runs: ticked now means the window
// was hidden and must show.
void ChildWindows::entryTriggered(QAction *entry, bool checked)
{
    Child *child = childOf(entry);
    if (!child || !child->window) {
        entry->setChecked(false);
        return;
    }
    if (child->allowed && !child->allowed()) {
        entry->setChecked(!checked);
        return;
    }
    for (const Child &other : std::as_const(m_children)) {
        if (other.entry != entry && other.window)
            ShowChild(other.window, false);
    }
    ShowChild(child->window, checked);
}

ChildWindows::Child *ChildWindows::childOf(const QAction *entry)
{
    for (Child &child : m_children) {
        if (child.entry == entry)
            return &child;
    }
    return nullptr;
}

ChildWindows::Child *ChildWindows::childOf(const QWidget *window)
{
    for (Child &child : m_children) {
        if (child.window && child.window == window)
            return &child;
    }
    return nullptr;
}

// A window opens in the middle of the workspace the first time; afterwards where the
// operator left it. A window that asks to expand (the charts) takes most of the
// workspace, so a large screen shows more of its time axis.
void ChildWindows::place(Child &child)
{
    if (child.placed)
        return;
    child.placed = true;
    child.subWindow->adjustSize();
    const QRect area = m_area.viewport()->rect();
    const QSizePolicy policy = child.window->sizePolicy();
    if (policy.horizontalPolicy() == QSizePolicy::Expanding && policy.verticalPolicy() == QSizePolicy::Expanding) {
        const QSize room = area.size() * ExpandedShare;
        child.subWindow->resize(child.subWindow->size().expandedTo(room).boundedTo(area.size()));
    }
    const QSize size = child.subWindow->size();
    child.subWindow->move(std::max(0, (area.width() - size.width()) / 2),
                          std::max(0, (area.height() - size.height()) / 3));
}

} // namespace telvane
