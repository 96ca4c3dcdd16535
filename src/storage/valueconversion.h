#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

namespace telvane {

// A register integer as the value it stands for: `raw` divided by 10 to the power of
// `decimals` (21.5 for 215 with 1 decimal). Decimals below 0 count as none. The one
// place where the program scales by an instrument's decimals.
double registerToValue(double raw, int decimals);

// Operator text to the register integer of an instrument with `decimals` implied decimals:
// "21,5" with 1 decimal is 215. Extra decimals are cut, never rounded. Text that is not a
// number, or a result outside the 16-bit range, gives 0.
qint16 TextToRegister(const QString &text, int decimals);

// The same conversion for a caller that must not send a 0 it did not mean: nothing when
// the text is not a number, holds no digit at all, or the result does not fit 16 bits.
std::optional<qint16> registerFromText(const QString &text, int decimals);

// The same text as the value the instrument will hold: "21.57" with 1 decimal is 21.5.
float TextToValue(const QString &text, int decimals);

// `value` with the display pattern of DecimalFormats for `decimals` and the user's
// locale's decimal separator ("21,5" on an Italian machine).
// Decimals below 0 show as 0, above 3 as 3.
QString formatDecimal(float value, int decimals);

// A zone quantity as the synoptic shows it: "21.5 °C" ("21,5 °C" in Italy), or "--.-" for
// the invalid marker.
QString FormatZoneValue(float value, int decimals, const QString &unit);

} // namespace telvane
