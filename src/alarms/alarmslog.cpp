#include "alarms/alarmslog.h"

Q_LOGGING_CATEGORY(lcAlarms, "telvane.alarms")
