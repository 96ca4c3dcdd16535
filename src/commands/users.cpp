#include "commands/users.h"

#include "base/prompts.h"
#include "commands/commandslog.h"
#include "journal/operatorjournal.h"
#include "supervisor/statusbar.h"

#include <array>

namespace telvane {

namespace {

struct Account
{
    QLatin1String name;
    QLatin1String password;
    UserLevel level;
};

constexpr UserLevel Technician{true, false};
constexpr UserLevel Administrator{false, true};

constexpr std::array<Account, 3> Accounts{{
    {QLatin1String("Tecnico"), QLatin1String("Qx7"), Technician},
    {QLatin1String("Service"), QLatin1String("7ubl4ko"), Administrator},
    {QLatin1String("Admin"), QLatin1String("Wm4"), Administrator},
}};

// The user panel is the first one, shared with the serial port's text.
constexpr int UserPanel = StatusBar::PortPanel;

} // namespace

QString userPanelText(const UserLevel &user)
{
    return QStringLiteral("Utente: ") + user.levelName();
}

UserLevel logInUser(const QString &name, const QString &password, UserLevel &user, StatusBar &statusBar,
                Prompts &prompts, OperatorJournal &journal)
{
    if (user.hasCommandRights())
        journal.record(user.levelName(), QStringLiteral("Logout"));
    user = UserLevel{};
    statusBar.setPanel(UserPanel, userPanelText(user));

    for (const Account &account : Accounts) {
        if (name == account.name && password == account.password) {
            user = account.level;
            break;
        }
    }
    statusBar.setPanel(UserPanel, userPanelText(user));

    const bool granted = user.hasCommandRights();
    if (granted) {
        qCInfo(lcCommands) << "User" << name << "logged in";
        journal.record(user.levelName(), QStringLiteral("Login"), name);
    } else if (!name.isEmpty() || !password.isEmpty()) {
        qCInfo(lcCommands, "Login refused");
        journal.record(user.levelName(), QStringLiteral("Login"), name, QStringLiteral("password errata"));
        prompts.warning(QStringLiteral("Accesso"), QStringLiteral("Password errata."));
    }
    return user;
}

} // namespace telvane
