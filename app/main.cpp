#include "commandline.h"
#include "headless.h"

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
    if (headlessRequested(argc, argv))
        return headlessMain(argc, argv);

    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Telvane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TELVANE_VERSION));

    QCommandLineParser parser;
    const CommandLineOptions options;
    options.addTo(parser);
    parser.process(app);

    const ProgramFolder folder = parser.isSet(options.dir) ? ProgramFolder(parser.value(options.dir))
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
