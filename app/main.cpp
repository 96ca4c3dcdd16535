#include "storage/programfolder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Telvane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TELVANE_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Telvane: supervisore Modbus RTU"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption dirOption(QStringLiteral("dir"),
                                       QStringLiteral("Cartella del programma (impostazioni, Dati, Crono, Ricetta)."),
                                       QStringLiteral("DIR"));
    parser.addOption(dirOption);
    const QCommandLineOption simulateOption(QStringLiteral("simulate"), QStringLiteral("Simula gli strumenti."));
    const QCommandLineOption communicateOption(QStringLiteral("communicate"), QStringLiteral("Comunica con gli strumenti."));
    parser.addOption(simulateOption);
    parser.addOption(communicateOption);
    parser.process(app);

    const telvane::ProgramFolder folder = parser.isSet(dirOption)
        ? telvane::ProgramFolder(parser.value(dirOption))
        : telvane::ProgramFolder::besideExecutable();
    QTextStream(stdout) << "Cartella del programma: " << folder.root() << Qt::endl;
    return 0;
}
