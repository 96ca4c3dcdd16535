#include "ui/editor/comunicazioni.h"

#include "base/clock.h"
#include "base/productinfo.h"
#include "base/prompts.h"
#include "config_editor/editorpages.h"
#include "config_editor/instrumenttrial.h"
#include "config_editor/printlayout.h"
#include "config_editor/recipetemplate.h"
#include "storage/modesettings.h"
#include "supervisor/chartlogging.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"
#include "ui/editor/chronopage.h"
#include "ui/editor/fieldpage.h"

#include <QAction>
#include <QDesktopServices>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QStackedWidget>
#include <QStringListModel>
#include <QUrl>
#include <QVBoxLayout>

namespace telvane {

namespace {

struct ListInfo
{
    const char *name;
    const char *caption;
    CommList CommLists::*list;
};

const ListInfo Lists[] = {
    {"Lst_Letture", "Letture", &CommLists::Lst_Letture},
    {"Lst_Scritture", "Scritture", &CommLists::Lst_Scritture},
    {"Lst_RemL", "Remoto: letture", &CommLists::Lst_RemL},
    {"Lst_RemW", "Remoto: scritture", &CommLists::Lst_RemW},
};

} // namespace

Comunicazioni::Comunicazioni(Runtime &rt, Supervisor &supervisor, Prompts &prompts, Reload reload, QWidget *parent)
    : QWidget(parent)
    , m_rt(rt)
    , m_supervisor(supervisor)
    , m_prompts(prompts)
    , m_reload(std::move(reload))
    , m_printTarget([this] { return openPrintTarget(printoutPdfPath(m_rt.model.ini.folder().root(), m_rt.devices.clock.now())); })
    , m_frame(new QFrame(this))
    , m_stack(new QStackedWidget(this))
    , m_listsPage(new QWidget(m_stack))
{
    setObjectName(QStringLiteral("Comunicazioni"));
    // Long pages and long lists: on a large screen they show without scrolling.
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setWindowTitle(QStringLiteral("Comunicazioni"));

    auto *layout = new QVBoxLayout(this);
    auto *bar = new QMenuBar(this);
    bar->setObjectName(QStringLiteral("MenuComunicazioni"));
    layout->setMenuBar(bar);

    m_frame->setObjectName(QStringLiteral("Fra_Impostazioni"));
    m_frame->setFrameShape(QFrame::StyledPanel);
    auto *frameLayout = new QHBoxLayout(m_frame);
    frameLayout->setContentsMargins(6, 4, 6, 4);
    layout->addWidget(m_frame);

    auto *lists = new QGridLayout(m_listsPage);
    int column = 0;
    for (const ListInfo &info : Lists) {
        auto *caption = new QLabel(QLatin1String(info.caption), m_listsPage);
        auto *model = new QStringListModel(this);
        auto *view = new QListView(m_listsPage);
        view->setObjectName(QLatin1String(info.name));
        view->setModel(model);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        view->setFont(QFont(QStringLiteral("Monospace"), font().pointSize()));
        caption->setBuddy(view);
        lists->addWidget(caption, 0, column);
        lists->addWidget(view, 1, column);
        m_lists.insert(QLatin1String(info.name), view);
        m_listModels.insert(QLatin1String(info.name), model);
        ++column;
    }
    m_print = new QPushButton(QStringLiteral("Stampa le liste"), m_listsPage);
    m_print->setObjectName(QStringLiteral("Cmd_Stampa"));
    connect(m_print, &QPushButton::clicked, this, &Comunicazioni::PrintCommLists);
    auto *preview = new QPushButton(QStringLiteral("Anteprima di stampa..."), m_listsPage);
    preview->setObjectName(QStringLiteral("Cmd_Anteprima"));
    connect(preview, &QPushButton::clicked, this, &Comunicazioni::previewCommLists);
    auto *printButtons = new QHBoxLayout;
    printButtons->addStretch();
    printButtons->addWidget(preview);
    printButtons->addWidget(m_print);
    lists->addLayout(printButtons, 2, 0, 1, -1);
    m_stack->addWidget(m_listsPage);
    layout->addWidget(m_stack, 1);

    buildMenus(bar);

    m_chronoPage = new ChronoPage(m_stack);
    m_stack->addWidget(m_chronoPage);
    connect(m_chronoPage, &ChronoPage::closeRequested, this, &Comunicazioni::closeChronoPage);
    connect(m_chronoPage, &ChronoPage::printRequested, this, &Comunicazioni::PrintChronoSchedule);
    connect(m_chronoPage, &ChronoPage::previewRequested, this, &Comunicazioni::previewChronoSchedule);

    connect(&m_supervisor, &Supervisor::editorFrameEnabledRequested, this, &Comunicazioni::setFrameEnabled);
    refresh();
    applyMode();
}

Comunicazioni::~Comunicazioni()
{
    m_rt.display.EditorOpen = false;
}

QAction *Comunicazioni::addEntry(QMenu *menu, const QString &name, const QString &text)
{
    auto *entry = menu->addAction(text);
    entry->setObjectName(name);
    m_entries.insert(name, entry);
    return entry;
}

FieldPage *Comunicazioni::addFieldPage(PageModel model, const QString &menuText)
{
    const QString name = model.name();
    auto *page = new FieldPage(std::move(model), m_stack);
    m_stack->addWidget(page);
    m_fieldPages.insert(name, page);
    connect(page, &FieldPage::closeRequested, this, [this, page](int index) { closeFieldPage(page, index); });
    auto *button = new QPushButton(menuText, m_frame);
    button->setObjectName(QStringLiteral("Cmd_") + name);
    connect(button, &QPushButton::clicked, this, [this, name] { openPage(name); });
    m_frame->layout()->addWidget(button);
    return page;
}

void Comunicazioni::buildMenus(QMenuBar *bar)
{
    QMenu *settings = bar->addMenu(QStringLiteral("&Impostazioni"));
    settings->setObjectName(QStringLiteral("MenuImpostazioni"));
    connect(addEntry(settings, QStringLiteral("MenuPorta"), QStringLiteral("&Porta seriale RS232...")),
            &QAction::triggered, this, [this] { openPage(QStringLiteral("RS232")); });
    const std::pair<const char *, const char *> pages[] = {{"MenuZone", "&Zone..."},
                                                           {"MenuInterruttori", "&Interruttori e LED..."},
                                                           {"MenuApriporta", "&Apriporta e webcam..."}};
    const QString pageNames[] = {QStringLiteral("Zone"), QStringLiteral("Interruttori"), QStringLiteral("Apriporta")};
    for (int i = 0; i < 3; ++i) {
        const QString page = pageNames[i];
        connect(addEntry(settings, QLatin1String(pages[i].first), QLatin1String(pages[i].second)),
                &QAction::triggered, this, [this, page] { openPage(page); });
    }
    connect(addEntry(settings, QStringLiteral("MenuPianificazione"), QString()), &QAction::triggered, this,
            &Comunicazioni::openSchedulePage);
    connect(addEntry(settings, QStringLiteral("MenuOpzioni"), QStringLiteral("&Opzioni generali...")),
            &QAction::triggered, this, [this] { openPage(QStringLiteral("Opzioni")); });
    connect(addEntry(settings, QStringLiteral("MenuRicetta"), QStringLiteral("Modello di &ricetta")),
            &QAction::triggered, this, &Comunicazioni::writeRecipeTemplate);
    settings->addSeparator();
    connect(addEntry(settings, QStringLiteral("MenuCambiaIni"), QString()), &QAction::triggered, this,
            &Comunicazioni::MenuCambiaIni);
    connect(addEntry(settings, QStringLiteral("MenuRileggiIni"), QStringLiteral("Ri&leggi le impostazioni")),
            &QAction::triggered, this, &Comunicazioni::MenuRileggiIni);

    QMenu *options = bar->addMenu(QStringLiteral("&Opzioni"));
    options->setObjectName(QStringLiteral("MenuOpzioniRapide"));
    const std::pair<const char *, const char *> flags[] = {{"MenuAvvioAuto", "Avvio &automatico"},
                                                           {"MenuVediGraf", "&Grafico e registrazione"},
                                                           {"MenuMaster", "&Master"}};
    const QString keys[] = {QStringLiteral("AutoAvvio"), QStringLiteral("Grafico"), QStringLiteral("Master")};
    for (int i = 0; i < 3; ++i) {
        QAction *entry = addEntry(options, QLatin1String(flags[i].first), QLatin1String(flags[i].second));
        entry->setCheckable(true);
        const QString key = keys[i];
        connect(entry, &QAction::triggered, this, [this, key, entry] { toggleOption(key, entry); });
    }
    m_settingsMenus = {settings, options};

    addFieldPage(rs232Page(), QStringLiteral("Porta RS232"));
    for (FieldPage *page : {addFieldPage(zonesPage(), QStringLiteral("Zone")),
                            addFieldPage(switchesAndLedsPage(), QStringLiteral("Interruttori e LED")),
                            addFieldPage(doorAndWebcamPage(), QStringLiteral("Apriporta e webcam"))}) {
        page->addTrialButton([this, page](const QString &section) { tryInstrument(page, section); },
                             QStringLiteral("Apriporta"));
    }
    addFieldPage(clockPage(), QStringLiteral("Orologio"));
    addFieldPage(generalOptionsPage(), QStringLiteral("Opzioni"));
    auto *schedule = new QPushButton(QStringLiteral("Cronotermostato"), m_frame);
    schedule->setObjectName(QStringLiteral("Cmd_Crono"));
    connect(schedule, &QPushButton::clicked, this, [this] { openPage(QStringLiteral("Crono")); });
    m_frame->layout()->addWidget(schedule);
    auto *recipe = new QPushButton(QStringLiteral("Modello di ricetta"), m_frame);
    recipe->setObjectName(QStringLiteral("Cmd_Ricetta"));
    connect(recipe, &QPushButton::clicked, this, &Comunicazioni::writeRecipeTemplate);
    m_frame->layout()->addWidget(recipe);
    static_cast<QHBoxLayout *>(m_frame->layout())->addStretch();
}

QWidget *Comunicazioni::currentPage() const
{
    QWidget *current = m_stack->currentWidget();
    return current == m_listsPage ? nullptr : current;
}

void Comunicazioni::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_loaded) {
        // Loaded once, the editor stays loaded: the acquisition's Start and Stop decide its
        // frame from then on.
        m_loaded = true;
        m_rt.display.EditorOpen = true;
        setFrameEnabled(!m_supervisor.AcquisitionRunning());
    }
}

