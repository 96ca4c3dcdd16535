#include "storage/holidaylist.h"

namespace telvane {

HolidayList::HolidayList(QObject *parent)
    : QStringListModel(parent)
    , m_selection(this)
{
}

QString HolidayList::dateText(const QDate &date)
{
    return date.toString(DateFormat);
}

void HolidayList::setEntries(const QStringList &entries)
{
    setStringList(entries);
    if (rowCount() > 0)
        m_selection.setCurrentIndex(index(0), QItemSelectionModel::ClearAndSelect);
}

bool HolidayList::containsDate(const QStringList &entries, const QDate &date)
{
    if (!date.isValid())
        return false;
    return std::any_of(entries.cbegin(), entries.cend(), [&date](const QString &entry) {
        return QDate::fromString(entry.trimmed(), QStringLiteral("d/M/yyyy")) == date;
    });
}

int HolidayList::selectedRow() const
{
    const QModelIndex current = m_selection.currentIndex();
    return current.isValid() ? current.row() : -1;
}

} // namespace telvane
