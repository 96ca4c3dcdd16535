#pragma once

#include "storage/plantconfig.h"
#include "synoptic/planunits.h"
#include "synoptic/zonefreshness.h"
#include "ui/synoptic/dragitem.h"

#include <QList>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QCheckBox;
class QGraphicsPixmapItem;
class QGraphicsScene;
class QGraphicsView;
class QLabel;
class QMdiSubWindow;

namespace telvane {

class AlarmBook;
class ButtonItem;
class Camera;
class Clock;
class DisplayResets;
class IniStore;
class InfoPanel;
class LedItem;
class PanelItem;
class Supervisor;
class SwitchItem;
class SynopticRefresh;
class WebcamPanel;
class ZoneMarkerItem;
struct EditorState;
struct ItemStates;
struct PlantConfig;
struct Runtime;
struct UserLevel;
struct ValueTables;

// The parts of a running plant the synoptic reads and writes.
struct SynopticSources
{
    const PlantConfig &plant;
    const ValueTables &values;
    const ItemStates &items;
    const UserLevel &user;
    const EditorState &editor;
    const AlarmBook &alarms;
    const Clock &clock;
    IniStore &ini;
    SynopticRefresh &refresh;
    DisplayResets &resets;
};

SynopticSources synopticSources(Runtime &rt);

// The synoptic panel `Sinottico`: the plan picture (`Pic_Pianta`) with every zone, switch,
// LED lamp, the door opener and the webcam at their stored positions, kept up to date
// from the polls. The scene is in twips, the unit of the stored positions, so the plan
// stays sharp at any scale and a moved item is stored exactly where it stands.
//
// The operator's commands leave as signals; a service or administrator user moves any
// item with the right button, and the new position goes straight to the settings.
class Sinottico final : public QWidget
{
    Q_OBJECT

public:
    // The smallest window, in twips.
    static constexpr int MinimumWidthTwips = 12195;
    static constexpr int MinimumHeightTwips = 9570;

    Sinottico(const SynopticSources &sources, Supervisor &supervisor, Camera &camera, QWidget *parent = nullptr);
    ~Sinottico() override;

    // The frame the window lives in: its minimum size, and its centring in the main
    // window's workspace whenever it is resized in the normal state.
    void attachFrame(QMdiSubWindow *frame);

    // The items again from the plant configuration, all showing "--.-".
    void rebuild();

    // Scales the whole plan to the window instead of showing it pixel for pixel.
    void setFitToWindow(bool fit);
    bool fitToWindow() const { return m_fit; }

    // Stops the webcam's picture and hides its panel (on exit, too).
    void stopCamera();

    // Greys the markers of zones whose readings stopped coming; run every second while
    // acquiring.
    void refreshStaleness();

    const PlanUnits &units() const { return m_units; }
    QGraphicsView *view() const { return m_view; }
    QGraphicsScene *scene() const { return m_scene; }
    QRectF planRect() const { return m_rules.plan; }
    ZoneMarkerItem *zoneMarker(int zone) const { return m_zones.value(zone); }
    SwitchItem *switchItem(int sw) const { return m_switches.value(sw); }
    LedItem *ledItem(int led) const { return m_leds.value(led); }
    ButtonItem *doorButton() const { return m_door; }
    ButtonItem *webcamButton() const { return m_webcamButton; }
    PanelItem *infoPanel() const { return m_infoItem; }
    PanelItem *webcamPanelItem() const { return m_webcamItem; }
    WebcamPanel *webcamPanel() const { return m_webcamPanel; }
    // The information panel was closed with `Cmd_Chiudi`.
    bool infoPanelClosed() const { return m_infoClosed; }
    // How many items the last refresh repainted.
    int lastRepaints() const { return m_lastRepaints; }

    // --- Refresh from the polls (the refresh hook calls them) ------------------------
    void showZoneTexts();
    void showSwitchStates();
    void showLedLamps();

signals:
    // The operator's commands on the plan.
    void switchOnImageClicked(int sw);
    void switchOffImageClicked(int sw);
    void doorOpenerClicked();
    void zoneValueDoubleClicked(int zone, const QString &shownText);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void clearItems();
    void buildPlan();
    void placeItem(QGraphicsItem *item, int x, int y);
    void connectPlacement(QObject *item);
    void itemPlaced(int kind, int index, QPoint topLeft);
    void openInfoPanel(int zone);
    void fillInfoPanel(int zone);
    void openWebcamPanel();
    void resetZoneDisplays();
    void resetIndicatorDisplays();
    void showBlink();
    void showSimulation();
    void applyScale();
    void centreInWorkspace();
    void fitFrameToWorkspace();
    QString planSignature() const;

    SynopticSources m_sources;
    Supervisor &m_supervisor;
    PlanUnits m_units;
    PlacementRules m_rules;
    ZoneFreshness m_freshness;
    SynopticFields m_fields;

    QLabel *m_simulation;
    QCheckBox *m_fitBox;
    QGraphicsScene *m_scene;
    QGraphicsView *m_view;
    QGraphicsPixmapItem *m_plan = nullptr;
    QList<ZoneMarkerItem *> m_zones;
    QList<SwitchItem *> m_switches;
    QList<LedItem *> m_leds;
    ButtonItem *m_door = nullptr;
    ButtonItem *m_webcamButton = nullptr;
    InfoPanel *m_infoPanel;
    PanelItem *m_infoItem;
    WebcamPanel *m_webcamPanel;
    PanelItem *m_webcamItem;
    QPointer<QMdiSubWindow> m_frame;
    QTimer m_staleTimer;
    QString m_builtSignature;
    bool m_fit = false;
    bool m_frameSized = false;
    bool m_infoClosed = false;
    bool m_rebuildQueued = false;
    int m_lastRepaints = 0;
};

} // namespace telvane
