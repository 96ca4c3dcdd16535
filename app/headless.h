#pragma once

namespace telvane {

// main() of the headless mode: command line, wiring, event loop. See telvane --help.
// Also answers --help and --version for the window mode, which need no display.
int headlessMain(int argc, char *argv[]);

} // namespace telvane
