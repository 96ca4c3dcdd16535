#include "storage/chronofiles.h"
#include "storage/chronoschedule.h"
#include "storage/displayresets.h"
#include "storage/holidaylist.h"
#include "storage/inistore.h"
#include "storage/modesettings.h"
#include "storage/plantconfig.h"
#include "storage/plantconfigloader.h"
#include "storage/programfolder.h"
#include "storage/valuetables.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

using namespace telvane;

namespace {

void printPlant(QTextStream &out, const ModeSettings &mode, const PlantConfig &plant, const HolidayList &holidays)
{
    out << "Modo: " << (mode.CivilMode ? "civile" : "industriale") << " (" << mode.CurrentIniName << ")\n";
    out << "Zone: " << plant.zoneCount() << '\n';
    for (const Zona &zone : plant.zones)
        out << "  " << zone.name << '\n';
    out << "Interruttori: " << plant.switchCount() << '\n';
    for (const Interruttore &item : plant.switches)
        out << "  " << item.name << '\n';
    out << "LED: " << plant.ledCount() << '\n';
    for (const LED &item : plant.leds)
        out << "  " << item.name << '\n';
    if (plant.apriporta.present)
        out << "Apriporta: " << plant.apriporta.name << '\n';
    if (plant.webcam.present)
        out << "Webcam: " << plant.webcam.name << '\n';
    out << "Sinottico: " << plant.synoptic.picturePath << '\n';
    out << "Festivita: " << holidays.rowCount() << Qt::endl;
}

} // namespace

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
    const QCommandLineOption simulateOption(QStringLiteral("simulate"), QStringLiteral("Simula gli strumenti."));
    const QCommandLineOption communicateOption(QStringLiteral("communicate"), QStringLiteral("Comunica con gli strumenti."));
    parser.addOption(dirOption);
    parser.addOption(simulateOption);
    parser.addOption(communicateOption);
    parser.process(app);

    const ProgramFolder folder = parser.isSet(dirOption) ? ProgramFolder(parser.value(dirOption))
                                                         : ProgramFolder::besideExecutable();
    IniStore store(folder);
    for (const char *name : {"Dati", "Crono", "Ricetta"})
        store.EnsureFolder(QString::fromLatin1(name));
    const ModeSettings mode = LoadSettings(store);

    PlantConfig plant;
    DisplayResets resets;
    LoadPlantConfig(store, plant, resets);

    ValueTables values;
    ChronoSchedule schedule;
    InitValueTables(values, schedule);
    HolidayList holidays;
    LoadChronoFiles(folder, schedule, holidays);

    QTextStream out(stdout);
    out << "Cartella del programma: " << folder.root() << '\n';
    printPlant(out, mode, plant, holidays);
    return 0;
}
