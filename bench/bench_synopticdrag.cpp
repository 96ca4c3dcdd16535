// Does the window stay responsive while a service user drags an item and the cycle
// polls? A simulated plant acquires with every poll due on every tick (the simulated
// measurement round waits 250 ms in the event loop, as a real round waits for replies),
// while a right-button drag moves a zone marker across the plan, one mouse step every
// 5 ms. A 1 ms heartbeat timer records every gap in the event loop; the figure is the
// longest gap, with the 99th percentile and the number of polls and drag steps done.

#include "bench/synopticplant.h"

#include "base/camera.h"
#include "platform/eventlooppause.h"
#include "supervisor/supervisor.h"
#include "support/runtimefixture.h"
#include "ui/synoptic/sinottico.h"
#include "ui/synoptic/zonemarkeritem.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QGraphicsView>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace telvane;

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, atoi(argv[1])) : 10;

    RuntimeFixture plant;
    plant.writeFile(QStringLiteral("Telvane2.ini"), fullSynopticPlant());
    writeSynopticPlan(plant.dir.filePath(QStringLiteral("plan.png")));
    EventLoopPause realPause;
    Runtime rt(ProgramFolder(plant.dir.path()), plant.line, plant.clock, realPause, plant.sound);
    Supervisor supervisor(rt);
    supervisor.setCommunicateWithInstruments(false);
    supervisor.startUp();
    supervisor.setMonitorIntervalMs(50);
    rt.services.user.IsAdministrator = true;
    RecordingCamera camera;
    Sinottico synoptic(synopticSources(rt), supervisor, camera);
    synoptic.resize(1280, 860);
    synoptic.show();
    QApplication::processEvents();

    int ticks = 0;
    QObject::connect(&supervisor, &Supervisor::tickFinished, [&ticks] { ++ticks; });
    supervisor.MenuStart();

    QWidget *viewport = synoptic.view()->viewport();
    ZoneMarkerItem *marker = synoptic.zoneMarker(7);
    const QPoint start = synoptic.view()->mapFromScene(marker->mapToScene(marker->markerRect().center()));
    auto send = [viewport](QEvent::Type type, QPoint at, Qt::MouseButtons buttons) {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::RightButton;
        QMouseEvent event(type, at, viewport->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
    };
    send(QEvent::MouseButtonPress, start, Qt::RightButton);
    int steps = 0;
    QTimer mover;
    mover.setInterval(5);
    QObject::connect(&mover, &QTimer::timeout, [&] {
        ++steps;
        const int phase = steps % 400;
        const int dx = phase < 200 ? phase : 400 - phase;
        send(QEvent::MouseMove, start + QPoint(dx, dx / 2), Qt::RightButton);
    });
    mover.start();

    std::vector<qint64> gaps;
    QElapsedTimer clock;
    clock.start();
    qint64 last = clock.nsecsElapsed();
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.setInterval(1);
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        gaps.push_back(now - last);
        last = now;
    });
    heartbeat.start();

    QTimer::singleShot(seconds * 1000, &app, &QApplication::quit);
    app.exec();
    send(QEvent::MouseButtonRelease, start, Qt::NoButton);
    supervisor.MenuStop();

    std::sort(gaps.begin(), gaps.end());
    const auto ms = [](qint64 ns) { return double(ns) / 1e6; };
    const double p99 = gaps.empty() ? 0 : ms(gaps[gaps.size() * 99 / 100]);
    std::printf("drag while polling, %d s: longest event-loop gap %.2f ms, 99th percentile %.2f ms, "
                "%zu heartbeats, %d ticks, %d drag steps; marker at %.0f,%.0f twips\n",
                seconds, gaps.empty() ? 0 : ms(gaps.back()), p99, gaps.size(), ticks, steps, marker->pos().x(),
                marker->pos().y());
    return gaps.empty() || ms(gaps.back()) > 20.0 ? 1 : 0;
}
