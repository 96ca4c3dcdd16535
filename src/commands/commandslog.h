#pragma once

#include <QLoggingCategory>

// Operator commands, logins, the chrono-thermostat and the clock alignment: what was
// refused, what was not confirmed by an instrument, what could not be sent.
Q_DECLARE_LOGGING_CATEGORY(lcCommands)
