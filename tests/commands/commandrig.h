#pragma once

#include "supervisor/plantrig.h"

#include "base/prompts.h"

namespace telvane {

// A plant rig with prompts, and the rows of the write tables the commands use.
struct CommandRig : PlantRig
{
    RecordingPrompts prompts;

    void login(bool technician, bool administrator)
    {
        rt.user.IsTechnician = technician;
        rt.user.IsAdministrator = administrator;
    }

    // `on` and `off` are {function code, register}.
    void configureSwitchWrite(int sw, int slave, std::pair<int, int> on, std::pair<int, int> off, int valOn,
                              int valOff)
    {
        SwitchTable &table = rt.editor.tables.SwitchWriteTable;
        table.clearRow(sw);
        table.set(sw, SwitchSlot::Address, qint16(slave));
        table.set(sw, SwitchSlot::Decimals, 0);
        table.set(sw, SwitchSlot::OnFunction, qint16(on.first));
        table.set(sw, SwitchSlot::OnRegister, qint16(on.second));
        table.set(sw, SwitchSlot::OffFunction, qint16(off.first));
        table.set(sw, SwitchSlot::OffRegister, qint16(off.second));
        table.set(sw, SwitchSlot::ValOn, qint16(valOn));
        table.set(sw, SwitchSlot::ValOff, qint16(valOff));
    }

    void configureDoorWrite(int slave, std::pair<int, int> on, std::pair<int, int> off, int valOn, int valOff)
    {
        DoorTable &table = rt.editor.tables.DoorWriteTable;
        table.clearRow(0);
        table.set(0, DoorSlot::Address, qint16(slave));
        table.set(0, DoorSlot::Decimals, 0);
        table.set(0, DoorSlot::OnFunction, qint16(on.first));
        table.set(0, DoorSlot::OnRegister, qint16(on.second));
        table.set(0, DoorSlot::OffFunction, qint16(off.first));
        table.set(0, DoorSlot::OffRegister, qint16(off.second));
        table.set(0, DoorSlot::ValOn, qint16(valOn));
        table.set(0, DoorSlot::ValOff, qint16(valOff));
    }

    // One write register of a zone; the zone joins the plant if it was not in it.
    void configureZoneWrite(int zone, int slave, int decimals, int quantity, int functionCode, int address)
    {
        if (rt.plant.zones.size() <= zone)
            rt.plant.zones.resize(zone + 1);
        ZoneTable &table = rt.editor.tables.ZoneWriteTable;
        table.set(zone, ZoneSlot::Address, qint16(slave));
        table.set(zone, ZoneSlot::Decimals, qint16(decimals));
        table.set(zone, zoneQuantityFunctionSlot(quantity), qint16(functionCode));
        table.set(zone, zoneQuantityRegisterSlot(quantity), qint16(address));
    }

    // Every write is answered with `echo` in place of the value written; reads go
    // unanswered.
    void echoWrites(quint16 echo)
    {
        line.setResponder([echo](const QByteArray &request) -> ScriptedLine::Reply {
            if (request.size() != 8)
                return {};
            QByteArray reply = request.left(4);
            reply.append(char(echo >> 8));
            reply.append(char(echo & 0xFF));
            return ScriptedLine::Reply().at(ReplyDelayMs, ScriptedLine::withCrc(reply));
        });
    }
};

} // namespace telvane
