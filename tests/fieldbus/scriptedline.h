#pragma once

#include "base/clock.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/serialline.h"

#include <QList>

#include <algorithm>
#include <functional>
#include <utility>

namespace telvane {

// A serial line with a scripted slave behind it, on a ManualClock.
//
// Each request written gets a reply: the next one queued with `script()`, else the
// responder's answer, else silence. Chunks of earlier replies still on their way keep
// arriving, as on a real line. `yield(ms)` moves the clock to the next
// arrival or by `ms`, whichever comes first, so a test runs through a time-out without
// sleeping. Bytes that arrive while the port is closed are lost.
class ScriptedLine final : public SerialLine
{
public:
    struct Chunk { qint64 afterMs = 0; QByteArray bytes; };

    // Silence, or bytes arriving given milliseconds after the request: a reply, pieces of
    // one, noise. Implicit from bytes arriving at once, so a responder may return them.
    struct Reply
    {
        Reply() = default;
        Reply(const QByteArray &bytes) { at(0, bytes); }
        Reply &at(qint64 afterMs, const QByteArray &bytes) { return chunks.append({afterMs, bytes}), *this; }

        QList<Chunk> chunks;
    };

    using Responder = std::function<Reply(const QByteArray &request)>;

    explicit ScriptedLine(ManualClock &clock) : m_clock(clock) {}

    void script(const Reply &reply) { m_script.append(reply); }
    void setResponder(Responder responder) { m_responder = std::move(responder); }
    void setOpenRefused(bool refused, const QString &error = QStringLiteral("Permission denied")) { m_refusal = refused ? error : QString(); }
    // Runs at the start of every yield: the event handlers a real event loop would run.
    void setDuringYield(std::function<void()> handler) { m_duringYield = std::move(handler); }
    // Runs at every open, before it succeeds or fails.
    void setOnOpen(std::function<void()> handler) { m_onOpen = std::move(handler); }

    // `payload` followed by its CRC-16/MODBUS, low byte first.
    static QByteArray withCrc(const QByteArray &payload)
    {
        const quint16 crc = modbusCrc(payload);
        return payload + char(crc & 0xFF) + char(crc >> 8);
    }

    const QList<QByteArray> &requests() const { return m_requests; }
    int openCalls() const { return m_openCalls; }
    int closeCalls() const { return m_closeCalls; }
    const QString &port() const { return m_port; }
    const QString &format() const { return m_format; }

    void setPort(const QString &port) override { m_port = port; }
    bool setFormat(const QString &format) override { m_format = format; return true; }
    bool open() override
    {
        ++m_openCalls;
        if (m_onOpen)
            m_onOpen();
        deliverDue();
        m_lastError = m_refusal;
        return m_open = m_refusal.isEmpty();
    }
    void close() override
    {
        ++m_closeCalls;
        deliverDue();
        m_input.clear();
        m_open = false;
    }
    bool isOpen() const override { return m_open; }
    // Bytes written to a closed port are listed among the requests, and go nowhere.
    void write(const QByteArray &bytes) override
    {
        m_requests.append(bytes);
        if (!m_open)
            return;
        deliverDue();
        const Reply reply = !m_script.isEmpty() ? m_script.takeFirst() : m_responder ? m_responder(bytes) : Reply();
        for (const Chunk &chunk : reply.chunks)
            m_inFlight.append({m_clock.monotonicMs() + chunk.afterMs, chunk.bytes});
        std::stable_sort(m_inFlight.begin(), m_inFlight.end(), [](const Chunk &a, const Chunk &b) { return a.afterMs < b.afterMs; });
        deliverDue();
    }
    qint64 bytesAvailable() override { return deliverDue(), m_input.size(); }
    QByteArray readAll() override { return deliverDue(), std::exchange(m_input, {}); }
    void clearInput() override { deliverDue(), m_input.clear(); }
    void yield(int ms) override
    {
        if (m_duringYield)
            m_duringYield();
        const qint64 now = m_clock.monotonicMs();
        qint64 until = now + qMax(0, ms);
        if (!m_inFlight.isEmpty())
            until = qMin(until, qMax(now, m_inFlight.first().afterMs));
        m_clock.advance(until - now);
        deliverDue();
    }
    QString lastError() const override { return m_lastError; }

private:
    // Moves every arrival that is due into the input, or drops it if the port is closed.
    void deliverDue()
    {
        while (!m_inFlight.isEmpty() && m_inFlight.first().afterMs <= m_clock.monotonicMs()) {
            const Chunk arrival = m_inFlight.takeFirst();
            if (m_open)
                m_input.append(arrival.bytes);
        }
    }

    ManualClock &m_clock;
    QList<Reply> m_script;
    Responder m_responder;
    std::function<void()> m_duringYield;
    std::function<void()> m_onOpen;
    QList<Chunk> m_inFlight; // in arrival order, `afterMs` on the monotonic clock
    QByteArray m_input;

    bool m_open = false;
    QString m_refusal; // the error of every open, empty when it opens
    QString m_lastError, m_port, m_format = QStringLiteral("9600,N,8,1");
    QList<QByteArray> m_requests;
    int m_openCalls = 0, m_closeCalls = 0;
};

} // namespace telvane
