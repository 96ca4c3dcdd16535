#include "windowrig.h"

#include "commands/plantcommands.h"
#include "storage/inistore.h"
#include "supervisor/measurementacquisition.h"
#include "supervisor/runtime.h"
#include "ui/synoptic/buttonitem.h"
#include "ui/synoptic/leditem.h"
#include "ui/synoptic/panelitem.h"
#include "ui/synoptic/sinottico.h"
#include "ui/synoptic/switchitem.h"
#include "ui/synoptic/synopticcommands.h"
#include "ui/synoptic/webcampanel.h"
#include "ui/synoptic/zonemarkeritem.h"

#include <QApplication>
#include <QCheckBox>
#include <QMouseEvent>
#include <QGraphicsView>
#include <QImage>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace telvane;

namespace {

// A plan of 600 x 400 pixels: 9000 x 6000 twips.
constexpr int PlanWidthTwips = 9000;
constexpr int PlanHeightTwips = 6000;

const QByteArray Plant = "[Generale]\r\nZone=2\r\nZone Testo=1\r\nInterruttori=2\r\nLED=1\r\nApriporta=1\r\nWebcam=1\r\n"
                         "[Sinottico]\r\nImmagine=plan.png\r\nCampo_1=Superficie\r\n"
                         "[Zona 01]\r\nNome=Soggiorno\r\nIndirizzo=1\r\nDecimali=1\r\nPV_r=3,1\r\nSP_r=3,2\r\n"
                         "X=1500\r\nY=900\r\nCampo_1=30 m²\r\n"
                         "[Zona 02]\r\nNome=Cucina\r\nIndirizzo=2\r\nDecimali=1\r\nPV_r=3,1\r\nSP_r=3,2\r\n"
                         "X=4500\r\nY=3000\r\n"
                         "[Interruttore 01]\r\nNome=Pompa\r\nX=6000\r\nY=600\r\n"
                         "[Interruttore 02]\r\nNome=Luci\r\nX=6000\r\nY=1500\r\n"
                         "[LED 01]\r\nNome=Caldaia\r\nIndirizzo=5\r\nP1_r=3,1\r\nVal=1\r\nCol=4\r\nX=7500\r\nY=600\r\n"
                         "[Apriporta]\r\nNome=Cancello\r\nX=600\r\nY=4500\r\n"
                         "[Webcam]\r\nNome=Ingresso\r\nX=3000\r\nY=4500\r\n";

} // namespace

class TestSinottico : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowRig> rig;
    Sinottico *synoptic = nullptr;

    Runtime &rt() { return rig->plant.rt; }
    QGraphicsView *view() { return synoptic->view(); }
    // Where the settings place an item: its X and Y keys (or Info_X, Info_Y), in twips.
    QPoint stored(const char *section, const QString &prefix = {})
    {
        const auto read = [&](const char *axis) { return rt().model.ini.ReadIniKey(section, prefix + axis, QString()).toInt(); };
        return {read("X"), read("Y")};
    }

    // Where `itemPoint` of `item` is on the screen, in the view's viewport.
    QPoint at(const QGraphicsItem *item, QPointF itemPoint)
    {
        return view()->mapFromScene(item->mapToScene(itemPoint));
    }
    QPoint centreOf(const QGraphicsItem *item) { return at(item, item->boundingRect().center()); }
    QPoint markerOf(int zone) { return at(synoptic->zoneMarker(zone), synoptic->zoneMarker(zone)->markerRect().center()); }
    QString labelText(QWidget *panel, const char *name) { return panel->findChild<QLabel *>(name)->text(); }

    void click(QPoint where, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(view()->viewport(), button, {}, where);
    }
    // Press, release, the double-click and its release, as the platform reports a
    // double-click.
    void doubleClick(QPoint where)
    {
        QWidget *viewport = view()->viewport();
        const QPoint global = viewport->mapToGlobal(where);
        for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                                  QEvent::MouseButtonRelease}) {
            const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
            QMouseEvent event(type, where, global, Qt::LeftButton, held, Qt::NoModifier);
            QApplication::sendEvent(viewport, &event);
        }
    }
    // Press, a few steps of movement, release: as a hand drags.
    void drag(QPoint from, QPoint to, Qt::MouseButton button)
    {
        QWidget *viewport = view()->viewport();
        QTest::mousePress(viewport, button, {}, from);
        for (int step = 1; step <= 4; ++step)
            QTest::mouseMove(viewport, from + (to - from) * step / 4);
        QTest::mouseRelease(viewport, button, {}, to);
    }

