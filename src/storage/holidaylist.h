#pragma once

#include <QDate>
#include <QItemSelectionModel>
#include <QStringListModel>

namespace telvane {

// The holiday dates of the chrono-thermostat, in the order the technician entered them.
// The editor's list `Lst_Festa` shows this model and shares its selection model, so the
// list and the chrono-thermostat always see the same entries.
class HolidayList : public QStringListModel
{
    Q_OBJECT

public:
    // How the editor writes a holiday; the chrono-thermostat compares today against it.
    static inline const QString DateFormat = QStringLiteral("dd/MM/yyyy");

    explicit HolidayList(QObject *parent = nullptr);

    static QString dateText(const QDate &date);

    // Replaces every entry and selects the first one, if any.
    void setEntries(const QStringList &entries);

    // Entries are compared as dates, so "5/1/2026" typed by hand matches 05/01/2026.
    bool containsDate(const QDate &date) const { return containsDate(stringList(), date); }
    static bool containsDate(const QStringList &entries, const QDate &date);

    QItemSelectionModel *selectionModel() { return &m_selection; }
    // -1 when nothing is selected.
    int selectedRow() const;

private:
    QItemSelectionModel m_selection;
};

} // namespace telvane
