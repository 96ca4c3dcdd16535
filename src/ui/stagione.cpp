#include "ui/stagione.h"

#include "base/prompts.h"
#include "season/seasonchange.h"
#include "season/sendreport.h"
#include "base/clock.h"
#include "supervisor/runtime.h"

#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QShowEvent>
#include <QVBoxLayout>

namespace telvane {

namespace {

const QString RecipeFolder = QStringLiteral("Ricetta");

struct ListColumn
{
    const char *name;
    const char *caption;
    int stretch;
};

// The send lists, left to right.
constexpr ListColumn Columns[] = {
    {"Lst_nDev", "Zona", 0},   {"Lst_Dev", "Dispositivo", 2}, {"Lst_Sadd", "Slave", 0},
    {"Lst_FC", "FC", 0},       {"Lst_MB", "Registro", 1},     {"Lst_MBVal", "Valore", 3},
    {"Lst_NomePar", "Parametro", 2},
};

// The progress colour: pure green (65280), under black text it reads at any size.
const QString ProgressStyle = QStringLiteral("QProgressBar { border: 1px solid #6b6b6b; background: #f4f4f4; }"
                                             "QProgressBar::chunk { background-color: #00ff00; }");

QString defaultChooser(QWidget *parent, const QString &folder)
{
    return QFileDialog::getOpenFileName(parent, QStringLiteral("Scegliere la ricetta"), folder,
                                        QStringLiteral("Ricette (*.prg);;Tutti i file (*.*)"));
}

} // namespace

Stagione::Stagione(Runtime &rt, Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_rt(rt)
    , m_prompts(prompts)
    , m_change(new SeasonChange(rt, prompts, this))
    , m_current(new QLabel(this))
    , m_next(new QLabel(this))
    , m_summerFile(new QLineEdit(this))
    , m_winterFile(new QLineEdit(this))
    , m_summerChoose(new QPushButton(QStringLiteral("Sfoglia..."), this))
    , m_winterChoose(new QPushButton(QStringLiteral("Sfoglia..."), this))
    , m_verify(new QCheckBox(QStringLiteral("Verifica: rileggere ogni registro scritto"), this))
    , m_send(new QPushButton(QStringLiteral("Invia agli strumenti"), this))
    , m_print(new QPushButton(QStringLiteral("Stampa resoconto"), this))
    , m_progressPanel(new QFrame(this))
    , m_progress(new QProgressBar(m_progressPanel))
    , m_progressText(new QLabel(QStringLiteral("0%"), m_progressPanel))
    , m_outcome(new QLabel(this))
{
    setObjectName(QStringLiteral("Stagione"));
    setWindowTitle(rt.model.mode.seasonCaption.isEmpty() ? QStringLiteral("Stagione") : rt.model.mode.seasonCaption);
    m_chooseFile = [this](const QString &folder) { return defaultChooser(this, folder); };
    m_printTarget = [this] { return openPrintTarget(printoutPdfPath(m_rt.model.ini.folder().root(), m_rt.devices.clock.now())); };

    auto *recipes = new QGroupBox(QStringLiteral("Ricette del cambio stagione"), this);
    auto *grid = new QGridLayout(recipes);
    m_summerFile->setObjectName(QStringLiteral("Txt_Estate"));
    m_winterFile->setObjectName(QStringLiteral("Txt_Inverno"));
    m_summerChoose->setObjectName(QStringLiteral("Cmd_Estate"));
    m_winterChoose->setObjectName(QStringLiteral("Cmd_Inverno"));
    for (QLineEdit *file : {m_summerFile, m_winterFile}) {
        file->setReadOnly(true);
        file->setPlaceholderText(QStringLiteral("nessuna ricetta"));
    }
    grid->addWidget(new QLabel(QStringLiteral("Inverno -> Estate:"), recipes), 0, 0);
    grid->addWidget(m_summerFile, 0, 1);
    grid->addWidget(m_summerChoose, 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("Estate -> Inverno:"), recipes), 1, 0);
    grid->addWidget(m_winterFile, 1, 1);
    grid->addWidget(m_winterChoose, 1, 2);
    grid->setColumnStretch(1, 1);
    connect(m_summerChoose, &QPushButton::clicked, this, [this] { chooseRecipe(Season::Estate); });
    connect(m_winterChoose, &QPushButton::clicked, this, [this] { chooseRecipe(Season::Inverno); });

    m_current->setObjectName(QStringLiteral("Lab_Attuale"));
    m_next->setObjectName(QStringLiteral("Lab_Cambio"));
    QFont bold = m_current->font();
    bold.setBold(true);
    m_current->setFont(bold);

    auto *rows = new QWidget(this);
    buildLists(rows);

    m_verify->setObjectName(QStringLiteral("Chk_Verifica"));
    m_verify->setToolTip(QStringLiteral("Dopo ogni scrittura di un registro lo rilegge e confronta il valore: "
                                        "l'invio si ferma alla prima differenza."));
    connect(m_verify, &QCheckBox::toggled, this, [this](bool on) { m_change->setVerifyReadBack(on); });
    m_send->setObjectName(QStringLiteral("Cmd_Invio_Stagione"));
    m_send->setDefault(true);
    connect(m_send, &QPushButton::clicked, this, &Stagione::Cmd_Invio_StagioneClick);
    m_print->setObjectName(QStringLiteral("Cmd_Stampa"));
    m_print->setToolTip(QStringLiteral("Stampa il resoconto dell'ultimo invio: righe inviate, esito e ora di ognuna."));
    m_print->setEnabled(false);
    connect(m_print, &QPushButton::clicked, this, &Stagione::printReport);

    m_progressPanel->setObjectName(QStringLiteral("Pic_Avanzamento"));
    m_progressPanel->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    m_progress->setObjectName(QStringLiteral("ProgBar"));
    m_progress->setRange(0, 100);
    m_progress->setTextVisible(false);
    m_progress->setStyleSheet(ProgressStyle);
    m_progressText->setObjectName(QStringLiteral("Lab_Avanzamento"));
    m_progressText->setMinimumWidth(m_progressText->fontMetrics().horizontalAdvance(QStringLiteral("100%")) + 8);
    m_progressText->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *progressLayout = new QHBoxLayout(m_progressPanel);
    progressLayout->addWidget(new QLabel(QStringLiteral("Invio:"), m_progressPanel));
    progressLayout->addWidget(m_progress, 1);
    progressLayout->addWidget(m_progressText);
    m_progressPanel->hide();
    m_outcome->setObjectName(QStringLiteral("Lab_Esito"));
    m_outcome->setWordWrap(true);

    auto *actions = new QHBoxLayout;
    actions->addWidget(m_verify);
    actions->addStretch(1);
    actions->addWidget(m_print);
    actions->addWidget(m_send);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(recipes);
    layout->addWidget(m_current);
    layout->addWidget(m_next);
    layout->addWidget(rows, 1);
    layout->addLayout(actions);
    layout->addWidget(m_progressPanel);
    layout->addWidget(m_outcome);

    connect(m_change, &SeasonChange::recipeChanged, this, &Stagione::fillLists);
    connect(m_change, &SeasonChange::sendingChanged, this, &Stagione::sendingChanged);
    connect(m_change, &SeasonChange::progressChanged, this, [this](int percent, const QString &text) {
        m_progress->setValue(percent);
        m_progressText->setText(text);
    });
    connect(m_change, &SeasonChange::rowDone, this, [this](int row, const QString &text, bool ok) {
        markRow(row, ok);
        m_outcome->setText(text);
    });
    connect(m_change, &SeasonChange::seasonStored, this, [this] { showSeason(); });
    connect(m_change, &SeasonChange::reportReady, this, &Stagione::reportReady);
}

Stagione::~Stagione() = default;

void Stagione::buildLists(QWidget *parent)
{
    auto *layout = new QGridLayout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(0);
    int column = 0;
    for (const ListColumn &listColumn : Columns) {
        auto *caption = new QLabel(QString::fromUtf8(listColumn.caption), parent);
        auto *list = new QListWidget(parent);
        list->setObjectName(QLatin1String(listColumn.name));
        list->setUniformItemSizes(true);
        list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        list->setSelectionBehavior(QAbstractItemView::SelectRows);
        layout->addWidget(caption, 0, column);
        layout->addWidget(list, 1, column);
        layout->setColumnStretch(column, listColumn.stretch);
        m_lists.append(list);
        ++column;
    }
    // One scroll bar, on the last list, moves all seven; so does the selected row.
    for (QListWidget *list : std::as_const(m_lists)) {
        if (list != m_lists.last())
            list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        connect(list->verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
            for (QListWidget *other : std::as_const(m_lists))
                other->verticalScrollBar()->setValue(value);
        });
        connect(list, &QListWidget::currentRowChanged, this, [this](int row) {
            for (QListWidget *other : std::as_const(m_lists))
                other->setCurrentRow(row);
        });
    }
    for (int narrow : {0, 2, 3})
        m_lists.at(narrow)->setMaximumWidth(70);
}

