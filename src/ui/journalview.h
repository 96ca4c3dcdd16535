#pragma once

#include <QWidget>

class QComboBox;
class QTableWidget;

namespace telvane {

class OperatorJournal;
struct JournalEntry;

// The operator journal for technicians: one month at a time (the current one first),
// newest entry on top, and the entries recorded while it is open added as they come.
class JournalView final : public QWidget
{
    Q_OBJECT

public:
    explicit JournalView(OperatorJournal &journal, QWidget *parent = nullptr);

    // Reads the month files again, the newest shown.
    void refresh();

private:
    void showMonth(int index);
    void addEntry(const JournalEntry &entry);
    void entryRecorded(const JournalEntry &entry);

    OperatorJournal &m_journal;
    QComboBox *m_months;
    QTableWidget *m_table;
};

} // namespace telvane
