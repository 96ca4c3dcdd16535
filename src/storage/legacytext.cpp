#include "storage/legacytext.h"

#include <QStringDecoder>

namespace telvane {

namespace {

constexpr char16_t windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, // 0x80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, // 0x88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, // 0x90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178, // 0x98
};

constexpr QByteArrayView utf8Bom("\xEF\xBB\xBF");

} // namespace

QString decodeWindows1252(QByteArrayView bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        *out++ = (byte >= 0x80 && byte < 0xA0) ? QChar(windows1252High[byte - 0x80]) : QChar(byte);
    }
    return text;
}

QString decodeLegacyText(QByteArrayView bytes)
{
    if (bytes.startsWith(utf8Bom))
        bytes = bytes.sliced(utf8Bom.size());
    return decodeLegacyLine(bytes);
}

QString decodeLegacyLine(QByteArrayView bytes)
{
    // The BOM is already gone: a second one is content and must stay, hence ConvertInitialBom.
    QStringDecoder utf8(QStringConverter::Utf8,
                        QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    return decodeWindows1252(bytes);
}

QString settingsTextProblem(QByteArrayView bytes)
{
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF"))
        return QStringLiteral("is UTF-16 text; read as such, saved as UTF-8 from now on");
    if (bytes.contains('\0'))
        return QStringLiteral("holds NUL bytes: not a settings text file; read as far as it makes sense");
    if (!bytes.contains('\n') && bytes.contains('\r'))
        return QStringLiteral("ends its lines with CR alone; read line by line, saved with CR LF from now on");
    return {};
}

} // namespace telvane
