#include "ui/synoptic/sinottico.h"

#include "alarms/alarmbook.h"
#include "base/camera.h"
#include "base/clock.h"
#include "base/datetimetext.h"
#include "storage/inistore.h"
#include "storage/plantconfigloader.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"
#include "synoptic/itemplacement.h"
#include "synoptic/zoneinfo.h"
#include "synoptic/zonelabels.h"
#include "ui/synoptic/buttonitem.h"
#include "ui/synoptic/infopanel.h"
#include "ui/synoptic/leditem.h"
#include "ui/synoptic/panelitem.h"
#include "ui/synoptic/switchitem.h"
#include "ui/synoptic/webcampanel.h"
#include "ui/synoptic/zonemarkeritem.h"
#include "ui/uilog.h"

#include <QCheckBox>
#include <QEvent>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QGraphicsSimpleTextItem>
#include <QGraphicsView>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>
#include <QVBoxLayout>

#include <cmath>
#include <tuple>

namespace telvane {

namespace {

const QString NoReading = QStringLiteral("--.-");
const QString Title = QStringLiteral("Sinottico");

double screenDpi()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->logicalDotsPerInch() : PlanUnits::StandardDpi;
}

int ledColour(const EditorState &editor, int led)
{
    const int colour = editor.tables.LedReadTable.at(led, LedSlot::Colour);
    return colour >= 0 && colour <= 6 ? colour : 1;
}

} // namespace

SynopticSources synopticSources(Runtime &rt)
{
    return {rt.model.plant, rt.model.values, rt.services.items,  rt.services.user,      rt.model.editor,       rt.services.alarms,
            rt.devices.clock, rt.model.ini,    rt.display.synoptic, rt.display.displayResets};
}

Sinottico::Sinottico(const SynopticSources &sources, Supervisor &supervisor, Camera &camera, QWidget *parent)
    : QWidget(parent)
    , m_sources(sources)
    , m_supervisor(supervisor)
    , m_units(screenDpi())
    , m_simulation(new QLabel(this))
    , m_fitBox(new QCheckBox(QStringLiteral("Adatta alla finestra"), this))
    , m_scene(new QGraphicsScene(this))
    , m_view(new QGraphicsView(m_scene, this))
    , m_infoPanel(new InfoPanel)
    , m_infoItem(new PanelItem(PlanItemKind::ZoneInfoPanel, m_infoPanel, m_units.twipsPerPixel(), m_rules))
    , m_webcamPanel(new WebcamPanel(camera))
    , m_webcamItem(new PanelItem(PlanItemKind::WebcamPanel, m_webcamPanel, m_units.twipsPerPixel(), m_rules))
{
    setObjectName(Title);
    setWindowTitle(Title);
    const UserLevel &user = m_sources.user;
    m_rules.mayPlace = [&user] { return user.IsAdministrator; };

    m_simulation->setObjectName(QStringLiteral("Lab_Simulazione"));
    m_simulation->setText(QStringLiteral("SIMULAZIONE: i valori sono generati dal programma, non letti dagli strumenti"));
    m_simulation->setStyleSheet(QStringLiteral("QLabel { color: white; background: #b36b00; font-weight: bold;"
                                               " padding: 2px 8px; }"));
    m_fitBox->setObjectName(QStringLiteral("Chk_Adatta"));
    m_fitBox->setToolTip(QStringLiteral("Mostra l'intera pianta nella finestra"));
    connect(m_fitBox, &QCheckBox::toggled, this, &Sinottico::setFitToWindow);

    m_view->setObjectName(QStringLiteral("Vista_Pianta"));
    m_view->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::TextAntialiasing);
    m_view->setAlignment(Qt::AlignCenter);
    m_view->setBackgroundBrush(QColor(0x9a, 0xa4, 0xad));
    m_view->setFrameShape(QFrame::NoFrame);

    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(6, 2, 6, 2);
    bar->addWidget(m_simulation);
    bar->addStretch();
    bar->addWidget(m_fitBox);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_view, 1);

    m_scene->addItem(m_infoItem);
    m_scene->addItem(m_webcamItem);
    m_infoItem->hide();
    m_webcamItem->hide();
    for (PanelItem *panel : {m_infoItem, m_webcamItem})
        connect(panel, &PanelItem::placed, this,
                [this](PlanItemKind kind, int index, QPoint topLeft) { itemPlaced(int(kind), index, topLeft); });
    connect(m_infoPanel, &InfoPanel::closeClicked, this, [this] {
        m_infoItem->hide();
        m_infoClosed = true;
    });
    connect(m_webcamPanel, &WebcamPanel::closeClicked, this, &Sinottico::stopCamera);

    SynopticRefresh &refresh = m_sources.refresh;
    connect(&refresh, &SynopticRefresh::zoneTextsChanged, this, &Sinottico::showZoneTexts);
    connect(&refresh, &SynopticRefresh::switchStatesChanged, this, &Sinottico::showSwitchStates);
    connect(&refresh, &SynopticRefresh::ledLampsChanged, this, &Sinottico::showLedLamps);
    connect(&refresh, &SynopticRefresh::remoteStatesChanged, this, [this] {
        if (m_infoItem->isVisible())
            fillInfoPanel(m_infoItem->index());
    });
    connect(&m_sources.resets, &DisplayResets::ResetZoneDisplays, this, &Sinottico::resetZoneDisplays);
    connect(&m_sources.resets, &DisplayResets::ResetIndicatorDisplays, this, &Sinottico::resetIndicatorDisplays);

    connect(&m_supervisor, &Supervisor::acquisitionButtonImageChanged, this, &Sinottico::showBlink);
    connect(&m_sources.alarms, &AlarmBook::entryAdded, this, &Sinottico::showBlink);
    connect(&m_sources.alarms, &AlarmBook::alarmsReset, this, &Sinottico::showBlink);
    connect(&m_supervisor, &Supervisor::acquisitionStateChanged, this, [this](bool running) {
        if (running) {
            m_freshness.start(m_sources.clock.monotonicMs());
            m_staleTimer.start();
        } else {
            m_freshness.stop();
            m_staleTimer.stop();
        }
        refreshStaleness();
        showSimulation();
    });
    m_staleTimer.setInterval(1000);
    connect(&m_staleTimer, &QTimer::timeout, this, &Sinottico::refreshStaleness);

    showSimulation();
    rebuild();
}

