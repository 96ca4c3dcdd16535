#include "commandline.h"
#include "headless.h"

#include "base/clock.h"
#include "platform/eventlooppause.h"
#include "platform/messageboxprompts.h"
#include "platform/qtcamera.h"
#include "platform/termiosline.h"
#include "platform/qtsoundplayer.h"
#include "storage/programfolder.h"
#include "session/plantsession.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"
#include "ui/editor/comunicazioni.h"
#include "ui/mainform.h"
#include "ui/splash.h"
#include "ui/synoptic/synopticcommands.h"
#include "ui/windowgrab.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>

#include <cstdio>

using namespace telvane;

namespace {

// Time for the first rounds to fill the window before its picture is taken.
constexpr int ScreenshotDelayMs = 2500;

} // namespace

int main(int argc, char *argv[])
{
    // Neither needs a display; a widget application would abort without one.
    if (headlessRequested(argc, argv) || informationRequested(argc, argv))
        return headlessMain(argc, argv);

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Telvane"));
    QApplication::setApplicationVersion(QStringLiteral(TELVANE_VERSION));

    QCommandLineParser parser;
    const CommandLineOptions options;
    options.addTo(parser);
    const QCommandLineOption windowOption(
        QStringLiteral("open"), QStringLiteral("Apre la finestra indicata (per esempio MenuGrafico) prima dell'immagine."),
        QStringLiteral("MENU"));
    parser.addOption(windowOption);
    parser.process(app);

    if (parser.isSet(options.simulate) && parser.isSet(options.communicate)) {
        std::fputs("--simulate e --communicate si escludono a vicenda.\n", stderr);
        return 2;
    }

    QString problem;
    const std::optional<ProgramFolder> openedFolder = openProgramFolder(parser, options, problem);
    if (!openedFolder) {
        std::fprintf(stderr, "telvane: %s\nVedi telvane --help.\n", qPrintable(problem));
        return 2;
    }
    const ProgramFolder &folder = *openedFolder;

    bool communicate = !parser.isSet(options.simulate);
    if (!parser.isSet(options.simulate) && !parser.isSet(options.communicate)) {
        Splash splash;
        splash.exec();
        communicate = splash.communicate();
    }

    SystemClock clock;
    TermiosLine line;
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
    auto *editor = new Comunicazioni(rt, supervisor, prompts, [&session] { session.reload(); });
    window.plugEditor(editor);
    connectSynopticCommands(*window.synopticWindow(), session.commands());
    window.resize(window.screen()->availableSize().boundedTo(QSize(1280, 800)));
    window.showMaximized();

    if (parser.isSet(options.screenshot)) {
        supervisor.MenuStart();
        // Without --open, the synoptic: what the operators look at all day.
        const QString entryName = parser.isSet(windowOption) ? parser.value(windowOption) : QStringLiteral("MenuSinottico");
        if (auto *entry = window.findChild<QAction *>(entryName))
            entry->trigger();
        grabWindowLater(window, parser.value(options.screenshot), ScreenshotDelayMs);
    }
    return app.exec();
}
