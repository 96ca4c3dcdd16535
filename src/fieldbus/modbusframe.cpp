#include "fieldbus/modbusframe.h"

namespace telvane {

quint16 modbusCrc(const QByteArray &bytes)
{
    quint16 crc = 0xFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            const bool carry = crc & 1u;
            crc >>= 1;
            if (carry)
                crc ^= 0xA001;
        }
    }
    return crc;
}

WordBytes splitAddress(quint16 address)
{
    return {static_cast<quint8>(address >> 8), static_cast<quint8>(address & 0xFF)};
}

QByteArray BuildFrame(int length, quint8 slave, quint8 functionCode, const QByteArray &data)
{
    const int dataLength = qMax(0, length - 4);
    QByteArray frame;
    frame.reserve(dataLength + 4);
    frame.append(static_cast<char>(slave));
    frame.append(static_cast<char>(functionCode));
    frame.append(data.left(dataLength));
    frame.append(dataLength - qMin<int>(dataLength, data.size()), '\0');
    const quint16 crc = modbusCrc(frame);
    frame.append(static_cast<char>(crc & 0xFF));
    frame.append(static_cast<char>(crc >> 8));
    return frame;
}

bool CheckReplyCrc(const QByteArray &reply, int length)
{
    if (length < 3 || reply.size() < length)
        return false;
    const quint16 crc = modbusCrc(reply.left(length - 2));
    return static_cast<quint8>(reply[length - 2]) == (crc & 0xFF)
        && static_cast<quint8>(reply[length - 1]) == (crc >> 8);
}

bool isReadFunction(int functionCode)
{
    return functionCode >= 1 && functionCode <= 4;
}

bool isWriteFunction(int functionCode)
{
    return functionCode == 5 || functionCode == 6 || functionCode == 8;
}

int expectedReplyLength(int functionCode)
{
    switch (functionCode) {
    case 1:
    case 2:
        return 6; // slave, code, byte count, status byte, CRC
    case 3:
    case 4:
        return 7; // slave, code, byte count, register high and low, CRC
    case 5:
    case 6:
    case 8:
        return 8; // the request echoed
    default:
        return 0;
    }
}

qint16 DecodeValue(quint8 high, quint8 low)
{
    return static_cast<qint16>((high << 8) | low);
}

quint16 decodeUnsignedValue(quint8 high, quint8 low)
{
    return static_cast<quint16>((high << 8) | low);
}

std::optional<WordBytes> EncodeValue(qint32 value)
{
    if (value < -32768 || value > 0xFFFF)
        return std::nullopt;
    return splitAddress(static_cast<quint16>(value & 0xFFFF));
}

} // namespace telvane
