#include "base/clock.h"
#include "config_editor/commsettings.h"
#include "fieldbus/modbusmaster.h"
#include "fieldbus/scriptedline.h"
#include "storage/inistore.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

// A program folder whose current settings file holds section COM with `lines`.
class Plant
{
public:
    explicit Plant(const QStringList &lines)
        : m_store(ProgramFolder(m_dir.path()))
    {
        QFile file(m_store.folder().filePath(m_store.currentIniName()));
        if (file.open(QIODevice::WriteOnly))
            file.write((QStringList {QStringLiteral("[COM]")} + lines).join(QStringLiteral("\r\n")).toUtf8() + "\r\n");
    }
    const IniStore &store() const { return m_store; }

private:
    QTemporaryDir m_dir;
    IniStore m_store;
};

// The master and its scripted line, as the program wires them.
struct Field
{
    ManualClock clock;
    ScriptedLine line {clock};
    ModbusMaster master {line, clock};
};

} // namespace

class TestCommSettings : public QObject
{
    Q_OBJECT

private slots:
    void settingsRead_data();
    void settingsRead();
    void portThatOpensIsApplied();
    void portThatDoesNotOpen();
    void badFormat_data();
    void badFormat();
    void lineFlagsAreLeftAlone();
    void lineOptions_data();
    void lineOptions();
};

void TestCommSettings::settingsRead_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("retries");
    QTest::addColumn<float>("timeoutSeconds");
    QTest::addColumn<int>("measurement");
    QTest::addColumn<int>("remote");
    QTest::addColumn<int>("led");

    QTest::newRow("nothing set") << QStringList() << "1" << "9600,N,8,1" << 1 << 0.5f << 60 << 3 << 3;
    QTest::newRow("everything set")
        << QStringList {"Porta=3", "Formato=19200,N,8,1", "Retry=4", "TimeOut=250", "Base Misura=120",
                        "Base Remoto=5", "Base LED=2"}
        << "3" << "19200,N,8,1" << 4 << 0.25f << 120 << 5 << 2;
    QTest::newRow("time-out missing: half a second") << QStringList {"Retry=2"}
                                                     << "1" << "9600,N,8,1" << 2 << 0.5f << 60 << 3 << 3;
    QTest::newRow("time-out in fractions") << QStringList {"TimeOut=75"}
                                           << "1" << "9600,N,8,1" << 1 << 0.075f << 60 << 3 << 3;
    QTest::newRow("periods at their limits") << QStringList {"Base Misura=300", "Base Remoto=30", "Base LED=0"}
                                             << "1" << "9600,N,8,1" << 1 << 0.5f << 300 << 30 << 0;
    QTest::newRow("periods just beyond") << QStringList {"Base Misura=301", "Base Remoto=31", "Base LED=31"}
                                         << "1" << "9600,N,8,1" << 1 << 0.5f << 300 << 30 << 30;
    QTest::newRow("negative periods") << QStringList {"Base Misura=-1", "Base Remoto=-1", "Base LED=-5"}
                                      << "1" << "9600,N,8,1" << 1 << 0.5f << 300 << 30 << 30;
    QTest::newRow("period beyond 16 bits") << QStringList {"Base Misura=70000"}
                                           << "1" << "9600,N,8,1" << 1 << 0.5f << 300 << 3 << 3;
    QTest::newRow("device path, blanks") << QStringList {"Porta = /dev/ttyUSB0 ", "Formato=  4800,E,8,1  "}
                                         << "/dev/ttyUSB0" << "4800,E,8,1" << 1 << 0.5f << 60 << 3 << 3;
}

void TestCommSettings::settingsRead()
{
    QFETCH(QStringList, lines);
    QFETCH(QString, port);
    QFETCH(QString, format);
    QFETCH(int, retries);
    QFETCH(float, timeoutSeconds);
    QFETCH(int, measurement);
    QFETCH(int, remote);
    QFETCH(int, led);

    const Plant plant(lines);
    Field field;
    CommSettings settings;
    LoadCommSettings(plant.store(), field.master, field.line, settings);

    QCOMPARE(settings.port, port);
    QCOMPARE(settings.format, format);
    QCOMPARE(settings.retries, retries);
    QCOMPARE(settings.timeoutSeconds, timeoutSeconds);
    QCOMPARE(settings.measurementPeriod, measurement);
    QCOMPARE(settings.remotePeriod, remote);
    QCOMPARE(settings.ledPeriod, led);
    // The master works with what was read.
    QCOMPARE(field.master.attempts(), retries);
    QCOMPARE(field.master.replyTimeout(), timeoutSeconds);
    QVERIFY(settings.portAvailable);
    QCOMPARE(settings.statusText, QStringLiteral("COM%1:%2").arg(port, format));
}

