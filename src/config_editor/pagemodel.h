#pragma once

#include "config_editor/pagefield.h"
#include "storage/inifile.h"

#include <QList>
#include <QString>

#include <functional>

namespace telvane {

class IniStore;

// One page of the configuration editor as data: the settings keys it shows, each as the
// text its control holds. Opening the page loads every key; the technician changes the
// texts; confirming checks them all and saves them in one replace of the settings file.
// Nothing is written until then, so closing without confirming leaves the file as it was.
//
// Keys of numbered items (zones, switches, LEDs) belong to an item group: the page shows
// the items from 1 to the group's count (itself a field of the page, or the count the
// file holds), and only those are checked and saved.
class PageModel
{
public:
    struct Group
    {
        QString word;         // the section's item word: "Zona", "Interruttore", "LED"
        int maximum = 0;
        int countField = -1;  // the page's field holding the count; -1: read from countKey
        QString countSection; // where the count stands when no field of the page holds it
        QString countKey;
        int loadedCount = 0;
    };
    struct Field
    {
        FieldSpec definition;
        int group = -1; // -1: a key of the page itself
        int item = -1;  // 0-based within its group
        QString text;
        bool inFile = false; // the key stood in the file when the page was loaded
    };

    PageModel(QString name, QString title);

    const QString &name() const { return m_name; }
    const QString &title() const { return m_title; }

    int addField(const FieldSpec &definition);
    // A group whose count is the field `countField` of this page.
    int addGroup(const QString &word, int maximum, int countField);
    // A group whose count is read from the settings (and not edited on this page).
    int addGroup(const QString &word, int maximum, const QString &countSection, const QString &countKey);
    // The same key for items 1 .. maximum of `group`, in that item's section; `skip` says
    // for which items (0-based) the key does not apply.
    void addItemField(int group, FieldSpec definition, const std::function<bool(int)> &skip = {});

    void load(const IniStore &ini);

    int fieldCount() const { return int(m_fields.size()); }
    const Field &field(int index) const { return m_fields[index]; }
    const QList<Group> &groups() const { return m_groups; }
    // The index of a field by section and key (case-insensitive); -1 when the page has none.
    int indexOf(const QString &section, const QString &key) const;
    QList<int> fieldsOf(int group, int item) const;
    QList<int> pageFields() const { return fieldsOf(-1, -1); }

    const QString &text(int index) const { return m_fields[index].text; }
    void setText(int index, const QString &text) { m_fields[index].text = text; }

    // How many items of the group the page shows now (the count field as typed, within
    // 0 .. maximum).
    int itemCount(int group) const;
    // The section of an item: "Zona 03" for item 2 of the zones.
    QString itemSection(int group, int item) const;
    // Shown, checked and saved: a key of the page or of an item within the count.
    bool inUse(int index) const;

    // Why the field's text cannot be saved; empty when it can or when it is not in use.
    QString problem(int index) const;
    // Every field in use with a problem, in page order.
    QList<int> problems() const;
    // The first problem as the technician must find it: "Zona 03, Indirizzo: ...".
    QString firstProblem() const;
    bool canConfirm() const { return problems().isEmpty(); }

    // Every key in use.
    QList<IniKeyValue> keysToSave() const;
    // Saves every key in use in one replace of the file; false (nothing written) while a
    // field has a problem or when the file could not be written.
    bool save(IniStore &ini) const;

private:
    int decimalsFor(int index) const;

    QString m_name;
    QString m_title;
    QList<Field> m_fields;
    QList<Group> m_groups;
};

} // namespace telvane
