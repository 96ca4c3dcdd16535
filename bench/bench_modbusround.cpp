// One measurement round as the supervisor polls it: 30 zones of 5 registers on 3 slaves,
// 150 single-register reads (code 3), the port opened and closed around every read.
// Run against a real slave we did not write (pymodbus on a socat pty pair), side by side
// with libmodbus doing the same 150 open, read, close cycles in the same process:
//
//   A  the slave answers at once: what our master and line cost per transaction;
//   B  the slave answers as late as a 9600 baud line would: the round should last what
//      the line needs, not more.
//
// Our rounds run inside the event loop, as in the program, with a 5 ms probe timer
// beside them: the longest gap between its ticks (less 5 ms) is the longest time the
// window would have stood still. CPU is the process's user + system time over our round
// only (the probe's own ticks included).
//
// The machine may be shared: the load average is printed with the figures, each figure
// is the median of a few rounds, ours and libmodbus's taking turns, and the probe is also
// run with no round at all to show how late timers fire here anyway.
//
// Run build/bench/bench_modbusround with no arguments; it starts and stops socat and the
// slave itself (Ctrl+C ends it cleanly). It is not a test and ctest does not run it.

#include "base/clock.h"
#include "fieldbus/modbusmaster.h"
#include "peer/peerslave.h"
#include "platform/termiosline.h"

#include <modbus.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLoggingCategory>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <sys/resource.h>

using namespace telvane;

namespace {

constexpr int SlaveCount = 3;
constexpr int Zones = 30;
constexpr int RegistersPerZone = 5;
constexpr int ReadFunction = 3;

constexpr int Baud = 9600;
constexpr double BitsPerCharacter = 10.0; // 8N1
constexpr int RequestBytes = 8;
constexpr int ReplyBytes = 7; // one register
constexpr double SilenceCharacters = 3.5;

constexpr int RoundsA = 7;
constexpr int RoundsB = 3;
constexpr int ProbeIntervalMs = 5;
constexpr int IdleProbeMs = 3000;

volatile std::sig_atomic_t stopRequested = 0;

// Our master's line opened per operation, as the program does, or (to compare) held
// open for the whole round as if the round were one group of operations, the input
// drained before every transaction.
struct LineChoice
{
    bool heldOpen = false;
};
LineChoice lineChoice;

class HeldOpenLine final : public SerialLine
{
public:
    explicit HeldOpenLine(SerialLine &line) : m_line(line) {}
    void setPort(const QString &port) override { m_line.setPort(port); }
    bool setFormat(const QString &format) override { return m_line.setFormat(format); }
    bool open() override { return m_line.open(); }
    // The master drained the input just before.
    void close() override {}
    bool isOpen() const override { return m_line.isOpen(); }
    void write(const QByteArray &bytes) override { m_line.write(bytes); }
    qint64 bytesAvailable() override { return m_line.bytesAvailable(); }
    QByteArray readAll() override { return m_line.readAll(); }
    void clearInput() override { m_line.clearInput(); }
    void yield(int ms) override { m_line.yield(ms); }
    QString lastError() const override { return m_line.lastError(); }

private:
    SerialLine &m_line;
};

struct Read
{
    int slave;
    int address;
    qint32 value;
};

struct RoundFigures
{
    double wallMs = 0;
    double cpuMs = 0;
    double stallMs = 0;     // ours only
    double openCloseMs = 0; // the same opens and closes with no transaction
    int failures = 0;
};

struct Summary
{
    double wallMs = 0;
    double cpuMs = 0;
    double openCloseMs = 0;
    double medianStallMs = 0;
    double worstStallMs = 0;
    int failures = 0;
};

struct Comparison
{
    Summary ours;
    Summary libmodbus;
};

// A timer that should tick every 5 ms; the longest gap between its ticks, less 5 ms, is
// the longest time the event loop could not run.
class StallProbe
{
public:
    StallProbe()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(ProbeIntervalMs);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { tick(); });
    }

    void start()
    {
        m_longestGapNs = 0;
        m_lastTickNs = 0;
        m_elapsed.start();
        m_timer.start();
    }

    // The time since the last tick counts too, so a stall at the very end is seen.
    double stopMs()
    {
        tick();
        m_timer.stop();
        return std::max(0.0, m_longestGapNs / 1e6 - ProbeIntervalMs);
    }

private:
    void tick()
    {
        const qint64 now = m_elapsed.nsecsElapsed();
        m_longestGapNs = std::max(m_longestGapNs, now - m_lastTickNs);
        m_lastTickNs = now;
    }

    QTimer m_timer;
    QElapsedTimer m_elapsed;
    qint64 m_lastTickNs = 0;
    qint64 m_longestGapNs = 0;
};

