#pragma once

#include <QLoggingCategory>

// Warnings about settings and data files that could not be read or written.
// File errors never stop the program, so this log is where a technician finds them.
Q_DECLARE_LOGGING_CATEGORY(lcStorage)
