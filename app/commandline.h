#pragma once

#include <QCommandLineOption>

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
    QCommandLineOption recipe;
};

// Whether to run without windows; decided before any application object exists, since
// the headless mode must not create a widget application.
bool headlessRequested(int argc, char *argv[]);

} // namespace telvane
