#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace telvane {

// One key to write: section, key and the value as text.
struct IniKeyValue
{
    QString section;
    QString key;
    QString value;

    bool operator==(const IniKeyValue &) const = default;
};

// One settings file as the Windows profile functions see it: section and key names
// compare without regard to case, the first of two equal sections or keys is the one
// that counts (for reading and for updating), blanks around names and values do not
// count, a value wrapped in matching quotes loses them, and a value reads as at most
// 254 characters. Lines that are neither a section header nor "key=value" (comments,
// junk, "[" without "]") are kept as they are and otherwise ignored, as are keys that
// stand before the first section.
//
// Updating keeps the file as the user left it: one key changes one line, a new key
// goes after the last non-blank line of its section, a new section goes at the end.
class IniFile
{
public:
    static constexpr qsizetype MaxValueLength = 254;

    IniFile() = default;
    // Never fails: any bytes give a document (see decodeLegacyText for the encodings).
    static IniFile parse(QByteArrayView bytes);

    // The value as the profile functions return it, or nothing when the key is absent.
    std::optional<QString> value(const QString &section, const QString &key) const;
    QString value(const QString &section, const QString &key, const QString &defaultValue) const;

    // Names of the sections and of the keys of one section that reading can reach, in
    // file order and spelled as in the file.
    QStringList sectionNames() const;
    QStringList keyNames(const QString &section) const;

    // False (and the document unchanged) when the names or the value cannot stand in a
    // file and be read back: a line break anywhere, "]" in the section, "=" in the key,
    // an empty key, or a key starting with "[" or ";".
    bool setValue(const QString &section, const QString &key, const QString &value);
    // The same for several keys in order (a key given twice keeps its last value), with
    // the document indexed once at the end however many keys are new. All or nothing:
    // false, and the document unchanged, when any one of them cannot be written.
    bool setValues(const QList<IniKeyValue> &keys);

    // UTF-8, CRLF after every line.
    QByteArray toBytes() const;

private:
    struct Key
    {
        qsizetype line = 0;
        QString name;
        QString value; // already as read: trimmed, unquoted, cut
    };
    struct Section
    {
        QString name;
        qsizetype headerLine = 0;
        qsizetype endLine = 0; // one past its last line
        QHash<QString, Key> keys; // by case-folded name, first occurrence only
        QStringList keyOrder;     // case-folded names in file order
    };

    void index();
    const Section *findSection(const QString &section) const;

    QStringList m_lines; // without line ends
    QList<Section> m_sections; // first occurrence of each name, in file order
    QHash<QString, qsizetype> m_sectionIndex; // case-folded name -> m_sections index
};

} // namespace telvane
