#include "storage/numbertext.h"

#include <QLocale>

#include <cmath>
#include <limits>

namespace telvane {

namespace {

bool isDecimalSeparator(QChar c)
{
    return c == QLatin1Char('.') || c == QLatin1Char(',');
}

// Length of the numeric prefix of `text` starting at `from`: optional sign, digits,
// one separator, digits. Returns the end index and whether any digit was seen.
qsizetype scanNumber(const QString &text, qsizetype from, bool *sawDigit)
{
    qsizetype i = from;
    *sawDigit = false;
    if (i < text.size() && (text[i] == QLatin1Char('-') || text[i] == QLatin1Char('+')))
        ++i;
    bool sawSeparator = false;
    for (; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isDigit() && c.unicode() < 128) {
            *sawDigit = true;
        } else if (isDecimalSeparator(c) && !sawSeparator) {
            sawSeparator = true;
        } else {
            break;
        }
    }
    return i;
}

// Nothing when the digits overflow a double; an underflow is 0.
std::optional<double> toDouble(QString digits)
{
    for (QChar &c : digits) {
        if (c == QLatin1Char(','))
            c = QLatin1Char('.');
    }
    if (digits.endsWith(QLatin1Char('.')))
        digits.chop(1);
    bool ok = false;
    const double value = digits.toDouble(&ok);
    if (ok)
        return value;
    if (std::isinf(value))
        return std::nullopt;
    return 0.0;
}

} // namespace

std::optional<double> parseNumber(const QString &text)
{
    const QString trimmed = text.trimmed();
    bool sawDigit = false;
    const qsizetype end = scanNumber(trimmed, 0, &sawDigit);
    if (!sawDigit || end != trimmed.size())
        return std::nullopt;
    return toDouble(trimmed);
}

std::optional<float> parseSingle(const QString &text)
{
    const std::optional<double> value = parseNumber(text);
    if (!value || std::fabs(*value) > std::numeric_limits<float>::max())
        return std::nullopt;
    return static_cast<float>(*value);
}

double leadingNumber(const QString &text)
{
    const QString trimmed = text.trimmed();
    bool sawDigit = false;
    const qsizetype end = scanNumber(trimmed, 0, &sawDigit);
    return sawDigit ? toDouble(trimmed.left(end)).value_or(0.0) : 0.0;
}

int leadingInteger(const QString &text, int fallback)
{
    const QString trimmed = text.trimmed();
    bool sawDigit = false;
    const qsizetype end = scanNumber(trimmed, 0, &sawDigit);
    if (!sawDigit)
        return fallback;
    const std::optional<double> scanned = toDouble(trimmed.left(end));
    if (!scanned)
        return trimmed.startsWith(QLatin1Char('-')) ? -2147483647 - 1 : 2147483647;
    const double value = std::nearbyint(*scanned);
    if (value > 2147483647.0)
        return 2147483647;
    if (value < -2147483648.0)
        return -2147483647 - 1;
    return static_cast<int>(value);
}

std::optional<int> wholeNumberIn(const QString &text, int min, int max)
{
    const std::optional<double> number = parseNumber(text);
    if (!number || *number != std::floor(*number) || *number < min || *number > max)
        return std::nullopt;
    return static_cast<int>(*number);
}

QString formatFixed(double value, int decimals, int minIntegerDigits)
{
    const double scale = std::pow(10.0, decimals);
    // Round on the decimal digits the user sees, away from zero, as the original did.
    const double rounded = std::round(value * scale) / scale;
    QString text = QString::number(std::fabs(rounded), 'f', decimals);
    const qsizetype integerDigits = decimals > 0 ? text.indexOf(QLatin1Char('.')) : text.size();
    if (integerDigits < minIntegerDigits)
        text.prepend(QString(minIntegerDigits - integerDigits, QLatin1Char('0')));
    if (rounded < 0)
        text.prepend(QLatin1Char('-'));
    return text;
}

QString formatFixedForUser(double value, int decimals, int minIntegerDigits)
{
    QString text = formatFixed(value, decimals, minIntegerDigits);
    // Only the two separators our readers accept: a locale with another one (Arabic
    // "٫") gets ".", so that its files still read back.
    if (QLocale().decimalPoint() == QLatin1String(","))
        text.replace(QLatin1Char('.'), QLatin1Char(','));
    return text;
}

} // namespace telvane
