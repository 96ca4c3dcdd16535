#include "fieldbus/scriptedline.h"

#include "fieldbus/modbusframe.h"

#include <algorithm>
#include <utility>

namespace telvane {

ScriptedLine::Reply ScriptedLine::Reply::split(const QByteArray &bytes, int pieceSize, qint64 firstMs,
                                               qint64 stepMs)
{
    Reply reply;
    qint64 atMs = firstMs;
    for (qsizetype from = 0; from < bytes.size(); from += pieceSize, atMs += stepMs)
        reply.at(atMs, bytes.mid(from, pieceSize));
    return reply;
}

QByteArray ScriptedLine::withCrc(const QByteArray &payload)
{
    const quint16 crc = modbusCrc(payload);
    QByteArray frame = payload;
    frame.append(static_cast<char>(crc & 0xFF));
    frame.append(static_cast<char>(crc >> 8));
    return frame;
}

bool ScriptedLine::open()
{
    ++m_openCalls;
    if (m_onOpen)
        m_onOpen();
    deliverDue();
    if (m_openRefused) {
        m_lastError = m_refusal;
        return false;
    }
    m_lastError.clear();
    m_open = true;
    return true;
}

void ScriptedLine::close()
{
    ++m_closeCalls;
    deliverDue();
    m_input.clear();
    m_open = false;
}

void ScriptedLine::write(const QByteArray &bytes)
{
    if (!m_open) {
        ++m_writesWhileClosed;
        return;
    }
    deliverDue();
    m_requests.append(bytes);
    Reply reply;
    if (!m_script.isEmpty())
        reply = m_script.takeFirst();
    else if (m_responder)
        reply = m_responder(bytes);
    const qint64 now = m_clock.monotonicMs();
    for (const Chunk &chunk : reply.chunks())
        m_inFlight.append({now + chunk.afterMs, chunk.bytes});
    std::stable_sort(m_inFlight.begin(), m_inFlight.end(),
                     [](const Arrival &a, const Arrival &b) { return a.atMs < b.atMs; });
    deliverDue();
}

qint64 ScriptedLine::bytesAvailable()
{
    deliverDue();
    return m_input.size();
}

QByteArray ScriptedLine::readAll()
{
    deliverDue();
    return std::exchange(m_input, {});
}

void ScriptedLine::clearInput()
{
    deliverDue();
    m_input.clear();
}

void ScriptedLine::yield(int ms)
{
    if (m_duringYield)
        m_duringYield();
    const qint64 now = m_clock.monotonicMs();
    qint64 until = now + qMax(0, ms);
    if (!m_inFlight.isEmpty())
        until = qMin(until, qMax(now, m_inFlight.first().atMs));
    m_clock.advance(until - now);
    deliverDue();
}

void ScriptedLine::deliverDue()
{
    const qint64 now = m_clock.monotonicMs();
    while (!m_inFlight.isEmpty() && m_inFlight.first().atMs <= now) {
        const Arrival arrival = m_inFlight.takeFirst();
        if (m_open)
            m_input.append(arrival.bytes);
    }
}

} // namespace telvane
