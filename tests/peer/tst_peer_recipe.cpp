// A recipe sent to pymodbus's slave on a pty pair: from the headless command line every
// register ends up holding the recipe's value and the season is stored; with the slave
// gone halfway the send fails at that row and the season stays.

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
#include <QTest>

#include <memory>

using namespace telvane;

namespace {

// Three zones on slaves 1, 2 and 3; the industrial plant, in summer.
QByteArray plantIni(const QString &port)
{
    QString ini = QStringLiteral("[Generale]\nZone=3\n[COM]\nPorta=%1\nFormato=9600,N,8,1\nRetry=1\nTimeOut=200\n"
                                 "[Stagione]\nAttuale=0\nInverno=Inverno.prg\n")
                      .arg(port);
    for (int zone = 1; zone <= 3; ++zone)
        ini += QStringLiteral("[Zona 0%1]\nNome=Zona %1\nIndirizzo=%1\nPV_r=3,1\n").arg(zone);
    return ini.toUtf8();
}

const QByteArray Header = "[File]\r\nID = Telvane\r\n"
                          "[Zona 01]\r\nIntervallo = 20\r\nLinee = 2\r\n01 = 6,2,200;SP\r\n02 = 6,3,-40;AL1\r\n";
const QByteArray Zone3 = "[Zona 03]\r\nIntervallo = 20\r\nLinee = 2\r\n01 = 0,SLEEP,50;Attesa\r\n02 = 6,2,180;SP\r\n";
// For a send with nobody watching: no MSGBOX.
const QByteArray Unattended =
    Header + "[Zona 02]\r\nIntervallo = 20\r\nLinee = 2\r\n01 = 6,2,190;SP\r\n02 = 5,1,1;Remoto\r\n" + Zone3;
// The operator reads a MSGBOX between the two writes of zone 2.
const QByteArray WithMessage = Header +
                               "[Zona 02]\r\nIntervallo = 20\r\nLinee = 3\r\n01 = 6,2,190;SP\r\n"
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

} // namespace

class TestPeerRecipe : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_peer = std::make_unique<PeerSlave>(QStringList{QStringLiteral("1 hr:2=0,3=0"),
                                                         QStringLiteral("2 hr:2=0 co:1=0"),
                                                         QStringLiteral("3 hr:2=0")});
        QVERIFY2(m_peer->start(), qPrintable(m_peer->error()));
        m_plant = std::make_unique<SettingsFolder>();
        m_plant->write(QStringLiteral("Telvane2.ini"), plantIni(m_peer->port()));
    }
    void cleanup() { m_peer.reset(); }

    // The headless command line sends the recipe named for winter: each row's outcome,
    // the season stored, exit 0, and the slave holds every value.
    void headlessSendReachesEveryRegister()
    {
        m_plant->write(QStringLiteral("Ricetta/Inverno.prg"), Unattended);
        QProcess process;
        process.start(QStringLiteral(TELVANE_PROGRAM), {"--headless", "--communicate", "--dir",
                                                        m_plant->folder().root(), "--ricetta", "inverno"});
        QVERIFY(process.waitForFinished(60000));
        const QString out = QString::fromUtf8(process.readAllStandardOutput());
        QCOMPARE(process.exitCode(), 0);
        QVERIFY2(out.contains(QStringLiteral("Riga 1, zona 01 (Zona 1), slave 1, registro 2 = 200 (SP): scritto\n")),
                 qPrintable(out));
        QVERIFY2(out.contains(QStringLiteral("Riga 4, zona 02 (Zona 2), slave 2, bobina 1 = 1 (Remoto): scritto\n")),
                 qPrintable(out));
        QVERIFY2(out.contains(QStringLiteral("Riga 5, zona 03 (Zona 3): attesa di 50 ms\n")), qPrintable(out));
        QVERIFY2(out.endsWith(QStringLiteral("Stagione attuale: Inverno\n")), qPrintable(out));
        QCOMPARE(attuale(), QStringLiteral("1"));

        QCOMPARE(readBack(1, 3, 2), 200);
        QCOMPARE(readBack(1, 3, 3), -40);
        QCOMPARE(readBack(2, 3, 2), 190);
        QCOMPARE(readBack(2, 1, 1), 1);
        QCOMPARE(readBack(3, 3, 2), 180);
    }

    // The slave goes away while the operator reads the MSGBOX: the next write fails,
    // the operator is told, and the season stays summer.
    void slaveStoppedHalfway()
    {
        m_plant->write(QStringLiteral("Ricetta/Inverno.prg"), WithMessage);
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
    QString attuale() const
    {
        return IniStore(m_plant->folder()).ReadIniKey(QStringLiteral("Stagione"), QStringLiteral("Attuale"), "?");
    }

    qint32 readBack(int slave, int functionCode, int address)
    {
        TermiosLine line;
        SystemClock clock;
        ModbusMaster master(line, clock);
        line.setPort(m_peer->port());
        master.setReplyTimeout(0.5f);
        return master.ReadRegister(functionCode, address, slave);
    }

    std::unique_ptr<PeerSlave> m_peer;
    std::unique_ptr<SettingsFolder> m_plant;
};

QTEST_GUILESS_MAIN(TestPeerRecipe)
#include "tst_peer_recipe.moc"