Sinottico::~Sinottico()
{
    m_webcamPanel->stop();
}

void Sinottico::clearItems()
{
    const auto remove = [this](QGraphicsItem *item) {
        if (!item)
            return;
        m_scene->removeItem(item);
        delete item;
    };
    for (ZoneMarkerItem *item : std::as_const(m_zones))
        remove(item);
    for (SwitchItem *item : std::as_const(m_switches))
        remove(item);
    for (LedItem *item : std::as_const(m_leds))
        remove(item);
    m_zones.clear();
    m_switches.clear();
    m_leds.clear();
    remove(m_door);
    remove(m_webcamButton);
    m_door = nullptr;
    m_webcamButton = nullptr;
    const QList<QGraphicsItem *> decorations = m_scene->items();
    for (QGraphicsItem *item : decorations) {
        if (item->data(0).toBool())
            remove(item);
    }
    m_plan = nullptr;
}

// A plan that cannot be loaded leaves a plain area of the smallest window's size with a
// line saying which file is missing: the items stay usable.
void Sinottico::buildPlan()
{
    const PlantConfig &plant = m_sources.plant;
    const QPixmap picture(plant.synoptic.picturePath);
    QRectF plan;
    if (picture.isNull()) {
        plan = QRectF(0, 0, MinimumWidthTwips, MinimumHeightTwips);
        auto *area = m_scene->addRect(plan, Qt::NoPen, QColor(0xf2, 0xf2, 0xee));
        area->setData(0, true);
        area->setZValue(-10);
        auto *missing = m_scene->addSimpleText(
            QStringLiteral("Pianta non trovata: %1").arg(plant.synoptic.picture));
        QFont font = missing->font();
        font.setPixelSize(int(m_units.toTwips(14)));
        missing->setFont(font);
        missing->setBrush(QColor(0x60, 0x60, 0x60));
        missing->setPos(m_units.toTwips(12), m_units.toTwips(8));
        missing->setData(0, true);
        missing->setZValue(-9);
        qCWarning(lcUi).noquote() << "Plan picture not loaded:" << plant.synoptic.picturePath;
    } else {
        m_plan = m_scene->addPixmap(picture);
        m_plan->setTransformationMode(Qt::SmoothTransformation);
        m_plan->setScale(m_units.twipsPerPixel());
        m_plan->setZValue(-10);
        m_plan->setData(0, true);
        plan = QRectF(QPointF(0, 0), m_units.toTwips(QSizeF(picture.size())));
    }
    m_rules.plan = plan;
    m_scene->setSceneRect(plan);
}