void Comunicazioni::setFrameEnabled(bool enabled)
{
    m_frame->setEnabled(enabled);
    for (QMenu *menu : std::as_const(m_settingsMenus))
        menu->setEnabled(enabled);
    for (int i = 0; i < m_stack->count(); ++i) {
        if (m_stack->widget(i) != m_listsPage)
            m_stack->widget(i)->setEnabled(enabled);
    }
}

void Comunicazioni::applyMode()
{
    const bool civil = m_rt.model.mode.CivilMode;
    m_entries.value(QStringLiteral("MenuPianificazione"))->setText(m_rt.model.mode.scheduleCaption + QStringLiteral("..."));
    m_entries.value(QStringLiteral("MenuCambiaIni"))
        ->setText(civil ? QStringLiteral("Passa all'impianto &industriale (Telvane2.ini)")
                        : QStringLiteral("Passa all'impianto &civile (Telvane1.ini)"));
    m_frame->findChild<QPushButton *>(QStringLiteral("Cmd_Crono"))->setVisible(civil);
    m_frame->findChild<QPushButton *>(QStringLiteral("Cmd_Orologio"))->setVisible(!civil);
}

void Comunicazioni::openSchedulePage()
{
    openPage(m_rt.model.mode.CivilMode ? QStringLiteral("Crono") : QStringLiteral("Orologio"));
}

