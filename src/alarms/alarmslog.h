#pragma once

#include <QLoggingCategory>

// Alarm bookkeeping that was asked about an item the plant does not have.
Q_DECLARE_LOGGING_CATEGORY(lcAlarms)
