#include "supervisor/chartlogging.h"

#include "supervisor/runtime.h"
#include "supervisor/supervisorlog.h"

namespace telvane {

void MenuVediGraf(Runtime &rt)
{
    const bool on = !rt.display.ChartLoggingOption;
    rt.display.ChartLoggingOption = on;
    rt.model.editor.options.chart = on;
    if (!rt.model.ini.WriteIniKey(QStringLiteral("Generale"), QStringLiteral("Grafico"), on ? QStringLiteral("1") : QStringLiteral("0")))
        qCWarning(lcSupervisor) << "The option \"Grafico\" could not be saved: the next editor reload turns the chart"
                                << (on ? "off" : "on") << "again";
}

} // namespace telvane
