#include "commands/dooropencommand.h"

#include "base/pause.h"
#include "base/prompts.h"
#include "base/soundplayer.h"
#include "commands/commandrights.h"
#include "commands/commandslog.h"
#include "commands/switchecho.h"
#include "supervisor/runtime.h"

#include <algorithm>

namespace telvane {

namespace {

struct DoorWrite
{
    int functionCode;
    int registerNumber;
    qint32 value;
};

DoorWrite doorWrite(const DoorTable &table, DoorSlot functionSlot, DoorSlot registerSlot, DoorSlot valueSlot)
{
    const int functionCode = table.at(0, functionSlot);
    // Registers above 32767 sit in the 16-bit table as negative numbers.
    return {functionCode, quint16(table.at(0, registerSlot)), switchWriteValue(functionCode, table.at(0, valueSlot))};
}

bool configured(const DoorTable &table)
{
    for (DoorSlot slot : {DoorSlot::OnFunction, DoorSlot::OnRegister, DoorSlot::OffFunction, DoorSlot::OffRegister})
        if (table.at(0, slot) == UnusedSlot)
            return false;
    return true;
}

bool send(Runtime &rt, int slave, const DoorWrite &write, const char *what)
{
    const qint32 echo = rt.services.master.WriteRegister(write.functionCode, write.registerNumber, write.value, slave);
    if (switchEchoConfirms(write.functionCode, write.value, echo))
        return true;
    qCWarning(lcCommands, "Door %s: the instrument echoed %d for %d", what, echo, write.value);
    return false;
}

} // namespace

CommandOutcome DoorOpenCommand(Runtime &rt, Prompts &prompts)
{
    if (!checkCommandRights(rt))
        return CommandOutcome::Refused;

    const DoorTable &table = rt.model.editor.tables.DoorWriteTable;
    if (!configured(table)) {
        qCInfo(lcCommands, "The door opener has no On_w or Off_w: nothing sent");
        return CommandOutcome::NotConfigured;
    }

    rt.display.statusBar.setPanel(StatusBar::MessagePanel, QStringLiteral("Apertura porta..."));
    const int slave = table.at(0, DoorSlot::Address);
    const bool opened = send(rt, slave, doorWrite(table, DoorSlot::OnFunction, DoorSlot::OnRegister, DoorSlot::ValOn),
                             "opening");
    rt.devices.pause.pause(std::max(rt.model.editor.doorPulseMs, 0));
    const bool released = send(
        rt, slave, doorWrite(table, DoorSlot::OffFunction, DoorSlot::OffRegister, DoorSlot::ValOff), "release");

    const QString sound = rt.model.plant.synoptic.doorSound;
    if (!sound.isEmpty())
        rt.devices.sound.play(rt.model.ini.folder().filePath(sound));
    rt.display.statusBar.setPanel(StatusBar::MessagePanel, QString());

    if (opened && released)
        return CommandOutcome::Confirmed;
    const QString title = QStringLiteral("Gestione Apriporta");
    if (!opened)
        prompts.warning(title, QStringLiteral("Attenzione: La porta potrebbe non essere stata aperta a causa di un "
                                              "errore di comunicazione."));
    else
        prompts.warning(title, QStringLiteral("Attenzione: L'apriporta potrebbe non essere stato rilasciato a causa "
                                              "di un errore di comunicazione."));
    return CommandOutcome::Doubtful;
}

} // namespace telvane
