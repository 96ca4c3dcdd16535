#include "commands/commandslog.h"

Q_LOGGING_CATEGORY(lcCommands, "telvane.commands")
