// One refresh of the synoptic for a full plant (30 zones, 10 switches, 10 LEDs) on the
// GUI thread, as the measurement round, the switch read and the LED read trigger it:
// every zone's two labels, every switch picture and every lamp change. "/0" times the
// update of the items alone; "/1" adds the repaint of the whole visible plan, which the
// event loop does after a refresh.

#include "bench/synopticplant.h"

#include "base/camera.h"
#include "supervisor/supervisor.h"
#include "support/runtimefixture.h"
#include "ui/synoptic/sinottico.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QGraphicsView>

using namespace telvane;

namespace {

void BM_SynopticRefresh(benchmark::State &state)
{
    const bool repaint = state.range(0) != 0;
    RuntimeFixture plant;
    plant.writeFile(QStringLiteral("Telvane2.ini"), fullSynopticPlant());
    writeSynopticPlan(plant.dir.filePath(QStringLiteral("plan.png")));
    Supervisor supervisor(plant.rt);
    supervisor.startUp();
    RecordingCamera camera;
    Sinottico synoptic(synopticSources(plant.rt), supervisor, camera);
    synoptic.resize(1280, 860);
    synoptic.show();
    QApplication::processEvents();

    Runtime &rt = plant.rt;
    int round = 0;
    for (auto _ : state) {
        ++round;
        for (int zone = 0; zone < 30; ++zone) {
            rt.model.values.zoneValue(zone, ZoneQuantity::PV) = 18.0f + float((zone + round) % 50) / 10.0f;
            rt.model.values.zoneValue(zone, ZoneQuantity::SP) = 20.0f + float(round % 2) / 2.0f;
        }
        for (int i = 0; i < 10; ++i) {
            rt.services.items.switches[i] = round % 2 ? SwitchState::On : SwitchState::Off;
            rt.services.items.leds[i].lit = round % 2;
        }
        emit rt.display.synoptic.zoneTextsChanged();
        emit rt.display.synoptic.switchStatesChanged();
        emit rt.display.synoptic.ledLampsChanged();
        if (repaint)
            synoptic.view()->viewport()->repaint();
    }
    state.counters["repainted_last"] = synoptic.lastRepaints();
}
BENCHMARK(BM_SynopticRefresh)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