// Zone z is on slave 1 + z / 10; its registers follow the previous zone's. Every
// register holds a different value, so a reply for the wrong register is caught.
std::vector<Read> roundReads()
{
    std::vector<Read> reads;
    for (int zone = 0; zone < Zones; ++zone) {
        for (int item = 0; item < RegistersPerZone; ++item) {
            const int slave = 1 + zone * SlaveCount / Zones;
            const int address = (zone % (Zones / SlaveCount)) * RegistersPerZone + item;
            reads.push_back({slave, address, slave * 1000 + address});
        }
    }
    return reads;
}

QStringList slaveTexts(const std::vector<Read> &reads)
{
    QStringList texts;
    for (int slave = 1; slave <= SlaveCount; ++slave) {
        QStringList items;
        for (const Read &read : reads) {
            if (read.slave == slave)
                items << QStringLiteral("%1=%2").arg(read.address).arg(read.value);
        }
        texts << QStringLiteral("%1 hr:%2").arg(slave).arg(items.join(QLatin1Char(',')));
    }
    return texts;
}

double lineMsPerRead()
{
    return (RequestBytes + ReplyBytes + SilenceCharacters) * BitsPerCharacter * 1000.0 / Baud;
}

double cpuMsNow()
{
    rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000.0
         + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1000.0;
}

// Our master on the real line, started from the event loop so that its waits let the
// probe run, as they let the window run in the program.
RoundFigures ourRound(ModbusMaster &master, const std::vector<Read> &reads)
{
    RoundFigures figures;
    QEventLoop loop;
    StallProbe probe;
    QTimer::singleShot(0, &loop, [&] {
        const double cpuBefore = cpuMsNow();
        QElapsedTimer elapsed;
        elapsed.start();
        probe.start();
        for (const Read &read : reads) {
            if (stopRequested)
                break;
            if (master.ReadRegister(ReadFunction, read.address, read.slave) != read.value)
                ++figures.failures;
        }
        figures.stallMs = probe.stopMs();
        figures.wallMs = elapsed.nsecsElapsed() / 1e6;
        figures.cpuMs = cpuMsNow() - cpuBefore;
        loop.quit();
    });
    loop.exec();
    return figures;
}

RoundFigures libmodbusRound(const QString &port, const std::vector<Read> &reads)
{
    RoundFigures figures;
    modbus_t *context = modbus_new_rtu(port.toLocal8Bit().constData(), Baud, 'N', 8, 1);
    if (!context) {
        figures.failures = int(reads.size());
        return figures;
    }
    modbus_set_response_timeout(context, 1, 0);

    const double cpuBefore = cpuMsNow();
    QElapsedTimer elapsed;
    elapsed.start();
    for (const Read &read : reads) {
        if (stopRequested)
            break;
        if (modbus_connect(context) != 0) {
            ++figures.failures;
            continue;
        }
        uint16_t value = 0;
        modbus_set_slave(context, read.slave);
        if (modbus_read_registers(context, read.address, 1, &value) != 1 || value != read.value)
            ++figures.failures;
        modbus_close(context);
    }
    figures.wallMs = elapsed.nsecsElapsed() / 1e6;
    figures.cpuMs = cpuMsNow() - cpuBefore;
    modbus_free(context);
    return figures;
}

// The same number of opens and closes with no transaction between them: what each side
// pays for the device alone.
double ourOpenCloseMs(SerialLine &line, int count)
{
    QElapsedTimer elapsed;
    elapsed.start();
    for (int i = 0; i < count && !stopRequested; ++i) {
        line.open();
        line.close();
    }
    return elapsed.nsecsElapsed() / 1e6;
}

double libmodbusOpenCloseMs(const QString &port, int count)
{
    modbus_t *context = modbus_new_rtu(port.toLocal8Bit().constData(), Baud, 'N', 8, 1);
    if (!context)
        return 0;
    QElapsedTimer elapsed;
    elapsed.start();
    for (int i = 0; i < count && !stopRequested; ++i) {
        if (modbus_connect(context) == 0)
            modbus_close(context);
    }
    const double ms = elapsed.nsecsElapsed() / 1e6;
    modbus_free(context);
    return ms;
}

double idleStallMs()
{
    QEventLoop loop;
    StallProbe probe;
    double stallMs = 0;
    QTimer::singleShot(IdleProbeMs, &loop, [&] {
        stallMs = probe.stopMs();
        loop.quit();
    });
    probe.start();
    loop.exec();
    return stallMs;
}

