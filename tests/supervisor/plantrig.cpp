#include "plantrig.h"

namespace telvane {

namespace {

quint32 key(int slave, int functionCode, int address)
{
    return quint32(slave) << 24 | quint32(functionCode) << 16 | quint32(address);
}

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray out;
    for (int value : values)
        out.append(char(value & 0xFF));
    return out;
}

} // namespace

PlantRig::PlantRig()
    : rt(ProgramFolder(dir.path()), line, clock, pause, sound)
{
    rt.master.setAttempts(1);
    rt.master.setReplyTimeout(0.1f);
    rt.master.setCommunicate(true);
    rt.editor.comm.portAvailable = true;
    line.setResponder([this](const QByteArray &request) { return answer(request); });
}

void PlantRig::setValue(int slave, int functionCode, int address, qint32 value)
{
    m_slaves.insert(slave);
    m_values.insert(key(slave, functionCode, address), value);
}

QByteArray PlantRig::readRequest(int slave, int functionCode, int address)
{
    return ScriptedLine::withCrc(bytes({slave, functionCode, address >> 8, address, 0, 1}));
}

QByteArray PlantRig::writeRequest(int slave, int functionCode, int address, quint16 value)
{
    return ScriptedLine::withCrc(bytes({slave, functionCode, address >> 8, address, value >> 8, value}));
}

QList<QByteArray> PlantRig::takeRequests()
{
    const QList<QByteArray> fresh = line.requests().mid(m_requestsTaken);
    m_requestsTaken = int(line.requests().size());
    return fresh;
}

ScriptedLine::Reply PlantRig::answer(const QByteArray &request)
{
    // An instrument takes a few milliseconds to answer, so every exchange waits once.
    const auto reply = [](const QByteArray &bytes) { return ScriptedLine::Reply().at(ReplyDelayMs, bytes); };
    if (request.size() != 8)
        return {};
    const int slave = quint8(request[0]);
    const int functionCode = quint8(request[1]);
    const int address = quint8(request[2]) << 8 | quint8(request[3]);
    if (!m_slaves.contains(slave))
        return {};
    if (functionCode == 5 || functionCode == 6 || functionCode == 8)
        return reply(request);
    const auto value = m_values.constFind(key(slave, functionCode, address));
    if (value == m_values.constEnd())
        return {};
    if (functionCode == 1 || functionCode == 2)
        return reply(ScriptedLine::withCrc(bytes({slave, functionCode, 1, *value})));
    return reply(ScriptedLine::withCrc(bytes({slave, functionCode, 2, *value >> 8, *value})));
}

void configureZone(Runtime &rt, int zone, int slave, int decimals, QList<std::pair<int, int>> quantities,
                   std::pair<int, int> rem)
{
    ZoneTable &table = rt.editor.tables.ZoneReadTable;
    table.clearRow(zone);
    table.set(zone, ZoneSlot::Address, qint16(slave));
    table.set(zone, ZoneSlot::Decimals, qint16(decimals));
    table.set(zone, ZoneSlot::RemFunction, qint16(rem.first));
    table.set(zone, ZoneSlot::RemRegister, qint16(rem.second));
    for (int k = 0; k < quantities.size(); ++k) {
        table.set(zone, zoneQuantityFunctionSlot(k), qint16(quantities[k].first));
        table.set(zone, zoneQuantityRegisterSlot(k), qint16(quantities[k].second));
    }
}

} // namespace telvane
