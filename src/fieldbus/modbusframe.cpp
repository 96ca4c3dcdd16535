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

AddressBytes splitAddress(quint16 address)
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

namespace {

float scaleDown(qint32 raw, int decimals)
{
    if (decimals <= 0)
        return static_cast<float>(raw);
    double power = 1.0;
    for (int i = 0; i < qMin(decimals, 9); ++i)
        power *= 10.0;
    return static_cast<float>(raw / power);
}

} // namespace

float DecodeValue(quint8 high, quint8 low, int decimals)
{
    const qint16 raw = static_cast<qint16>((high << 8) | low);
    if (raw == 32767 || raw == -32768)
        return raw;
    return scaleDown(raw, decimals);
}

float decodeUnsignedValue(quint8 high, quint8 low, int decimals)
{
    return scaleDown((high << 8) | low, decimals);
}

bool EncodeValue(const QString &value, int decimals, quint8 *high, quint8 *low)
{
    // Nine fraction digits already overflow 16 bits for any non-zero value; refusing
    // more keeps the padding below bounded.
    if (decimals < 0 || decimals > 9)
        return false;
    const QString text = value.trimmed();
    const bool hasPoint = text.contains(QLatin1Char('.'));
    const bool hasComma = text.contains(QLatin1Char(','));
    if (hasPoint && hasComma)
        return false;

    QString digits = text;
    if (hasPoint || hasComma) {
        const qsizetype separator = text.indexOf(hasPoint ? QLatin1Char('.') : QLatin1Char(','));
        const QString fraction = text.mid(separator + 1) + QString(decimals, QLatin1Char('0'));
        digits = text.left(separator) + fraction.left(decimals);
    } else {
        digits += QString(decimals, QLatin1Char('0'));
    }

    // Only plain ASCII digits after an optional sign: toLongLong alone would also take
    // blanks and other scripts' digits.
    const qsizetype firstDigit = digits.startsWith(QLatin1Char('-')) || digits.startsWith(QLatin1Char('+')) ? 1 : 0;
    if (digits.size() == firstDigit)
        return false;
    for (qsizetype i = firstDigit; i < digits.size(); ++i) {
        if (digits[i] < QLatin1Char('0') || digits[i] > QLatin1Char('9'))
            return false;
    }
    bool ok = false;
    const qlonglong integer = digits.toLongLong(&ok);
    if (!ok || integer < -32768 || integer > 65535)
        return false;

    const quint16 word = static_cast<quint16>(integer & 0xFFFF);
    *high = static_cast<quint8>(word >> 8);
    *low = static_cast<quint8>(word & 0xFF);
    return true;
}

} // namespace telvane
