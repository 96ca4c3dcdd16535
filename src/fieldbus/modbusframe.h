#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace telvane {

// Modbus RTU frames without any I/O: CRC, requests, reply checks and the register
// value conversions. Register values are 16-bit integers with an implied number of
// decimals per instrument.

// CRC-16/MODBUS (initial 0xFFFF, reflected polynomial 0xA001). The frame carries it
// low byte first.
quint16 modbusCrc(const QByteArray &bytes);

// A 16-bit word (an item address, a value) as its two bytes on the wire, high byte first.
struct WordBytes
{
    quint8 high = 0;
    quint8 low = 0;
};
WordBytes splitAddress(quint16 address);

// A request of `length` bytes: slave, function code, the first `length` - 4 bytes of
// `data` (zeros if `data` is shorter), CRC low byte, CRC high byte.
QByteArray BuildFrame(int length, quint8 slave, quint8 functionCode, const QByteArray &data);

// Whether the last two of the first `length` bytes of `reply` are the CRC of the bytes
// before them. False when the reply is shorter than `length` or `length` is under 3.
bool CheckReplyCrc(const QByteArray &reply, int length);

// Bytes a full reply to a single-item request of `functionCode` takes: 6 for 1 and 2,
// 7 for 3 and 4, 8 for the writes 5, 6 and 8 (they echo the request); 0 for any other
// code.
int expectedReplyLength(int functionCode);
bool isReadFunction(int functionCode);
bool isWriteFunction(int functionCode);

// The register as a signed 16-bit value, as reads give it to their callers.
qint16 DecodeValue(quint8 high, quint8 low);

// The register as unsigned (0..65535): how a write's echo is read back when the value
// written was not negative, so that a coil written with 65280 echoes 65280.
quint16 decodeUnsignedValue(quint8 high, quint8 low);

// The two bytes of a value to write, high byte first: -32768..65535, negative values as
// two's complement. Nothing for a value that does not fit 16 bits.
std::optional<WordBytes> EncodeValue(qint32 value);

} // namespace telvane
