#pragma once

#include <QLoggingCategory>

// The field bus: failed transactions (debug), ports that cannot be opened and requests
// refused before reaching the line (warnings).
Q_DECLARE_LOGGING_CATEGORY(lcFieldbus)
