#pragma once

#include "windowrig.h"

#include <QByteArray>

namespace telvane {

// The main window over an industrial plant whose settings file holds `settings`, the
// chart's keys and the zones' sections included.
inline void startUpWithSettings(WindowRig &rig, const QByteArray &settings)
{
    QVERIFY(rig.plant.rt.model.ini.WriteModeKey(QStringLiteral("Generale"), QStringLiteral("Modo"), QStringLiteral("0")));
    writeTestFile(rig.plant.rt.model.ini.folder().filePath(QStringLiteral("Telvane2.ini")), settings);
    rig.startUp();
}

} // namespace telvane
