// Arbitrary bytes as a slave's reply to one read or write: nothing may crash, and the
// result is either the invalid marker or a value that fits a 16-bit register.

#include "base/clock.h"
#include "fieldbus/modbusframe.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/serialline.h"

#include <QtGlobal>

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace telvane;

namespace {

// Hands the reply over a few bytes per wake-up, so replies split across reads and
// replies cut by the time-out are both reached.
class FuzzLine final : public SerialLine
{
public:
    FuzzLine(ManualClock &clock, QByteArray reply, int pieceSize)
        : m_clock(clock), m_reply(std::move(reply)), m_pieceSize(pieceSize)
    {
    }

    void setPort(const QString &) override {}
    bool setFormat(const QString &) override { return true; }
    bool open() override { return m_open = true; }
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &) override
    {
        m_pending = m_reply;
        deliver();
    }
    qint64 bytesAvailable() override { return m_input.size(); }
    QByteArray readAll() override
    {
        const QByteArray bytes = m_input;
        m_input.clear();
        return bytes;
    }
    void clearInput() override { m_input.clear(); }
    void yield(int ms) override
    {
        m_clock.advance(qMin(ms, 150));
        deliver();
    }
    QString lastError() const override { return {}; }

private:
    void deliver()
    {
        const qsizetype count = m_pieceSize > 0 ? qMin<qsizetype>(m_pieceSize, m_pending.size()) : m_pending.size();
        m_input.append(m_pending.left(count));
        m_pending.remove(0, count);
    }

    ManualClock &m_clock;
    QByteArray m_reply;
    QByteArray m_pending;
    QByteArray m_input;
    int m_pieceSize;
    bool m_open = false;
};

void quiet(QtMsgType, const QMessageLogContext &, const QString &) {}

void check(const BusOutcome &outcome)
{
    if (outcome.answered() != (outcome.value != ModbusMaster::InvalidValue))
        std::abort();
    if (outcome.answered() && (outcome.value < -32768 || outcome.value > 65535))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(quiet);
    return 0;
}

// Layout: operation byte (read or write, function code, sign of the value, slave,
// sealed CRC), piece size, two bytes of the value written, then the reply.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    const uint8_t operation = data[0];
    const int pieceSize = data[1] % 9;
    if (size < 4)
        return 0;
    const qint32 word = (data[2] << 8) | data[3];
    const qint32 value = (operation & 0x08) ? qint32(qint16(word)) : word;
    QByteArray reply(reinterpret_cast<const char *>(data + 4), qsizetype(size - 4));

    static const int readCodes[] = {1, 2, 3, 4};
    static const int writeCodes[] = {5, 6, 8, 8};
    const bool write = operation & 1;
    const int functionCode = (write ? writeCodes : readCodes)[(operation >> 1) & 3];
    const int slave = (operation >> 5) & 1; // broadcast or an addressed slave

    // Random bytes almost never carry a good CRC; seal some replies so the decoding
    // behind the CRC check is reached too.
    const int length = expectedReplyLength(functionCode);
    if ((operation & 0x40) && reply.size() >= length) {
        const quint16 crc = modbusCrc(reply.left(length - 2));
        reply[length - 2] = char(crc & 0xFF);
        reply[length - 1] = char(crc >> 8);
    }

    ManualClock clock;
    FuzzLine line(clock, reply, pieceSize);
    ModbusMaster master(line, clock);
    master.setReplyTimeout(0.5f);
    master.OpenPort();
    check(write ? master.WriteItem(functionCode, 0x12, 0x34, value, slave)
                : master.ReadItem(functionCode, 0x12, 0x34, slave));
    master.ClosePort();

    // The whole operation, attempts included, on the same reply.
    master.setAttempts(2);
    check(write ? master.write(functionCode, 0x1234, 0xFF00, slave) : master.read(functionCode, 0x1234, slave));
    return 0;
}
