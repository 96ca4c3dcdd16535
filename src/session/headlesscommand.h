#pragma once

#include <QString>

#include <optional>

namespace telvane {

// An operator command given to the headless mode on its command line, so that every
// command of the synoptic panel can be tried on a plant without a display.
struct HeadlessCommand
{
    enum class Kind { Switch, DoorOpen, SetValue };

    Kind kind = Kind::DoorOpen;
    int item = -1;    // the switch or zone, from 0
    bool on = false;  // a switch's new state
    QString value;    // a set value as typed; the command itself checks it
    QString text;     // the command as given, blanks tidied, for the report
};

// "switch N on", "switch N off", "door", "set N VALUE": N counts from 1 as the editor
// numbers its items, VALUE takes "," or "." as decimal separator. Words are matched
// without regard to case. Anything else gives nothing, with `error` telling why.
std::optional<HeadlessCommand> parseHeadlessCommand(const QString &text, QString &error);

} // namespace telvane
