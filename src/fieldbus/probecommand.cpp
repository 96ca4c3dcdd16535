#include "fieldbus/probecommand.h"

#include "fieldbus/modbusframe.h"
#include "fieldbus/serialformat.h"

#include <QCommandLineParser>

#include <limits>

namespace telvane {

namespace {

const QString HelpEpilogue = QStringLiteral(
    "\n"
    "Codici funzione: 1 bobina, 2 ingresso digitale, 3 registro di mantenimento,\n"
    "4 registro di ingresso (letture); 5 bobina (65280 = acceso, 0 = spento),\n"
    "6 registro, 8 diagnostica (scritture, richiedono --value).\n"
    "Lo slave 0 è la trasmissione a tutti: nessuno risponde.\n"
    "\n"
    "Per ogni ripetizione stampa una riga: il valore letto o l'eco della scrittura,\n"
    "seguito dalla descrizione del guasto se c'è (\" (Exception)\": il valore è il\n"
    "codice di eccezione dello strumento; \" Time out\"; \" Broadcast\").\n"
    "\n"
    "Stato di uscita: 0 se ogni risposta è valida, 1 se almeno una dà -99999 o la porta\n"
    "non si apre, 2 se gli argomenti sono sbagliati.\n"
    "\n"
    "Esempio: telvane-probe --port /dev/ttyUSB0 --slave 5 --fc 3 --address 1\n");

// Parses option `name` as a whole number in [minimum, maximum]; on failure `error`
// says why and nothing is returned.
std::optional<int> number(const QCommandLineParser &parser, const QString &name, int minimum, int maximum,
                          QString *error)
{
    const QString text = parser.value(name).trimmed();
    bool ok = false;
    const int value = text.toInt(&ok, 10);
    if (!ok) {
        *error = QStringLiteral("--%1 \"%2\" non è un numero intero.").arg(name, parser.value(name));
        return std::nullopt;
    }
    if (value < minimum || value > maximum) {
        *error = QStringLiteral("--%1 %2 non valido: da %3 a %4.").arg(name).arg(value).arg(minimum).arg(maximum);
        return std::nullopt;
    }
    return value;
}

ProbeCommandLine refused(const QString &message)
{
    ProbeCommandLine result;
    result.outcome = ProbeCommandLine::Outcome::Error;
    result.message = message;
    return result;
}

} // namespace

ProbeCommandLine parseProbeCommand(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Una lettura o scrittura Modbus RTU con il master di Telvane, per collaudare una linea."));
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("port"), QStringLiteral("Porta seriale: un numero (1 = COM1 o /dev/ttyS0) o un dispositivo (/dev/ttyUSB0)."), QStringLiteral("P")},
        {QStringLiteral("format"), QStringLiteral("Velocità, parità, bit di dati, bit di stop (predefinito 9600,N,8,1)."), QStringLiteral("F")},
        {QStringLiteral("timeout"), QStringLiteral("Attesa della risposta in millisecondi, da 1 a 60000 (predefinito 500)."), QStringLiteral("MS")},
        {QStringLiteral("retry"), QStringLiteral("Tentativi per operazione, da 1 a 100 (predefinito 1)."), QStringLiteral("N")},
        {QStringLiteral("slave"), QStringLiteral("Indirizzo dello strumento, da 0 a 255."), QStringLiteral("S")},
        {QStringLiteral("fc"), QStringLiteral("Codice funzione: 1, 2, 3, 4, 5, 6 o 8."), QStringLiteral("C")},
        {QStringLiteral("address"), QStringLiteral("Indirizzo del dato, da 0 a 65535."), QStringLiteral("A")},
        {QStringLiteral("value"), QStringLiteral("Valore da scrivere, da -32768 a 65535 (solo codici 5, 6 e 8)."), QStringLiteral("V")},
        {QStringLiteral("repeat"), QStringLiteral("Ripetizioni, da 1 a 1000000 (predefinito 1)."), QStringLiteral("N")},
        {QStringLiteral("verbose"), QStringLiteral("Mostra il registro del master (porte, transazioni fallite).")},
    });

    if (!parser.parse(arguments))
        return refused(parser.errorText());
    if (parser.isSet(help)) {
        ProbeCommandLine result;
        result.outcome = ProbeCommandLine::Outcome::Help;
        result.message = parser.helpText() + HelpEpilogue;
        return result;
    }
    if (!parser.positionalArguments().isEmpty())
        return refused(QStringLiteral("Argomento inatteso: \"%1\".").arg(parser.positionalArguments().constFirst()));

    for (const char *required : {"port", "slave", "fc", "address"}) {
        if (!parser.isSet(QLatin1String(required)))
            return refused(QStringLiteral("Manca --%1.").arg(QLatin1String(required)));
    }

    ProbeCommand command;
    QString error;
    command.port = parser.value(QStringLiteral("port")).trimmed();
    if (!resolveSerialPort(command.port, &error))
        return refused(QStringLiteral("--port: %1.").arg(error));
    if (parser.isSet(QStringLiteral("format"))) {
        command.format = parser.value(QStringLiteral("format"));
        if (!parseSerialFormat(command.format, &error))
            return refused(QStringLiteral("--format: %1.").arg(error));
    }

    const auto take = [&](const char *name, int minimum, int maximum, int *into) {
        if (const std::optional<int> value = number(parser, QLatin1String(name), minimum, maximum, &error)) {
            *into = *value;
            return true;
        }
        return false;
    };
    if ((parser.isSet(QStringLiteral("timeout")) && !take("timeout", 1, 60000, &command.timeoutMs))
        || (parser.isSet(QStringLiteral("retry")) && !take("retry", 1, 100, &command.retries))
        || (parser.isSet(QStringLiteral("repeat")) && !take("repeat", 1, 1000000, &command.repeat))
        || !take("slave", 0, 255, &command.slave)
        || !take("fc", std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), &command.functionCode)
        || !take("address", 0, 0xFFFF, &command.address))
        return refused(error);

    const bool read = isReadFunction(command.functionCode);
    if (!read && !isWriteFunction(command.functionCode)) {
        return refused(QStringLiteral("--fc %1 non valido: 1, 2, 3, 4 per leggere, 5, 6, 8 per scrivere.")
                           .arg(command.functionCode));
    }
    if (read && parser.isSet(QStringLiteral("value")))
        return refused(QStringLiteral("--value non si usa con una lettura (--fc %1).").arg(command.functionCode));
    if (!read) {
        if (!parser.isSet(QStringLiteral("value")))
            return refused(QStringLiteral("Manca --value: la scrittura con --fc %1 lo richiede.").arg(command.functionCode));
        int value = 0;
        if (!take("value", -32768, 0xFFFF, &value))
            return refused(error);
        command.value = value;
    }
    command.verbose = parser.isSet(QStringLiteral("verbose"));

    ProbeCommandLine result;
    result.outcome = ProbeCommandLine::Outcome::Run;
    result.command = command;
    return result;
}

} // namespace telvane
