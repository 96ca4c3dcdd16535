#pragma once

namespace telvane {

// The logged-in user's rights; both false for an anonymous user.
struct UserLevel
{
    bool IsTechnician = false;
    bool IsAdministrator = false;

    // Commands on the plant and the privileged controls need a technician, service or
    // administrator user.
    bool hasCommandRights() const { return IsTechnician || IsAdministrator; }
};

} // namespace telvane
