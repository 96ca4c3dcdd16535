#include "ui/mainform.h"

#include "base/clock.h"
#include "base/productinfo.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"
#include "ui/about.h"
#include "ui/allarmi.h"
#include "ui/childwindows.h"
#include "ui/editor/comunicazioni.h"
#include "ui/frmlogin.h"
#include "ui/stagione.h"
#include "ui/trends/grafico.h"
#include "ui/trends/storico.h"
#include "ui/synoptic/sinottico.h"
#include "ui/workspace.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

namespace telvane {

namespace {

QIcon icon(const QString &name)
{
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(name));
}

QIcon acquisitionIcon(int image, bool alarm)
{
    if (alarm)
        return icon(QStringLiteral("allarme-attivo"));
    return icon(image == Supervisor::AcquiringImage ? QStringLiteral("acquisizione-attiva")
                                                    : QStringLiteral("acquisizione-standby"));
}

// Keys of their own: F5 and Shift+F5 as in most programs that start and stop something,
// Ctrl+L for the login; the toolbar's buttons and the menus' Alt letters keep theirs.
const QKeySequence StartKey(Qt::Key_F5);
const QKeySequence StopKey(Qt::SHIFT | Qt::Key_F5);
const QKeySequence LoginKey(Qt::CTRL | Qt::Key_L);

} // namespace

MainForm::MainForm(Runtime &rt, Supervisor &supervisor, Prompts &prompts, Camera &camera, QWidget *parent)
    : QMainWindow(parent)
    , m_rt(rt)
    , m_supervisor(supervisor)
    , m_workspace(new Workspace(this))
    , m_children(new ChildWindows(*m_workspace, this))
    , m_login(new frmLogin(rt.services.user, rt.display.statusBar, prompts))
    , m_alarms(new Allarmi(rt, supervisor, this))
    , m_season(new Stagione(rt, prompts))
    , m_trend(new Grafico(rt.model.ini, rt.model.plant, [&rt] { return rt.display.ChartLoggingOption; }))
    , m_history(new Storico(rt.services.dailyLog, rt.model.ini, rt.model.plant, prompts))
    , m_synoptic(new Sinottico(synopticSources(rt), supervisor, camera))
{
    setObjectName(QStringLiteral("MainForm"));
    setWindowTitle(QLatin1String(ProductName));
    setWindowIcon(icon(QStringLiteral("telvane")));
    setCentralWidget(m_workspace);

    buildMenus();
    buildToolbar();
    buildStatusBar();
    applyMode();

    QMdiSubWindow *loginFrame = m_children->plug(m_entries.value(QStringLiteral("MenuLogin")), m_login);
    // A small form: nothing to enlarge or shrink.
    loginFrame->setWindowFlags(Qt::SubWindow | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                               | Qt::WindowCloseButtonHint);
    connect(m_login, &frmLogin::finished, this, [this] { m_children->ShowChild(m_login, false); });
    connect(m_login, &frmLogin::userChanged, this, &MainForm::userChanged);

    m_children->plug(m_entries.value(QStringLiteral("MenuStagione")), m_season);
    m_season->setSendGuard([this] { return m_supervisor.MenuStagione(); });
    m_children->plug(m_entries.value(QStringLiteral("MenuGrafico")), m_trend);
    m_children->plug(m_entries.value(QStringLiteral("MenuStorico")), m_history);
    m_trend->live().loadLogged(m_rt.services.dailyLog, m_rt.devices.clock.now());
    m_rt.display.chart = &m_trend->live();
    m_synoptic->attachFrame(m_children->plug(m_entries.value(QStringLiteral("MenuSinottico")), m_synoptic));

    connect(&m_supervisor, &Supervisor::acquisitionButtonImageChanged, this, &MainForm::showAcquisitionImage);
    showAcquisitionImage(m_supervisor.acquisitionButtonImage());
    connect(&m_supervisor, &Supervisor::acquisitionStateChanged, this, &MainForm::showTitle);
    showTitle();
}

MainForm::~MainForm()
{
    // The chart goes with the window's children, after this.
    if (m_rt.display.chart == &m_trend->live())
        m_rt.display.chart = nullptr;
}

QAction *MainForm::addEntry(QMenu *menu, const QString &name, const QString &text, const QString &iconName)
{
    auto *entry = new QAction(text, this);
    entry->setObjectName(name);
    if (!iconName.isEmpty())
        entry->setIcon(icon(iconName));
    menu->addAction(entry);
    m_entries.insert(name, entry);
    return entry;
}

void MainForm::addSeparator(QMenu *menu, const QString &name)
{
    menu->addSeparator()->setObjectName(name);
}

