#include "config_editor/editorlog.h"

Q_LOGGING_CATEGORY(lcConfigEditor, "telvane.config_editor")
