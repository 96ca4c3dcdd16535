#pragma once

#include <QLoggingCategory>

// Recipes and season changes: why a recipe was refused, each row sent, how a send ended.
Q_DECLARE_LOGGING_CATEGORY(lcSeason)
