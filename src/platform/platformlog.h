#pragma once

#include <QLoggingCategory>

// Devices that are missing or refuse to work: a serial port, a sound card, a printer.
// None of them stops the program; this log tells the technician why.
Q_DECLARE_LOGGING_CATEGORY(lcPlatform)
