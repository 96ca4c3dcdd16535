#include "commandline.h"

#include "storage/atomicfile.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <cstring>

namespace telvane {

namespace {

const QString Description = QStringLiteral(
    "Telvane: supervisore Modbus RTU\n"
    "\n"
    "Senza finestre (--headless), per un impianto senza schermo: avvia l'acquisizione subito e\n"
    "scrive su una riga dello standard output ogni cambio della barra di stato\n"
    "(\"Pannello 2: Acquisizione\"), ogni nuovo allarme (\"Allarme: Soggiorno (14/11/2026 10:15:00)\"),\n"
    "ogni messaggio all'operatore e l'esito di ogni comando; il registro giornaliero in Dati e\n"
    "il cronotermostato funzionano come con le finestre. SIGINT o SIGTERM: si ferma alla fine\n"
    "del ciclo in corso e chiude la porta (uscita 0). Con --communicate e nessuna porta\n"
    "utilizzabile scrive \"Nessuna COM\" ed esce con 1; argomenti errati: uscita 2.\n"
    "\n"
    "  telvane --headless (--simulate | --communicate) [--dir DIR] [--ticks N] [--tick-ms MS]\n"
    "          [--login NOME:PASSWORD] [--command COMANDO ...]\n"
    "  telvane --headless (--simulate | --communicate) [--dir DIR] --ricetta RICETTA\n"
    "\n"
    "Comandi (uno per ciclo, nell'ordine dato; N da 1): \"switch N on\", \"switch N off\",\n"
    "\"door\", \"set N VALORE\" (VALORE con \",\" o \".\"). I comandi chiedono un utente: --login.\n"
    "Con --ricetta invia una ricetta invece di acquisire: \"Estate\" o \"Inverno\" (la ricetta\n"
    "impostata per quel cambio di stagione) oppure un file della cartella Ricetta; scrive l'esito\n"
    "di ogni riga e la stagione attuale, esce con 0 se tutte le righe sono state inviate, con 1\n"
    "altrimenti. Un passo MSGBOX non ha nessuno che risponda e interrompe l'invio.\n"
    "Il dettaglio di ogni scambio Modbus: QT_LOGGING_RULES=\"telvane.*.debug=true\".");

} // namespace

CommandLineOptions::CommandLineOptions()
    : dir(QStringLiteral("dir"), QStringLiteral("Cartella del programma (impostazioni, Dati, Crono, Ricetta)."),
          QStringLiteral("DIR"))
    , simulate(QStringLiteral("simulate"), QStringLiteral("Simula gli strumenti, senza chiederlo all'avvio."))
    , communicate(QStringLiteral("communicate"),
                  QStringLiteral("Comunica con gli strumenti, senza chiederlo all'avvio."))
    , headless(QStringLiteral("headless"), QStringLiteral("Senza finestre: acquisisce e scrive su standard output."))
    , ticks(QStringLiteral("ticks"), QStringLiteral("Con --headless: si ferma dopo N cicli (1..2147483647)."),
            QStringLiteral("N"))
    , tickMs(QStringLiteral("tick-ms"),
             QStringLiteral("Con --headless: durata di un ciclo in ms (1..60000, normale 1000); i periodi "
                            "restano contati in cicli."),
             QStringLiteral("MS"))
    , command(QStringLiteral("command"),
              QStringLiteral("Con --headless: un comando dell'operatore, eseguito dal ciclo (ripetibile)."),
              QStringLiteral("COMANDO"))
    , login(QStringLiteral("login"), QStringLiteral("Con --headless: accede come utente prima di avviare."),
            QStringLiteral("NOME:PASSWORD"))
    , screenshot(QStringLiteral("screenshot"),
                 QStringLiteral("Avvia l'acquisizione, salva l'immagine della finestra principale in FILE ed esce."),
                 QStringLiteral("FILE"))
    , recipe(QStringLiteral("ricetta"),
             QStringLiteral("Con --headless: invia la ricetta (Estate, Inverno o un file in Ricetta) ed esce."),
             QStringLiteral("RICETTA"))
{
}

void CommandLineOptions::addTo(QCommandLineParser &parser) const
{
    parser.setApplicationDescription(Description);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({dir, simulate, communicate, headless, ticks, tickMs, command, login, screenshot, recipe});
}

namespace {

// Whether one of `names` stands among the options (before a "--"), with one or two dashes.
bool optionGiven(int argc, char *argv[], std::initializer_list<const char *> names)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--") == 0)
            break;
        const char *name = argv[i];
        if (name[0] != '-')
            continue;
        name += name[1] == '-' ? 2 : 1;
        for (const char *wanted : names) {
            if (std::strcmp(name, wanted) == 0)
                return true;
        }
    }
    return false;
}

} // namespace

std::optional<ProgramFolder> openProgramFolder(const QCommandLineParser &parser, const CommandLineOptions &options,
                                               QString &problem)
{
    if (!parser.isSet(options.dir)) {
        const ProgramFolder folder = ProgramFolder::besideExecutable();
        removeLeftoverSaveFiles(folder);
        return folder;
    }
    const QString dir = parser.value(options.dir);
    // An empty --dir would quietly mean the current folder: most likely a script whose
    // variable is unset, which must not start a plant wherever it happens to stand.
    if (dir.trimmed().isEmpty()) {
        problem = QStringLiteral("--dir vuoto: serve la cartella dell'impianto");
        return std::nullopt;
    }
    const ProgramFolder folder(dir);
    if (!QDir().mkpath(folder.root()) || !QFileInfo(folder.root()).isDir()) {
        problem = QStringLiteral("--dir \"%1\": impossibile creare la cartella").arg(dir);
        return std::nullopt;
    }
    removeLeftoverSaveFiles(folder);
    return folder;
}

bool headlessRequested(int argc, char *argv[])
{
    return optionGiven(argc, argv, {"headless"});
}

bool informationRequested(int argc, char *argv[])
{
    return optionGiven(argc, argv, {"help", "h", "?", "help-all", "version", "v"});
}

} // namespace telvane
