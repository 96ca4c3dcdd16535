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
    if (rt.user.hasCommandRights())
        return true;
    qCInfo(lcCommands, "Command refused: no user with rights is logged in");
    rt.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Privilegi insufficienti"));
    rt.pause.pause(RefusalMs);
    rt.statusBar.setPanel(StatusBar::MessagePanel, QString());
    return false;
}

} // namespace telvane
