#include "ui/trends/storico.h"

#include "base/prompts.h"
#include "storage/plantconfig.h"
#include "trends/csvexport.h"
#include "ui/trends/trendchart.h"
#include "ui/trends/trendpanel.h"

#include <QCalendarWidget>
#include <QDateEdit>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QTextCharFormat>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>

namespace telvane {

namespace {

const QString Title = QStringLiteral("Storico");
constexpr int ProgressPollMs = 50;

QString dayText(const QDate &date)
{
    return date.toString(QStringLiteral("dd/MM/yyyy"));
}

QPushButton *button(const QString &name, const QString &text)
{
    auto *button = new QPushButton(text);
    button->setObjectName(name);
    return button;
}

} // namespace

Storico::Storico(const DailyLog &log, IniStore &ini, PlantConfig &plant, Prompts &prompts, QWidget *parent)
    : QWidget(parent)
    , m_log(log)
    , m_plant(plant)
    , m_prompts(prompts)
    , m_panel(new TrendPanel(ini, plant))
    , m_calendar(new QCalendarWidget)
    , m_fromEdit(new QDateEdit)
    , m_toEdit(new QDateEdit)
    , m_showRange(button(QStringLiteral("Cmd_Mostra"), QStringLiteral("Mostra")))
    , m_exportCsv(button(QStringLiteral("Cmd_EsportaCsv"), QStringLiteral("Esporta CSV...")))
    , m_exportPng(button(QStringLiteral("Cmd_EsportaPng"), QStringLiteral("Esporta immagine...")))
    , m_print(button(QStringLiteral("Cmd_Stampa"), QStringLiteral("Stampa")))
    , m_progressBar(new QProgressBar)
    , m_status(new QLabel)
    , m_printTarget([this] { return openPrintTarget(suggestedName(QStringLiteral(".pdf"))); })
    , m_progressTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("Storico"));
    setWindowTitle(Title);

    m_calendar->setObjectName(QStringLiteral("Cal_Storico"));
    m_calendar->setGridVisible(true);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_calendar->setMaximumDate(QDate::currentDate().addYears(1));
    for (QDateEdit *edit : {m_fromEdit, m_toEdit}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
        edit->setDate(QDate::currentDate());
    }
    m_fromEdit->setObjectName(QStringLiteral("Txt_Dal"));
    m_toEdit->setObjectName(QStringLiteral("Txt_Al"));
    m_status->setObjectName(QStringLiteral("Lab_Stato"));
    m_status->setWordWrap(true);
    m_progressBar->setObjectName(QStringLiteral("Progresso"));
    m_progressBar->setRange(0, 1000);
    m_progressBar->setTextVisible(false);
    m_progressBar->hide();
    for (QPushButton *output : {m_exportCsv, m_exportPng, m_print})
        output->setEnabled(false);

    auto *range = new QFormLayout;
    range->addRow(QStringLiteral("Dal"), m_fromEdit);
    range->addRow(QStringLiteral("Al"), m_toEdit);

    auto *side = new QVBoxLayout;
    side->addWidget(m_calendar);
    side->addLayout(range);
    side->addWidget(m_showRange);
    side->addSpacing(12);
    side->addWidget(m_exportCsv);
    side->addWidget(m_exportPng);
    side->addWidget(m_print);
    side->addWidget(m_progressBar);
    side->addWidget(m_status);
    side->addStretch();

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(side);
    layout->addWidget(m_panel, 1);

    connect(m_calendar, &QCalendarWidget::currentPageChanged, this, &Storico::markDaysWithFiles);
    connect(m_calendar, &QCalendarWidget::clicked, this, [this](const QDate &date) {
        m_fromEdit->setDate(date);
        m_toEdit->setDate(date);
        showDays(date, date);
    });
    connect(m_showRange, &QPushButton::clicked, this, [this] { showDays(m_fromEdit->date(), m_toEdit->date()); });
    connect(m_exportCsv, &QPushButton::clicked, this, &Storico::askExportCsv);
    connect(m_exportPng, &QPushButton::clicked, this, &Storico::askExportPng);
    connect(m_print, &QPushButton::clicked, this, [this] { print(); });
    connect(m_progressTimer, &QTimer::timeout, this, [this] { m_progressBar->setValue(m_progress.load()); });
    m_progressTimer->setInterval(ProgressPollMs);

    markDaysWithFiles();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    resize(1100, 620);
}

Storico::~Storico()
{
    if (m_thread) {
        m_thread->wait();
        delete m_thread;
    }
}

void Storico::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_panel->applySettings();
    markDaysWithFiles();
    // Opened for the first time: today, which is what the operator most often looks for.
    if (!m_shown && !m_thread)
        showDays(QDate::currentDate(), QDate::currentDate());
}

void Storico::markDaysWithFiles()
{
    const QDate first(m_calendar->yearShown(), m_calendar->monthShown(), 1);
    const QDate last = first.addMonths(1).addDays(-1);
    const QSet<QDate> days = daysWithLog(m_log.folder(), first, last);
    m_calendar->setDateTextFormat(QDate(), QTextCharFormat());
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    for (const QDate &day : days)
        m_calendar->setDateTextFormat(day, bold);
}