void TestCommSettings::portThatOpensIsApplied()
{
    const Plant plant({QStringLiteral("Porta=2"), QStringLiteral("Formato=4800,N,8,1")});
    Field field;
    CommSettings settings;
    LoadCommSettings(plant.store(), field.master, field.line, settings);

    QVERIFY(settings.portAvailable);
    QCOMPARE(settings.statusText, QStringLiteral("COM2:4800,N,8,1"));
    QCOMPARE(field.line.port(), QStringLiteral("2"));
    QCOMPARE(field.line.format(), QStringLiteral("4800,N,8,1"));
    // Tested by opening it, and left closed: the master opens it for each operation.
    QCOMPARE(field.line.openCalls(), 1);
    QVERIFY(!field.line.isOpen());
    QVERIFY(field.line.requests().isEmpty());
}

void TestCommSettings::portThatDoesNotOpen()
{
    const Plant plant({QStringLiteral("Porta=7"), QStringLiteral("Formato=4800,N,8,1")});
    Field field;
    field.line.setFormat(QStringLiteral("19200,N,8,1"));
    field.line.setOpenRefused(true, QStringLiteral("No such file or directory"));
    CommSettings settings;
    settings.portAvailable = true;

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("cannot be opened.*No such file")));
    LoadCommSettings(plant.store(), field.master, field.line, settings);

    QVERIFY(!settings.portAvailable);
    QCOMPARE(settings.statusText, QStringLiteral("Nessuna COM"));
    QCOMPARE(field.line.openCalls(), 1);
    QCOMPARE(field.line.format(), QStringLiteral("19200,N,8,1"));
    // The rest of the settings still hold.
    QCOMPARE(settings.port, QStringLiteral("7"));
    QCOMPARE(settings.format, QStringLiteral("4800,N,8,1"));

    // Once the port is back, loading again brings the line into use.
    field.line.setOpenRefused(false);
    LoadCommSettings(plant.store(), field.master, field.line, settings);
    QVERIFY(settings.portAvailable);
    QCOMPARE(settings.statusText, QStringLiteral("COM7:4800,N,8,1"));
    QCOMPARE(field.line.format(), QStringLiteral("4800,N,8,1"));
}

void TestCommSettings::badFormat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("reason");

    QTest::newRow("unknown parity") << "9600,X,8,1" << "parità";
    QTest::newRow("missing field") << "9600,N,8" << "virgole";
    QTest::newRow("speed in words") << "veloce,N,8,1" << "velocità";
    QTest::newRow("empty") << "" << "virgole";
}

void TestCommSettings::badFormat()
{
    QFETCH(QString, format);
    QFETCH(QString, reason);

    const Plant plant({QStringLiteral("Porta=2"), QStringLiteral("Formato=") + format});
    Field field;
    field.line.setPort(QStringLiteral("1"));
    field.line.setFormat(QStringLiteral("19200,N,8,1"));
    CommSettings settings;
    settings.portAvailable = true;
    settings.statusText = QStringLiteral("COM1:19200,N,8,1");

    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("\\[COM\\] Formato = .*%1.*no serial port").arg(reason)));
    LoadCommSettings(plant.store(), field.master, field.line, settings);

    QVERIFY(!settings.portAvailable);
    QCOMPARE(settings.statusText, QStringLiteral("Nessuna COM"));
    // The line is neither touched nor re-pointed.
    QCOMPARE(field.line.openCalls(), 0);
    QCOMPARE(field.line.port(), QStringLiteral("1"));
    QCOMPARE(field.line.format(), QStringLiteral("19200,N,8,1"));
}

void TestCommSettings::lineFlagsAreLeftAlone()
{
    // The line-activity check may have been switched off for want of a reading line
    // between the two loads; loading the serial settings must not switch it back on.
    const Plant plant({QStringLiteral("Remoto=1"), QStringLiteral("Attivita=1")});
    Field field;
    CommSettings settings;
    LoadLineOptions(plant.store(), settings);
    QVERIFY(settings.remoteEnabled);
    QVERIFY(settings.lineActivity);
    settings.lineActivity = false;
    LoadCommSettings(plant.store(), field.master, field.line, settings);
    QVERIFY(settings.remoteEnabled);
    QVERIFY(!settings.lineActivity);
}

void TestCommSettings::lineOptions_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<bool>("remote");
    QTest::addColumn<bool>("activity");

    QTest::newRow("absent") << QStringList() << false << false;
    QTest::newRow("both on") << QStringList {"Remoto=1", "Attivita=1"} << true << true;
    QTest::newRow("both off") << QStringList {"Remoto=0", "Attivita=0"} << false << false;
    QTest::newRow("only remote") << QStringList {"Remoto=1", "Attivita=0"} << true << false;
    QTest::newRow("anything but 0 is on") << QStringList {"Remoto=-1", "Attivita=si"} << true << true;
    QTest::newRow("empty is on") << QStringList {"Remoto=", "Attivita=0"} << true << false;
}

void TestCommSettings::lineOptions()
{
    QFETCH(QStringList, lines);
    QFETCH(bool, remote);
    QFETCH(bool, activity);

    const Plant plant(lines);
    CommSettings settings;
    settings.remoteEnabled = !remote;
    settings.lineActivity = !activity;
    LoadLineOptions(plant.store(), settings);
    QCOMPARE(settings.remoteEnabled, remote);
    QCOMPARE(settings.lineActivity, activity);
}

QTEST_GUILESS_MAIN(TestCommSettings)
#include "tst_commsettings.moc"
