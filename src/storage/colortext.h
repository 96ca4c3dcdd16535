#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

namespace telvane {

// Colours in the settings files are 32-bit values in blue-green-red order (red in the
// low byte). The chart writes them as "&H" and hexadecimal digits; the built-in
// defaults are handed to the key reads as decimal text, so both forms come back.

// "&HFF0000", "&h80ff", "&H8000&" (with the long-number suffix) or decimal text
// ("16777215", "-32513": a negative value is the same 32 bits). Blanks around are
// ignored. Nothing when the text is empty, not a number or wider than 32 bits.
// Short hex forms are taken as written: "&H80FF" is 0x000080FF.
std::optional<quint32> parseColorText(const QString &text);

// "&H" and upper-case hexadecimal digits without leading zeros: 0x00800000 is "&H800000".
QString formatColorText(quint32 color);

} // namespace telvane
