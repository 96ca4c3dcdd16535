// telvane --headless against pymodbus's slave on a pty pair: the day's file holds the
// slave's values, an absent instrument is listed at its sixth failure and not before,
// the operator commands and the chrono-thermostat reach the slave, and SIGTERM leaves
// the line in order.

#include "peer/peerslave.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace telvane;

namespace {

// Zone 1 on slave 1 (1 decimal), zone 2 on slave 2 (2 decimals, PV an input register),
// zone 3 on slave 3, which is not there; switch 1 and the door opener on slave 7.
const QStringList Slaves{
    QStringLiteral("1 hr:1=215,2=200,3=300,4=310,5=320"),
    QStringLiteral("2 ir:1=65526 hr:2=190,3=1,4=2,5=3"),
    QStringLiteral("7 co:1=0,5=0"),
};

// The zone's read keys: all five quantities, or PV alone.
QString zoneReads(bool fiveQuantities, int pvFunction)
{
    QString keys = QStringLiteral("PV_r=%1,1\r\n").arg(pvFunction);
    if (fiveQuantities)
        keys += QStringLiteral("SP_r=3,2\r\nAL1_r=3,3\r\nAL2_r=3,4\r\nAL3_r=3,5\r\n");
    return keys;
}

struct PlantOptions
{
    bool fiveQuantities = true;
    bool chrono = false;
    int loggedQuantity = 0; // Zone Grafico: 0 PV, 1 SP
};

// The measurement period is 5 ticks; the remote/local exchange, the LED reads and the
// activity poll are off, so only the rounds and the commands use the line.
QByteArray plantIni(const QString &port, const PlantOptions &options)
{
    QString ini = QStringLiteral(
                      "[Generale]\r\nZone=3\r\nInterruttori=1\r\nLED=0\r\nApriporta=1\r\nGrafico=1\r\n"
                      "Cronotermostato=%1\r\nZone Testo=1\r\nZone Grafico=%2\r\nZone Crono=1\r\n\r\n"
                      "[COM]\r\nPorta=%3\r\nFormato=9600,N,8,1\r\nRetry=1\r\nTimeOut=100\r\n"
                      "Base Misura=5\r\nBase Remoto=0\r\nBase LED=0\r\nRemoto=0\r\nAttivita=0\r\n\r\n")
                      .arg(options.chrono ? 1 : 0)
                      .arg(options.loggedQuantity)
                      .arg(port);
    ini += QStringLiteral("[Zona 01]\r\nNome=Soggiorno\r\nIndirizzo=1\r\nDecimali=1\r\n") +
           zoneReads(options.fiveQuantities, 3) + QStringLiteral("SP_w=6,2\r\nCronotermostato=1\r\n\r\n");
    ini += QStringLiteral("[Zona 02]\r\nNome=Cucina\r\nIndirizzo=2\r\nDecimali=2\r\n") +
           zoneReads(options.fiveQuantities, 4) + QStringLiteral("SP_w=6,2\r\nCronotermostato=0\r\n\r\n");
    ini += QStringLiteral("[Zona 03]\r\nNome=Camera\r\nIndirizzo=3\r\nDecimali=0\r\n") +
           zoneReads(options.fiveQuantities, 3) + QStringLiteral("\r\n");
    ini += QStringLiteral("[Interruttore 01]\r\nNome=Caldaia\r\nIndirizzo=7\r\nDecimali=0\r\n"
                          "On_w=5,1\r\nOff_w=5,1\r\nVal_on=1\r\nVal_off=0\r\n\r\n");
    ini += QStringLiteral("[Apriporta]\r\nNome=Porta ingresso\r\nTempo=100\r\nIndirizzo=7\r\nDecimali=0\r\n"
                          "On_w=5,5\r\nOff_w=5,5\r\nVal_on=1\r\nVal_off=0\r\n");
    return ini.toUtf8();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

struct Run
{
    int exitCode = -1;
    QStringList out;
    QString err;
};

Run runHeadless(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(TELVANE_PROGRAM), arguments);
    Run run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

// The printed lines cut into measurement rounds: [0] is what came before the first round,
// [n] the lines from the n-th "Lettura..." on.
QList<QStringList> rounds(const QStringList &out)
{
    QList<QStringList> cut{{}};
    for (const QString &line : out) {
        if (line == QLatin1String("Pannello 3: Lettura..."))
            cut.append(QStringList());
        cut.last().append(line);
    }
    return cut;
}

QStringList alarmsOf(const QStringList &lines)
{
    return lines.filter(QRegularExpression(QStringLiteral("^Allarme: ")));
}

} // namespace

class TestPeerHeadless : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void logAndAlarms_data();
    void logAndAlarms();
    void commandsAndChronoReachTheSlave();
    void sigtermEndsTheTickAndFreesTheLine();

private:
    QStringList headlessArguments(int ticks) const;
    QString logText() const;
    qint32 probe(int slave, int functionCode, int address) const;

