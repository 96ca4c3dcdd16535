#include "base/clock.h"
#include "commands/chronothermostat.h"
#include "commands/clockalignment.h"
#include "commands/plantcommands.h"
#include "platform/eventlooppause.h"
#include "platform/messageboxprompts.h"
#include "platform/qserialline.h"
#include "platform/qtsoundplayer.h"
#include "storage/programfolder.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"
#include "ui/mainform.h"
#include "ui/splash.h"
#include "ui/uilog.h"
#include "ui/windowgrab.h"

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
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Telvane"));
    QApplication::setApplicationVersion(QStringLiteral(TELVANE_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Telvane: supervisore Modbus RTU"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption dirOption(QStringLiteral("dir"),
                                       QStringLiteral("Cartella del programma (impostazioni, Dati, Crono, Ricetta)."),
                                       QStringLiteral("DIR"));
    const QCommandLineOption simulateOption(QStringLiteral("simulate"),
                                            QStringLiteral("Simula gli strumenti, senza chiederlo all'avvio."));
    const QCommandLineOption communicateOption(QStringLiteral("communicate"),
                                               QStringLiteral("Comunica con gli strumenti, senza chiederlo all'avvio."));
    const QCommandLineOption screenshotOption(
        QStringLiteral("screenshot"),
        QStringLiteral("Avvia l'acquisizione, salva l'immagine della finestra principale in FILE ed esce."),
        QStringLiteral("FILE"));
    parser.addOption(dirOption);
    parser.addOption(simulateOption);
    parser.addOption(communicateOption);
    parser.addOption(screenshotOption);
    parser.process(app);

    if (parser.isSet(simulateOption) && parser.isSet(communicateOption)) {
        std::fputs("--simulate e --communicate si escludono a vicenda.\n", stderr);
        return 2;
    }

    bool communicate = !parser.isSet(simulateOption);
    if (!parser.isSet(simulateOption) && !parser.isSet(communicateOption)) {
        Splash splash;
        splash.exec();
        communicate = splash.communicate();
    }

    const ProgramFolder folder = parser.isSet(dirOption) ? ProgramFolder(parser.value(dirOption))
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
    PlantCommands commands(rt, prompts, supervisor);
    ChronoThermostat chronoThermostat(rt);
    ClockAlignment clockAlignment(rt);
    rt.operatorCommands = &commands;
    rt.cycleTasks = {&chronoThermostat, &clockAlignment};

    supervisor.setCommunicateWithInstruments(communicate);
    supervisor.startUp();

    MainForm window(rt, supervisor, prompts);
    prompts.setParent(&window);
    window.resize(window.screen()->availableSize().boundedTo(QSize(1280, 800)));
    window.showMaximized();

    if (parser.isSet(screenshotOption)) {
        supervisor.MenuStart();
        grabWindowLater(window, parser.value(screenshotOption), ScreenshotDelayMs);
    }
    return app.exec();
}
