#include "supervisor/itemstates.h"

namespace telvane {

void ItemStates::reset()
{
    switches.fill(SwitchState::Undetermined);
    leds.fill(LedLamp{});
    zoneRemote.fill(RemoteState::Unknown);
    switchRemote.fill(RemoteState::Unknown);
    ledRemote.fill(RemoteState::Unknown);
    doorRemote = RemoteState::Unknown;
}

QLatin1String stateText(SwitchState state)
{
    switch (state) {
    case SwitchState::Off:
        return StateTexts[0];
    case SwitchState::On:
        return StateTexts[1];
    case SwitchState::Undetermined:
        break;
    }
    return StateTexts[InvalidStateText];
}

QLatin1String stateText(RemoteState state)
{
    switch (state) {
    case RemoteState::Local:
        return StateTexts[0];
    case RemoteState::Remote:
        return StateTexts[1];
    case RemoteState::Unknown:
        break;
    }
    return StateTexts[InvalidStateText];
}

} // namespace telvane
