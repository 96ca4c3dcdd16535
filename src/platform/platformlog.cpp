#include "platform/platformlog.h"

Q_LOGGING_CATEGORY(lcPlatform, "telvane.platform")
