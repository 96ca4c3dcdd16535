#include "storage/inifile.h"

#include "storage/legacytext.h"
#include "storage/storagelog.h"

#include <QStringDecoder>

namespace telvane {

namespace {

constexpr QChar byteOrderMark(0xFEFF);
constexpr QByteArrayView utf8Bom("\xEF\xBB\xBF");
constexpr QByteArrayView utf16LittleEndianBom("\xFF\xFE");
constexpr QByteArrayView utf16BigEndianBom("\xFE\xFF");


bool hasLineBreak(const QString &text)
{
    return text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
}

// Why a key cannot be written so that it reads back, or an empty text when it can.
QString whyUnwritable(const QString &section, const QString &key, const QString &value)
{
    if (hasLineBreak(section) || hasLineBreak(key) || hasLineBreak(value))
        return QStringLiteral("a line break cannot be written");
    if (section.contains(QLatin1Char(']')))
        return QStringLiteral("a section name cannot hold \"]\"");
    if (key.isEmpty())
        return QStringLiteral("the key name is empty");
    if (key.contains(QLatin1Char('=')))
        return QStringLiteral("a key name cannot hold \"=\"");
    if (key.startsWith(QLatin1Char('[')) || key.startsWith(QLatin1Char(';')))
        return QStringLiteral("a key name cannot start with \"[\" or \";\"");
    return {};
}

// What GetPrivateProfileString hands back for the text right of "=".
QString valueAsRead(QStringView raw)
{
    QStringView value = raw.trimmed();
    if (value.size() >= 2 && (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\''))
        && value.back() == value.front()) {
        value = value.sliced(1, value.size() - 2);
    }
    return value.left(IniFile::MaxValueLength).toString();
}

// The section name of a header line, or nothing when the line is not one.
std::optional<QStringView> headerName(QStringView trimmedLine)
{
    if (!trimmedLine.startsWith(QLatin1Char('[')))
        return std::nullopt;
    const qsizetype close = trimmedLine.lastIndexOf(QLatin1Char(']'));
    if (close < 0)
        return std::nullopt;
    return trimmedLine.sliced(1, close - 1).trimmed();
}

QString folded(const QString &name)
{
    return name.trimmed().toCaseFolded();
}

} // namespace

IniFile IniFile::parse(QByteArrayView bytes)
{
    IniFile file;
    if (bytes.startsWith(utf16LittleEndianBom) || bytes.startsWith(utf16BigEndianBom)) {
        // Saved as "Unicode" by a Windows editor: readable, and written back as UTF-8.
        QStringDecoder decoder(QStringConverter::Utf16); // follows the BOM, and drops it
        const QString text = decoder.decode(bytes);
        file.m_lines = text.split(QLatin1Char('\n'));
        if (text.endsWith(QLatin1Char('\n')))
            file.m_lines.removeLast();
    } else {
        if (bytes.startsWith(utf8Bom))
            bytes = bytes.sliced(utf8Bom.size());
        // Old Mac files end their lines with CR alone.
        const char lineEnd = !bytes.contains('\n') && bytes.contains('\r') ? '\r' : '\n';
        // Each line decoded on its own: one byte a legacy editor left in one value must
        // not turn the accents of every other value into garbage (decodeLegacyLine).
        for (qsizetype start = 0; start < bytes.size();) {
            qsizetype end = bytes.indexOf(lineEnd, start);
            if (end < 0)
                end = bytes.size();
            file.m_lines.append(decodeLegacyLine(bytes.sliced(start, end - start)));
            start = end + 1;
        }
    }
    for (QString &line : file.m_lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    }
    file.index();
    return file;
}

