#pragma once

#include <QByteArray>
#include <QString>

namespace telvane {

// Modbus RTU frames without any I/O: CRC, requests, reply checks and the register
// value conversions. Register values are 16-bit integers with an implied number of
// decimals per instrument.

// CRC-16/MODBUS (initial 0xFFFF, reflected polynomial 0xA001). The frame carries it
// low byte first.
quint16 modbusCrc(const QByteArray &bytes);

// A 16-bit item address as its two bytes on the wire, high byte first.
struct AddressBytes
{
    quint8 high = 0;
    quint8 low = 0;
};
AddressBytes splitAddress(quint16 address);

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

// The signed register value scaled down by `decimals`. 32767 and -32768 are what
// instruments send for "over range" and "under range", so they come back unscaled.
float DecodeValue(quint8 high, quint8 low, int decimals);

// The register read as unsigned (0..65535) and scaled down by `decimals`: how a
// write's echo is read back when the value written was not negative, so that a coil
// written with 65280 echoes 65280.
float decodeUnsignedValue(quint8 high, quint8 low, int decimals);

// `value` (trimmed text, "." or "," as decimal separator, not both) as the register
// integer for `decimals`: the integer part followed by the first `decimals` digits of
// the fraction, padded with zeros and never rounded ("21,57" with 1 decimal is 215).
// The result must fit 16 bits, signed or unsigned (-32768..65535); negative values go
// on the wire as two's complement. False, and the bytes untouched, for anything else.
bool EncodeValue(const QString &value, int decimals, quint8 *high, quint8 *low);

} // namespace telvane
