#pragma once

#include "base/clock.h"
#include "base/pause.h"
#include "base/soundplayer.h"
#include "fieldbus/scriptedline.h"
#include "supervisor/runtime.h"

#include <QHash>
#include <QSet>
#include <QTemporaryDir>

namespace telvane {

// A fresh supervisor runtime in a temporary program folder, talking over a scripted
// line to a small plant of slaves that answer from a register map. Time is a
// ManualClock that the line's waits and the recorded pauses move on.
class PlantRig
{
public:
    static constexpr int ReplyDelayMs = 5;

    PlantRig();

    // The value an instrument holds; a slave is present once it holds a value.
    void setValue(int slave, int functionCode, int address, qint32 value);
    // Present slaves answer every write with its echo; absent ones stay silent.
    void addSlave(int slave) { m_slaves.insert(slave); }
    void removeSlave(int slave) { m_slaves.remove(slave); }

    // The request a read or write puts on the wire.
    static QByteArray readRequest(int slave, int functionCode, int address);
    static QByteArray writeRequest(int slave, int functionCode, int address, quint16 value);

    // Requests sent since the last call.
    QList<QByteArray> takeRequests();

    QTemporaryDir dir;
    ManualClock clock{QDateTime(QDate(2026, 11, 14), QTime(22, 20, 9))};
    ScriptedLine line{clock};
    RecordingPause pause{&clock};
    RecordingSoundPlayer sound;
    Runtime rt;

private:
    ScriptedLine::Reply answer(const QByteArray &request);

    QSet<int> m_slaves;
    QHash<quint32, qint32> m_values;
    int m_requestsTaken = 0;
};

// Fills one row of a register table the way the communication lists do.
void configureZone(Runtime &rt, int zone, int slave, int decimals, QList<std::pair<int, int>> quantities,
                   std::pair<int, int> rem = {-1, -1});

} // namespace telvane
