#include "ui/windowgrab.h"

#include "ui/uilog.h"

#include <QCoreApplication>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace telvane {

void grabWindowLater(QWidget &window, const QString &filePath, int delayMs)
{
    QTimer::singleShot(delayMs, &window, [target = QPointer<QWidget>(&window), filePath] {
        const bool saved = target && target->grab().save(filePath);
        if (!saved)
            qCWarning(lcUi) << "Cannot write the picture of the window to" << filePath;
        QCoreApplication::exit(saved ? 0 : 1);
    });
}

} // namespace telvane
