#include "storage/storagelog.h"

Q_LOGGING_CATEGORY(lcStorage, "telvane.storage")