void Storico::showDays(const QDate &from, const QDate &to)
{
    // One reading at a time; the last day asked for meanwhile follows.
    if (m_thread) {
        m_pending = {from, to};
        return;
    }
    m_from = std::min(from, to);
    m_to = std::max(from, to);
    if (m_from.daysTo(m_to) >= MaxHistoryDays) {
        m_to = m_from.addDays(MaxHistoryDays - 1);
        m_toEdit->setDate(m_to);
    }
    m_reading = std::make_unique<TrendSet>();
    m_progress = 0;
    m_status->setText(QStringLiteral("Lettura in corso..."));
    m_progressBar->setValue(0);
    m_progressBar->show();
    m_showRange->setEnabled(false);
    m_progressTimer->start();

    const QDate first = m_from;
    const QDate last = m_to;
    TrendSet *into = m_reading.get();
    m_thread = QThread::create([this, first, last, into] { m_results = readDays(m_log, first, last, *into, &m_progress); });
    connect(m_thread, &QThread::finished, this, &Storico::readingFinished);
    m_thread->start();
}

void Storico::readingFinished()
{
    m_thread->deleteLater();
    m_thread = nullptr;
    m_progressTimer->stop();
    m_progressBar->hide();
    m_showRange->setEnabled(true);

    m_shown = std::move(m_reading);
    m_panel->applySettings();
    m_panel->chart().setPoints(m_shown.get());
    m_panel->chart().redrawNow();
    const bool anything = m_shown->pointCount() > 0;
    for (QPushButton *output : {m_exportCsv, m_exportPng, m_print})
        output->setEnabled(anything);

    QStringList missing;
    QList<QDate> damaged;
    for (const DayResult &day : std::as_const(m_results)) {
        if (day.outcome == DayOutcome::Missing)
            missing.append(dayText(day.date));
        else if (day.outcome == DayOutcome::Damaged)
            damaged.append(day.date);
    }
    if (m_results.size() == 1 && missing.size() == 1)
        m_status->setText(missingDayMessage(m_from));
    else if (!missing.isEmpty())
        m_status->setText(QStringLiteral("Nessun dato registrato nei giorni: ") + missing.join(QStringLiteral(", ")));
    else
        m_status->setText(QStringLiteral("Mostrati i dati %1.").arg(rangeText()));
    emit daysShown();
    // The chart shows what was read before the message is on the screen.
    for (const QDate &date : std::as_const(damaged))
        m_prompts.warning(Title, damagedDayMessage(date));
    if (m_pending) {
        const auto [from, to] = *m_pending;
        m_pending.reset();
        showDays(from, to);
    }
}

QString Storico::statusText() const
{
    return m_status->text();
}

QString Storico::rangeText() const
{
    return m_from == m_to ? QStringLiteral("del ") + dayText(m_from)
                          : QStringLiteral("dal %1 al %2").arg(dayText(m_from), dayText(m_to));
}

QString Storico::suggestedName(const QString &suffix) const
{
    QString name = QStringLiteral("Storico_") + m_from.toString(QStringLiteral("yyyy_MM_dd"));
    if (m_to != m_from)
        name += QStringLiteral("-") + m_to.toString(QStringLiteral("yyyy_MM_dd"));
    return m_log.folder().filePath(name + suffix);
}

bool Storico::exportCsv(const QString &path)
{
    if (!m_shown)
        return false;
    QStringList names;
    for (const Zona &zone : std::as_const(m_plant.zones))
        names.append(zone.name);
    const qint64 from = m_from.startOfDay().toMSecsSinceEpoch();
    const qint64 to = m_to.addDays(1).startOfDay().toMSecsSinceEpoch() - 1;
    const int traces = std::max(m_panel->zoneCount(), m_shown->usedTraces());
    if (!writeCsvFile(path, csvExportLines(*m_shown, names, traces, from, to, QLocale()))) {
        m_prompts.warning(Title, QStringLiteral("Impossibile scrivere il file ") + QDir::toNativeSeparators(path) + '.');
        return false;
    }
    m_status->setText(QStringLiteral("Dati esportati in ") + QDir::toNativeSeparators(path));
    return true;
}

bool Storico::exportPng(const QString &path)
{
    if (!m_panel->chart().grab().save(path, "PNG")) {
        m_prompts.warning(Title, QStringLiteral("Impossibile scrivere il file ") + QDir::toNativeSeparators(path) + '.');
        return false;
    }
    m_status->setText(QStringLiteral("Immagine salvata in ") + QDir::toNativeSeparators(path));
    return true;
}

void Storico::askExportCsv()
{
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Esporta CSV"), suggestedName(".csv"),
                                                      QStringLiteral("File CSV (*.csv)"));
    if (!path.isEmpty())
        exportCsv(path);
}

void Storico::askExportPng()
{
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Esporta immagine"),
                                                      suggestedName(".png"), QStringLiteral("Immagine PNG (*.png)"));
    if (!path.isEmpty())
        exportPng(path);
}

QString Storico::print()
{
    if (!m_shown)
        return QString();
    PrintTarget target = m_printTarget();
    QtPrinterSink &printer = *target.sink;
    printer.setFontName(QStringLiteral("Arial"));
    printer.setFontSize(12);
    printer.setBold(true);
    printer.printLine({{0, Title + QLatin1Char(' ') + rangeText()}});
    printer.printLine({});
    TrendChart &chart = m_panel->chart();
    printer.printPicture([&chart](QPainter &painter, const QRectF &area) { chart.render(&painter, area); },
                         qreal(chart.width()) / std::max(1, chart.height()));
    printer.endDocument();
    reportPrintout(target, m_prompts);
    if (target.pdfPath.isEmpty())
        m_status->setText(QStringLiteral("Grafico inviato alla stampante"));
    else if (printer.ok())
        m_status->setText(QStringLiteral("Stampa salvata in ") + QDir::toNativeSeparators(target.pdfPath));
    return printer.ok() ? target.pdfPath : QString();
}

} // namespace telvane
