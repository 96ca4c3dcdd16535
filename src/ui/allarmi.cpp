#include "ui/allarmi.h"

#include "alarms/commerrortable.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

namespace telvane {

namespace {

QListView *alarmList(const QString &name, QAbstractItemModel *model, QWidget *parent)
{
    auto *list = new QListView(parent);
    list->setObjectName(name);
    list->setModel(model);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setMinimumHeight(110);
    return list;
}

QLabel *boldCaption(const QString &name, const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(name);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

} // namespace

Allarmi::Allarmi(Runtime &rt, Supervisor &supervisor, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::WindowStaysOnTopHint)
    , m_rt(rt)
    , m_supervisor(supervisor)
    , m_errors(new CommErrorTable(rt.services.alarms, rt.model.plant, rt.model.editor.tables, rt.devices.clock, this))
    , m_zoneList(alarmList(QStringLiteral("Lst_AllarmiZ"), rt.services.alarms.Lst_AllarmiZ(), this))
    , m_switchList(alarmList(QStringLiteral("Lst_AllarmiI"), rt.services.alarms.Lst_AllarmiI(), this))
    , m_diagnostics(new QGroupBox(QStringLiteral("Errori di comunicazione"), this))
    , m_reserved(new QLabel(QStringLiteral("Il dettaglio degli errori di comunicazione è riservato al tecnico e "
                                           "all'amministratore (File > Login)."),
                            this))
    , m_lastFailure(new QLabel(m_diagnostics))
    , m_lineState(new QLabel(m_diagnostics))
    , m_table(new QTableView(m_diagnostics))
{
    setObjectName(QStringLiteral("Allarmi"));
    setWindowTitle(QStringLiteral("Allarmi"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/allarmi.svg")));

    auto *lists = new QGridLayout;
    lists->addWidget(boldCaption(QStringLiteral("Lab_ZoneAll"), QStringLiteral("Zone che non rispondono"), this), 0, 0);
    lists->addWidget(
        boldCaption(QStringLiteral("Lab_InterruttoriAll"), QStringLiteral("Interruttori e LED che non rispondono"), this),
        0, 1);
    lists->addWidget(m_zoneList, 1, 0);
    lists->addWidget(m_switchList, 1, 1);

    m_diagnostics->setObjectName(QStringLiteral("Fra_ErroriCOM"));
    m_lastFailure->setObjectName(QStringLiteral("Lab_UltimoErrore"));
    m_lineState->setObjectName(QStringLiteral("Lab_Linea"));
    m_lastFailure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_table->setObjectName(QStringLiteral("Tab_ErroriCOM"));
    m_table->setModel(m_errors);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setAlternatingRowColors(true);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(CommErrorTable::LastFailureColumn, QHeaderView::Stretch);
    // A technician reads a plant's worth of items without scrolling.
    m_table->setMinimumHeight(m_table->horizontalHeader()->sizeHint().height()
                              + VisibleRows * m_table->verticalHeader()->defaultSectionSize()
                              + 2 * m_table->frameWidth());

    auto *acknowledge = new QPushButton(QStringLiteral("&Riconosci"), m_diagnostics);
    acknowledge->setObjectName(QStringLiteral("Cmd_Riconosci"));
    acknowledge->setToolTip(QStringLiteral("Riconosce gli allarmi e azzera i contatori lasciando aperta la finestra"));
    auto *diagnosticsFoot = new QHBoxLayout;
    diagnosticsFoot->addWidget(m_lineState, 1);
    diagnosticsFoot->addWidget(acknowledge, 0, Qt::AlignRight);

    auto *diagnosticsLayout = new QVBoxLayout(m_diagnostics);
    diagnosticsLayout->addWidget(m_lastFailure);
    diagnosticsLayout->addWidget(m_table, 1);
    diagnosticsLayout->addLayout(diagnosticsFoot);

    m_reserved->setObjectName(QStringLiteral("Lab_Riservato"));
    m_reserved->setWordWrap(true);

    auto *close = new QPushButton(QStringLiteral("&Chiudi"), this);
    close->setObjectName(QStringLiteral("Cmd_Chiudi"));
    close->setToolTip(QStringLiteral("Riconosce tutti gli allarmi e chiude la finestra"));
    close->setDefault(true);
    auto *foot = new QHBoxLayout;
    foot->addWidget(m_reserved, 1);
    foot->addWidget(close, 0, Qt::AlignRight);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(lists);
    layout->addWidget(m_diagnostics, 1);
    layout->addLayout(foot);

    connect(close, &QPushButton::clicked, this, &Allarmi::Cmd_ChiudiClick);
    connect(acknowledge, &QPushButton::clicked, &m_supervisor, &Supervisor::ResetAlarms);
    connect(m_errors, &CommErrorTable::lastLineFailureChanged, m_lastFailure, [this](const QString &text) {
        m_lastFailure->setText(QStringLiteral("Ultimo errore di linea: ") + text);
    });
    m_lastFailure->setText(QStringLiteral("Ultimo errore di linea: ") + m_errors->lastLineFailure());

    setPrivileged(false);
    resize(760, 540);
}

void Allarmi::showCommErrors(bool privileged)
{
    m_errors->refresh();
    fitColumns();
    const CommSettings &comm = m_rt.model.editor.comm;
    QString line = QStringLiteral("Linea: ") + (comm.portAvailable ? comm.statusText : QStringLiteral("Nessuna COM"));
    if (!m_rt.services.master.communicate())
        line += QStringLiteral(" (simulazione)");
    else if (comm.lineActivity)
        line += m_rt.display.lineAnswering ? QStringLiteral(", risponde al controllo di attività")
                                   : QStringLiteral(", non risponde al controllo di attività");
    m_lineState->setText(line);
    setPrivileged(privileged);
    show();
    raise();
    activateWindow();
}

// Wide enough that no column, the last reason included, is cut.
void Allarmi::fitColumns()
{
    QHeaderView *header = m_table->horizontalHeader();
    int width = 2 * m_table->frameWidth() + m_table->verticalScrollBar()->sizeHint().width();
    for (int column = 0; column < m_errors->columnCount(); ++column)
        width += std::max(header->sectionSizeHint(column), static_cast<QAbstractItemView *>(m_table)->sizeHintForColumn(column));
    m_table->setMinimumWidth(width);
}

void Allarmi::setPrivileged(bool privileged)
{
    m_diagnostics->setVisible(privileged);
    m_diagnostics->setEnabled(privileged);
    m_reserved->setVisible(!privileged);
}

// The frame's close is never refused and never leaves alarms behind: it acknowledges.
void Allarmi::closeEvent(QCloseEvent *event)
{
    event->ignore();
    Cmd_ChiudiClick();
}

// The window is no dialog, so its default button "Chiudi" is given Enter and Escape here.
void Allarmi::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape)
        && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        Cmd_ChiudiClick();
        return;
    }
    QWidget::keyPressEvent(event);
}

void Allarmi::Cmd_ChiudiClick()
{
    m_supervisor.ResetAlarms();
    hide();
}

} // namespace telvane