    std::unique_ptr<PeerSlave> m_peer;
    std::unique_ptr<QTemporaryDir> m_plant;
};

void TestPeerHeadless::init()
{
    m_peer = std::make_unique<PeerSlave>(Slaves);
    QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
    m_plant = std::make_unique<QTemporaryDir>();
    QVERIFY(writeFile(m_plant->filePath(QStringLiteral("Telvane0.ini")), "[Generale]\r\nModo=1\r\n"));
}

void TestPeerHeadless::cleanup()
{
    m_peer.reset();
    m_plant.reset();
}

QStringList TestPeerHeadless::headlessArguments(int ticks) const
{
    QStringList arguments{QStringLiteral("--headless"), QStringLiteral("--communicate"), QStringLiteral("--dir"),
                          m_plant->path(), QStringLiteral("--tick-ms"), QStringLiteral("20")};
    if (ticks > 0)
        arguments << QStringLiteral("--ticks") << QString::number(ticks);
    return arguments;
}

// Every day's file, so that a run across midnight is read whole.
QString TestPeerHeadless::logText() const
{
    QString text;
    const QDir data(m_plant->filePath(QStringLiteral("Dati")));
    for (const QString &name : data.entryList({QStringLiteral("*.csv")}, QDir::Files, QDir::Name)) {
        QFile file(data.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            text += QString::fromUtf8(file.readAll());
    }
    return text;
}

qint32 TestPeerHeadless::probe(int slave, int functionCode, int address) const
{
    QProcess process;
    process.start(QStringLiteral(TELVANE_PROBE),
                  {QStringLiteral("--port"), m_peer->port(), QStringLiteral("--timeout"), QStringLiteral("300"),
                   QStringLiteral("--slave"), QString::number(slave), QStringLiteral("--fc"),
                   QString::number(functionCode), QStringLiteral("--address"), QString::number(address)});
    if (!process.waitForFinished(30000))
        return -1;
    bool ok = false;
    const qint32 value = QString::fromUtf8(process.readAllStandardOutput()).trimmed().toInt(&ok);
    return ok ? value : -1;
}

void TestPeerHeadless::logAndAlarms_data()
{
    QTest::addColumn<bool>("fiveQuantities");
    QTest::addColumn<int>("alarmRound");
    QTest::addColumn<QStringList>("listed");

    // An absent instrument fails its five reads a round: the sixth failure is the PV of
    // the second round (tick 5), and the zones that answer are never listed.
    QTest::newRow("five quantities") << true << 2 << QStringList{QStringLiteral("Camera")};
    // With PV alone, the four unread quantities count seven failures a round (SP once,
    // each alarm quantity twice), so every zone reaches its sixth in the start's round,
    // whether its instrument answers or not.
    QTest::newRow("PV alone") << false << 1
                              << QStringList{QStringLiteral("Soggiorno"), QStringLiteral("Cucina"),
                                             QStringLiteral("Camera")};
}

// Fifteen ticks: the start's round and the rounds of ticks 5, 10 and 15.
void TestPeerHeadless::logAndAlarms()
{
    QFETCH(bool, fiveQuantities);
    QFETCH(int, alarmRound);
    QFETCH(QStringList, listed);

    PlantOptions options;
    options.fiveQuantities = fiveQuantities;
    QVERIFY(writeFile(m_plant->filePath(QStringLiteral("Telvane1.ini")), plantIni(m_peer->port(), options)));
    const Run run = runHeadless(headlessArguments(15));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out.last(), QStringLiteral("Pannello 2: Standby"));
    QVERIFY(run.out.contains(QStringLiteral("Pannello 1: COM%1:9600,N,8,1").arg(m_peer->port())));

    // 215 with 1 decimal, 65526 (-10) with 2, and the silent instrument's marker.
    const QStringList lines = logText().split(QStringLiteral("\r\n"));
    QCOMPARE(lines.size(), 4 + 1);
    QCOMPARE(lines.last(), QString());
    const QRegularExpression expected(
        QStringLiteral("^\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d;21\\.5;-0\\.10;-99999;$"));
    for (int i = 0; i < 4; ++i)
        QVERIFY2(expected.match(lines[i]).hasMatch(), qPrintable(lines[i]));

    const QList<QStringList> cut = rounds(run.out);
    QCOMPARE(cut.size(), 1 + 4);
    // The start's round comes before acquisition is on.
    QVERIFY(cut[1].contains(QStringLiteral("Pannello 2: Acquisizione")));
    const QRegularExpression entry(QStringLiteral("^Allarme: (.+) \\(\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d\\)$"));
    for (int round = 0; round < cut.size(); ++round) {
        const QStringList alarms = alarmsOf(cut[round]);
        if (round != alarmRound) {
            QVERIFY2(alarms.isEmpty(), qPrintable(QStringLiteral("round %1: %2").arg(round).arg(alarms.join(' '))));
            continue;
        }
        QStringList names;
        for (const QString &alarm : alarms) {
            const QRegularExpressionMatch match = entry.match(alarm);
            QVERIFY2(match.hasMatch(), qPrintable(alarm));
            names.append(match.captured(1));
        }
        QCOMPARE(names, listed);
    }
}