void MainForm::buildMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("MenuFile"));
    QAction *login = addEntry(file, QStringLiteral("MenuLogin"), QStringLiteral("&Login..."), QStringLiteral("login"));
    login->setShortcut(LoginKey);
    addSeparator(file, QStringLiteral("MenuNullF0"));
    connect(addEntry(file, QStringLiteral("MenuFine"), QStringLiteral("&Fine")), &QAction::triggered, this,
            &MainForm::MenuFine);

    QMenu *acquisition = menuBar()->addMenu(QStringLiteral("&Acquisizione"));
    acquisition->setObjectName(QStringLiteral("MenuAcquisizione"));
    QAction *start = addEntry(acquisition, QStringLiteral("MenuStart"), QStringLiteral("&Start"),
                              QStringLiteral("acquisizione-attiva"));
    start->setShortcut(StartKey);
    connect(start, &QAction::triggered, &m_supervisor, &Supervisor::MenuStart);
    QAction *stop = addEntry(acquisition, QStringLiteral("MenuStop"), QStringLiteral("S&top"),
                             QStringLiteral("acquisizione-standby"));
    stop->setShortcut(StopKey);
    connect(stop, &QAction::triggered, &m_supervisor, &Supervisor::MenuStop);
    connect(addEntry(acquisition, QStringLiteral("MenuRileggi"), QStringLiteral("&Rileggi")), &QAction::triggered,
            &m_supervisor, &Supervisor::MenuRileggi);
    addSeparator(acquisition, QStringLiteral("MenuNullF1"));
    connect(addEntry(acquisition, QStringLiteral("MenuErroriCOM"), QStringLiteral("&Errori di comunicazione..."),
                     QStringLiteral("allarmi")),
            &QAction::triggered, this, &MainForm::MenuErroriCOM);
    connect(addEntry(acquisition, QStringLiteral("MenuAllarmi"), QStringLiteral("&Allarmi..."),
                     QStringLiteral("allarme-attivo")),
            &QAction::triggered, this, &MainForm::showAlarms);

    QMenu *functions = menuBar()->addMenu(QStringLiteral("F&unzioni"));
    functions->setObjectName(QStringLiteral("MenuFunzioni"));
    QAction *synoptic = addEntry(functions, QStringLiteral("MenuSinottico"), QStringLiteral("&Sinottico"),
                                 QStringLiteral("sinottico"));
    QAction *trend = addEntry(functions, QStringLiteral("MenuGrafico"), QStringLiteral("&Grafico"),
                              QStringLiteral("grafico"));
    QAction *history = addEntry(functions, QStringLiteral("MenuStorico"), QStringLiteral("S&torico"),
                                QStringLiteral("storico"));
    addSeparator(functions, QStringLiteral("MenuNullF2"));
    QAction *season = addEntry(functions, QStringLiteral("MenuStagione"), QString(), QStringLiteral("stagione"));
    addSeparator(functions, QStringLiteral("MenuNullF2A"));
    QAction *editor = addEntry(functions, QStringLiteral("MenuComunicazione"), QStringLiteral("&Comunicazione"),
                               QStringLiteral("comunicazione"));
    // The schedule settings are a page of the configuration editor.
    addEntry(functions, QStringLiteral("MenuCrono"), QString())->setEnabled(false);

    QMenu *help = menuBar()->addMenu(QStringLiteral("&?"));
    help->setObjectName(QStringLiteral("MenuAbout0"));
    connect(addEntry(help, QStringLiteral("MenuAbout"), QStringLiteral("&Informazioni su %1...")
                                                             .arg(QLatin1String(ProductName))),
            &QAction::triggered, this, &MainForm::MenuAbout);

    m_children->addEntry(login);
    m_children->addEntry(synoptic);
    m_children->addEntry(trend);
    m_children->addEntry(history);
    m_children->addEntry(season, [this] { return m_supervisor.MenuStagione(); });
    m_children->addEntry(editor);
}

