#pragma once

#include "supervisor/plantrig.h"

#include "base/camera.h"
#include "base/prompts.h"
#include "supervisor/supervisor.h"
#include "ui/mainform.h"

#include <QStringList>

#include <memory>

class QAction;
class QToolButton;

namespace telvane {

// The main window over a PlantRig, as an operator finds it after start-up, with the
// message boxes answered by a script. The helpers act as the operator does: they click
// the toolbar's buttons and pick entries from the menus with the mouse.
class WindowRig
{
public:
    WindowRig();
    ~WindowRig();

    // The supervisor's start-up over the settings written so far, then the window shown.
    void startUp();

    // A click on the main part of the toolbar button with `key`.
    void clickButton(const QString &key);
    // The entry of button "8"'s drop-down whose text is `text`, through its arrow.
    void chooseFromAcquisitionButton(const QString &text);
    // Opens the menu `menuName` on the menu bar and clicks its entry `entryName`.
    void chooseMenuEntry(const QString &menuName, const QString &entryName);

    QToolButton *button(const QString &key) const;
    QAction *entry(const QString &name) const;
    QString panel(int number) const;
    int acquisitionImage() const;
    // Every text panel 4 showed while `action` ran.
    QStringList messagesDuring(const std::function<void()> &action);

    PlantRig plant;
    RecordingPrompts prompts;
    RecordingCamera camera;
    Supervisor supervisor;
    std::unique_ptr<MainForm> window;
};

} // namespace telvane
