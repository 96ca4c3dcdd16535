// telvane-probe: one Modbus read or write on a line, with the supervisor's own master,
// for commissioning. See --help.

#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/probecommand.h"
#include "platform/qserialline.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>

using namespace telvane;

namespace {

// The value, then what went wrong: "2 (Exception)", "-99999 Time out".
QString resultLine(qint32 value, const ModbusMaster &master)
{
    QString line = QString::number(value) + master.failureDescription();
    if (value == ModbusMaster::InvalidValue && master.failureDescription().isEmpty())
        line += QStringLiteral(" Risposta non valida");
    return line;
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
    QSerialLine line;
    ModbusMaster master(line, clock);
    line.setFormat(command.format);
    master.setReplyTimeout(float(command.timeoutMs) / 1000.0f);
    master.setAttempts(command.retries);
    if (!master.TestPort(command.port)) {
        err << "telvane-probe: " << line.lastError() << '\n';
        return 1;
    }

    int status = 0;
    for (int i = 0; i < command.repeat; ++i) {
        const qint32 value = isReadFunction(command.functionCode)
            ? master.ReadRegister(command.functionCode, command.address, command.slave)
            : master.WriteRegister(command.functionCode, command.address, *command.value, command.slave);
        out << resultLine(value, master) << Qt::endl;
        if (value == ModbusMaster::InvalidValue)
            status = 1;
    }
    return status;
}
