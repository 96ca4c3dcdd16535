#pragma once

#include <QLoggingCategory>

// The acquisition: configuration that cannot be polled, a line that went silent.
Q_DECLARE_LOGGING_CATEGORY(lcSupervisor)
