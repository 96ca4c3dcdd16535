#pragma once

namespace telvane {

// How an operator command ended, for callers that report it (the headless mode, tests);
// the operator has already been told what needed telling.
enum class CommandOutcome {
    Refused,       // the user has no rights, or the input could not be used: nothing sent
    NotConfigured, // the item has no register for it: nothing sent
    Confirmed,     // every write was echoed as expected
    Doubtful,      // a write was not confirmed; the operator was warned
};

} // namespace telvane
