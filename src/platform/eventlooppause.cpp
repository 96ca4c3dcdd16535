#include "platform/eventlooppause.h"

#include <QEventLoop>
#include <QTimer>

namespace telvane {

void EventLoopPause::pause(int ms)
{
    if (ms <= 0)
        return;
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

} // namespace telvane