void Comunicazioni::openPage(const QString &name)
{
    if (name == QLatin1String("Crono")) {
        m_chronoPage->model().load(m_rt.model.ini, m_rt.model.chrono, m_rt.model.holidays.stringList());
        m_chronoPage->showModel(m_rt.model.plant);
        m_stack->setCurrentWidget(m_chronoPage);
        return;
    }
    FieldPage *page = m_fieldPages.value(name);
    if (!page)
        return;
    page->model().load(m_rt.model.ini);
    page->showModel();
    m_stack->setCurrentWidget(page);
}

void Comunicazioni::showLists()
{
    m_stack->setCurrentWidget(m_listsPage);
}

void Comunicazioni::closeFieldPage(FieldPage *page, int index)
{
    if (index == 0) {
        if (!page->model().canConfirm())
            return;
        const bool saved = page->model().save(m_rt.model.ini);
        journalConfirmedPage(page->model().title(), saved);
        if (!saved)
            m_prompts.warning(QStringLiteral("Comunicazioni"),
                              QStringLiteral("Impossibile salvare le impostazioni in %1: il file è rimasto com'era.")
                                  .arg(m_rt.model.ini.currentIniName()));
    }
    // Every close reloads, so the plant always runs on what the file holds.
    MenuRileggiIni();
    showLists();
}

void Comunicazioni::closeChronoPage(int index)
{
    if (index == 0) {
        const bool saved = m_chronoPage->model().save(m_rt.model.ini, m_rt.model.chrono, m_rt.model.holidays);
        journalConfirmedPage(QStringLiteral("Cronotermostato"), saved);
        if (!saved)
            m_prompts.warning(QStringLiteral("Comunicazioni"),
                              QStringLiteral("Impossibile salvare il cronotermostato nella cartella Crono."));
    }
    MenuRileggiIni();
    showLists();
}

void Comunicazioni::journalConfirmedPage(const QString &title, bool saved)
{
    m_rt.services.journal.record(m_rt.services.user.levelName(), QStringLiteral("Pagina confermata"), title,
                        saved ? QStringLiteral("salvata") : QStringLiteral("non salvata"));
}

