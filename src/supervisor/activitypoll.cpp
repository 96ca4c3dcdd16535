#include "supervisor/activitypoll.h"

#include "fieldbus/modbusmaster.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisorlog.h"

namespace telvane {

bool ActivityPoll(Runtime &rt)
{
    const LineProbe &probe = rt.model.editor.lineProbe;
    if (probe.address < 1 || probe.address > 255 || probe.functionCode < 1 || probe.functionCode > 4)
        return false;
    const BusOutcome outcome = rt.services.master.read(probe.functionCode, quint16(probe.registerNumber), probe.address);
    // A refusal for a busy line says nothing of the line.
    if (outcome.result == BusResult::LineBusy)
        return false;
    const bool answered = outcome.answered();
    if (answered != rt.display.lineAnswering) {
        rt.display.lineAnswering = answered;
        if (answered)
            qCInfo(lcSupervisor, "The line answers again (instrument %d)", probe.address);
        else
            qCWarning(lcSupervisor, "The line is silent: instrument %d did not answer the activity poll",
                      probe.address);
    }
    return answered;
}

} // namespace telvane
