// Against pymodbus's slave on a pty pair: telvane-probe as a technician uses it;
// telvane --headless, whose day's file holds the slave's values, which lists an absent
// instrument at its sixth failure and not before, whose operator commands and
// chrono-thermostat reach the slave, and whom SIGTERM leaves with the line in order, also
// after the line was lost and came back; and a recipe sent from the command line, or with
// the slave gone halfway.

#include "base/clock.h"
#include "base/prompts.h"
#include "base/soundplayer.h"
#include "peer/peerslave.h"
#include "platform/eventlooppause.h"
#include "platform/termiosline.h"
#include "season/seasonchange.h"
#include "supervisor/runtime.h"
#include "supervisor/supervisor.h"
#include "support/settingsfixture.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <csignal>
#include <memory>

using namespace telvane;

namespace {

// Zone 1 on slave 1 (1 decimal), zone 2 on slave 2 (2 decimals, PV an input register),
// zone 3 on slave 3, which is not there; switch 1 and the door opener on slave 7. The
// measurement period is 5 ticks and nothing else polls the line.
QByteArray plantIni(const QString &port, bool fiveQuantities, bool chrono = false)
{
    const QString others = fiveQuantities ? QStringLiteral("SP_r=3,2\nAL1_r=3,3\nAL2_r=3,4\nAL3_r=3,5\n") : QString();
    QString ini = QStringLiteral("[Generale]\nZone=3\nInterruttori=1\nLED=0\nApriporta=1\nGrafico=1\nCronotermostato=%1\n"
                                 "Zone Testo=1\nZone Grafico=%1\nZone Crono=1\n[COM]\nPorta=%2\nFormato=9600,N,8,1\n"
                                 "Retry=1\nTimeOut=300\nBase Misura=5\nBase Remoto=0\nBase LED=0\nRemoto=0\nAttivita=0\n")
                      .arg(chrono ? 1 : 0).arg(port);
    struct Zone
    {
        const char *name;
        int slave, decimals, pvFunction, chrono;
    };
    const Zone zones[] = {{"Soggiorno", 1, 1, 3, 1}, {"Cucina", 2, 2, 4, 0}, {"Camera", 3, 0, 3, 0}};
    for (int zone = 0; zone < 3; ++zone) {
        const Zone &z = zones[zone];
        ini += QStringLiteral("[Zona 0%1]\nNome=%2\nIndirizzo=%3\nDecimali=%4\nPV_r=%5,1\nSP_w=6,2\nCronotermostato=%6\n")
                   .arg(zone + 1).arg(QLatin1String(z.name)).arg(z.slave).arg(z.decimals).arg(z.pvFunction).arg(z.chrono) + others;
    }
    ini += QStringLiteral("[Interruttore 01]\nNome=Caldaia\nIndirizzo=7\nDecimali=0\nOn_w=5,1\nOff_w=5,1\nVal_on=1\nVal_off=0\n"
                          "[Apriporta]\nNome=Porta\nTempo=100\nIndirizzo=7\nDecimali=0\nOn_w=5,5\nOff_w=5,5\nVal_on=1\nVal_off=0\n");
    return ini.toUtf8();
}

// Three zones on slaves 1, 2 and 7; the industrial plant, in summer, and its winter recipe.
void writeRecipePlant(const SettingsFolder &plant, const QString &port, const QByteArray &recipe)
{
    QString ini = QStringLiteral("[Generale]\nZone=3\n[COM]\nPorta=%1\nFormato=9600,N,8,1\nRetry=1\nTimeOut=200\n"
                                 "[Stagione]\nAttuale=0\nInverno=Inverno.prg\n")
                      .arg(port);
    for (int zone = 1; zone <= 3; ++zone)
        ini += QStringLiteral("[Zona 0%1]\nNome=Zona %1\nIndirizzo=%2\nPV_r=3,1\n").arg(zone).arg(zone == 3 ? 7 : zone);
    plant.write(QStringLiteral("Telvane0.ini"), "[Generale]\r\nModo=0\r\n");
    plant.write(QStringLiteral("Telvane2.ini"), ini.toUtf8());
    plant.write(QStringLiteral("Ricetta/Inverno.prg"), recipe);
}

const QByteArray Header = "[File]\r\nID = Telvane\r\n"
                          "[Zona 01]\r\nIntervallo = 20\r\nLinee = 2\r\n01 = 6,2,205;SP\r\n02 = 6,3,-40;AL1\r\n";
const QByteArray Zone3 = "[Zona 03]\r\nIntervallo = 20\r\nLinee = 2\r\n01 = 0,SLEEP,50;Attesa\r\n02 = 6,2,180;SP\r\n";
// For a send with nobody watching: no MSGBOX.
const QByteArray Unattended =
    Header + "[Zona 02]\r\nIntervallo = 20\r\nLinee = 2\r\n01 = 6,2,195;SP\r\n02 = 5,1,1;Remoto\r\n" + Zone3;
// The operator reads a MSGBOX between the two writes of zone 2.
const QByteArray WithMessage = Header +
                               "[Zona 02]\r\nIntervallo = 20\r\nLinee = 3\r\n01 = 6,2,195;SP\r\n"
                               "02 = 0,MSGBOX,Controllare la zona 2;Avviso\r\n03 = 5,1,1;Remoto\r\n" +
                               Zone3;

// Answers every box Yes or OK and remembers the texts; a step box first runs `onStep`.
class AnsweringPrompts final : public Prompts
{
public:
    bool question(const QString &, const QString &text) override { return texts.append(text), true; }
    void warning(const QString &, const QString &text) override { texts.append(text); }
    void information(const QString &, const QString &text) override { texts.append(text); }
    std::optional<QString> textInput(const QString &, const QString &, const QString &) override { return {}; }
    bool acknowledge(const QString &, const QString &text, Icon, bool) override { return texts.append(text), onStep(), true; }

