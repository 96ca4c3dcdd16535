#pragma once

#include <QString>

namespace telvane {

// The logged-in user's rights; both false for an anonymous user.
struct UserLevel
{
    bool IsTechnician = false;
    bool IsAdministrator = false;

    // Commands on the plant and the privileged controls need a technician, service or
    // administrator user.
    bool hasCommandRights() const { return IsTechnician || IsAdministrator; }

    // As the status bar and the operator journal name it.
    QString levelName() const
    {
        if (IsAdministrator)
            return QStringLiteral("Amministratore");
        return IsTechnician ? QStringLiteral("Tecnico") : QStringLiteral("Anonimo");
    }
};

} // namespace telvane
