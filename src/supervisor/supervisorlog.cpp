#include "supervisor/supervisorlog.h"

Q_LOGGING_CATEGORY(lcSupervisor, "telvane.supervisor")
