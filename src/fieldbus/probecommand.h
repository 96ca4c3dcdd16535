#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace telvane {

// One Modbus read or write asked for on the command line of telvane-probe, the tool a
// technician uses to commission a line with the same master the supervisor uses.
struct ProbeCommand
{
    QString port;
    QString format = QStringLiteral("9600,N,8,1");
    int timeoutMs = 500;
    int retries = 1;
    int slave = 0;
    int functionCode = 0;
    int address = 0;
    // Only for the writes (codes 5, 6 and 8).
    std::optional<int> value;
    int repeat = 1;
    bool verbose = false;
};

struct ProbeCommandLine
{
    enum class Outcome { Run, Help, Error };
    Outcome outcome = Outcome::Error;
    ProbeCommand command;
    // The help text, or what is wrong with the arguments.
    QString message;
};

// `arguments` as the program received them, the program's name first.
ProbeCommandLine parseProbeCommand(const QStringList &arguments);

} // namespace telvane
