#include "fieldbus/serialformat.h"

#include <QStringList>

namespace telvane {

namespace {

// Fast USB adapters go to a few megabaud; anything above is a typing error.
constexpr int MaxBaudRate = 4'000'000;
constexpr int MaxPortNumber = 255;

template <typename T>
std::optional<T> refuse(QString *whyNot, const QString &reason)
{
    if (whyNot)
        *whyNot = reason;
    return std::nullopt;
}

// A whole number made of digits only: no sign, no blanks inside, no decimals.
std::optional<int> plainNumber(const QString &text)
{
    if (text.isEmpty() || text.size() > 9)
        return std::nullopt;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
    }
    return text.toInt();
}

std::optional<Parity> parityFromLetter(const QString &text)
{
    if (text.size() != 1)
        return std::nullopt;
    switch (text.at(0).toUpper().unicode()) {
    case u'N': return Parity::None;
    case u'E': return Parity::Even;
    case u'O': return Parity::Odd;
    case u'M': return Parity::Mark;
    case u'S': return Parity::Space;
    default: return std::nullopt;
    }
}

std::optional<StopBits> stopBitsFromText(const QString &text)
{
    if (text == u"1")
        return StopBits::One;
    if (text == u"1.5")
        return StopBits::OneAndHalf;
    if (text == u"2")
        return StopBits::Two;
    return std::nullopt;
}

bool isDevicePath(const QString &text)
{
    if (text.size() < 2 || !text.startsWith(u'/') || text.endsWith(u'/'))
        return false;
    for (const QChar c : text) {
        if (c.isSpace() || c.category() == QChar::Other_Control)
            return false;
    }
    return true;
}

} // namespace

std::optional<SerialFormat> parseSerialFormat(const QString &text, QString *whyNot)
{
    const QStringList fields = text.split(u',');
    if (fields.size() != 4) {
        return refuse<SerialFormat>(
            whyNot, QStringLiteral("formato \"%1\": servono velocità, parità, bit di dati e bit di stop "
                                   "separati da virgole (per esempio 9600,N,8,1)")
                        .arg(text));
    }

    SerialFormat format;
    const QString speed = fields.at(0).trimmed();
    const std::optional<int> baudRate = plainNumber(speed);
    if (!baudRate || *baudRate < 1 || *baudRate > MaxBaudRate) {
        return refuse<SerialFormat>(
            whyNot, QStringLiteral("formato \"%1\": velocità \"%2\" non valida").arg(text, speed));
    }
    format.baudRate = *baudRate;

    const QString parityText = fields.at(1).trimmed();
    const std::optional<Parity> parity = parityFromLetter(parityText);
    if (!parity) {
        return refuse<SerialFormat>(
            whyNot, QStringLiteral("formato \"%1\": parità \"%2\" non valida (N, E, O, M o S)")
                        .arg(text, parityText));
    }
    format.parity = *parity;

    const QString dataText = fields.at(2).trimmed();
    const std::optional<int> dataBits = plainNumber(dataText);
    if (!dataBits || *dataBits < 5 || *dataBits > 8) {
        return refuse<SerialFormat>(
            whyNot, QStringLiteral("formato \"%1\": bit di dati \"%2\" non validi (da 5 a 8)")
                        .arg(text, dataText));
    }
    format.dataBits = *dataBits;

    const QString stopText = fields.at(3).trimmed();
    const std::optional<StopBits> stopBits = stopBitsFromText(stopText);
    if (!stopBits) {
        return refuse<SerialFormat>(
            whyNot, QStringLiteral("formato \"%1\": bit di stop \"%2\" non validi (1, 1.5 o 2)")
                        .arg(text, stopText));
    }
    format.stopBits = *stopBits;
    return format;
}

std::optional<QString> resolveSerialPort(const QString &port, QString *whyNot, PortNaming naming)
{
    const QString text = port.trimmed();
    if (const std::optional<int> number = plainNumber(text)) {
        if (*number < 1 || *number > MaxPortNumber) {
            return refuse<QString>(
                whyNot, QStringLiteral("porta \"%1\": il numero va da 1 a %2").arg(port).arg(MaxPortNumber));
        }
        return naming == PortNaming::Windows ? QStringLiteral("COM%1").arg(*number)
                                             : QStringLiteral("/dev/ttyS%1").arg(*number - 1);
    }

    if (naming == PortNaming::Windows) {
        if (text.startsWith(u"COM", Qt::CaseInsensitive)) {
            const std::optional<int> number = plainNumber(text.mid(3));
            if (number && *number >= 1 && *number <= MaxPortNumber)
                return QStringLiteral("COM%1").arg(*number);
        }
        return refuse<QString>(
            whyNot, QStringLiteral("porta \"%1\": serve un numero da 1 a %2 o un nome come COM3")
                        .arg(port).arg(MaxPortNumber));
    }

    if (isDevicePath(text))
        return text;
    return refuse<QString>(
        whyNot, QStringLiteral("porta \"%1\": serve un numero da 1 a %2 o un dispositivo come /dev/ttyUSB0")
                    .arg(port).arg(MaxPortNumber));
}

} // namespace telvane
