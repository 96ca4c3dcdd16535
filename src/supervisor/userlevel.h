#pragma once

namespace telvane {

// The logged-in user's rights; both false for an anonymous user.
struct UserLevel
{
    bool IsTechnician = false;
    bool IsAdministrator = false;
};

} // namespace telvane