private slots:
    void init()
    {
        rig = std::make_unique<WindowRig>();
        rig->plant.writeFile(QStringLiteral("Telvane2.ini"), Plant);
        QImage plan(600, 400, QImage::Format_RGB32);
        plan.fill(Qt::white);
        QVERIFY(plan.save(rig->plant.dir.filePath(QStringLiteral("plan.png"))));
        rig->startUp();
        rig->window->resize(1280, 900);
        rig->clickButton(QStringLiteral("2"));
        synoptic = rig->window->synopticWindow();
        QVERIFY(synoptic->isVisible());
        QVERIFY(QTest::qWaitForWindowExposed(rig->window.get()));
    }
    void cleanup() { rig.reset(); }

    // The window's size and place, its panels, then what it shows of the plant while
    // acquiring and after a stop, and the simulation banner.
    void showsThePlant()
    {
        QMdiSubWindow *frame = qobject_cast<QMdiSubWindow *>(synoptic->parentWidget());
        const QSize workspace = frame->mdiArea()->viewport()->size();
        frame->resize(300, 200);
        QCOMPARE(frame->size(), QSize(813, 638)); // 12195 x 9570 twips
        QCOMPARE(frame->pos(), QPoint((workspace.width() - 813) / 2, (workspace.height() - 638) / 2));
        frame->resize(900, 700);
        QCOMPARE(frame->pos(), QPoint((workspace.width() - 900) / 2, (workspace.height() - 700) / 2));
        // 15 twips a pixel on the screen: the two markers lie 200 pixels apart across.
        QCOMPARE(centreOf(synoptic->zoneMarker(1)).x() - centreOf(synoptic->zoneMarker(0)).x(), 200);
        // The plan, smaller than the window, sits in its middle.
        const QPoint planCentre = view()->mapFromScene(synoptic->planRect().center());
        QVERIFY2((planCentre - view()->viewport()->rect().center()).manhattanLength() <= 2, "plan not centred");
        frame->showMaximized();
        QCOMPARE(frame->geometry(), QRect(QPoint(0, 0), workspace));

        // A zone's information panel where it was left, and the webcam panel without a
        // camera: it says so, and the rest of the plan goes on working.
        QVERIFY(rt().model.ini.writeIniKeys({{"Zona 01", "Info_X", "2400"}, {"Zona 01", "Info_Y", "1200"}}));
        click(markerOf(0));
        PanelItem *info = synoptic->infoPanel();
        QVERIFY(info->isVisible());
        QCOMPARE(info->pos(), QPointF(2400, 1200));
        QCOMPARE(labelText(info->widget(), "Lab_Nome"), QStringLiteral("Soggiorno"));
        QCOMPARE(labelText(info->widget(), "Campo_1"), QStringLiteral("30 m²"));
        click(at(info, info->widget()->findChild<QPushButton *>("Cmd_Chiudi")->geometry().center()));
        QVERIFY(!info->isVisible());
        QVERIFY(synoptic->infoPanelClosed());

        rig->camera.failure = QStringLiteral("Nessuna telecamera collegata.");
        click(centreOf(synoptic->webcamButton()));
        PanelItem *panelItem = synoptic->webcamPanelItem();
        QVERIFY(panelItem->isVisible());
        QCOMPARE(panelItem->pos(), QPointF(300, 300));
        WebcamPanel *panel = synoptic->webcamPanel();
        QCOMPARE(labelText(panel, "Lab_Nome_WC"), QStringLiteral("Ingresso"));
        QCOMPARE(panel->statusText(), QStringLiteral("Nessuna telecamera collegata."));
        QCOMPARE(rig->camera.starts, 1);
        QSignalSpy door(synoptic, &Sinottico::doorOpenerClicked);
        click(centreOf(synoptic->doorButton()));
        QCOMPARE(door.count(), 1);
        const QRect audio = panel->findChild<QCheckBox *>("Chk_Audio")->geometry();
        click(at(panelItem, QPoint(audio.left() + 8, audio.center().y())));
        QVERIFY(rig->camera.audio);
        click(at(panelItem, panel->findChild<QPushButton *>("Cmd_ChiudiWC")->geometry().center()));
        QVERIFY(!panelItem->isVisible());
        QVERIFY(!rig->camera.isActive());
        QCOMPARE(rig->camera.stops, 1);

        // Set value and reading of zone 1, set value of zone 2 (whose instrument does not answer).
        rig->plant.setValue(1, 3, 1, 215);
        rig->plant.setValue(1, 3, 2, 200);
        auto *banner = synoptic->findChild<QLabel *>(QStringLiteral("Lab_Simulazione"));
        rig->supervisor.MenuStart();
        QVERIFY(!banner->isVisible());
        ZoneMarkerItem *living = synoptic->zoneMarker(0);
        const auto texts = [&] {
            return QStringList{living->labTempText(), living->labTemp1Text(), synoptic->zoneMarker(1)->labTempText()};
        };
        QCOMPARE(texts(), (QStringList{"20.0 °C", "21.5 °C", "--.-"}));
        QVERIFY(living->toolTip().contains(QStringLiteral("Ultima lettura valida: 14/11/2026 22:20:")));
        // Only the items whose text changed are drawn again.
        emit rt().display.synoptic.zoneTextsChanged();
        QCOMPARE(synoptic->lastRepaints(), 0);
        rt().model.values.zoneValue(1, ZoneQuantity::SP) = 18.5f;
        emit rt().display.synoptic.zoneTextsChanged();
        QCOMPARE(synoptic->lastRepaints(), 1);
        QCOMPARE(synoptic->zoneMarker(1)->labTempText(), QStringLiteral("18.5 °C"));

        SwitchItem *pump = synoptic->switchItem(0);
        QCOMPARE(pump->visiblePicture(), QStringLiteral("Img_ind"));
        rt().services.items.switches[0] = SwitchState::On;
        rt().services.items.switches[1] = SwitchState::Off;
        rt().services.items.leds[0].lit = true;
        emit rt().display.synoptic.switchStatesChanged();
        emit rt().display.synoptic.ledLampsChanged();
        QCOMPARE(pump->visiblePicture(), QStringLiteral("Img_on"));
        QCOMPARE(synoptic->switchItem(1)->visiblePicture(), QStringLiteral("Img_off"));
        QVERIFY(synoptic->ledItem(0)->isLit());
        QCOMPARE(synoptic->ledItem(0)->colour(), 4);

        // The kitchen keeps answering, the living room goes silent: three periods make it stale.
        rig->plant.setValue(2, 3, 2, 190);
        rig->plant.slaves.remove(1);
        for (int round = 0; round < 3; ++round) {
            rig->plant.clock.advance(60000);
            ReadAllMeasurements(rt());
        }
        synoptic->refreshStaleness();
        QVERIFY(living->isStale());
        QVERIFY(!synoptic->zoneMarker(1)->isStale());

        rig->supervisor.MenuStop();
        QCOMPARE(texts(), (QStringList{"--.-", "--.-", "--.-"}));
        QCOMPARE(pump->visiblePicture(), QStringLiteral("Img_ind"));
        QVERIFY(!synoptic->ledItem(0)->isLit());
        QVERIFY(!living->isStale());

        rig->supervisor.setCommunicateWithInstruments(false);
        rig->supervisor.MenuStart();
        QVERIFY(banner->isVisible());
        QVERIFY(frame->windowTitle().contains(QStringLiteral("SIMULAZIONE")));
    }

    // A technician's clicks through the same wiring as the program onto the plant's
    // commands: switch 1 on slave 4 (shown on), switch 2 on slave 5 (shown off), the door
    // on slave 9; zone 1 reads 21.5 (set 20.0), zone 2 stays silent.
    void clicksReachTheCommands()
    {
        rig->plant.setValue(1, 3, 1, 215);
        rig->plant.setValue(1, 3, 2, 200);
        rig->plant.login(true, false);
        PlantCommands commands(rt(), rig->prompts, rig->supervisor.acquisition());
        const CommandQueue &queue = commands.queue();
        connectSynopticCommands(*synoptic, commands);
        RegisterTables &t = rt().model.editor.tables;
        setRow(t.SwitchWriteTable, 0, {4, 0, -1, -1, 5, 0x30, 5, 0x31, 1, 0});
        setRow(t.SwitchWriteTable, 1, {5, 0, -1, -1, 5, 0x30, 5, 0x31, 1, 0});
        setRow(t.DoorWriteTable, 0, {9, 0, -1, -1, 5, 0x40, 5, 0x41, -1, 1, 0});
        rig->plant.slaves.unite({4, 5, 9});
        rt().services.items.switches[0] = SwitchState::On;
        rt().services.items.switches[1] = SwitchState::Off;
        emit rt().display.synoptic.switchStatesChanged();
        rig->plant.takeRequests();
        const auto setValueOf = [this](int zone) {
            doubleClick(at(synoptic->zoneMarker(zone), synoptic->zoneMarker(zone)->labTempRect().center()));
        };

        // Standing by, Img_on does nothing, Img_off switches on and the door opens at once;
        // a set value needs acquisition, and asks nothing.
        click(centreOf(synoptic->switchItem(0)));
        QCOMPARE(rig->plant.takeRequests(), QStringList());
        click(centreOf(synoptic->switchItem(1)));
        QCOMPARE(rig->plant.takeRequests(), QStringList{"05 05 0030 ff00"});
        click(centreOf(synoptic->doorButton()));
        QCOMPARE(rig->plant.takeRequests(), (QStringList{"09 05 0040 ff00", "09 05 0041 0000"}));
        QCOMPARE(queue.PendingSwitchOn, CommandQueue::NoSwitch);
        QVERIFY(!queue.PendingDoorOpen);
        commands.queueSetValue(0, QStringLiteral("19"));
        setValueOf(0);
        QVERIFY(rig->prompts.asked().isEmpty());
        QVERIFY2(!queue.PendingSetValue, "a set value waiting in standby survived the double-click");

        // Acquiring, Img_off, the door and a set value wait in the queue for the next tick.
        rig->supervisor.MenuStart();
        rig->plant.takeRequests();
        rt().services.items.switches[1] = SwitchState::Off; // shown off again
        emit rt().display.synoptic.switchStatesChanged();
        click(centreOf(synoptic->switchItem(1)));
        click(centreOf(synoptic->doorButton()));
        QCOMPARE(queue.PendingSwitchOn, 1);
        QVERIFY(queue.PendingDoorOpen);
        rig->prompts.scriptTextInput(QStringLiteral(" 21.5 "));
        setValueOf(0);
        QCOMPARE(rig->prompts.asked(), (QList<RecordingPrompts::Prompt>{{RecordingPrompts::Kind::TextInput,
                                                                        "Modifica parametro...",
                                                                        "Inserire il valore da impostare:"}}));
        QVERIFY(queue.PendingSetValue);
        QCOMPARE(queue.PendingSetValueZone, 0);
        QCOMPARE(queue.PendingSetValueText, QStringLiteral("21.5"));
        QCOMPARE(rig->plant.takeRequests(), QStringList());

        // A double-click that sets nothing drops the value still waiting: an empty answer,
        // Cancel, and a zone showing --.- (which opens no box).
        rig->prompts.scriptTextInput(QStringLiteral("  "));
        setValueOf(0);
        QVERIFY2(!queue.PendingSetValue, "an empty answer kept the waiting value");
        commands.queueSetValue(0, QStringLiteral("19"));
        rig->prompts.scriptTextInput(std::nullopt);
        setValueOf(0);
        QVERIFY2(!queue.PendingSetValue, "Cancel kept the waiting value");
        QCOMPARE(rig->prompts.asked().size(), 3);
        commands.queueSetValue(0, QStringLiteral("19"));
        rig->prompts.scriptTextInput(QStringLiteral("22"));
        setValueOf(1);
        QCOMPARE(rig->prompts.asked().size(), 3);
        QVERIFY2(!queue.PendingSetValue, "a double-click on --.- kept the waiting value");
        QCOMPARE(rig->plant.takeRequests(), QStringList());
    }

    // Only an administrator places items, with the right button; every kind of item writes
    // its own keys, stops at the plan's edge, and fitting the plan to the window changes
    // what a pixel is worth, never what is stored.
    void administratorPlacesItems()
    {
        const auto dragLiving = [this](Qt::MouseButton button) {
            drag(markerOf(0), markerOf(0) + QPoint(100, 40), button);
            return stored("Zona 01");
        };
        QCOMPARE(dragLiving(Qt::RightButton), QPoint(1500, 900)); // anonymous
        rig->plant.login(true, false);
        QCOMPARE(dragLiving(Qt::RightButton), QPoint(1500, 900)); // technician
        rig->plant.login(false, true);
        QCOMPARE(dragLiving(Qt::LeftButton), QPoint(1500, 900));
        QCOMPARE(synoptic->zoneMarker(0)->pos(), QPointF(1500, 900));
        QCOMPARE(dragLiving(Qt::RightButton), QPoint(1500 + 1500, 900 + 600));
        QCOMPARE(synoptic->zoneMarker(0)->pos(), QPointF(3000, 1500));

        const QPoint step(20, 10); // 300 x 150 twips
        const std::pair<const QGraphicsItem *, const char *> items[] = {{synoptic->switchItem(1), "Interruttore 02"},
                                                                        {synoptic->ledItem(0), "LED 01"},
                                                                        {synoptic->doorButton(), "Apriporta"},
                                                                        {synoptic->webcamButton(), "Webcam"}};
        for (const auto &[item, section] : items) {
            const QPoint before = stored(section);
            drag(centreOf(item), centreOf(item) + step, Qt::RightButton);
            QVERIFY2(stored(section) == before + QPoint(300, 150), section);
        }
        // The information panel writes its zone's "Info_" keys.
        click(markerOf(1));
        PanelItem *info = synoptic->infoPanel();
        QCOMPARE(info->pos(), QPointF(300, 300));
        const QPoint grip = at(info, QPointF(4, 4));
        drag(grip, grip + step, Qt::RightButton);
        QCOMPARE(stored("Zona 02", "Info_"), QPoint(600, 450));
        QCOMPARE(stored("Zona 02"), QPoint(4500, 3000));

        ZoneMarkerItem *kitchen = synoptic->zoneMarker(1);
        drag(markerOf(1), markerOf(1) + QPoint(2000, 2000), Qt::RightButton);
        const QSizeF size = kitchen->sceneBoundingRect().size();
        const QPointF edge(PlanWidthTwips - std::floor(size.width()), PlanHeightTwips - std::floor(size.height()));
        QVERIFY2(qAbs(kitchen->pos().x() - edge.x()) <= 1 && qAbs(kitchen->pos().y() - edge.y()) <= 1,
                 qPrintable(QStringLiteral("at %1,%2").arg(kitchen->pos().x()).arg(kitchen->pos().y())));
        QCOMPARE(stored("Zona 02").x(), int(kitchen->pos().x()));
        drag(markerOf(1), QPoint(-500, -500), Qt::RightButton);
        QCOMPARE(kitchen->pos(), QPointF(0, 0));
        QCOMPARE(stored("Zona 02"), QPoint(0, 0));

        synoptic->findChild<QCheckBox *>(QStringLiteral("Chk_Adatta"))->setChecked(true);
        const QRect planOnScreen = view()->mapFromScene(synoptic->planRect()).boundingRect();
        QVERIFY2(planOnScreen.width() > 600 || planOnScreen.height() > 400, "the plan was not enlarged");
        const double twipsPerPixel = PlanWidthTwips / double(planOnScreen.width());
        ZoneMarkerItem *living = synoptic->zoneMarker(0);
        drag(markerOf(0), markerOf(0) + QPoint(100, 0), Qt::RightButton);
        QVERIFY2(qAbs(living->pos().x() - (3000 + 100 * twipsPerPixel)) <= twipsPerPixel,
                 qPrintable(QString::number(living->pos().x())));
        QCOMPARE(stored("Zona 01").x(), int(living->pos().x()));
    }
};

QTEST_MAIN(TestSinottico)
#include "tst_sinottico.moc"
