#pragma once

#include <QByteArrayView>
#include <QString>

namespace telvane {

// Text files written by the original program are Windows-1252; ours are UTF-8. A file
// is taken as UTF-8 when its bytes are valid UTF-8, otherwise as Windows-1252 (every
// byte sequence is valid there, so reading never fails). A leading UTF-8 BOM is skipped.
QString decodeLegacyText(QByteArrayView bytes);

// Windows-1252 proper: Latin-1 except 0x80..0x9F, where "€", "–", curly quotes and a
// few letters live. The five bytes the code page leaves undefined map to the C1 controls
// of the same value, as Windows itself does.
QString decodeWindows1252(QByteArrayView bytes);

} // namespace telvane
