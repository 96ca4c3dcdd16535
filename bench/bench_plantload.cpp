// Loading the plant configuration from a full plant (30 zones, 10 switches, 10 LEDs,
// every key present), and the whole read set of an editor reload: the plant load plus
// every register, address and decimals key of every item and the serial keys. The
// reload is what a technician waits for on every confirmed editor page.
//
// The settings store checks the file on every key read. A file changed in the last two
// seconds (as it is right after an editor page saved it) is read again and compared on
// every key; a file that has stood still is only looked at (stat). Both states are timed:
// "/0" just saved, "/1" settled.
//
// The key reads of one plant load are counted from the settings file's open events
// (inotify) while it counts as just saved, so the count is measured, not restated.

#include "storage/displayresets.h"
#include "storage/inistore.h"
#include "storage/plantconfigloader.h"
#include "storage/sectionnames.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

using namespace telvane;

namespace {

struct KeyRead
{
    QString section;
    QString key;
};

QByteArray line(const QString &key, const QString &value)
{
    return (key + QLatin1Char('=') + value + QStringLiteral("\r\n")).toUtf8();
}

QByteArray fullPlant()
{
    QByteArray text;
    text += "[Generale]\r\n";
    for (const char *key : {"Zone=30", "Zone Unita=°C", "Zone Testo=0", "Zone Grafico=0", "Zone Crono=1",
                            "Interruttori=10", "LED=10", "Apriporta=1", "Webcam=1", "AutoAvvio=0", "Grafico=1",
                            "Ricette=0", "Cronotermostato=1", "Master=0"})
        text += QByteArray(key) + "\r\n";
    text += "[COM]\r\nPorta=1\r\nFormato=9600,N,8,1\r\nRetry=2\r\nTimeOut=500\r\nBase Misura=60\r\n"
            "Base Remoto=3\r\nBase LED=3\r\nRemoto=1\r\nAttivita=1\r\n";
    text += "[Sinottico]\r\nImmagine=Pianta.jpg\r\nSuonoAllarme=allarme.wav\r\nSuonoPorta=porta.wav\r\n";
    for (int f = 1; f <= 5; ++f)
        text += line(QStringLiteral("Campo_%1").arg(f), QStringLiteral("Campo numero %1").arg(f));
    text += "[Grafico]\r\nColore_Sfondo=&HFFFFFF\r\nColore_Griglia=&HC0C0C0\r\nColore_Bordo=&HFFFFFF\r\n"
            "Colore_Cursore=&H800000\r\nColore_Off1=&HC0C0C0\r\nColore_Off2=&HE0E0E0\r\nT_Max=30\r\nT_Min=10\r\n"
            "T_Max_Ass=100\r\nT_Min_Ass=-20\r\nInfo_X=1000\r\nInfo_Y=1000\r\n";
    text += "[Stagione]\r\nAttuale=1\r\nEstate=Estate.prg\r\nInverno=Inverno.prg\r\n";
    for (int i = 0; i < MaxZones; ++i) {
        text += "[" + zoneSection(i).toUtf8() + "]\r\n";
        text += line(QStringLiteral("Nome"), QStringLiteral("Zona di prova numero %1").arg(i + 1));
        text += "Slave=0\r\n" + line(QStringLiteral("Indirizzo"), QString::number(i + 1)) + "Decimali=1\r\n";
        int reg = 1;
        for (const char *key : {"PV", "SP", "AL1", "AL2", "AL3"}) {
            text += line(QLatin1String(key) + QStringLiteral("_r"), QStringLiteral("3,%1").arg(reg));
            text += line(QLatin1String(key) + QStringLiteral("_w"), QStringLiteral("6,%1").arg(reg));
            ++reg;
        }
        text += "REM_r=1,1\r\nREM_w=5,1\r\n";
        text += line(QStringLiteral("X"), QString::number(300 + 450 * i)) + "Y=3000\r\nInfo_X=1500\r\nInfo_Y=1500\r\n";
        text += "Icona=Tzona.bmp\r\nColore=&H0080FF\r\nCronotermostato=1\r\n";
        for (int f = 1; f <= 5; ++f)
            text += line(QStringLiteral("Campo_%1").arg(f), QStringLiteral("valore %1.%2").arg(i + 1).arg(f));
    }
    for (int i = 0; i < MaxSwitches; ++i) {
        text += "[" + switchSection(i).toUtf8() + "]\r\n";
        text += line(QStringLiteral("Nome"), QStringLiteral("Interruttore %1").arg(i + 1));
        text += "Indirizzo=40\r\nDecimali=0\r\nREM_r=1,9\r\n" + line(QStringLiteral("On_r"), QStringLiteral("1,%1").arg(i + 1))
                + line(QStringLiteral("Off_r"), QStringLiteral("1,%1").arg(i + 1)) + "REM_w=5,9\r\n"
                + line(QStringLiteral("On_w"), QStringLiteral("5,%1").arg(i + 1))
                + line(QStringLiteral("Off_w"), QStringLiteral("5,%1").arg(i + 1))
                + "Val_on=1\r\nVal_off=0\r\nX=600\r\nY=900\r\n";
    }
    for (int i = 0; i < MaxLeds; ++i) {
        text += "[" + ledSection(i).toUtf8() + "]\r\n";
        text += line(QStringLiteral("Nome"), QStringLiteral("Spia %1").arg(i + 1));
        text += "Indirizzo=41\r\nDecimali=0\r\nREM_r=1,9\r\nREM_w=5,9\r\n"
                + line(QStringLiteral("P1_r"), QStringLiteral("3,%1").arg(i + 1))
                + "Val=25\r\nCondizione=1\r\nCol=2\r\nX=900\r\nY=1200\r\n";
    }
    text += "[Apriporta]\r\nNome=Porta ingresso\r\nTempo=1500\r\nIndirizzo=42\r\nDecimali=0\r\nREM_r=1,9\r\n"
            "REM_w=5,9\r\nOn_w=5,5\r\nOff_w=5,5\r\nVal_on=1\r\nVal_off=0\r\nX=9000\r\nY=9900\r\n";
    text += "[Webcam]\r\nNome=Telecamera ingresso\r\nX=11400\r\nY=9900\r\nInfo_X=9300\r\nInfo_Y=6450\r\n";
    return text;
}

// The reads an editor reload adds to the plant load: the communication lists of every
// item (register, address and decimals keys, the zones' slave flags), the chrono flags,
// the door pulse time, the serial settings and the general options.
std::vector<KeyRead> editorReloadReads()
{
    std::vector<KeyRead> reads;
    auto add = [&](const QString &section, std::initializer_list<const char *> keys) {
        for (const char *key : keys)
            reads.push_back({section, QLatin1String(key)});
    };
    const QString door = QStringLiteral("Apriporta");
    for (int i = 0; i < MaxZones; ++i) {
        add(zoneSection(i), {"Indirizzo", "Decimali", "REM_r", "PV_r", "SP_r", "AL1_r", "AL2_r", "AL3_r"});
        if (i > 0)
            add(zoneSection(i), {"Slave"});
    }
    for (int i = 0; i < MaxLeds; ++i)
        add(ledSection(i), {"Indirizzo", "Decimali", "REM_r", "P1_r", "Val", "Col", "Condizione"});
    add(door, {"Indirizzo", "Decimali", "REM_r"});
    for (int i = 0; i < MaxSwitches; ++i)
        add(switchSection(i), {"Indirizzo", "Decimali", "REM_r", "On_r", "Off_r"});
    for (int i = 0; i < MaxZones; ++i)
        add(zoneSection(i), {"Indirizzo", "Decimali", "REM_w", "PV_w", "SP_w", "AL1_w", "AL2_w", "AL3_w"});
    for (int i = 0; i < MaxLeds; ++i)
        add(ledSection(i), {"Indirizzo", "Decimali", "REM_w"});
    add(door, {"Indirizzo", "Decimali", "REM_w", "On_w", "Off_w", "Val_on", "Val_off"});
    for (int i = 0; i < MaxSwitches; ++i)
        add(switchSection(i), {"Indirizzo", "Decimali", "REM_w", "On_w", "Off_w", "Val_on", "Val_off"});
    add(QStringLiteral("Generale"), {"Cronotermostato"});
    for (int i = 0; i < MaxZones; ++i)
        add(zoneSection(i), {"Cronotermostato"});
    add(door, {"Tempo"});
    add(QStringLiteral("COM"), {"Remoto", "Attivita", "Porta", "Formato", "Retry", "TimeOut", "Base Misura",
                                "Base Remoto", "Base LED"});
    add(QStringLiteral("Generale"), {"AutoAvvio", "Grafico", "Ricette", "Master"});
    return reads;
}

enum class FileState { JustSaved = 0, Settled = 1 };

struct Fixture
{
    QTemporaryDir dir;
    IniStore store{ProgramFolder(dir.path())};
    std::vector<KeyRead> extraReads = editorReloadReads();
    int plantLoadReads = -1;
    FileState state = FileState::Settled;