void MainForm::buildToolbar()
{
    auto *toolbar = addToolBar(QStringLiteral("Strumenti"));
    toolbar->setObjectName(QStringLiteral("Toolbar"));
    toolbar->setMovable(false);
    toolbar->setIconSize(QSize(32, 32));
    toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    // Reachable with Tab, and plainly marked when they have the focus.
    toolbar->setStyleSheet(QStringLiteral("QToolButton:focus { border: 2px solid #1f5f8b; border-radius: 4px; }"));

    const std::pair<const char *, const char *> buttons[] = {
        {"1", "MenuLogin"}, {"2", "MenuSinottico"}, {"3", "MenuGrafico"}, {"4", "MenuStorico"}, {"5", "MenuStagione"},
        {"6", nullptr},     {"7", "MenuComunicazione"},
    };
    for (const auto &[key, entryName] : buttons) {
        if (!entryName) {
            toolbar->addSeparator();
            continue;
        }
        QAction *entry = m_entries.value(QLatin1String(entryName));
        toolbar->addAction(entry);
        auto *button = qobject_cast<QToolButton *>(toolbar->widgetForAction(entry));
        button->setObjectName(QStringLiteral("Button%1").arg(QLatin1String(key)));
        button->setFocusPolicy(Qt::TabFocus);
        m_buttons.insert(QLatin1String(key), button);
    }
    // The login button reads better as what it does than as the menu's "Login...".
    m_entries.value(QStringLiteral("MenuLogin"))->setIconText(QStringLiteral("Login"));

    auto *acquisitionMenu = new QMenu(this);
    acquisitionMenu->setObjectName(QStringLiteral("MenuButton8"));
    acquisitionMenu->addAction(QStringLiteral("Start"));
    acquisitionMenu->addAction(QStringLiteral("Stop"));
    acquisitionMenu->addAction(QStringLiteral("Rileggi"));
    acquisitionMenu->addSeparator();
    acquisitionMenu->addAction(QStringLiteral("Errori di comunicazione"));
    connect(acquisitionMenu, &QMenu::triggered, this, &MainForm::acquisitionMenuTriggered);

    m_acquisitionButton = new QToolButton(toolbar);
    m_acquisitionButton->setObjectName(QStringLiteral("Button8"));
    m_acquisitionButton->setText(QStringLiteral("Acquisizione"));
    m_acquisitionButton->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_acquisitionButton->setMenu(acquisitionMenu);
    m_acquisitionButton->setPopupMode(QToolButton::MenuButtonPopup);
    m_acquisitionButton->setAutoRaise(true);
    m_acquisitionButton->setFocusPolicy(Qt::TabFocus);
    connect(m_acquisitionButton, &QToolButton::clicked, this, &MainForm::acquisitionButtonClicked);
    toolbar->addWidget(m_acquisitionButton);
    m_buttons.insert(QStringLiteral("8"), m_acquisitionButton);
}

void MainForm::buildStatusBar()
{
    QStatusBar *bar = statusBar();
    bar->setObjectName(QStringLiteral("StatusBar"));
    const int minimumWidths[] = {190, 110, 110, 0};
    for (int number = 1; number <= 4; ++number) {
        auto *panel = new QLabel(m_rt.display.statusBar.panel(number), bar);
        panel->setObjectName(QStringLiteral("Panel%1").arg(number));
        panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        panel->setMinimumWidth(minimumWidths[number - 1]);
        panel->setContentsMargins(4, 0, 4, 0);
        bar->addWidget(panel, number == 4 ? 1 : 0);
        m_panels.append(panel);
    }
    m_portLabel = new QLabel(bar);
    m_portLabel->setObjectName(QStringLiteral("Lab_Porta"));
    m_portLabel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    m_portLabel->setContentsMargins(4, 0, 4, 0);
    m_portLabel->setToolTip(QStringLiteral("Porta seriale"));
    bar->addPermanentWidget(m_portLabel);
    panelOneChanged(m_rt.display.statusBar.panel(StatusBar::PortPanel));
    connect(&m_rt.display.statusBar, &StatusBar::panelChanged, this, [this](int number, const QString &text) {
        if (QLabel *panel = statusPanel(number))
            panel->setText(text);
        if (number == StatusBar::PortPanel)
            panelOneChanged(text);
    });
}

void MainForm::plugEditor(Comunicazioni *editor)
{
    m_editor = editor;
    m_children->plug(m_entries.value(QStringLiteral("MenuComunicazione")), editor);
    connect(editor, &Comunicazioni::modeChanged, this, &MainForm::applyMode);
    QAction *schedule = m_entries.value(QStringLiteral("MenuCrono"));
    schedule->setEnabled(true);
    connect(schedule, &QAction::triggered, this, [this] {
        m_children->hideAll();
        m_children->ShowChild(m_editor, true);
        m_editor->openSchedulePage();
    });
}

// Panel 1 shows the port, until a login writes the user there: from then on the port's
// state stays readable at the right end of the bar, so a Start that cannot open the port
// is not a mystery.
void MainForm::panelOneChanged(const QString &text)
{
    if (!text.startsWith(QLatin1String("Utente:")))
        m_portText = text;
    m_portLabel->setText(QStringLiteral("Porta: ") + (m_portText.isEmpty() ? QStringLiteral("Nessuna COM") : m_portText));
    m_portLabel->setVisible(text != m_portText);
}

