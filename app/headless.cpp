#include "headless.h"

#include "commandline.h"

#include "base/clock.h"
#include "base/soundplayer.h"
#include "platform/eventlooppause.h"
#include "platform/termiosline.h"
#include "platform/terminationsignals.h"
#include "storage/programfolder.h"
#include "session/headlessprompts.h"
#include "session/headlessrunner.h"
#include "session/plantsession.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>
#include <QTimer>

#include <limits>
#include <optional>

namespace telvane {

namespace {

constexpr int UsageExit = 2;
constexpr int MaxTickMs = 60000;

int usageError(const QString &problem)
{
    QTextStream(stderr) << "telvane: " << problem << "\nVedi telvane --help.\n";
    return UsageExit;
}

std::optional<int> positiveNumber(const QCommandLineParser &parser, const QCommandLineOption &option, int max,
                                  QString &problem)
{
    bool ok = false;
    const QString text = parser.value(option);
    const int number = text.toInt(&ok);
    if (!ok || number < 1 || number > max) {
        problem = QStringLiteral("--%1 \"%2\": serve un numero da 1 a %3").arg(option.names().constFirst(), text).arg(max);
        return std::nullopt;
    }
    return number;
}

// Everything the headless run needs from the command line; false with `problem` set.
bool readHeadlessOptions(const QCommandLineParser &parser, const CommandLineOptions &options, HeadlessOptions &run,
                         QString &problem)
{
    if (!parser.positionalArguments().isEmpty()) {
        problem = QStringLiteral("argomento inatteso \"%1\"").arg(parser.positionalArguments().constFirst());
        return false;
    }
    if (parser.isSet(options.screenshot)) {
        problem = QStringLiteral("--screenshot vale solo con le finestre");
        return false;
    }
    if (parser.isSet(options.simulate) == parser.isSet(options.communicate)) {
        problem = QStringLiteral("--headless vuole --simulate oppure --communicate");
        return false;
    }
    run.communicate = parser.isSet(options.communicate);
    if (parser.isSet(options.ticks)) {
        const std::optional<int> ticks = positiveNumber(parser, options.ticks, std::numeric_limits<int>::max(), problem);
        if (!ticks)
            return false;
        run.ticks = *ticks;
    }
    if (parser.isSet(options.tickMs)) {
        const std::optional<int> tickMs = positiveNumber(parser, options.tickMs, MaxTickMs, problem);
        if (!tickMs)
            return false;
        run.tickMs = *tickMs;
    }
    if (parser.isSet(options.login)) {
        const QString credentials = parser.value(options.login);
        const qsizetype colon = credentials.indexOf(QLatin1Char(':'));
        if (colon < 0) {
            problem = QStringLiteral("--login \"%1\": scrivi NOME:PASSWORD").arg(credentials);
            return false;
        }
        run.login = HeadlessOptions::Credentials{credentials.left(colon), credentials.mid(colon + 1)};
    }
    if (parser.isSet(options.recipe))
        run.recipe = parser.value(options.recipe);
    for (const QString &text : parser.values(options.command)) {
        std::optional<HeadlessCommand> command = parseHeadlessCommand(text, problem);
        if (!command)
            return false;
        run.commands.append(std::move(*command));
    }
    return true;
}

} // namespace

int headlessMain(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Telvane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TELVANE_VERSION));

    QCommandLineParser parser;
    const CommandLineOptions options;
    options.addTo(parser);
    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp(0);
    if (parser.isSet(QStringLiteral("version")))
        parser.showVersion();
    HeadlessOptions run;
    QString problem;
    if (!readHeadlessOptions(parser, options, run, problem))
        return usageError(problem);

    // Every Modbus exchange is logged at debug level: too much for a box that runs for
    // months. QT_LOGGING_RULES brings it back.
    QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false"));

    QTextStream out(stdout);
    const std::optional<ProgramFolder> openedFolder = openProgramFolder(parser, options, problem);
    if (!openedFolder)
        return usageError(problem);
    const ProgramFolder &folder = *openedFolder;
    SystemClock clock;
    TermiosLine line;
    EventLoopPause pause;
    SilentSoundPlayer sound;
    Runtime rt(folder, line, clock, pause, sound);
    Supervisor supervisor(rt);
    HeadlessPrompts prompts(out);
    PlantSession session(rt, supervisor, prompts);
    HeadlessRunner runner(rt, supervisor, session, prompts, out, std::move(run));

    TerminationSignals stops;
    QObject::connect(&stops, &TerminationSignals::received, &runner, &HeadlessRunner::requestStop);
    QObject::connect(&runner, &HeadlessRunner::finished, &app, [](int exitCode) { QCoreApplication::exit(exitCode); });
    // Inside the event loop, so that a stop asked for during the start is not lost.
    QTimer::singleShot(0, &runner, &HeadlessRunner::start);
    return QCoreApplication::exec();
}

} // namespace telvane
