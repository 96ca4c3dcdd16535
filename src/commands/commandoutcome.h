#pragma once

#include <QString>

namespace telvane {

// How an operator command ended, for callers that report it (the headless mode, tests);
// the operator has already been told what needed telling.
enum class CommandOutcome {
    Refused,       // the user has no rights, or the input could not be used: nothing sent
    NotConfigured, // the item has no register for it: nothing sent
    Confirmed,     // every write was echoed as expected
    Doubtful,      // a write was not confirmed; the operator was warned
};

// As the headless output and the operator journal word it.
inline QString commandOutcomeText(CommandOutcome outcome)
{
    switch (outcome) {
    case CommandOutcome::Refused:
        return QStringLiteral("rifiutato");
    case CommandOutcome::NotConfigured:
        return QStringLiteral("non configurato");
    case CommandOutcome::Confirmed:
        return QStringLiteral("confermato");
    case CommandOutcome::Doubtful:
        return QStringLiteral("non confermato");
    }
    return {};
}

} // namespace telvane
