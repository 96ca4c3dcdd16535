// Any bytes parse; setting one key and writing the file out changes that key and nothing
// else a reader can see, and the written file reads back as written.

#include "storage/inifile.h"

#include <QHash>
#include <QString>
#include <QtGlobal>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace telvane;

namespace {

void check(bool condition, const char *what)
{
    if (!condition) {
        std::fprintf(stderr, "fuzz_inifile: %s\n", what);
        std::abort();
    }
}

quint32 hashOf(const uint8_t *data, size_t size)
{
    quint32 hash = 2166136261u;
    for (size_t i = 0; i < size; ++i)
        hash = (hash ^ data[i]) * 16777619u;
    return hash;
}

// Up to `length` bytes of the input from `from` (wrapping), one character per byte.
QString slice(const uint8_t *data, size_t size, quint32 from, size_t length)
{
    QString text;
    if (size == 0)
        return text;
    for (size_t i = 0; i < length && i < size; ++i)
        text.append(QChar(data[(from + i) % size]));
    return text;
}

QString expectedRead(const QString &written)
{
    QString value = written.trimmed();
    if (value.size() >= 2 && (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\''))
        && value.back() == value.front()) {
        value = value.mid(1, value.size() - 2);
    }
    return value.left(IniFile::MaxValueLength);
}

bool sameName(const QString &a, const QString &b)
{
    return a.trimmed().toCaseFolded() == b.trimmed().toCaseFolded();
}

void discard(QtMsgType, const QMessageLogContext &, const QString &) {}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Refused names are logged; thousands of runs a second need no log.
    qInstallMessageHandler(discard);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    IniFile file = IniFile::parse(QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size)));

    struct Entry
    {
        QString section, key, value;
    };
    QList<Entry> before;
    const QStringList sections = file.sectionNames();
    for (const QString &section : sections) {
        for (const QString &key : file.keyNames(section)) {
            const auto value = file.value(section, key);
            check(value.has_value(), "a listed key does not read");
            check(value->size() <= IniFile::MaxValueLength, "a value is longer than 254");
            before.append({section, key, *value});
        }
    }

    const quint32 hash = hashOf(data, size);
    QString section = slice(data, size, hash >> 8, 1 + (hash >> 4) % 16);
    QString key = slice(data, size, hash >> 12, 1 + (hash >> 20) % 16);
    const QString value = slice(data, size, hash >> 16, (hash >> 2) % 300);
    switch (hash % 4) {
    case 0: // an existing key, updated in place
        if (!before.isEmpty()) {
            const Entry &entry = before[(hash >> 8) % before.size()];
            section = entry.section;
            key = entry.key;
        }
        break;
    case 1: // a new key in an existing section
        if (!sections.isEmpty())
            section = sections[(hash >> 8) % sections.size()];
        key = QStringLiteral("Fuzz_%1").arg(hash);
        break;
    case 2: // a new section
        section = QStringLiteral("Fuzz %1").arg(hash);
        key = QStringLiteral("Nome");
        break;
    default: // names straight from the input, which may be refused
        break;
    }

    const QByteArray original = file.toBytes();
    if (!file.setValue(section, key, value)) {
        check(file.toBytes() == original, "a refused write changed the document");
        return 0;
    }
    const QString expected = expectedRead(value);
    check(file.value(section, key) == expected, "the key does not read back after setting it");

    const QByteArray written = file.toBytes();
    const IniFile reread = IniFile::parse(written);
    check(reread.value(section, key) == expected, "the key does not read back from the written file");
    check(reread.toBytes() == written, "writing a file read back changes it");
    for (const Entry &entry : before) {
        if (sameName(entry.section, section) && sameName(entry.key, key))
            continue;
        check(reread.value(entry.section, entry.key) == entry.value, "another key changed");
    }
    return 0;
}
