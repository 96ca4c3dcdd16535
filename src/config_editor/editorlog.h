#pragma once

#include <QLoggingCategory>

// Warnings of the configuration editor's own work, such as a reading line that gives no
// line probe. Settings that cannot be used as they stand are logged by the storage.
Q_DECLARE_LOGGING_CATEGORY(lcConfigEditor)
