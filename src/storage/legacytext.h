#pragma once

#include <QByteArrayView>
#include <QString>

namespace telvane {

// Text files written by the original program are Windows-1252; ours are UTF-8. A file
// is taken as UTF-8 when its bytes are valid UTF-8, otherwise as Windows-1252 (every
// byte sequence is valid there, so reading never fails). A leading UTF-8 BOM is skipped.
// Settings files are decided line by line instead (decodeLegacyLine), and read as
// UTF-16 when they start with its BOM.
QString decodeLegacyText(QByteArrayView bytes);

// The same choice for one line of a file, so that one byte a legacy editor left in one
// line does not turn the accents of every other line into garbage. A BOM here is
// content and kept.
QString decodeLegacyLine(QByteArrayView bytes);

// Why a settings file is not the plain text it should be, for the log: UTF-16, NUL bytes
// (a binary file), or lines ended by CR alone. Empty for a sound file, whether UTF-8 or
// Windows-1252.
QString settingsTextProblem(QByteArrayView bytes);

// Windows-1252 proper: Latin-1 except 0x80..0x9F, where "€", "–", curly quotes and a
// few letters live. The five bytes the code page leaves undefined map to the C1 controls
// of the same value, as Windows itself does.
QString decodeWindows1252(QByteArrayView bytes);

} // namespace telvane