void Comunicazioni::MenuRileggiIni()
{
    m_reload();
    refresh();
}

void Comunicazioni::MenuCambiaIni()
{
    m_rt.model.mode = changeSettingsFile(m_rt.model.ini, m_rt.model.mode.CivilMode);
    applyMode();
    emit modeChanged();
    MenuRileggiIni();
    showLists();
}

void Comunicazioni::refresh()
{
    for (const ListInfo &info : Lists) {
        const CommList &list = m_rt.model.editor.lists.*(info.list);
        m_listModels.value(QLatin1String(info.name))->setStringList(list.lines);
        m_lists.value(QLatin1String(info.name))->setEnabled(list.enabled);
    }
    const GeneralOptions &options = m_rt.model.editor.options;
    m_entries.value(QStringLiteral("MenuAvvioAuto"))->setChecked(options.autoStart);
    m_entries.value(QStringLiteral("MenuVediGraf"))->setChecked(m_rt.display.ChartLoggingOption);
    m_entries.value(QStringLiteral("MenuMaster"))->setChecked(options.master);
}

void Comunicazioni::toggleOption(const QString &key, QAction *entry)
{
    // The chart-logging choice acts at once on the running rounds, and is saved so that
    // the reloads that follow keep it.
    if (key == QLatin1String("Grafico")) {
        MenuVediGraf(m_rt);
        refresh();
        return;
    }
    const bool on = entry->isChecked();
    if (!m_rt.model.ini.writeIniKeys({{QStringLiteral("Generale"), key, on ? QStringLiteral("1") : QStringLiteral("0")}})) {
        entry->setChecked(!on);
        return;
    }
    MenuRileggiIni();
}

void Comunicazioni::tryInstrument(FieldPage *page, const QString &section)
{
    // The line belongs to the cycle while acquiring.
    if (m_supervisor.AcquisitionRunning())
        return;
    const QStringList lines = runInstrumentTrial(m_rt.services.master, page->model(), section);
    m_prompts.information(QStringLiteral("Prova strumento"), lines.join(QLatin1Char('\n')));
}

void Comunicazioni::writeRecipeTemplate()
{
    const QString path = WriteRecipeTemplate(m_rt.model.ini.folder());
    if (path.isEmpty()) {
        m_prompts.warning(QStringLiteral("Modello di ricetta"),
                          QStringLiteral("Impossibile scrivere il modello di ricetta nella cartella Ricetta."));
        return;
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        m_prompts.information(QStringLiteral("Modello di ricetta"),
                              QStringLiteral("Il modello di ricetta è stato scritto nel file\n%1\n"
                                             "Aprirlo con un editor di testo per compilarlo.")
                                  .arg(path));
}

void Comunicazioni::print(const std::function<bool(PrinterSink &)> &job)
{
    printTo(m_printTarget(), m_prompts, job);
}

void Comunicazioni::PrintCommLists()
{
    const QString product = QLatin1String(ProductName);
    print([this, &product](PrinterSink &printer) {
        return telvane::PrintCommLists(m_prompts, printer, m_rt.model.editor.lists, product, m_rt.devices.clock.now());
    });
}

void Comunicazioni::PrintChronoSchedule()
{
    const QString product = QLatin1String(ProductName);
    print([this, &product](PrinterSink &printer) {
        return telvane::PrintChronoSchedule(m_prompts, printer, m_chronoPage->printout(), product, m_rt.devices.clock.now());
    });
}

// A window of its own, not modal: the technician may compare the pages with the editor.
// The job is made again at every drawing, so the preview shows what the page holds then;
// the preview's print button draws it on the printer chosen there, without asking.
void Comunicazioni::preview(const std::function<PrintJob()> &makeJob)
{
    auto *dialog = new QPrintPreviewDialog(this);
    dialog->setObjectName(QStringLiteral("Anteprima"));
    dialog->setWindowTitle(QStringLiteral("Anteprima di stampa"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QPrintPreviewDialog::paintRequested, this, [makeJob](QPrinter *printer) {
        QtPrinterSink sink(*printer);
        playPrintJob(makeJob(), sink);
    });
    dialog->resize(window()->size());
    dialog->open();
}

void Comunicazioni::previewCommLists()
{
    preview([this] {
        return commListsPrintJob(m_rt.model.editor.lists, QLatin1String(ProductName), m_rt.devices.clock.now());
    });
}

void Comunicazioni::previewChronoSchedule()
{
    preview([this] {
        return chronoSchedulePrintJob(m_chronoPage->printout(), QLatin1String(ProductName), m_rt.devices.clock.now());
    });
}

} // namespace telvane
