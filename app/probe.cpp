// telvane-probe: one Modbus read or write on a line, with the supervisor's own master,
// for commissioning. See --help.

#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/probecommand.h"
#include "platform/termiosline.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>

using namespace telvane;

namespace {

// The value, then what went wrong: "2 (Exception)", "-99999 Time out".
QString resultLine(const BusOutcome &outcome)
{
    const QString reason = outcome.reason();
    return reason.isEmpty() ? QString::number(outcome.value) : QStringLiteral("%1 %2").arg(outcome.value).arg(reason);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("telvane-probe"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TELVANE_VERSION));
    QTextStream out(stdout);
    QTextStream err(stderr);

    const ProbeCommandLine commandLine = parseProbeCommand(QCoreApplication::arguments());
    switch (commandLine.outcome) {
    case ProbeCommandLine::Outcome::Help:
        out << commandLine.message;
        return 0;
    case ProbeCommandLine::Outcome::Error:
        err << "telvane-probe: " << commandLine.message << "\nVedi telvane-probe --help.\n";
        return 2;
    case ProbeCommandLine::Outcome::Run:
        break;
    }
    const ProbeCommand &command = commandLine.command;
    // The tool prints its own one-line answers; the master's log is there on request.
    if (!command.verbose)
        QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false\ntelvane.*.warning=false"));

    SystemClock clock;
    TermiosLine line;
    ModbusMaster master(line, clock);
    line.setFormat(command.format);
    master.setReplyTimeout(float(command.timeoutMs) / 1000.0f);
    master.setAttempts(command.retries);
    if (!master.testPort(command.port)) {
        err << "telvane-probe: " << line.lastError() << '\n';
        return 1;
    }

    int status = 0;
    for (int i = 0; i < command.repeat; ++i) {
        const BusOutcome outcome = isReadFunction(command.functionCode)
            ? master.read(command.functionCode, command.address, command.slave)
            : master.write(command.functionCode, command.address, *command.value, command.slave);
        out << resultLine(outcome) << Qt::endl;
        if (!outcome.answered())
            status = 1;
    }
    return status;
}
