#pragma once

#include <QString>
#include <optional>

namespace telvane {

// Numbers as they stand in the program's files. Numbers the operator reads (on screen,
// in the daily log and chrono files) carry the decimal separator of the user's locale,
// so that an Italian spreadsheet opens the day's file as numbers; settings, files from
// other machines and hand edits may carry either, so every reader accepts both.

// The whole trimmed text as a number ("21.5", "21,5", "-3", " 7 "), or nothing; so is
// a number too large for a double.
std::optional<double> parseNumber(const QString &text);

// As parseNumber, for single-precision tables: a number beyond the range of a float is
// no number, so a stored value is always finite.
std::optional<float> parseSingle(const QString &text);

// The number at the start of the text, stopping at the first character that cannot
// continue it ("12abc" is 12, "abc" is 0, "" is 0). Either separator is accepted once.
// Digits too many for a double count as no number (0).
double leadingNumber(const QString &text);

// An integer setting: the leading number rounded half to even, as the original's
// integer conversion did, clamped to the int range; `fallback` when the text holds no
// number at all.
int leadingInteger(const QString &text, int fallback = 0);

// The whole trimmed text as an integer within [min, max], or nothing ("2.5", "5x" and
// out-of-range values are nothing).
std::optional<int> wholeNumberIn(const QString &text, int min, int max);

// Fixed-point text with "." as separator, rounded half away from zero and with at
// least `minIntegerDigits` integer digits: formatFixed(5, 1, 2) is "05.0".
QString formatFixed(double value, int decimals, int minIntegerDigits = 1);

// The same with the user's locale's decimal separator: "21,5" on an Italian machine.
// Locales whose separator is neither "." nor "," get ".".
QString formatFixedForUser(double value, int decimals, int minIntegerDigits = 1);

} // namespace telvane
