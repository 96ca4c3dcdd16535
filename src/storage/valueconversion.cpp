#include "storage/valueconversion.h"

#include "storage/numbertext.h"
#include "storage/valuetables.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace telvane {

namespace {

// The operator's number with its decimal separator taken out and the fraction padded or
// cut to `decimals` digits: "21,5" with 2 decimals is "2150". A "," anywhere wins over
// a ".". Without a separator only three zeros are ever added, whatever `decimals` says; values
// written with more decimals have always been scaled that way.
QString scaledDigits(const QString &text, int decimals)
{
    const int fractionDigits = std::max(decimals, 0);
    qsizetype separator = text.indexOf(QLatin1Char(','));
    if (separator < 0)
        separator = text.indexOf(QLatin1Char('.'));
    if (separator < 0)
        return text + QStringLiteral("000").left(fractionDigits);
    const QString fraction = (text.mid(separator + 1) + QStringLiteral("000")).left(fractionDigits);
    return text.left(separator) + fraction;
}

struct Pattern
{
    int minIntegerDigits = 1;
    int decimals = 0;
};

// "###0.000": the zeros before the point are digits always shown, those after it the
// decimals.
Pattern parsePattern(QLatin1String pattern)
{
    Pattern result;
    const qsizetype point = pattern.indexOf(QLatin1Char('.'));
    const QLatin1String integerPart = point < 0 ? pattern : pattern.left(point);
    result.minIntegerDigits = static_cast<int>(integerPart.count(QLatin1Char('0')));
    result.decimals = point < 0 ? 0 : static_cast<int>(pattern.size() - point - 1);
    return result;
}

} // namespace

double registerToValue(double raw, int decimals)
{
    return raw / std::pow(10.0, std::max(decimals, 0));
}

std::optional<qint16> registerFromText(const QString &text, int decimals)
{
    // Padding alone would turn "" or "," into a 0 nobody typed.
    if (std::none_of(text.cbegin(), text.cend(), [](QChar c) { return c.isDigit(); }))
        return std::nullopt;
    const std::optional<double> value = parseNumber(scaledDigits(text, decimals));
    if (!value)
        return std::nullopt;
    const double rounded = std::nearbyint(*value);
    if (rounded < -32768.0 || rounded > 32767.0)
        return std::nullopt;
    return static_cast<qint16>(rounded);
}

qint16 TextToRegister(const QString &text, int decimals)
{
    return registerFromText(text, decimals).value_or(0);
}

float TextToValue(const QString &text, int decimals)
{
    const double value = registerToValue(leadingNumber(scaledDigits(text, decimals)), decimals);
    // Like a register that overflows, a value no float can hold is passed over as 0.
    if (std::fabs(value) > std::numeric_limits<float>::max())
        return 0.0f;
    return static_cast<float>(value);
}

QString formatDecimal(float value, int decimals)
{
    const int index = std::clamp(decimals, 0, static_cast<int>(DecimalFormats.size()) - 1);
    const Pattern pattern = parsePattern(DecimalFormats[index]);
    return formatFixedForUser(value, pattern.decimals, pattern.minIntegerDigits);
}

QString FormatZoneValue(float value, int decimals, const QString &unit)
{
    if (value == InvalidValue)
        return StateTexts[InvalidStateText];
    return formatDecimal(value, decimals) + QLatin1Char(' ') + unit;
}

} // namespace telvane