void Stagione::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        refresh();
}

void Stagione::refresh()
{
    if (m_change->sending())
        return;
    setWindowTitle(m_rt.model.mode.seasonCaption.isEmpty() ? QStringLiteral("Stagione") : m_rt.model.mode.seasonCaption);
    m_summerFile->setText(readSeasonRecipe(m_rt.model.ini, Season::Estate));
    m_winterFile->setText(readSeasonRecipe(m_rt.model.ini, Season::Inverno));
    showSeason();
    m_progressPanel->hide();
    m_change->loadSeasonRecipe(otherSeason(m_change->currentSeason()), SeasonChange::LoadNotice::Quiet);
    m_outcome->setText(m_change->loadMessage());
    fillLists();
}

void Stagione::showSeason()
{
    const Season current = m_change->currentSeason();
    const Season next = otherSeason(current);
    m_current->setText(QStringLiteral("Stagione attuale: ") + seasonName(current));
    m_next->setText(QStringLiteral("Prossimo cambio: %1 -> %2").arg(seasonName(current), seasonName(next)));
}

void Stagione::chooseRecipe(Season season)
{
    const QString folder = m_rt.model.ini.folder().filePath(RecipeFolder);
    const QString chosen = m_chooseFile(folder);
    if (chosen.isEmpty())
        return;
    const QFileInfo file(chosen);
    if (QDir(file.absolutePath()) != QDir(folder)) {
        m_prompts.warning(RecipeBoxTitle, QStringLiteral("La ricetta deve trovarsi nella cartella Ricetta: "
                                                         "copiare il file in %1 e sceglierlo da lì.")
                                              .arg(QDir::toNativeSeparators(folder)));
        return;
    }
    writeSeasonRecipe(m_rt.model.ini, season, file.fileName());
    (season == Season::Estate ? m_summerFile : m_winterFile)->setText(file.fileName());
    if (season == otherSeason(m_change->currentSeason())) {
        m_change->loadSeasonRecipe(season);
        m_outcome->setText(m_change->loadMessage());
    }
}

