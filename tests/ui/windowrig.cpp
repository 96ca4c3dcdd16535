#include "windowrig.h"

#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace telvane {

namespace {

QtMessageHandler forwardedHandler = nullptr;

// The offscreen platform says for every popup that it cannot raise windows or grab the
// keyboard, and the program's debug lines tell every exchange; that is noise here,
// everything else goes on to the test's log.
void dropOffscreenNotices(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.startsWith(QLatin1String("This plugin does not support"))
        || (type == QtDebugMsg && context.category && qstrncmp(context.category, "telvane.", 8) == 0))
        return;
    if (forwardedHandler)
        forwardedHandler(type, context, message);
}

// Clicks `entry` inside the open popup `menu`.
void clickMenuEntry(QMenu *menu, QAction *entry)
{
    const QRect where = menu->actionGeometry(entry);
    QVERIFY(where.isValid());
    QTest::mouseClick(menu, Qt::LeftButton, {}, where.center());
}

} // namespace

WindowRig::WindowRig()
    : supervisor(plant.rt)
{
    static const QtMessageHandler once = forwardedHandler = qInstallMessageHandler(dropOffscreenNotices);
    Q_UNUSED(once);
}

WindowRig::~WindowRig() = default;

void WindowRig::startUp()
{
    supervisor.startUp();
    window = std::make_unique<MainForm>(plant.rt, supervisor, prompts, camera);
    window->resize(1024, 700);
    window->show();
}

QToolButton *WindowRig::button(const QString &key) const { return window->toolbarButton(key); }
QAction *WindowRig::entry(const QString &name) const { return window->findChild<QAction *>(name); }
QString WindowRig::panel(int number) const { return window->statusPanel(number)->text(); }
int WindowRig::acquisitionImage() const { return button(QStringLiteral("8"))->property("image").toInt(); }

QStringList WindowRig::messagesDuring(const std::function<void()> &action)
{
    QStringList texts;
    QLabel *panel4 = window->statusPanel(StatusBar::MessagePanel);
    const auto connection = QObject::connect(&plant.rt.display.statusBar, &StatusBar::panelChanged,
                                             [&texts, panel4](int number, const QString &) {
                                                 if (number == StatusBar::MessagePanel)
                                                     texts.append(panel4->text());
                                             });
    action();
    QObject::disconnect(connection);
    return texts;
}

void WindowRig::clickButton(const QString &key)
{
    QToolButton *target = button(key);
    // Left of the drop-down arrow, where a button with a menu takes its plain click.
    QTest::mouseClick(target, Qt::LeftButton, {}, QPoint(target->width() / 3, target->height() / 2));
}

void WindowRig::chooseFromAcquisitionButton(const QString &text)
{
    QToolButton *target = button(QStringLiteral("8"));
    QMenu *menu = target->menu();
    const QList<QAction *> entries = menu->actions();
    const auto found = std::find_if(entries.cbegin(), entries.cend(), [&](QAction *a) { return a->text() == text; });
    QAction *chosen = found == entries.cend() ? nullptr : *found;
    QVERIFY2(chosen, qPrintable(text));
    // The arrow opens the menu modally; the entry is clicked from inside its loop.
    QTimer::singleShot(0, menu, [menu, chosen] { clickMenuEntry(menu, chosen); });
    QTest::mouseClick(target, Qt::LeftButton, {}, QPoint(target->width() - 4, target->height() / 2));
}

void WindowRig::chooseMenuEntry(const QString &menuName, const QString &entryName)
{
    auto *menu = window->findChild<QMenu *>(menuName);
    QAction *chosen = entry(entryName);
    QVERIFY2(menu && chosen, qPrintable(menuName + QLatin1Char('/') + entryName));
    QMenuBar *bar = window->menuBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu->menuAction()).center());
    QVERIFY2(menu->isVisible(), qPrintable(menuName));
    clickMenuEntry(menu, chosen);
}

} // namespace telvane
