#include "commands/commandrights.h"

#include "base/pause.h"
#include "commands/commandslog.h"
#include "supervisor/runtime.h"

namespace telvane {

namespace {

constexpr int RefusalMs = 1000;

} // namespace

bool checkCommandRights(Runtime &rt)
{
    if (rt.services.user.hasCommandRights())
        return true;
    qCInfo(lcCommands, "Command refused: no user with rights is logged in");
    rt.display.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Privilegi insufficienti"));
    rt.devices.pause.pause(RefusalMs);
    rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());
    return false;
}

} // namespace telvane