void Stagione::fillLists()
{
    for (QListWidget *list : std::as_const(m_lists))
        list->clear();
    for (const RecipeRow &row : m_change->recipe().rows) {
        const QStringList cells = {QString::number(row.zone),
                                   row.device,
                                   row.slave > 0 ? QString::number(row.slave) : QStringLiteral("--"),
                                   QString::number(row.functionCode),
                                   row.target,
                                   row.valueText,
                                   row.name};
        for (int column = 0; column < m_lists.size(); ++column) {
            auto *item = new QListWidgetItem(cells.at(column), m_lists.at(column));
            // A MSGBOX text is often wider than its column.
            item->setToolTip(cells.at(column));
        }
    }
    m_send->setEnabled(m_change->hasRecipe() && !m_change->sending());
}

void Stagione::markRow(int row, bool ok)
{
    const QColor colour = ok ? QColor(0xd6, 0xf5, 0xd6) : QColor(0xf8, 0xd0, 0xd0);
    for (QListWidget *list : std::as_const(m_lists)) {
        if (QListWidgetItem *item = list->item(row)) {
            item->setBackground(colour);
            if (list == m_lists.last())
                list->scrollToItem(item);
        }
    }
}

void Stagione::sendingChanged(bool sending)
{
    m_send->setEnabled(!sending && m_change->hasRecipe());
    m_summerChoose->setEnabled(!sending);
    m_winterChoose->setEnabled(!sending);
    m_verify->setEnabled(!sending);
    m_print->setEnabled(!sending && !m_change->lastReport().isEmpty());
    if (sending) {
        m_progressPanel->show();
        for (QListWidget *list : std::as_const(m_lists)) {
            for (int row = 0; row < list->count(); ++row)
                list->item(row)->setBackground(QBrush());
        }
        m_outcome->clear();
    }
}

void Stagione::Cmd_Invio_StagioneClick()
{
    if (m_change->sending())
        return;
    if (m_sendAllowed && !m_sendAllowed())
        return;
    m_change->send();
}

void Stagione::reportReady(const QString &path)
{
    m_print->setEnabled(true);
    const QString where = path.isEmpty()
        ? QStringLiteral("Impossibile salvare il resoconto dell'invio nella cartella Ricetta.")
        : QStringLiteral("Resoconto salvato in %1").arg(QDir::toNativeSeparators(path));
    m_outcome->setText(m_outcome->text() + QLatin1Char('\n') + where);
}

void Stagione::printReport()
{
    const QStringList lines = m_change->lastReport();
    printTo(m_printTarget(), m_prompts, [&lines](PrinterSink &printer) {
        playPrintJob(sendReportPrintJob(lines), printer);
        return true;
    });
}

} // namespace telvane
