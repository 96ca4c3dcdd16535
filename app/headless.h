#pragma once

namespace telvane {

// main() of the headless mode: command line, wiring, event loop. See telvane --help.
int headlessMain(int argc, char *argv[]);

} // namespace telvane
