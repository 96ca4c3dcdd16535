#pragma once

#include <QLoggingCategory>

// The windows' own troubles (a picture that cannot be saved).
Q_DECLARE_LOGGING_CATEGORY(lcUi)