void Sinottico::placeItem(QGraphicsItem *item, int x, int y)
{
    m_scene->addItem(item);
    item->setPos(clampToPlan(QPoint(x, y), item->sceneBoundingRect().size().toSize(), m_rules.plan.toRect()));
}

void Sinottico::connectPlacement(QObject *item)
{
    connect(static_cast<PlanItem *>(item), &PlanItem::placed, this,
            [this](PlanItemKind kind, int index, QPoint topLeft) { itemPlaced(int(kind), index, topLeft); });
}

void Sinottico::rebuild()
{
    clearItems();
    buildPlan();
    const PlantConfig &plant = m_sources.plant;
    LoadSynopticFields(m_sources.ini, m_fields, plant.zoneCount());

    for (int zone = 0; zone < plant.zoneCount(); ++zone) {
        const Zona &z = plant.zones[zone];
        const QPixmap icon = z.icon.isEmpty() ? QPixmap() : QPixmap(m_sources.ini.folder().filePath(z.icon));
        auto *marker = new ZoneMarkerItem(zone, z.name, icon, m_units, m_rules);
        marker->setToolTip(z.name);
        placeItem(marker, z.x, z.y);
        connectPlacement(marker);
        connect(marker, &ZoneMarkerItem::markerClicked, this, &Sinottico::openInfoPanel);
        connect(marker, &ZoneMarkerItem::labTempDoubleClicked, this, &Sinottico::zoneValueDoubleClicked);
        m_zones.append(marker);
    }
    for (int sw = 0; sw < plant.switchCount(); ++sw) {
        const Interruttore &s = plant.switches[sw];
        auto *item = new SwitchItem(sw, s.name, m_units, m_rules);
        placeItem(item, s.x, s.y);
        connectPlacement(item);
        connect(item, &SwitchItem::onImageClicked, this, &Sinottico::switchOnImageClicked);
        connect(item, &SwitchItem::offImageClicked, this, &Sinottico::switchOffImageClicked);
        m_switches.append(item);
    }
    for (int led = 0; led < plant.ledCount(); ++led) {
        const LED &l = plant.leds[led];
        auto *item = new LedItem(led, l.name, ledColour(m_sources.editor, led), m_units, m_rules);
        placeItem(item, l.x, l.y);
        connectPlacement(item);
        m_leds.append(item);
    }
    if (plant.apriporta.present) {
        m_door = new ButtonItem(PlanItemKind::DoorOpener, QStringLiteral("Cmd_Apriporta"), plant.apriporta.name,
                                m_units, m_rules);
        placeItem(m_door, plant.apriporta.x, plant.apriporta.y);
        connectPlacement(m_door);
        connect(m_door, &PlanItem::clicked, this, &Sinottico::doorOpenerClicked);
    }
    if (plant.webcam.present) {
        m_webcamButton = new ButtonItem(PlanItemKind::WebcamButton, QStringLiteral("Cmd_Webcam"), plant.webcam.name,
                                        m_units, m_rules);
        placeItem(m_webcamButton, plant.webcam.x, plant.webcam.y);
        connectPlacement(m_webcamButton);
        connect(m_webcamButton, &PlanItem::clicked, this, &Sinottico::openWebcamPanel);
    } else {
        stopCamera();
    }
    if (m_infoItem->index() >= plant.zoneCount())
        m_infoItem->hide();
    m_builtSignature = planSignature();
    showSwitchStates();
    showLedLamps();
    applyScale();
}

// What the items are built from: a reload that changes none of it keeps the items (and
// whatever the operator has open) as they are.
QString Sinottico::planSignature() const
{
    const PlantConfig &plant = m_sources.plant;
    QStringList parts{plant.synoptic.picturePath};
    for (const Zona &z : plant.zones)
        parts << z.name << z.icon << QString::number(z.x) << QString::number(z.y);
    for (const Interruttore &s : plant.switches)
        parts << s.name << QString::number(s.x) << QString::number(s.y);
    for (int led = 0; led < plant.ledCount(); ++led)
        parts << plant.leds[led].name << QString::number(plant.leds[led].x) << QString::number(plant.leds[led].y)
              << QString::number(ledColour(m_sources.editor, led));
    for (const auto &[present, name, x, y] :
         {std::tuple{plant.apriporta.present, plant.apriporta.name, plant.apriporta.x, plant.apriporta.y},
          std::tuple{plant.webcam.present, plant.webcam.name, plant.webcam.x, plant.webcam.y}})
        parts << QString::number(present) << name << QString::number(x) << QString::number(y);
    return parts.join(QChar(0x1f));
}

