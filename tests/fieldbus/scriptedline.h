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
// responder's answer, else silence. A reply is a list of chunks, each arriving a given
// number of milliseconds after the request; chunks of earlier requests that are still on
// their way keep arriving, as on a real line. `yield(ms)` moves the clock to the next
// arrival or by `ms`, whichever comes first, so a test runs through a time-out without
// sleeping. Bytes that arrive while the port is closed are lost.
class ScriptedLine final : public SerialLine
{
public:
    struct Chunk { qint64 afterMs = 0; QByteArray bytes; };

    class Reply
    {
    public:
        Reply() = default; // silence
        // The whole reply as soon as the request is out; implicit, so a responder may
        // simply return the bytes.
        Reply(const QByteArray &bytes) { at(0, bytes); }

        // Adds bytes arriving `afterMs` after the request (noise, a piece of a reply).
        Reply &at(qint64 afterMs, const QByteArray &bytes)
        {
            m_chunks.append({afterMs, bytes});
            return *this;
        }
        // `bytes` cut into pieces of `pieceSize`, the first at `firstMs`, the next ones
        // `stepMs` apart.
        static Reply split(const QByteArray &bytes, int pieceSize, qint64 firstMs, qint64 stepMs)
        {
            Reply reply;
            for (qsizetype from = 0; from < bytes.size(); from += pieceSize, firstMs += stepMs)
                reply.at(firstMs, bytes.mid(from, pieceSize));
            return reply;
        }
        const QList<Chunk> &chunks() const { return m_chunks; }

    private:
        QList<Chunk> m_chunks;
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
    int writesWhileClosed() const { return m_writesWhileClosed; }
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
    void write(const QByteArray &bytes) override
    {
        if (!m_open)
            return void(++m_writesWhileClosed);
        deliverDue();
        m_requests.append(bytes);
        const Reply reply = !m_script.isEmpty() ? m_script.takeFirst() : m_responder ? m_responder(bytes) : Reply();
        for (const Chunk &chunk : reply.chunks())
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
    int m_openCalls = 0, m_closeCalls = 0, m_writesWhileClosed = 0;
};

} // namespace telvane