// Logged in, with a set value, a switch and the door given on the command line and the
// chrono-thermostat on for zone 1 (22.5 all week); the day's file logs the set points.
void TestPeerHeadless::commandsAndChronoReachTheSlave()
{
    PlantOptions options;
    options.chrono = true;
    options.loggedQuantity = 1;
    QVERIFY(writeFile(m_plant->filePath(QStringLiteral("Telvane1.ini")), plantIni(m_peer->port(), options)));
    // A schedule of one line repeats it to the end; no holidays.
    QVERIFY(writeFile(m_plant->filePath(QStringLiteral("Crono/Cronotermostato.cts")), "22.5\r\n"));
    QVERIFY(writeFile(m_plant->filePath(QStringLiteral("Crono/Festivita.cts")), "\r\n"));

    const Run run = runHeadless(headlessArguments(5) + QStringList{
                                QStringLiteral("--login"), QStringLiteral("Tecnico:Qx7"),
                                QStringLiteral("--command"), QStringLiteral("set 2 19,5"),
                                QStringLiteral("--command"), QStringLiteral("switch 1 on"),
                                QStringLiteral("--command"), QStringLiteral("door")});
    QCOMPARE(run.exitCode, 0);
    const QStringList outcomes = run.out.filter(QRegularExpression(QStringLiteral("^Comando ")));
    QCOMPARE(outcomes, (QStringList{QStringLiteral("Comando \"set 2 19,5\": confermato"),
                                    QStringLiteral("Comando \"switch 1 on\": confermato"),
                                    QStringLiteral("Comando \"door\": confermato")}));
    QVERIFY2(run.err.contains(QStringLiteral("sent to 1 zone(s)")), qPrintable(run.err));

    // Before the first tick the slave's own set points; at tick 5 the chrono's and the
    // operator's.
    const QStringList lines = logText().split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines[0].endsWith(QStringLiteral(";20.0;1.90;-99999;")), qPrintable(lines[0]));
    QVERIFY2(lines[1].endsWith(QStringLiteral(";22.5;19.50;-99999;")), qPrintable(lines[1]));

    // The switch stays on; the door was released after its pulse.
    QCOMPARE(probe(7, 1, 1), 1);
    QCOMPARE(probe(7, 1, 5), 0);
    QCOMPARE(probe(1, 3, 2), 225);
}

// SIGTERM while acquiring: the tick under way (perhaps waiting for the silent slave) ends,
// every log line is whole, the exit is clean, and the line serves the next master.
void TestPeerHeadless::sigtermEndsTheTickAndFreesTheLine()
{
    QVERIFY(writeFile(m_plant->filePath(QStringLiteral("Telvane1.ini")), plantIni(m_peer->port(), PlantOptions())));
    QProcess process;
    process.start(QStringLiteral(TELVANE_PROGRAM), headlessArguments(0));
    QVERIFY(process.waitForStarted());
    QByteArray out;
    while (out.count("Pannello 3: Lettura...") < 3 && process.state() == QProcess::Running) {
        process.waitForReadyRead(10000);
        out += process.readAllStandardOutput();
    }
    QCOMPARE(process.state(), QProcess::Running);
    ::kill(pid_t(process.processId()), SIGTERM);
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    out += process.readAllStandardOutput();
    QVERIFY2(out.endsWith("Pannello 2: Standby\n"), out.right(300).constData());

    const QStringList lines = logText().split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), out.count("Pannello 3: Lettura..."));
    for (const QString &line : lines)
        QVERIFY2(line.endsWith(QStringLiteral(";21.5;-0.10;-99999;")), qPrintable(line));

    QCOMPARE(probe(1, 3, 1), 215);
}

QTEST_GUILESS_MAIN(TestPeerHeadless)
#include "tst_peer_headless.moc"
