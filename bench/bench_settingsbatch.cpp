// Saving an editor page: every key of a full zone page (30 zones, every key a zone has,
// ~700 keys) written as one batch, into a settings file that already holds them with
// other values and into one that lacks them all; then what the technician waits for on
// "Conferma": the zone page's save and the reload of the whole plant after it. For
// scale, twenty keys written one at a time (one file replace with its disk flush each).

#include "base/clock.h"
#include "config_editor/editorpages.h"
#include "config_editor/reloadeditor.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"
#include "storage/displayresets.h"
#include "storage/inistore.h"
#include "storage/plantconfig.h"
#include "storage/sectionnames.h"
#include "storage/valuetables.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

using namespace telvane;

namespace {

QList<IniKeyValue> zonePageKeys(int round)
{
    QList<IniKeyValue> keys;
    const QString mark = QString::number(round);
    keys.append({QStringLiteral("Generale"), QStringLiteral("Zone"), QStringLiteral("30")});
    for (const char *key : {"Zone Unita", "Zone Testo", "Zone Grafico", "Zone Crono"})
        keys.append({QStringLiteral("Generale"), QLatin1String(key), mark});
    for (int field = 1; field <= 5; ++field) {
        keys.append({QStringLiteral("Sinottico"), QStringLiteral("Campo_%1").arg(field), mark});
        keys.append({QStringLiteral("Sinottico "), QStringLiteral("Campo_%1").arg(field), mark});
    }
    for (int zone = 0; zone < 30; ++zone) {
        const QString section = zoneSection(zone);
        keys.append({section, QStringLiteral("Nome"), QStringLiteral("Zona %1 giro %2").arg(zone + 1).arg(round)});
        keys.append({section, QStringLiteral("Indirizzo"), QString::number(zone + 1)});
        keys.append({section, QStringLiteral("Decimali"), QStringLiteral("1")});
        keys.append({section, QStringLiteral("Slave"), QStringLiteral("0")});
        keys.append({section, QStringLiteral("Cronotermostato"), QStringLiteral("1")});
        keys.append({section, QStringLiteral("Colore"), QStringLiteral("&H%1").arg(round * 31 + zone, 6, 16, QLatin1Char('0'))});
        int reg = 1;
        for (const char *q : {"REM", "PV", "SP", "AL1", "AL2", "AL3"}) {
            keys.append({section, QLatin1String(q) + QStringLiteral("_r"), QStringLiteral("3,%1").arg(reg + round)});
            keys.append({section, QLatin1String(q) + QStringLiteral("_w"), QStringLiteral("6,%1").arg(reg + round)});
            ++reg;
        }
        for (int field = 1; field <= 5; ++field)
            keys.append({section, QStringLiteral("Campo_%1").arg(field), mark});
    }
    return keys;
}

void BM_ZonePageChangedValues(benchmark::State &state)
{
    QTemporaryDir dir;
    IniStore store{ProgramFolder(dir.path())};
    store.writeIniKeys(zonePageKeys(0));
    int round = 1;
    for (auto _ : state) {
        if (!store.writeIniKeys(zonePageKeys(round++ % 2))) // every value differs from the file's
            state.SkipWithError("write failed");
    }
    state.counters["keys"] = double(zonePageKeys(0).size());
}
BENCHMARK(BM_ZonePageChangedValues)->Unit(benchmark::kMillisecond);

void BM_ZonePageNewFile(benchmark::State &state)
{
    QTemporaryDir dir;
    IniStore store{ProgramFolder(dir.path())};
    const QList<IniKeyValue> keys = zonePageKeys(1);
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(store.folder().filePath(store.currentIniName()));
        state.ResumeTiming();
        if (!store.writeIniKeys(keys))
            state.SkipWithError("write failed");
    }
}
BENCHMARK(BM_ZonePageNewFile)->Unit(benchmark::kMillisecond);

// The zone page of a full plant, every zone's name changed, confirmed: one save and the
// reload that puts it in force.
void BM_ZonePageConfirm(benchmark::State &state)
{
    QTemporaryDir dir;
    IniStore store{ProgramFolder(dir.path())};
    store.writeIniKeys(zonePageKeys(0));
    ManualClock clock;
    ScriptedLine line{clock};
    ModbusMaster master{line, clock};
    PlantConfig plant;
    DisplayResets resets;
    ValueTables values;
    ChronoSchedule schedule;
    EditorState editor;
    const EditorServices services{store, plant, resets, master, line, values, schedule};
    PageModel page = zonesPage();
    page.load(store);
    int round = 0;
    for (auto _ : state) {
        ++round;
        for (int zone = 0; zone < 30; ++zone)
            page.setText(page.indexOf(zoneSection(zone), QStringLiteral("Nome")),
                         QStringLiteral("Zona %1 giro %2").arg(zone + 1).arg(round));
        if (!page.save(store))
            state.SkipWithError("save failed");
        ReloadEditor(services, editor);
    }
    state.counters["keys"] = double(page.keysToSave().size());
    state.counters["lines"] = double(editor.lists.Lst_Letture.lines.size());
}
BENCHMARK(BM_ZonePageConfirm)->Unit(benchmark::kMillisecond);

void BM_TwentyKeysOneByOne(benchmark::State &state)
{
    QTemporaryDir dir;
    IniStore store{ProgramFolder(dir.path())};
    store.writeIniKeys(zonePageKeys(0));
    int round = 1;
    for (auto _ : state) {
        const QList<IniKeyValue> keys = zonePageKeys(round++ % 2).mid(15, 20);
        for (const IniKeyValue &key : keys)
            store.WriteIniKey(key.section, key.key, key.value);
    }
}
BENCHMARK(BM_TwentyKeysOneByOne)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
