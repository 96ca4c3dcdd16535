#pragma once

#include "supervisor/userlevel.h"

#include <QString>

namespace telvane {

class OperatorJournal;
class Prompts;
class StatusBar;

// The login of `frmLogin`: three fixed users besides the anonymous one. "Tecnico" is a
// technician; "Service" and "Admin" are two names for the administrator. Names and
// passwords are compared exactly, case and blanks included.
//
// Every attempt logs the previous user out first, so a failed login leaves nobody
// logged in. A name or password that matches no user gets "Password errata." in a box
// "Accesso"; both fields empty is the quiet way to log out. Panel 1 of the status bar
// shows who is logged in. The journal gets the logout of a user with rights, and the
// login or the refusal with the name given (never the password). Returns the new
// rights, also stored in `user`.
UserLevel logInUser(const QString &name, const QString &password, UserLevel &user, StatusBar &statusBar,
                Prompts &prompts, OperatorJournal &journal);

// "Utente: Anonimo", "Utente: Tecnico" or "Utente: Amministratore".
QString userPanelText(const UserLevel &user);

} // namespace telvane