double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

Summary summarize(const std::vector<RoundFigures> &rounds)
{
    Summary summary;
    std::vector<double> wall, cpu, openClose, stall;
    for (const RoundFigures &round : rounds) {
        wall.push_back(round.wallMs);
        cpu.push_back(round.cpuMs);
        openClose.push_back(round.openCloseMs);
        stall.push_back(round.stallMs);
        summary.worstStallMs = std::max(summary.worstStallMs, round.stallMs);
        summary.failures += round.failures;
    }
    summary.wallMs = median(wall);
    summary.cpuMs = median(cpu);
    summary.openCloseMs = median(openClose);
    summary.medianStallMs = median(stall);
    return summary;
}

// Ours and libmodbus's rounds take turns, so a burst of load elsewhere on the machine
// falls on both. One round of each first, not counted: the slave's first answers and
// the first opens of the device are slower.
bool compare(const QStringList &slaves, int wireDelayBaud, int rounds, const std::vector<Read> &reads,
             Comparison *result)
{
    PeerSlave peer(slaves, wireDelayBaud);
    if (!peer.start()) {
        std::fprintf(stderr, "bench_modbusround: the peer slave did not start: %s\n", qPrintable(peer.error()));
        return false;
    }
    SystemClock clock;
    auto device = std::make_unique<TermiosLine>();
    HeldOpenLine held(*device);
    SerialLine &line = lineChoice.heldOpen ? static_cast<SerialLine &>(held) : *device;
    line.setPort(peer.port());
    line.setFormat(QStringLiteral("%1,N,8,1").arg(Baud));
    ModbusMaster master(line, clock);
    const int count = int(reads.size());

    ourRound(master, reads);
    libmodbusRound(peer.port(), reads);
    if (lineChoice.heldOpen)
        device->close();
    std::vector<RoundFigures> ours;
    std::vector<RoundFigures> theirs;
    for (int round = 0; round < rounds && !stopRequested; ++round) {
        ours.push_back(ourRound(master, reads));
        if (lineChoice.heldOpen)
            device->close();
        theirs.push_back(libmodbusRound(peer.port(), reads));
        ours.back().openCloseMs = ourOpenCloseMs(*device, count);
        theirs.back().openCloseMs = libmodbusOpenCloseMs(peer.port(), count);
        std::fprintf(stderr, "  %s round %d: ours %.1f ms, libmodbus %.1f ms\n", wireDelayBaud ? "B" : "A", round + 1,
                     ours.back().wallMs, theirs.back().wallMs);
    }
    if (stopRequested)
        return false;
    *result = {summarize(ours), summarize(theirs)};
    return true;
}

QString loadAverage()
{
    double load[3] = {0, 0, 0};
    if (::getloadavg(load, 3) != 3)
        return QStringLiteral("unknown");
    return QStringLiteral("%1 %2 %3").arg(load[0], 0, 'f', 2).arg(load[1], 0, 'f', 2).arg(load[2], 0, 'f', 2);
}

const char *verdict(bool met)
{
    return met ? "met" : "MISSED";
}

double percent(double part, double whole)
{
    return whole > 0 ? part / whole * 100.0 : 0;
}

