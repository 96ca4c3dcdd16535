#include "config_editor/pagemodel.h"

#include "storage/inistore.h"
#include "storage/numbertext.h"
#include "storage/registerkey.h"

#include <algorithm>

namespace telvane {

PageModel::PageModel(QString name, QString title)
    : m_name(std::move(name))
    , m_title(std::move(title))
{
}

int PageModel::addField(const FieldSpec &definition)
{
    m_fields.append(Field{definition, -1, -1, definition.defaultValue});
    return int(m_fields.size()) - 1;
}

int PageModel::addGroup(const QString &word, int maximum, int countField)
{
    m_groups.append(Group{word, maximum, countField, {}, {}, 0});
    return int(m_groups.size()) - 1;
}

int PageModel::addGroup(const QString &word, int maximum, const QString &countSection, const QString &countKey)
{
    m_groups.append(Group{word, maximum, -1, countSection, countKey, 0});
    return int(m_groups.size()) - 1;
}

void PageModel::addItemField(int group, FieldSpec definition, const std::function<bool(int)> &skip)
{
    for (int item = 0; item < m_groups[group].maximum; ++item) {
        if (skip && skip(item))
            continue;
        definition.section = itemSection(group, item);
        m_fields.append(Field{definition, group, item, definition.defaultValue});
    }
}

QString PageModel::itemSection(int group, int item) const
{
    return QStringLiteral("%1 %2").arg(m_groups[group].word).arg(item + 1, 2, 10, QLatin1Char('0'));
}

void PageModel::load(const IniStore &ini)
{
    // No value can hold a line break, so this default tells an absent key.
    const QString absent = QStringLiteral("\n");
    for (Field &field : m_fields) {
        const QString read = ini.ReadIniKey(field.definition.section, field.definition.key, absent);
        field.inFile = read != absent;
        field.text = field.inFile ? read : field.definition.defaultValue;
    }
    for (Group &group : m_groups) {
        if (group.countField < 0)
            group.loadedCount = leadingInteger(ini.ReadIniKey(group.countSection, group.countKey, QString()), 0);
    }
}

int PageModel::indexOf(const QString &section, const QString &key) const
{
    for (int i = 0; i < fieldCount(); ++i) {
        const FieldSpec &definition = m_fields[i].definition;
        if (definition.section.compare(section, Qt::CaseInsensitive) == 0 && definition.key.compare(key, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QList<int> PageModel::fieldsOf(int group, int item) const
{
    QList<int> found;
    for (int i = 0; i < fieldCount(); ++i) {
        if (m_fields[i].group == group && m_fields[i].item == item)
            found.append(i);
    }
    return found;
}

int PageModel::itemCount(int group) const
{
    const Group &g = m_groups[group];
    const int count = g.countField >= 0 ? leadingInteger(m_fields[g.countField].text, 0) : g.loadedCount;
    return std::clamp(count, 0, g.maximum);
}

bool PageModel::inUse(int index) const
{
    const Field &field = m_fields[index];
    return field.group < 0 || field.item < itemCount(field.group);
}

// The decimals of the register a value goes to: none for bit codes 1 and 2, else the
// item's "Decimali".
int PageModel::decimalsFor(int index) const
{
    const Field &field = m_fields[index];
    const int decimalsField = indexOf(field.definition.section, QStringLiteral("Decimali"));
    const int decimals = decimalsField >= 0 ? std::clamp(leadingInteger(text(decimalsField), 0), 0, 3) : 0;
    const QString registerKey = field.definition.key == QLatin1String("Val")      ? QStringLiteral("P1_r")
                                : field.definition.key == QLatin1String("Val_on") ? QStringLiteral("On_w")
                                : field.definition.key == QLatin1String("Val_off") ? QStringLiteral("Off_w")
                                                                            : QString();
    const int registerField = registerKey.isEmpty() ? -1 : indexOf(field.definition.section, registerKey);
    if (registerField >= 0) {
        if (const auto key = parseRegisterKey(text(registerField)); key && key->functionCode <= 2)
            return 0;
    }
    return decimals;
}

QString PageModel::problem(int index) const
{
    if (!inUse(index))
        return {};
    const Field &field = m_fields[index];
    return fieldProblem(field.definition, field.text,
                        field.definition.kind == FieldKind::Value ? decimalsFor(index) : 0);
}

QList<int> PageModel::problems() const
{
    QList<int> found;
    for (int i = 0; i < fieldCount(); ++i) {
        if (!problem(i).isEmpty())
            found.append(i);
    }
    return found;
}

QString PageModel::firstProblem() const
{
    const QList<int> found = problems();
    if (found.isEmpty())
        return {};
    const Field &field = m_fields[found.first()];
    const QString where = field.group < 0 ? field.definition.label
                                          : itemSection(field.group, field.item) + QStringLiteral(", ") + field.definition.label;
    return where + QStringLiteral(": ") + problem(found.first());
}

QList<IniKeyValue> PageModel::keysToSave() const
{
    QList<IniKeyValue> keys;
    for (int i = 0; i < fieldCount(); ++i) {
        if (!inUse(i))
            continue;
        const Field &field = m_fields[i];
        // Blanks typed around a value never mean anything to the readers.
        const QString value = field.definition.kind == FieldKind::Text ? field.text : field.text.trimmed();
        // A key the file never had and the page left empty stays out of the file, as
        // the technician left it.
        if (value.isEmpty() && !field.inFile)
            continue;
        keys.append({field.definition.section, field.definition.key, value});
    }
    return keys;
}

bool PageModel::save(IniStore &ini) const
{
    if (!canConfirm())
        return false;
    return ini.writeIniKeys(keysToSave());
}

} // namespace telvane
