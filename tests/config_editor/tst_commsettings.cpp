#include "base/clock.h"
#include "config_editor/commsettings.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"
#include "support/datarows.h"
#include "support/settingsfixture.h"

#include <QRegularExpression>

using namespace telvane;

namespace {

// Section COM of the current settings file holds `keys`, separated by ";"; the master
// and its scripted line are wired as in the program.
struct Field
{
    explicit Field(const QString &keys = {})
        : ini(dir.store("[COM]\r\n" + QString(keys).replace(';', "\r\n").toUtf8() + "\r\n"))
    {
    }
    void load() { LoadCommSettings(ini, master, line, settings); }

    SettingsFolder dir;
    IniStore ini;
    ManualClock clock;
    ScriptedLine line{clock};
    ModbusMaster master{line, clock};
    CommSettings settings;
};

} // namespace

class TestCommSettings : public QObject
{
    Q_OBJECT

private slots:
    // keys | port format retries time-out measurement remote LED periods
    void settingsRead_data()
    {
        addRows({"|1 9600,N,8,1 1 0.5 60 3 3",
                 "Porta=3;Formato=19200,N,8,1;Retry=4;TimeOut=250;Base Misura=120;Base Remoto=5;Base LED=2|3 19200,N,8,1 4 0.25 120 5 2",
                 "TimeOut=75|1 9600,N,8,1 1 0.075 60 3 3",
                 "Base Misura=300;Base Remoto=30;Base LED=0|1 9600,N,8,1 1 0.5 300 30 0",
                 "Base Misura=301;Base Remoto=31;Base LED=-5|1 9600,N,8,1 1 0.5 300 30 30",
                 "Base Misura=70000;Base Remoto=-1|1 9600,N,8,1 1 0.5 300 30 3",
                 "Porta = /dev/ttyUSB0 ;Formato=  4800,E,8,1  |/dev/ttyUSB0 4800,E,8,1 1 0.5 60 3 3"});
    }
    void settingsRead()
    {
        const QStringList cells = rowCells();
        Field field(cells[0]);
        field.load();
        const CommSettings &s = field.settings;
        QCOMPARE(QStringLiteral("%1 %2 %3 %4 %5 %6 %7").arg(s.port, s.format).arg(s.retries).arg(s.timeoutSeconds)
                     .arg(s.measurementPeriod).arg(s.remotePeriod).arg(s.ledPeriod), cells[1]);
        // The master works with what was read.
        QCOMPARE(field.master.attempts(), s.retries);
        QCOMPARE(field.master.replyTimeout(), s.timeoutSeconds);
        // The port was tried by opening it, and left closed: the master opens it for each
        // operation.
        QVERIFY(s.portAvailable);
        QCOMPARE(s.statusText, "COM" + s.port + ":" + s.format);
        QCOMPARE(field.line.port(), s.port);
        QCOMPARE(field.line.format(), s.format);
        QCOMPARE(field.line.openCalls(), 1);
        QVERIFY(!field.line.isOpen());
        QVERIFY(field.line.requests().isEmpty());
    }

    void portThatDoesNotOpen()
    {
        Field field("Porta=7;Formato=4800,N,8,1");
        field.line.setFormat("19200,N,8,1");
        field.line.setOpenRefused(true, "No such file or directory");
        field.settings.portAvailable = true;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("cannot be opened.*No such file"));
        field.load();
        QVERIFY(!field.settings.portAvailable);
        QCOMPARE(field.settings.statusText, QStringLiteral("Nessuna COM"));
        QCOMPARE(field.line.format(), QStringLiteral("19200,N,8,1"));

        // Once the port is back, loading again brings the line into use.
        field.line.setOpenRefused(false);
        field.load();
        QVERIFY(field.settings.portAvailable);
        QCOMPARE(field.settings.statusText, QStringLiteral("COM7:4800,N,8,1"));
        QCOMPARE(field.line.format(), QStringLiteral("4800,N,8,1"));
    }

    // Formato | the reason the warning gives
    void badFormat_data() { addRows({"9600,X,8,1|parità", "veloce,N,8,1|velocità", "|virgole"}); }
    void badFormat()
    {
        const QStringList cells = rowCells();
        Field field("Porta=2;Formato=" + cells[0]);
        field.line.setPort("1");
        field.line.setFormat("19200,N,8,1");
        field.settings.portAvailable = true;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("\\[COM\\] Formato = .*" + cells[1] + ".*no serial port"));
        field.load();
        QVERIFY(!field.settings.portAvailable);
        QCOMPARE(field.settings.statusText, QStringLiteral("Nessuna COM"));
        // The line is neither touched nor re-pointed.
        QCOMPARE(field.line.openCalls(), 0);
        QCOMPARE(field.line.port() + " " + field.line.format(), QStringLiteral("1 19200,N,8,1"));
    }

    // keys | remote and line-activity flags
    void lineOptions_data() { addRows({"|00", "Remoto=1;Attivita=0|10", "Remoto=-1;Attivita=si|11", "Remoto=;Attivita=0|10"}); }
    void lineOptions()
    {
        const QStringList cells = rowCells();
        Field field(cells[0]);
        field.settings.remoteEnabled = cells[1][0] == '0';
        field.settings.lineActivity = cells[1][1] == '0';
        LoadLineOptions(field.ini, field.settings);
        QCOMPARE(QStringLiteral("%1%2").arg(field.settings.remoteEnabled).arg(field.settings.lineActivity), cells[1]);

        // The line-activity check may have been switched off for want of a reading line
        // between the two loads; loading the serial settings must not switch it back on.
        field.settings.lineActivity = false;
        field.load();
        QCOMPARE(field.settings.remoteEnabled, cells[1][0] == '1');
        QVERIFY(!field.settings.lineActivity);
    }
};

QTEST_GUILESS_MAIN(TestCommSettings)
#include "tst_commsettings.moc"