void MainForm::showTitle()
{
    const QString product = QLatin1String(ProductName);
    setWindowTitle(m_supervisor.CommunicateWithInstruments()
                       ? product
                       : product + QStringLiteral(" - SIMULAZIONE (strumenti simulati)"));
}

void MainForm::applyMode()
{
    m_entries.value(QStringLiteral("MenuStagione"))->setText(m_rt.model.mode.seasonCaption);
    if (m_season)
        m_season->setWindowTitle(m_rt.model.mode.seasonCaption);
    m_entries.value(QStringLiteral("MenuCrono"))->setText(m_rt.model.mode.scheduleCaption);
}

QToolButton *MainForm::toolbarButton(const QString &key) const
{
    return m_buttons.value(key);
}

QLabel *MainForm::statusPanel(int number) const
{
    return number >= 1 && number <= m_panels.size() ? m_panels[number - 1] : nullptr;
}

void MainForm::acquisitionButtonClicked()
{
    if (m_supervisor.AcquisitionRunning())
        MenuErroriCOM();
    else
        m_supervisor.MenuStart();
}

// The entries are told apart by their text, whatever its case; any entry that is not a
// command of the acquisition opens the error view.
void MainForm::acquisitionMenuTriggered(QAction *entry)
{
    const QString command = entry->text().remove(QLatin1Char('&')).toUpper();
    if (command == QLatin1String("START"))
        m_supervisor.MenuStart();
    else if (command == QLatin1String("STOP"))
        m_supervisor.MenuStop();
    else if (command == QLatin1String("RILEGGI"))
        m_supervisor.MenuRileggi();
    else
        MenuErroriCOM();
}

// While an alarm blinks, the standby phase shows the red alarm picture instead: the
// button then alternates between "alarm" and "acquiring", which no one takes for the
// flicker of a poll. The fast blink before the automatic start keeps the plain pictures.
void MainForm::showAcquisitionImage(int image)
{
    const bool alarm = m_supervisor.AlarmBlinkActive() && m_supervisor.AlarmPending() && m_supervisor.AcquisitionRunning()
                       && image == Supervisor::StandbyImage;
    m_acquisitionButton->setIcon(acquisitionIcon(image, alarm));
    m_acquisitionButton->setProperty("image", image);
    m_acquisitionButton->setProperty("alarmPicture", alarm);
    m_acquisitionButton->setToolTip(m_supervisor.AcquisitionRunning()
                                        ? QStringLiteral("Acquisizione in corso: errori di comunicazione")
                                        : QStringLiteral("Avvia l'acquisizione"));
}

void MainForm::userChanged()
{
    m_alarms->setPrivileged(m_rt.services.user.hasCommandRights());
}

void MainForm::MenuErroriCOM()
{
    showAlarms();
}

void MainForm::showAlarms()
{
    if (!m_alarms->isVisible())
        placeAlarmsWindow();
    m_alarms->showCommErrors(m_rt.services.user.hasCommandRights());
}

// Beside the content, at the workspace's top right: the menus and the toolbar stay free.
// As tall as it needs for its rows, but never past the main window's bottom when the
// workspace has room for it.
void MainForm::placeAlarmsWindow()
{
    const QRect content(m_workspace->mapToGlobal(QPoint(0, 0)), m_workspace->size());
    m_alarms->ensurePolished();
    QSize size = m_alarms->sizeHint().expandedTo(m_alarms->minimumSizeHint());
    size.setWidth(std::min(size.width(), content.width()));
    m_alarms->resize(size);
    const QSize frame = m_alarms->frameGeometry().size().expandedTo(size);
    m_alarms->move(content.left() + std::max(0, content.width() - frame.width()), content.top());
}

void MainForm::MenuAbout()
{
    if (!m_supervisor.MenuAbout())
        return;
    if (!m_about)
        m_about = new About(this);
    m_about->open();
}

void MainForm::MenuFine()
{
    if (!m_supervisor.MenuFine())
        return;
    m_exitAccepted = true;
    close();
}

// The close request is the exit command's to decide, whoever made it.
void MainForm::closeEvent(QCloseEvent *event)
{
    if (!m_exitAccepted && !m_supervisor.MenuFine()) {
        event->ignore();
        return;
    }
    m_exitAccepted = true;
    m_synoptic->stopCamera();
    m_alarms->hide();
    event->accept();
    QCoreApplication::quit();
}

} // namespace telvane
