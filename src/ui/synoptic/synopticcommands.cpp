#include "ui/synoptic/synopticcommands.h"

#include "commands/plantcommands.h"
#include "ui/synoptic/sinottico.h"

namespace telvane {

void connectSynopticCommands(Sinottico &synoptic, PlantCommands &commands)
{
    QObject::connect(&synoptic, &Sinottico::switchOnImageClicked, &synoptic,
                     [&commands](int sw) { commands.switchOnImageClicked(sw); });
    QObject::connect(&synoptic, &Sinottico::switchOffImageClicked, &synoptic,
                     [&commands](int sw) { commands.switchOffImageClicked(sw); });
    QObject::connect(&synoptic, &Sinottico::doorOpenerClicked, &synoptic,
                     [&commands] { commands.doorOpenerClicked(); });
    QObject::connect(&synoptic, &Sinottico::zoneValueDoubleClicked, &synoptic,
                     [&commands](int zone, const QString &shownText) {
                         commands.zoneValueDoubleClicked(zone, shownText);
                     });
}

} // namespace telvane
