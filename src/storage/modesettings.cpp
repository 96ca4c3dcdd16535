#include "storage/modesettings.h"

namespace telvane {

ModeSettings LoadSettings(IniStore &store)
{
    ModeSettings settings;
    settings.CivilMode = store.ReadModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"),
                                           QStringLiteral("0"))
                         != QLatin1String("0");
    if (settings.CivilMode) {
        settings.CurrentIniName = QStringLiteral("Telvane1.ini");
        settings.seasonCaption = QStringLiteral("Stagione");
        settings.scheduleCaption = QStringLiteral("Impostazioni cronotermostato");
    } else {
        settings.CurrentIniName = QStringLiteral("Telvane2.ini");
        settings.seasonCaption = QStringLiteral("Ricette");
        settings.scheduleCaption = QStringLiteral("Impostazioni orologio");
    }
    store.setCurrentIniName(settings.CurrentIniName);
    return settings;
}

ModeSettings changeSettingsFile(IniStore &store, bool currentlyCivil)
{
    store.WriteModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"),
                       currentlyCivil ? QStringLiteral("0") : QStringLiteral("1"));
    return LoadSettings(store);
}

} // namespace telvane
