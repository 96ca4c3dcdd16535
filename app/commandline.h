#pragma once

#include "storage/programfolder.h"

#include <QCommandLineOption>

#include <optional>

class QCommandLineParser;

namespace telvane {

// The program's options, one set for the window and the headless mode, so that --help
// tells about both whichever way the program was started.
struct CommandLineOptions
{
    CommandLineOptions();

    // Description, --help, --version and every option below.
    void addTo(QCommandLineParser &parser) const;

    QCommandLineOption dir;
    QCommandLineOption simulate;
    QCommandLineOption communicate;
    QCommandLineOption headless;
    QCommandLineOption ticks;
    QCommandLineOption tickMs;
    QCommandLineOption command;
    QCommandLineOption login;
    QCommandLineOption screenshot;
    QCommandLineOption recipe;
};

// The program folder: --dir, or the executable's own folder. Made when missing, and
// cleared of what an interrupted save left in it. Nothing, with `problem` set, when
// --dir is empty or names a folder that cannot be made.
std::optional<ProgramFolder> openProgramFolder(const QCommandLineParser &parser, const CommandLineOptions &options,
                                               QString &problem);

// Whether to run without windows; decided before any application object exists, since
// the headless mode must not create a widget application.
bool headlessRequested(int argc, char *argv[]);

// Whether only help or the version is asked for: answered without a display, so that
// `telvane --help` works over ssh and in a package's build.
bool informationRequested(int argc, char *argv[]);

} // namespace telvane