void printTable(const Comparison &a, const Comparison &b, double idleStall, int readCount, const QString &loadBefore)
{
    const double lineMs = lineMsPerRead() * readCount;
    const double ratioA = a.ours.wallMs / a.libmodbus.wallMs;
    const double overLineOurs = percent(b.ours.wallMs, lineMs) - 100.0;
    const double overLineTheirs = percent(b.libmodbus.wallMs, lineMs) - 100.0;
    const double cpuB = percent(b.ours.cpuMs, b.ours.wallMs);
    const double worstStall = std::max(a.ours.worstStallMs, b.ours.worstStallMs);

    std::printf("\nModbus round: %d single-register reads (code %d) on %d slaves, port opened and closed per read.\n",
                readCount, ReadFunction, SlaveCount);
    std::printf("Medians of %d rounds (A) and %d rounds (B). Load average %s before, %s after.\n\n", RoundsA,
                RoundsB, qPrintable(loadBefore), qPrintable(loadAverage()));

    const char *row = "%-36s %13s %13s %7s   %-16s %s\n";
    const auto ms = [](double value) { return QStringLiteral("%1 ms").arg(value, 0, 'f', 1); };
    const auto cpu = [&](const Summary &s) {
        return QStringLiteral("%1 ms %2%").arg(s.cpuMs, 0, 'f', 1).arg(percent(s.cpuMs, s.wallMs), 3, 'f', 1);
    };
    const auto signedPercent = [](double value) { return QStringLiteral("%1%2 %").arg(value >= 0 ? "+" : "").arg(value, 0, 'f', 1); };
    const auto print = [&](const char *what, const QString &ours, const QString &theirs, const QString &ratio,
                           const char *goal, const char *met) {
        std::printf(row, what, qPrintable(ours), qPrintable(theirs), qPrintable(ratio), goal, met);
    };

    print("", QStringLiteral("ours"), QStringLiteral("libmodbus"), QStringLiteral("ratio"), "goal", "");
    print("A round, slave answers at once", ms(a.ours.wallMs), ms(a.libmodbus.wallMs),
          QString::number(ratioA, 'f', 2), "ratio <= 1.0", verdict(ratioA <= 1.0));
    print("  per read", QStringLiteral("%1 ms").arg(a.ours.wallMs / readCount, 0, 'f', 2),
          QStringLiteral("%1 ms").arg(a.libmodbus.wallMs / readCount, 0, 'f', 2), {}, "", "");
    const QString openClose = QStringLiteral("  %1 opens + closes alone").arg(readCount);
    print(qPrintable(openClose), ms(a.ours.openCloseMs), ms(a.libmodbus.openCloseMs), {}, "", "");
    print("  CPU, share of wall", cpu(a.ours), cpu(a.libmodbus), {}, "", "");
    print("B round, 9600 baud wire timing", ms(b.ours.wallMs), ms(b.libmodbus.wallMs),
          QString::number(b.ours.wallMs / b.libmodbus.wallMs, 'f', 2), "", "");
    print(qPrintable(QStringLiteral("  over the line's %1 ms").arg(lineMs, 0, 'f', 0)), signedPercent(overLineOurs),
          signedPercent(overLineTheirs), {}, "within 10 %", verdict(overLineOurs <= 10.0));
    print(qPrintable(openClose), ms(b.ours.openCloseMs), ms(b.libmodbus.openCloseMs), {}, "", "");
    print("  CPU, share of wall", cpu(b.ours), cpu(b.libmodbus), {}, "a few %", verdict(cpuB <= 5.0));
    print("Event-loop stall, A median / worst",
          QStringLiteral("%1 / %2").arg(a.ours.medianStallMs, 0, 'f', 1).arg(a.ours.worstStallMs, 0, 'f', 1), {}, {},
          "", "");
    print("Event-loop stall, B median / worst",
          QStringLiteral("%1 / %2").arg(b.ours.medianStallMs, 0, 'f', 1).arg(b.ours.worstStallMs, 0, 'f', 1), {}, {},
          "< 20 ms", verdict(worstStall < 20.0));
    print("  same probe, no round (machine)", ms(idleStall), {}, {}, "", "");
    print("Failed or wrong reads, all rounds", QString::number(a.ours.failures + b.ours.failures),
          QString::number(a.libmodbus.failures + b.libmodbus.failures), {}, "", "");
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // The fixture's start-up polls the slave until it answers; its time-outs are expected.
    QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false"));
    // Ctrl+C ends the round in progress; the slave, socat and their pty links go with
    // the fixture as the bench returns.
    std::signal(SIGINT, [](int) { stopRequested = 1; });
    std::signal(SIGTERM, [](int) { stopRequested = 1; });

    const std::vector<Read> reads = roundReads();
    const QStringList slaves = slaveTexts(reads);
    for (int i = 1; i < argc; ++i) {
        const QByteArray argument(argv[i]);
        if (argument == "--held-open")
            lineChoice.heldOpen = true;
    }
    std::fprintf(stderr, "our line: %s\n", lineChoice.heldOpen ? "held open for the round" : "opened per read");
    const QString loadBefore = loadAverage();

    Comparison a;
    Comparison b;
    std::fprintf(stderr, "A: slave answers at once\n");
    if (!compare(slaves, 0, RoundsA, reads, &a))
        return stopRequested ? 130 : 1;
    std::fprintf(stderr, "B: slave answers with %d baud wire timing\n", Baud);
    if (!compare(slaves, Baud, RoundsB, reads, &b))
        return stopRequested ? 130 : 1;
    std::fprintf(stderr, "idle event loop, %d ms\n", IdleProbeMs);
    const double idleStall = idleStallMs();

    printTable(a, b, idleStall, int(reads.size()), loadBefore);
    return 0;
}
