#include "storage/colortext.h"

namespace telvane {

namespace {

bool isHexDigit(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'f') || (u >= u'A' && u <= u'F');
}

} // namespace

std::optional<quint32> parseColorText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(QLatin1String("&H"), Qt::CaseInsensitive)) {
        QStringView digits = QStringView(trimmed).mid(2);
        if (digits.endsWith(QLatin1Char('&')))
            digits.chop(1);
        // toULongLong would take a sign or "0x"; only bare hex digits are a colour.
        for (QChar c : digits) {
            if (!isHexDigit(c))
                return std::nullopt;
        }
        bool ok = false;
        const qulonglong value = digits.toULongLong(&ok, 16);
        if (!ok || value > 0xFFFFFFFFull)
            return std::nullopt;
        return static_cast<quint32>(value);
    }

    bool ok = false;
    const qlonglong value = trimmed.toLongLong(&ok, 10);
    if (!ok || value < -2147483648LL || value > 0xFFFFFFFFLL)
        return std::nullopt;
    return static_cast<quint32>(value);
}

QString formatColorText(quint32 color)
{
    return QLatin1String("&H") + QString::number(color, 16).toUpper();
}

} // namespace telvane
