#include "commandline.h"
#include "headless.h"

#include "base/clock.h"
#include "platform/eventlooppause.h"
#include "platform/messageboxprompts.h"
#include "platform/qserialline.h"
#include "platform/qtcamera.h"
#include "platform/qtsoundplayer.h"
#include "storage/programfolder.h"
#include "supervisor/plantsession.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"
#include "ui/mainform.h"
#include "ui/splash.h"
#include "ui/uilog.h"
#include "ui/windowgrab.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QScreen>

#include <cstdio>

using namespace telvane;

namespace {

// Time for the first rounds to fill the window before its picture is taken.
constexpr int ScreenshotDelayMs = 2500;

} // namespace

int main(int argc, char *argv[])
{
    if (headlessRequested(argc, argv))
        return headlessMain(argc, argv);

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Telvane"));
    QApplication::setApplicationVersion(QStringLiteral(TELVANE_VERSION));

    QCommandLineParser parser;
    const CommandLineOptions options;
    options.addTo(parser);
    const QCommandLineOption screenshotOption(
        QStringLiteral("screenshot"),
        QStringLiteral("Avvia l'acquisizione, salva l'immagine della finestra principale in FILE ed esce."),
        QStringLiteral("FILE"));
    parser.addOption(screenshotOption);
    parser.process(app);

    if (parser.isSet(options.simulate) && parser.isSet(options.communicate)) {
        std::fputs("--simulate e --communicate si escludono a vicenda.\n", stderr);
        return 2;
    }

    bool communicate = !parser.isSet(options.simulate);
    if (!parser.isSet(options.simulate) && !parser.isSet(options.communicate)) {
        Splash splash;
        splash.exec();
        communicate = splash.communicate();
    }

    const ProgramFolder folder = parser.isSet(options.dir) ? ProgramFolder(parser.value(options.dir))
                                                           : ProgramFolder::besideExecutable();
    // A new plant starts in a folder of its own; without it the program still runs, on
    // default settings it cannot save.
    if (!QDir().mkpath(folder.root()))
        qCWarning(lcUi).noquote() << "Cannot create the program folder" << folder.root();
    SystemClock clock;
    QSerialLine line;
    EventLoopPause pause;
    QtSoundPlayer sound;
    MessageBoxPrompts prompts;
    Runtime rt(folder, line, clock, pause, sound);

    Supervisor supervisor(rt);
    PlantSession session(rt, supervisor, prompts);

    supervisor.setCommunicateWithInstruments(communicate);
    session.startUp();

    QtCamera camera;
    MainForm window(rt, supervisor, prompts, camera);
    prompts.setParent(&window);
    window.resize(window.screen()->availableSize().boundedTo(QSize(1280, 800)));
    window.showMaximized();

    if (parser.isSet(screenshotOption)) {
        // The synoptic is what the operators look at all day.
        if (QAction *synoptic = window.findChild<QAction *>(QStringLiteral("MenuSinottico")))
            synoptic->trigger();
        supervisor.MenuStart();
        grabWindowLater(window, parser.value(screenshotOption), ScreenshotDelayMs);
    }
    return app.exec();
}