void IniFile::index()
{
    m_sections.clear();
    m_sectionIndex.clear();
    Section *current = nullptr; // null before the first section and inside a repeated one
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const QStringView line = QStringView(m_lines[i]).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')))
            continue;
        if (const auto name = headerName(line)) {
            if (current)
                current->endLine = i;
            const QString key = name->toString().toCaseFolded();
            if (m_sectionIndex.contains(key)) {
                current = nullptr;
                continue;
            }
            m_sectionIndex.insert(key, m_sections.size());
            m_sections.append(Section{name->toString(), i, m_lines.size(), {}, {}});
            current = &m_sections.last();
            continue;
        }
        if (!current)
            continue;
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals < 0)
            continue;
        const QString name = line.first(equals).trimmed().toString();
        const QString key = name.toCaseFolded();
        if (key.isEmpty() || current->keys.contains(key))
            continue;
        current->keys.insert(key, Key{i, name, valueAsRead(line.sliced(equals + 1))});
        current->keyOrder.append(key);
    }
}

const IniFile::Section *IniFile::findSection(const QString &section) const
{
    const auto found = m_sectionIndex.constFind(folded(section));
    return found == m_sectionIndex.cend() ? nullptr : &m_sections[*found];
}

std::optional<QString> IniFile::value(const QString &section, const QString &key) const
{
    const Section *found = findSection(section);
    if (!found)
        return std::nullopt;
    const auto entry = found->keys.constFind(folded(key));
    if (entry == found->keys.cend())
        return std::nullopt;
    return entry->value;
}

QString IniFile::value(const QString &section, const QString &key, const QString &defaultValue) const
{
    // The default goes through the same buffer as a value, so it is cut the same way.
    return value(section, key).value_or(defaultValue.left(MaxValueLength));
}

QStringList IniFile::sectionNames() const
{
    QStringList names;
    names.reserve(m_sections.size());
    for (const Section &section : m_sections)
        names.append(section.name);
    return names;
}

QStringList IniFile::keyNames(const QString &section) const
{
    QStringList names;
    if (const Section *found = findSection(section)) {
        names.reserve(found->keyOrder.size());
        for (const QString &key : found->keyOrder)
            names.append(found->keys.value(key).name);
    }
    return names;
}

bool IniFile::setValue(const QString &section, const QString &key, const QString &value)
{
    const QString sectionName = section.trimmed();
    const QString keyName = key.trimmed();
    const QString reason = whyUnwritable(sectionName, keyName, value);
    if (!reason.isEmpty()) {
        qCWarning(lcStorage).noquote() << "Cannot write key" << keyName << "of section" << sectionName
                                       << ":" << reason;
        return false;
    }

    if (const Section *found = findSection(sectionName)) {
        const auto entry = found->keys.constFind(keyName.toCaseFolded());
        if (entry != found->keys.cend()) {
            // Keep the key as the user wrote it, blanks included; only the value changes.
            QString &line = m_lines[entry->line];
            line = line.left(line.indexOf(QLatin1Char('=')) + 1) + value;
            // The line stays a key line of the same name, so the index only needs the value.
            m_sections[m_sectionIndex.value(sectionName.toCaseFolded())]
                .keys[keyName.toCaseFolded()]
                .value = valueAsRead(value);
            return true;
        }
        qsizetype insertAt = found->headerLine + 1;
        for (qsizetype i = found->endLine; i > found->headerLine + 1; --i) {
            if (!QStringView(m_lines[i - 1]).trimmed().isEmpty()) {
                insertAt = i;
                break;
            }
        }
        m_lines.insert(insertAt, keyName + QLatin1Char('=') + value);
    } else {
        if (!m_lines.isEmpty() && !QStringView(m_lines.last()).trimmed().isEmpty())
            m_lines.append(QString());
        m_lines.append(QLatin1Char('[') + sectionName + QLatin1Char(']'));
        m_lines.append(keyName + QLatin1Char('=') + value);
    }
    index();
    return true;
}

QByteArray IniFile::toBytes() const
{
    QByteArray bytes;
    qsizetype size = 0;
    for (const QString &line : m_lines)
        size += line.size() + 2;
    bytes.reserve(size + 3);
    // A first line that starts with U+FEFF would lose it to the BOM skip on the next
    // read, so it gets a real BOM in front: the only case where we write one.
    if (!m_lines.isEmpty() && m_lines.first().startsWith(byteOrderMark))
        bytes.append("\xEF\xBB\xBF");
    for (const QString &line : m_lines) {
        bytes.append(line.toUtf8());
        bytes.append("\r\n");
    }
    return bytes;
}

} // namespace telvane
