#include "config_editor/recipetemplate.h"

#include "storage/atomicfile.h"
#include "storage/plantlimits.h"
#include "storage/programfolder.h"

#include <QDir>
#include <QFileInfo>

namespace telvane {

QString WriteRecipeTemplate(const ProgramFolder &folder)
{
    const QString path = folder.filePath(QLatin1String(RecipeTemplateFileName));
    QDir().mkpath(QFileInfo(path).absolutePath());
    QByteArray text = "[File]\r\nID = Telvane\r\n\r\n\r\n"
                      "[Note]\r\n< Spazio dedicato alle note del cliente >\r\n\r\n\r\n";
    for (int zone = 1; zone <= MaxZones; ++zone) {
        // The reader waits 200 ms between writes when "Intervallo" is missing; the
        // template proposes 150. "Linee =0" is spelled as the plants' recipes have it.
        text += QStringLiteral("[Zona %1]\r\nIntervallo = 150\r\nLinee =0\r\n").arg(zone, 2, 10, QLatin1Char('0')).toUtf8();
        if (zone < MaxZones)
            text += "\r\n\r\n";
    }
    return writeFileAtomically(path, text) ? path : QString();
}

} // namespace telvane
