// The built telvane in headless mode, without a slave or a display: its command line,
// the demo plant in simulation, and a port that does not exist.

#include "support/settingsfixture.h"

#include <QProcess>
#include <QRegularExpression>

using namespace telvane;

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

// Without a display, on a machine whose locale is `locale`.
Run runTelvane(const QStringList &arguments, const QString &locale = QStringLiteral("C.UTF-8"))
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("LC_ALL"), locale);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(TELVANE_PROGRAM), arguments);
    Run run;
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit)
        run = {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
               QString::fromUtf8(process.readAllStandardError())};
    return run;
}

// The shipped demo plant in a folder of the test's own.
void copyDemoPlant(const SettingsFolder &plant)
{
    const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
    for (const QString &name : demo.entryList(QDir::Files))
        QVERIFY(QFile::copy(demo.filePath(name), plant.path(name)));
}

QStringList logLines(const SettingsFolder &plant)
{
    QStringList lines;
    const QDir data(plant.path(QStringLiteral("Dati")));
    for (const QString &name : data.entryList({QStringLiteral("????_??_??.csv")}, QDir::Files, QDir::Name))
        lines += QString::fromUtf8(plant.read("Dati/" + name)).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    return lines;
}

} // namespace

class TestHeadless : public QObject
{
    Q_OBJECT

private slots:
    // Help and version need no display, even with windows asked for.
    void help()
    {
        const Run run = runTelvane({"--simulate", "--dir", "/nowhere", "-h"});
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        for (const char *option : {"--simulate", "--communicate", "--ticks", "--command", "--login", "Nessuna COM", "SIGTERM"})
            QVERIFY2(run.out.contains(QLatin1String(option)), option);
    }
    void version()
    {
        const Run run = runTelvane({"--version"});
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        QCOMPARE(run.out, QStringLiteral("Telvane " TELVANE_VERSION "\n"));
    }

    // Refused before anything is started or written: exit 2 and the reason.
    void wrongArguments_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("named");
        QTest::newRow("neither mode") << "--ticks 3" << "--simulate";
        QTest::newRow("both modes") << "--simulate --communicate" << "--communicate";
        QTest::newRow("stray argument") << "--simulate impianto" << "impianto";
        QTest::newRow("folder that cannot be made") << "--simulate --dir /proc/telvane/impianto" << "impossibile creare";
    }
    void wrongArguments()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, named);
        const Run run = runTelvane(QStringList{"--headless"} + QProcess::splitCommand(arguments));
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.out, QString());
        QVERIFY2(run.err.contains(named) && run.err.contains(QStringLiteral("--help")), qPrintable(run.err));
    }

    // The demo plant simulated for 130 ticks: the start's round and the rounds of ticks 60
    // and 120 reach the day's file, one field a zone, and the chrono-thermostat sends its
    // slot to the four zones that follow it. The values carry the machine's decimal
    // separator, so that a spreadsheet in its language opens the file as numbers; the
    // date-time is written the same everywhere.
    void demoPlantInSimulation_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("separator");
        QTest::newRow("English") << "en_US.UTF-8" << "\\.";
        QTest::newRow("Italian") << "it_IT.UTF-8" << ",";
    }
    void demoPlantInSimulation()
    {
        QFETCH(QString, locale);
        QFETCH(QString, separator);
        SettingsFolder plant;
        copyDemoPlant(plant);
        // Left by a save that was killed half-way: gone at the next start.
        plant.write(QStringLiteral("Telvane1.ini.k3Xq9Z"), "[Generale]\r\nZo");
        const Run run = runTelvane({"--headless", "--simulate", "--dir", plant.folder().root(), "--ticks", "130", "--tick-ms", "10"},
                                   locale);
        QVERIFY(!QFile::exists(plant.path(QStringLiteral("Telvane1.ini.k3Xq9Z"))));
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.contains(QStringLiteral("Pannello 2: Acquisizione\n")));
        QVERIFY(run.out.endsWith(QStringLiteral("Pannello 2: Standby\n")));
        QCOMPARE(run.out.count(QStringLiteral("Pannello 3: Lettura...")), 3);
        QVERIFY2(run.err.contains(QStringLiteral("sent to 4 zone(s)")), qPrintable(run.err));
        // The operator journal, printed as it is written: the start, and the stop after
        // the last tick.
        const QRegularExpression journalled(
            QStringLiteral("^Giornale: \\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d;Anonimo;(\\w+);"),
            QRegularExpression::MultilineOption);
        QStringList events;
        for (auto match = journalled.globalMatch(run.out); match.hasNext();)
            events.append(match.next().captured(1));
        QCOMPARE(events, (QStringList{"Start", "Stop"}));
        const QStringList lines = logLines(plant);
        QCOMPARE(lines.size(), 3);
        // A simulated register is 0..400, shown with the zones' one decimal.
        const QRegularExpression line(QStringLiteral("^\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d;(\\d{1,2}%1\\d;){6}$").arg(separator));
        for (const QString &text : lines)
            QVERIFY2(line.match(text).hasMatch(), qPrintable(text));
    }

};

QTEST_GUILESS_MAIN(TestHeadless)
#include "tst_headless.moc"
