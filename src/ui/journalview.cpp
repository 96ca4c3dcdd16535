#include "ui/journalview.h"

#include "base/datetimetext.h"
#include "journal/operatorjournal.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

namespace telvane {

namespace {

// "Giornale_2026_11.csv" -> "11/2026".
QString monthText(const QString &fileName)
{
    return fileName.mid(14, 2) + QLatin1Char('/') + fileName.mid(9, 4);
}

} // namespace

JournalView::JournalView(OperatorJournal &journal, QWidget *parent)
    : QWidget(parent)
    , m_journal(journal)
    , m_months(new QComboBox(this))
    , m_table(new QTableWidget(0, 5, this))
{
    setObjectName(QStringLiteral("Fra_Giornale"));
    m_months->setObjectName(QStringLiteral("Cmb_Mese"));
    m_table->setObjectName(QStringLiteral("Tab_Giornale"));
    m_table->setHorizontalHeaderLabels(
        {QStringLiteral("Data e ora"), QStringLiteral("Livello utente"), QStringLiteral("Evento"),
         QStringLiteral("Dettaglio"), QStringLiteral("Esito")});
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setAlternatingRowColors(true);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(3, QHeaderView::Stretch);

    auto *head = new QHBoxLayout;
    auto *caption = new QLabel(QStringLiteral("&Mese:"), this);
    caption->setBuddy(m_months);
    head->addWidget(caption);
    head->addWidget(m_months);
    head->addStretch(1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addWidget(m_table, 1);

    connect(m_months, &QComboBox::currentIndexChanged, this, &JournalView::showMonth);
    connect(&m_journal, &OperatorJournal::recorded, this, &JournalView::entryRecorded);
}

void JournalView::refresh()
{
    const QSignalBlocker block(m_months);
    m_months->clear();
    for (const QString &name : m_journal.journalFiles())
        m_months->addItem(monthText(name), name);
    showMonth(m_months->currentIndex());
}

void JournalView::showMonth(int index)
{
    m_table->setRowCount(0);
    if (index < 0)
        return;
    for (const JournalEntry &entry : m_journal.readJournal(m_months->itemData(index).toString()))
        addEntry(entry);
}

void JournalView::addEntry(const JournalEntry &entry)
{
    m_table->insertRow(0);
    const QStringList texts{entry.time.toString(QLatin1String(DateTimeTextFormat)), entry.level, entry.event,
                            entry.detail, entry.outcome};
    for (int column = 0; column < texts.size(); ++column)
        m_table->setItem(0, column, new QTableWidgetItem(texts[column]));
}

// Only into the month it belongs to; the first entry of a new month brings its file in.
void JournalView::entryRecorded(const JournalEntry &entry)
{
    const QString fileName = JournalFileName(entry.time.date());
    if (m_months->findData(fileName) < 0) {
        if (isVisible())
            refresh();
        return;
    }
    if (m_months->currentData().toString() == fileName)
        addEntry(entry);
}

} // namespace telvane
