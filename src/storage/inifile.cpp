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
    return setValues({{section, key, value}});
}

bool IniFile::setValues(const QList<IniKeyValue> &keys)
{
    for (const IniKeyValue &entry : keys) {
        const QString reason = whyUnwritable(entry.section.trimmed(), entry.key.trimmed(), entry.value);
        if (!reason.isEmpty()) {
            qCWarning(lcStorage).noquote() << "Cannot write key" << entry.key.trimmed() << "of section"
                                           << entry.section.trimmed() << ":" << reason;
            return false;
        }
    }

    // Keys the file lacks, by section in order of first mention; each key once, in order
    // of first mention, with its last value.
    struct NewKeys
    {
        QString sectionName;
        QStringList names;
        QHash<QString, QString> values; // by case-folded name
    };
    QList<NewKeys> additions;
    QHash<QString, qsizetype> additionIndex; // case-folded section -> additions index

    for (const IniKeyValue &entry : keys) {
        const QString sectionName = entry.section.trimmed();
        const QString keyName = entry.key.trimmed();
        const QString foldedSection = sectionName.toCaseFolded();
        const QString foldedKey = keyName.toCaseFolded();
        const auto section = m_sectionIndex.constFind(foldedSection);
        if (section != m_sectionIndex.cend()) {
            Section &found = m_sections[*section];
            const auto existing = found.keys.find(foldedKey);
            if (existing != found.keys.end()) {
                // Keep the key as the user wrote it, blanks included; only the value changes.
                QString &line = m_lines[existing->line];
                line = line.left(line.indexOf(QLatin1Char('=')) + 1) + entry.value;
                existing->value = valueAsRead(entry.value);
                continue;
            }
        }
        auto slot = additionIndex.constFind(foldedSection);
        if (slot == additionIndex.cend()) {
            slot = additionIndex.insert(foldedSection, additions.size());
            additions.append(NewKeys{sectionName, {}, {}});
        }
        NewKeys &pending = additions[*slot];
        if (!pending.values.contains(foldedKey))
            pending.names.append(keyName);
        pending.values.insert(foldedKey, entry.value);
    }
    if (additions.isEmpty())
        return true;

    const auto keyLines = [](const NewKeys &pending) {
        QStringList lines;
        for (const QString &name : pending.names)
            lines.append(name + QLatin1Char('=') + pending.values.value(name.toCaseFolded()));
        return lines;
    };
    // New keys of an existing section go after its last non-blank line; new sections go
    // at the end, each after one blank line.
    QHash<qsizetype, QStringList> insertions; // before the line of that index
    QStringList appended;
    for (const NewKeys &pending : additions) {
        if (const Section *found = findSection(pending.sectionName)) {
            qsizetype insertAt = found->headerLine + 1;
            for (qsizetype i = found->endLine; i > found->headerLine + 1; --i) {
                if (!QStringView(m_lines[i - 1]).trimmed().isEmpty()) {
                    insertAt = i;
                    break;
                }
            }
            insertions[insertAt] += keyLines(pending);
            continue;
        }
        const bool lastIsBlank = appended.isEmpty()
            ? m_lines.isEmpty() || QStringView(m_lines.last()).trimmed().isEmpty()
            : appended.last().trimmed().isEmpty();
        if (!lastIsBlank)
            appended.append(QString());
        appended.append(QLatin1Char('[') + pending.sectionName + QLatin1Char(']'));
        appended += keyLines(pending);
    }
    QStringList lines;
    lines.reserve(m_lines.size() + keys.size() + 2 * additions.size());
    for (qsizetype i = 0; i <= m_lines.size(); ++i) {
        if (const auto inserted = insertions.constFind(i); inserted != insertions.cend())
            lines += *inserted;
        if (i < m_lines.size())
            lines.append(m_lines[i]);
    }
    lines += appended;
    m_lines = std::move(lines);
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
