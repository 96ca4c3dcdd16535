#include "fieldbus/fieldbuslog.h"

Q_LOGGING_CATEGORY(lcFieldbus, "telvane.fieldbus")
