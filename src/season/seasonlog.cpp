#include "season/seasonlog.h"

Q_LOGGING_CATEGORY(lcSeason, "telvane.season")
