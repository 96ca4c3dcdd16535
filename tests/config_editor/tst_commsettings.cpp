#include "base/clock.h"
#include "config_editor/commsettings.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"
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
    void settingsRead_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("format");
        QTest::addColumn<int>("retries");
        QTest::addColumn<float>("timeout");
        QTest::addColumn<QList<int>>("periods"); // Base Misura, Base Remoto, Base LED
        QTest::newRow("every key") << "Porta=3;Formato=19200,N,8,1;Retry=4;TimeOut=250;Base Misura=120;Base Remoto=5;Base LED=2"
                                   << "3" << "19200,N,8,1" << 4 << 0.25f << QList<int>{120, 5, 2};
        QTest::newRow("periods at their limits") << "Base Misura=300;Base Remoto=30;Base LED=0"
                                                 << "1" << "9600,N,8,1" << 1 << 0.5f << QList<int>{300, 30, 0};
        QTest::newRow("periods beyond") << "Base Misura=301;Base Remoto=31;Base LED=-5"
                                        << "1" << "9600,N,8,1" << 1 << 0.5f << QList<int>{300, 30, 30};
        QTest::newRow("blanks around") << "Porta = /dev/ttyUSB0 ;Formato=  4800,E,8,1  "
                                       << "/dev/ttyUSB0" << "4800,E,8,1" << 1 << 0.5f << QList<int>{60, 3, 3};
    }
    void settingsRead()
    {
        QFETCH(QString, keys);
        QFETCH(QString, port);
        QFETCH(QString, format);
        QFETCH(int, retries);
        QFETCH(float, timeout);
        QFETCH(QList<int>, periods);
        Field field(keys);
        field.load();
        const CommSettings &s = field.settings;
        QCOMPARE(s.port, port);
        QCOMPARE(s.format, format);
        QCOMPARE(s.retries, retries);
        QCOMPARE(s.timeoutSeconds, timeout);
        QCOMPARE((QList<int>{s.measurementPeriod, s.remotePeriod, s.ledPeriod}), periods);
        // The master works with what was read.
        QCOMPARE(field.master.attempts(), retries);
        QCOMPARE(field.master.replyTimeout(), timeout);
        // The port was tried by opening it, and left closed: the master opens it for each
        // operation.
        QVERIFY(s.portAvailable);
        QCOMPARE(s.statusText, "COM" + port + ":" + format);
        QCOMPARE(field.line.port(), port);
        QCOMPARE(field.line.format(), format);
        QCOMPARE(field.line.openCalls(), 1);
        QVERIFY(!field.line.isOpen());
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

    void badFormat_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("reason"); // a word of the warning
        QTest::newRow("parity") << "9600,X,8,1" << "parità";
        QTest::newRow("speed") << "veloce,N,8,1" << "velocità";
        QTest::newRow("empty") << "" << "virgole";
    }
    void badFormat()
    {
        QFETCH(QString, format);
        QFETCH(QString, reason);
        Field field("Porta=2;Formato=" + format);
        field.line.setPort("1");
        field.line.setFormat("19200,N,8,1");
        field.settings.portAvailable = true;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("\\[COM\\] Formato = .*" + reason + ".*no serial port"));
        field.load();
        QVERIFY(!field.settings.portAvailable);
        QCOMPARE(field.settings.statusText, QStringLiteral("Nessuna COM"));
        // The line is neither touched nor re-pointed.
        QCOMPARE(field.line.openCalls(), 0);
        QCOMPARE(field.line.port(), QStringLiteral("1"));
        QCOMPARE(field.line.format(), QStringLiteral("19200,N,8,1"));
    }

    void lineOptions_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<bool>("remote");
        QTest::addColumn<bool>("activity");
        QTest::newRow("absent") << "" << false << false;
        QTest::newRow("remote only") << "Remoto=1;Attivita=0" << true << false;
        QTest::newRow("on unless 0") << "Remoto=-1;Attivita=si" << true << true;
    }
    void lineOptions()
    {
        QFETCH(QString, keys);
        QFETCH(bool, remote);
        QFETCH(bool, activity);
        Field field(keys);
        field.settings.remoteEnabled = !remote;
        field.settings.lineActivity = !activity;
        LoadLineOptions(field.ini, field.settings);
        QCOMPARE(field.settings.remoteEnabled, remote);
        QCOMPARE(field.settings.lineActivity, activity);

        // The line-activity check may have been switched off for want of a reading line
        // between the two loads; loading the serial settings must not switch it back on.
        field.settings.lineActivity = false;
        field.load();
        QCOMPARE(field.settings.remoteEnabled, remote);
        QVERIFY(!field.settings.lineActivity);
    }
};

QTEST_GUILESS_MAIN(TestCommSettings)
#include "tst_commsettings.moc"