void Sinottico::showZoneTexts()
{
    const PlantConfig &plant = m_sources.plant;
    const ZoneLabelQuantities quantities = zoneLabelQuantities(plant.zoneDisplay.textQuantity);
    const ZoneTable &readTable = m_sources.editor.tables.ZoneReadTable;
    m_freshness.noteRound(m_sources.values, int(m_zones.size()), int(quantities.labTemp), m_sources.clock.now(),
                          m_sources.clock.monotonicMs());
    int repainted = 0;
    for (int zone = 0; zone < m_zones.size(); ++zone) {
        ZoneMarkerItem *marker = m_zones[zone];
        const QString first = zoneLabelText(m_sources.values, readTable, zone, quantities.labTemp,
                                            plant.zoneDisplay.unit);
        const QString second = zoneLabelText(m_sources.values, readTable, zone, quantities.labTemp1,
                                             plant.zoneDisplay.unit);
        repainted += marker->setTexts(first, second);
        const QDateTime last = m_freshness.lastGoodReading(zone);
        const QString tip = last.isValid() ? QStringLiteral("%1\nUltima lettura valida: %2")
                                                 .arg(plant.zones[zone].name,
                                                      last.toString(QLatin1String(DateTimeTextFormat)))
                                           : QStringLiteral("%1\nNessuna lettura valida").arg(plant.zones[zone].name);
        if (marker->toolTip() != tip)
            marker->setToolTip(tip);
    }
    m_lastRepaints = repainted;
    refreshStaleness();
}

void Sinottico::showSwitchStates()
{
    int repainted = 0;
    for (int sw = 0; sw < m_switches.size(); ++sw)
        repainted += m_switches[sw]->setState(m_sources.items.switches[sw]);
    m_lastRepaints = repainted;
}

void Sinottico::showLedLamps()
{
    int repainted = 0;
    for (int led = 0; led < m_leds.size(); ++led)
        repainted += m_leds[led]->setLit(m_sources.items.leds[led].lit);
    m_lastRepaints = repainted;
}

void Sinottico::refreshStaleness()
{
    const int period = m_sources.editor.comm.measurementPeriod;
    const qint64 now = m_sources.clock.monotonicMs();
    for (int zone = 0; zone < m_zones.size(); ++zone)
        m_zones[zone]->setStale(m_freshness.isStale(zone, now, period));
}

// Items listed in the alarms window are framed red; while the alarm blinks, the frame
// blinks with the acquisition button.
void Sinottico::showBlink()
{
    const bool framed = !m_supervisor.AlarmBlinkActive() || m_supervisor.BlinkPhase();
    const AlarmBook &alarms = m_sources.alarms;
    for (int zone = 0; zone < m_zones.size(); ++zone)
        m_zones[zone]->setAlarm(alarms.AlarmReported(AlarmItemKind::Zone, zone), framed);
    for (int sw = 0; sw < m_switches.size(); ++sw)
        m_switches[sw]->setAlarm(alarms.AlarmReported(AlarmItemKind::Switch, sw), framed);
}

void Sinottico::resetZoneDisplays()
{
    for (ZoneMarkerItem *marker : std::as_const(m_zones))
        marker->setTexts(NoReading, NoReading);
    // A reload resets the displays before it has loaded the picture: look at the plant
    // once the reload is over.
    if (m_rebuildQueued)
        return;
    m_rebuildQueued = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_rebuildQueued = false;
            if (planSignature() != m_builtSignature)
                rebuild();
        },
        Qt::QueuedConnection);
}

void Sinottico::resetIndicatorDisplays()
{
    showSwitchStates();
    showLedLamps();
    showBlink();
}

void Sinottico::itemPlaced(int kind, int index, QPoint topLeft)
{
    if (!storeItemPosition(m_sources.ini, PlanItemKind(kind), index, topLeft))
        qCWarning(lcUi) << "Position of a synoptic item not stored";
}

void Sinottico::openInfoPanel(int zone)
{
    m_infoItem->setIndex(zone);
    fillInfoPanel(zone);
    m_infoItem->resize(m_infoPanel->sizeHint());
    const QPoint stored = readPanelPosition(m_sources.ini, PlanItemKind::ZoneInfoPanel, zone);
    m_infoItem->setPos(clampToPlan(stored, m_infoItem->sceneBoundingRect().size().toSize(), m_rules.plan.toRect()));
    m_infoItem->show();
    m_infoClosed = false;
}

