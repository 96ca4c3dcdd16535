#pragma once

#include <QString>

class QWidget;

namespace telvane {

// Saves a picture of `window` to `filePath` once `delayMs` have passed (time for the
// first rounds to fill the window), then ends the program: exit code 0 when the picture
// was written, 1 when it could not be. For the documentation's screenshots.
void grabWindowLater(QWidget &window, const QString &filePath, int delayMs);

} // namespace telvane
