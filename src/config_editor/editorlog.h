#pragma once

#include <QLoggingCategory>

// Warnings about plant settings the editor could not use as they stand: an instrument
// address out of range, a register key that is not "function,register", and the like.
// The object or register is left out of the lists, and this log says why.
Q_DECLARE_LOGGING_CATEGORY(lcConfigEditor)