void Sinottico::fillInfoPanel(int zone)
{
    const EditorState &editor = m_sources.editor;
    ZoneInfoFlags flags;
    flags.remote = m_sources.items.zoneRemote[zone];
    flags.inAlarm = m_sources.alarms.AlarmReported(AlarmItemKind::Zone, zone);
    // The first zone leads; every other zone follows it unless its "Slave" key says not.
    flags.masterSlaveZone = zone == 0 || editor.tables.zoneSlaveFlags[zone];
    flags.role = zone == 0 ? 1 : 2;
    flags.masterOption = editor.options.master;
    flags.chrono = editor.chronoThermostat && editor.chronoZoneEnabled[zone];
    m_infoPanel->fill(zoneInfo(m_sources.plant, m_fields, zone, flags));
}

void Sinottico::openWebcamPanel()
{
    const QString name =
        m_sources.ini.ReadIniKey(QStringLiteral("Webcam"), QStringLiteral("Nome"), m_sources.plant.webcam.name);
    m_webcamItem->resize(m_webcamPanel->sizeHint());
    const QPoint stored = readPanelPosition(m_sources.ini, PlanItemKind::WebcamPanel, 0);
    m_webcamItem->setPos(clampToPlan(stored, m_webcamItem->sceneBoundingRect().size().toSize(),
                                     m_rules.plan.toRect()));
    m_webcamItem->show();
    m_webcamPanel->start(name);
}

void Sinottico::stopCamera()
{
    m_webcamPanel->stop();
    m_webcamItem->hide();
}

void Sinottico::showSimulation()
{
    const bool simulated = !m_supervisor.CommunicateWithInstruments();
    m_simulation->setVisible(simulated);
    setWindowTitle(simulated ? Title + QStringLiteral(" - SIMULAZIONE") : Title);
}

void Sinottico::setFitToWindow(bool fit)
{
    m_fit = fit;
    if (m_fitBox->isChecked() != fit)
        m_fitBox->setChecked(fit);
    applyScale();
}

void Sinottico::applyScale()
{
    if (m_fit) {
        m_view->fitInView(m_rules.plan, Qt::KeepAspectRatio);
        return;
    }
    m_view->resetTransform();
    m_view->scale(1.0 / m_units.twipsPerPixel(), 1.0 / m_units.twipsPerPixel());
}

void Sinottico::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_fit)
        applyScale();
}

void Sinottico::attachFrame(QMdiSubWindow *frame)
{
    m_frame = frame;
    frame->setMinimumSize(int(std::ceil(m_units.toPixels(MinimumWidthTwips))),
                          int(std::ceil(m_units.toPixels(MinimumHeightTwips))));
    frame->installEventFilter(this);
}

bool Sinottico::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_frame && event->type() == QEvent::Show && !m_frameSized)
        fitFrameToWorkspace();
    if (watched == m_frame && event->type() == QEvent::Resize)
        centreInWorkspace();
    return QWidget::eventFilter(watched, event);
}

// The first time it opens the window takes the plan's size, as far as the workspace has
// room for it.
void Sinottico::fitFrameToWorkspace()
{
    if (!m_frame || !m_frame->mdiArea())
        return;
    m_frameSized = true;
    const QSize area = m_frame->mdiArea()->viewport()->size();
    const QSize plan = m_units.toPixels(m_rules.plan.size()).toSize();
    // The frame's title and borders, and the bar above the plan.
    const QSize chrome = (m_frame->size() - size()).expandedTo(QSize(0, 0))
                         + QSize(0, m_fitBox->sizeHint().height() + 4);
    const QSize wanted = (plan + chrome + QSize(4, 4)).boundedTo(area).expandedTo(m_frame->minimumSize());
    m_frame->resize(wanted);
    centreInWorkspace();
}

// Only a window in the normal state is centred: a maximised one fills the workspace
// and a minimised one sits where the workspace keeps its icons. A window larger than
// the workspace keeps its title bar in reach.
void Sinottico::centreInWorkspace()
{
    if (!m_frame || m_frame->isMaximized() || m_frame->isMinimized() || !m_frame->mdiArea())
        return;
    const QSize area = m_frame->mdiArea()->viewport()->size();
    const QSize size = m_frame->size();
    m_frame->move(std::max(0, (area.width() - size.width()) / 2), std::max(0, (area.height() - size.height()) / 2));
}

} // namespace telvane