    QByteArray path() const { return QFile::encodeName(store.folder().filePath(store.currentIniName())); }

    // A modification time in the future keeps the file "just saved" for as long as the
    // bench runs; one in the past, once the status-change time has aged too, settles it.
    bool enter(FileState wanted)
    {
        if (wanted == state)
            return true;
        const auto shift = wanted == FileState::JustSaved ? std::chrono::hours(1) : -std::chrono::hours(1);
        const auto when = std::chrono::system_clock::now() + shift;
        const auto seconds = std::chrono::time_point_cast<std::chrono::seconds>(when);
        timespec times[2];
        times[0].tv_sec = 0;
        times[0].tv_nsec = UTIME_OMIT;
        times[1].tv_sec = seconds.time_since_epoch().count();
        times[1].tv_nsec = 0;
        if (utimensat(AT_FDCWD, path().constData(), times, 0) != 0)
            return false;
        if (wanted == FileState::Settled)
            std::this_thread::sleep_for(std::chrono::milliseconds(2100));
        state = wanted;
        return true;
    }
};

Fixture *fixture = nullptr;

// Opens of the settings file during one plant load; -1 when they cannot be watched.
int countPlantLoadReads(const IniStore &store)
{
    if (!fixture->enter(FileState::JustSaved))
        return -1;
    const int fd = inotify_init1(IN_NONBLOCK);
    if (fd < 0)
        return -1;
    // Alternating open and close events are never merged, unlike repeated opens.
    if (inotify_add_watch(fd, fixture->path().constData(), IN_OPEN | IN_CLOSE_NOWRITE) < 0) {
        close(fd);
        return -1;
    }
    PlantConfig config;
    DisplayResets resets;
    LoadPlantConfig(store, config, resets);

    int opens = 0;
    alignas(inotify_event) char buffer[64 * 1024];
    for (;;) {
        const ssize_t length = read(fd, buffer, sizeof buffer);
        if (length <= 0)
            break;
        for (ssize_t at = 0; at < length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
            if (event->mask & IN_Q_OVERFLOW) {
                close(fd);
                return -1;
            }
            if (event->mask & IN_OPEN)
                ++opens;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    close(fd);
    return opens;
}

bool enter(benchmark::State &state)
{
    if (fixture->enter(static_cast<FileState>(state.range(0))))
        return true;
    state.SkipWithError("cannot set the settings file's time");
    return false;
}

void BM_ReadIniKey(benchmark::State &state)
{
    if (!enter(state))
        return;
    const QString section = zoneSection(MaxZones - 1);
    const QString key = QStringLiteral("Campo_5");
    for (auto _ : state)
        benchmark::DoNotOptimize(fixture->store.ReadIniKey(section, key, QString()));
}
BENCHMARK(BM_ReadIniKey)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_LoadPlantConfig(benchmark::State &state)
{
    if (!enter(state))
        return;
    PlantConfig config;
    DisplayResets resets;
    for (auto _ : state) {
        LoadPlantConfig(fixture->store, config, resets);
        benchmark::DoNotOptimize(config.zones.data());
    }
    state.counters["keys"] = fixture->plantLoadReads;
}
BENCHMARK(BM_LoadPlantConfig)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_EditorReloadReads(benchmark::State &state)
{
    if (!enter(state))
        return;
    PlantConfig config;
    DisplayResets resets;
    for (auto _ : state) {
        LoadPlantConfig(fixture->store, config, resets);
        for (const KeyRead &read : fixture->extraReads)
            benchmark::DoNotOptimize(fixture->store.ReadIniKey(read.section, read.key, QString()));
    }
    state.counters["keys"] = fixture->plantLoadReads + static_cast<int>(fixture->extraReads.size());
}
BENCHMARK(BM_EditorReloadReads)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    Fixture f;
    fixture = &f;
    QFile file(f.dir.filePath(f.store.currentIniName()));
    if (!file.open(QIODevice::WriteOnly) || file.write(fullPlant()) < 0) {
        std::fprintf(stderr, "cannot write the plant file in %s\n", qPrintable(f.dir.path()));
        return 1;
    }
    file.close();

    f.plantLoadReads = countPlantLoadReads(f.store);
    std::printf("settings file: %lld bytes\n", static_cast<long long>(QFile(file.fileName()).size()));
    if (f.plantLoadReads < 0) {
        std::fprintf(stderr, "cannot watch the settings file: key reads not counted\n");
    } else {
        std::printf("key reads of one plant load: %d\n", f.plantLoadReads);
        std::printf("key reads of an editor reload: %d (plant load %d, lists, flags and serial settings %zu)\n",
                    f.plantLoadReads + static_cast<int>(f.extraReads.size()), f.plantLoadReads, f.extraReads.size());
    }

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