    QStringList texts;
    std::function<void()> onStep;
};

using ProbeAnswer = std::pair<QString, int>; // standard output (and error, if any), exit code

} // namespace

class TestPeer : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // Slave 3 is not there; slave 7 holds the switch, the door and the probe's items.
        m_peer = std::make_unique<PeerSlave>(QStringList{QStringLiteral("1 hr:1=215,2=200,3=300,4=310,5=320"),
                                                         QStringLiteral("2 ir:1=65526 hr:2=190,3=1,4=2,5=3 co:1=0"),
                                                         QStringLiteral("7 co:0=1,1=0,5=0 di:1=0 hr:0=215,1=65526,2=0,40=0 ir:2=1000")});
        QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
        m_plant = std::make_unique<SettingsFolder>();
        m_plant->write(QStringLiteral("Telvane0.ini"), "[Generale]\r\nModo=1\r\n");
    }
    void cleanup() { m_peer.reset(); }

    // In order, so that a write is read back. Missing items are refused with exception 2;
    // slave 4 is absent.
    void probeAnswers()
    {
        QCOMPARE(probe({"--slave", "7", "--fc", "1", "--address", "0"}), ProbeAnswer("1\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "2", "--address", "1"}), ProbeAnswer("0\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "5", "--address", "0", "--value", "0"}), ProbeAnswer("0\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "1", "--address", "0"}), ProbeAnswer("0\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "3", "--address", "1"}), ProbeAnswer("-10\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "4", "--address", "2", "--repeat", "3"}), ProbeAnswer("1000\n1000\n1000\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "8", "--address", "0", "--value", "4660"}), ProbeAnswer("4660\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "6", "--address", "40", "--value", "-123"}), ProbeAnswer("-123\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "3", "--address", "40"}), ProbeAnswer("-123\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "3", "--address", "99"}), ProbeAnswer("2 (Exception)\n", 0));
        QCOMPARE(probe({"--slave", "7", "--fc", "6", "--address", "99", "--value", "1"}), ProbeAnswer("-99999 (Exception)\n", 1));
        QCOMPARE(probe({"--slave", "4", "--fc", "3", "--address", "0"}), ProbeAnswer("-99999 Time out\n", 1));
        QCOMPARE(probe({"--slave", "0", "--fc", "6", "--address", "40", "--value", "9"}), ProbeAnswer("-99999 Broadcast\n", 1));
        QCOMPARE(probe({"--slave", "7", "--fc", "3", "--address", "40"}), ProbeAnswer("9\n", 0));
        const ProbeAnswer wrong = probe({"--slave", "7", "--fc", "7", "--address", "0"});
        QCOMPARE(wrong.second, 2);
        QVERIFY2(wrong.first.contains(QStringLiteral("--help")), qPrintable(wrong.first));
        const ProbeAnswer missing = probe({"--slave", "7", "--fc", "3", "--address", "0"}, m_peer->missingPort());
        QCOMPARE(missing.second, 1);
        QVERIFY2(missing.first.startsWith(QStringLiteral("[stderr] ")) && missing.first.contains(m_peer->missingPort()),
                 qPrintable(missing.first));
    }

    void logAndAlarms_data()
    {
        QTest::addColumn<bool>("fiveQuantities");
        QTest::addColumn<int>("alarmRound");
        QTest::addColumn<QString>("listed");
        // An absent instrument fails its five reads a round: the sixth failure is the PV of
        // the second round, and the zones that answer are never listed.
        QTest::newRow("five quantities") << true << 2 << "Camera";
        // With PV alone the four unread quantities count seven failures a round, so every
        // zone reaches its sixth in the start's round, answering or not.
        QTest::newRow("PV alone") << false << 1 << "Soggiorno Cucina Camera";
    }
    // Fifteen ticks: the start's round and the rounds of ticks 5, 10 and 15.
    void logAndAlarms()
    {
        QFETCH(bool, fiveQuantities);
        QFETCH(int, alarmRound);
        QFETCH(QString, listed);
        m_plant->write(QStringLiteral("Telvane1.ini"), plantIni(m_peer->port(), fiveQuantities));
        const QStringList out = run(15);
        QCOMPARE(m_exitCode, 0);
        QCOMPARE(out.last(), QStringLiteral("Pannello 2: Standby"));
        QVERIFY(out.contains(QStringLiteral("Pannello 1: COM%1:9600,N,8,1").arg(m_peer->port())));
        // 215 with 1 decimal, 65526 (-10) with 2, and the silent instrument's marker.
        const QStringList lines = logLines();
        QCOMPARE(lines.size(), 4);
        for (const QString &line : lines)
            QVERIFY2(QRegularExpression(QStringLiteral("^\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d;21\\.5;-0\\.10;-99999;$"))
                         .match(line).hasMatch(), qPrintable(line));

        // Each round's alarm lines, the rounds cut at "Lettura...": [0] is before the first.
        const QRegularExpression entry(QStringLiteral("^Allarme: (.+) \\(\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d\\)$"));
        QStringList alarms{QString()};
        for (const QString &line : out) {
            if (line == QLatin1String("Pannello 3: Lettura..."))
                alarms.append(QString());
            else if (line.startsWith(QLatin1String("Allarme")))
                alarms.last() += QLatin1Char(' ') + entry.match(line).captured(1);
        }
        QStringList expected(5);
        expected[alarmRound] = QLatin1Char(' ') + listed;
        QCOMPARE(alarms, expected);
    }

    // Logged in, with a set value, a switch and the door given on the command line and the
    // chrono-thermostat on for zone 1 (22.5 all week); the day's file logs the set points.
    void commandsAndChronoReachTheSlave()
    {
        m_plant->write(QStringLiteral("Telvane1.ini"), plantIni(m_peer->port(), true, true));
        m_plant->write(QStringLiteral("Crono/Cronotermostato.cts"), "22.5\r\n"); // one line repeats to the end
        m_plant->write(QStringLiteral("Crono/Festivita.cts"), "\r\n");
        const QStringList out = run(5, {"--login", "Tecnico:Qx7", "--command", "set 2 19,5", "--command", "switch 1 on",
                                        "--command", "door"});
        QCOMPARE(m_exitCode, 0);
        QCOMPARE(out.filter(QRegularExpression(QStringLiteral("^Comando "))),
                 (QStringList{"Comando \"set 2 19,5\": confermato", "Comando \"switch 1 on\": confermato",
                              "Comando \"door\": confermato"}));
        // Before the first tick the slave's own set points; at tick 5 the chrono's and the operator's.
        QStringList sets;
        for (const QString &line : logLines())
            sets.append(line.section(QLatin1Char(';'), 1));
        QCOMPARE(sets, (QStringList{"20.0;1.90;-99999;", "22.5;19.50;-99999;"}));
        QCOMPARE(readValue(7, 1, 1), 1); // the switch stays on
        QCOMPARE(readValue(7, 1, 5), 0); // the door was released after its pulse
        QCOMPARE(readValue(1, 3, 2), 225);
    }

    // The far end of the line vanishes during acquisition (socat killed, as an adapter
    // pulled out): the items fail and the answering ones are listed too; nothing hangs.
    // The line comes back under the same name: polling resumes by itself.
    void lineVanishesAndReturns()
    {
        m_plant->write(QStringLiteral("Telvane1.ini"), plantIni(m_peer->port(), true));
        QProcess process;
        process.start(QStringLiteral(TELVANE_PROGRAM), arguments(0));
        QByteArray out;
        const auto readUntil = [&](const QByteArray &text, int count) {
            while (out.count(text) < count && process.waitForReadyRead(20000))
                out += process.readAllStandardOutput();
            return out.count(text) >= count;
        };
        QVERIFY(readUntil("Pannello 3: Lettura...", 2));
        m_peer->cutLine();
        QVERIFY2(readUntil("Allarme: Soggiorno", 1), out.right(500).constData());
        QVERIFY2(readUntil("Allarme: Cucina", 1), out.right(500).constData());
        const qsizetype rounds = out.count("Pannello 3: Lettura...");
        QVERIFY(readUntil("Pannello 3: Lettura...", int(rounds) + 2)); // still polling, not hung
        const QStringList outage = logLines();
        QVERIFY2(outage.last().endsWith(QStringLiteral(";-99999.0;-99999.00;-99999;")), qPrintable(outage.join(" ")));

        QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
        const int answeredBefore = m_peer->requestsTo(1);
        QVERIFY(readUntil("Pannello 3: Lettura...", int(out.count("Pannello 3: Lettura...")) + 3));
        // SIGTERM just after a round began: that round ends after the exchange under way
        // and writes no line, the exit is clean, and the line serves the next master.
        ::kill(pid_t(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        out += process.readAllStandardOutput();
        QVERIFY2(out.endsWith("Pannello 2: Standby\n"), out.right(300).constData());
        QVERIFY(m_peer->requestsTo(1) - answeredBefore >= 5); // a round's five reads of zone 1
        const QStringList back = logLines().mid(outage.size());
        QVERIFY(!back.isEmpty());
        QVERIFY2(back.last().endsWith(QStringLiteral(";21.5;-0.10;-99999;")), qPrintable(back.last()));
        QCOMPARE(readValue(1, 3, 1), 215);
    }

    // The headless command line sends the recipe named for winter: each row's outcome,
    // the season stored, exit 0, and the slave holds every value.
    void headlessSendReachesEveryRegister()
    {
        writeRecipePlant(*m_plant, m_peer->port(), Unattended);
        QProcess process;
        process.start(QStringLiteral(TELVANE_PROGRAM), {"--headless", "--communicate", "--dir",
                                                        m_plant->folder().root(), "--ricetta", "inverno"});
        QVERIFY(process.waitForFinished(60000));
        const QString out = QString::fromUtf8(process.readAllStandardOutput());
        QCOMPARE(process.exitCode(), 0);
        QVERIFY2(out.contains(QStringLiteral("Riga 1, zona 01 (Zona 1), slave 1, registro 2 = 205 (SP): scritto\n")),
                 qPrintable(out));
        QVERIFY2(out.contains(QStringLiteral("Riga 4, zona 02 (Zona 2), slave 2, bobina 1 = 1 (Remoto): scritto\n")),
                 qPrintable(out));
        QVERIFY2(out.contains(QStringLiteral("Riga 5, zona 03 (Zona 3): attesa di 50 ms\n")), qPrintable(out));
        QVERIFY2(out.endsWith(QStringLiteral("Stagione attuale: Inverno\n")), qPrintable(out));
        QCOMPARE(attuale(), QStringLiteral("1"));

        QCOMPARE(readValue(1, 3, 2), 205);
        QCOMPARE(readValue(1, 3, 3), -40);
        QCOMPARE(readValue(2, 3, 2), 195);
        QCOMPARE(readValue(2, 1, 1), 1);
        QCOMPARE(readValue(7, 3, 2), 180);
    }

    // The slave goes away while the operator reads the MSGBOX: the next write fails,
    // the operator is told, and the season stays summer.
    void slaveStoppedHalfway()
    {
        writeRecipePlant(*m_plant, m_peer->port(), WithMessage);
        SystemClock clock;
        TermiosLine line;
        EventLoopPause pause;
        SilentSoundPlayer sound;
        Runtime rt(m_plant->folder(), line, clock, pause, sound);
        Supervisor supervisor(rt);
        supervisor.setCommunicateWithInstruments(true);
        supervisor.startUp();
        QVERIFY(supervisor.SerialPortOpen());

        AnsweringPrompts prompts;
        prompts.onStep = [this] { m_peer->stop(); };
        SeasonChange change(rt, prompts);
        QVERIFY(change.loadSeasonRecipe(Season::Inverno));
        QCOMPARE(change.send(), SeasonChange::SendOutcome::Failed);

        QList<RowOutcome::Status> statuses;
        for (const RowOutcome &row : change.lastResult().rows)
            statuses.append(row.status);
        using S = RowOutcome::Status;
        QCOMPARE(statuses, (QList<S>{S::Written, S::Written, S::Written, S::Acknowledged, S::NotAcknowledged}));
        QVERIFY(prompts.texts.last().startsWith(QStringLiteral("Attenzione: Un errore occorso durante l'invio")));
        QCOMPARE(attuale(), QStringLiteral("0"));
    }

private:
    QStringList arguments(int ticks) const
    {
        QStringList list{"--headless", "--communicate", "--dir", m_plant->folder().root(), "--tick-ms", "20"};
        return ticks > 0 ? list << QStringLiteral("--ticks") << QString::number(ticks) : list;
    }
    // The lines printed by a run that must end well.
    QStringList run(int ticks, const QStringList &more = {})
    {
        QProcess process;
        process.start(QStringLiteral(TELVANE_PROGRAM), arguments(ticks) + more);
        m_exitCode = process.waitForFinished(60000) ? process.exitCode() : -1;
        return QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    // The day's files, CRLF at the end of every line.
    QStringList logLines()
    {
        QStringList lines;
        const QDir data(m_plant->path(QStringLiteral("Dati")));
        for (const QString &name : data.entryList({QStringLiteral("????_??_??.csv")}, QDir::Files, QDir::Name)) {
            const QString text = QString::fromUtf8(m_plant->read(QStringLiteral("Dati/") + name));
            lines += text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
            if (!text.endsWith(QStringLiteral("\r\n")))
                lines += QStringLiteral("not ended by CRLF");
        }
        return lines;
    }
    ProbeAnswer probe(const QStringList &arguments, const QString &port = {}) const
    {
        QProcess process;
        process.start(QStringLiteral(TELVANE_PROBE), QStringList{"--port", port.isEmpty() ? m_peer->port() : port,
                                                                 "--timeout", "300"} + arguments);
        process.waitForFinished(30000);
        QString out = QString::fromUtf8(process.readAllStandardOutput());
        const QString error = QString::fromUtf8(process.readAllStandardError());
        if (!error.isEmpty())
            out += QStringLiteral("[stderr] ") + error;
        return {out, process.exitCode()};
    }
    qint32 readValue(int slave, int function, int address) const
    {
        bool ok = false;
        const ProbeAnswer answer = probe({"--slave", QString::number(slave), "--fc", QString::number(function), "--address",
                                          QString::number(address)});
        const qint32 value = answer.first.trimmed().toInt(&ok);
        return ok ? value : -1;
    }
    QString attuale() const
    {
        return IniStore(m_plant->folder()).ReadIniKey(QStringLiteral("Stagione"), QStringLiteral("Attuale"), "?");
    }

    std::unique_ptr<PeerSlave> m_peer;
    std::unique_ptr<SettingsFolder> m_plant;
    int m_exitCode = -1;
};

QTEST_GUILESS_MAIN(TestPeer)
#include "tst_peer.moc"
