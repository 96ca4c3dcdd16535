// The built programs as a user starts them, without a slave: telvane's command line, the
// headless mode on the demo plant in simulation, the window opening on whatever the plant
// folder holds (on the offscreen platform, with no sound device, saving a picture of
// itself as the documentation's screenshots are taken), and the Debian package.

#include "support/settingsfixture.h"

#include <QImage>
#include <QProcess>
#include <QRegularExpression>

using namespace telvane;

namespace {

struct Run
{
    int exitCode = -1; // -1 also when it crashed or never ended
    QString out;
    QString err;
};

// Without a display unless `platform` is given, on a machine whose locale is `locale`.
Run runProgram(const QString &program, const QStringList &arguments, const QString &locale = QStringLiteral("C.UTF-8"),
               const QString &platform = {}, const QString &workingDir = {})
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("LC_ALL"), locale);
    if (!platform.isEmpty())
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(workingDir);
    process.start(program, arguments);
    Run run;
    if (process.waitForFinished(240000) && process.exitStatus() == QProcess::NormalExit)
        run = {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
               QString::fromUtf8(process.readAllStandardError())};
    return run;
}

Run runTelvane(const QStringList &arguments, const QString &locale = QStringLiteral("C.UTF-8"), const QString &platform = {})
{
    return runProgram(QStringLiteral(TELVANE_PROGRAM), arguments, locale, platform);
}

// The standard output of a run that must succeed; the test fails when it does not.
QString succeeded(const QString &program, const QStringList &arguments, const QString &workingDir = {})
{
    const Run run = runProgram(program, arguments, QStringLiteral("C.UTF-8"), {}, workingDir);
    [&] { QVERIFY2(run.exitCode == 0, qPrintable(program + ' ' + arguments.join(' ') + ": " + run.err)); }();
    return run.out;
}

// The shipped demo plant in a folder of the test's own.
void copyDemoPlant(const SettingsFolder &plant)
{
    const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
    for (const QString &name : demo.entryList(QDir::Files))
        QVERIFY(QFile::copy(demo.filePath(name), plant.path(name)));
}

enum class Folder { NotThereYet, GarbageSettings, NoPort, DemoPlant };

} // namespace

Q_DECLARE_METATYPE(Folder)

class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    // Help needs no display, even with windows asked for. A wrong command line is refused
    // before anything is started or written: exit 2 and the reason.
    void commandLine_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("named"); // in the help on standard output, or the reason on standard error
        QTest::newRow("help") << "--simulate --dir /nowhere -h" << 0 << "--communicate";
        QTest::newRow("neither mode") << "--headless --ticks 3" << 2 << "--simulate";
        QTest::newRow("both modes") << "--headless --simulate --communicate" << 2 << "--communicate";
        QTest::newRow("stray argument") << "--headless --simulate impianto" << 2 << "impianto";
        QTest::newRow("folder that cannot be made") << "--headless --simulate --dir /proc/telvane/impianto" << 2
                                                    << "impossibile creare";
        // An operator's command that cannot be run is refused with the rest, naming what is wrong.
        const auto command = [](const char *text) { return QStringLiteral("--headless --simulate --command \"%1\"").arg(text); };
        QTest::newRow("empty command") << "--headless --simulate --command=" << 2 << "sconosciuto";
        QTest::newRow("unknown verb") << command("open 1") << 2 << "open 1";
        QTest::newRow("door with an item") << command("door 1") << 2 << "door 1";
        QTest::newRow("switch zero") << command("switch 0 on") << 2 << "da 1 a 10";
        QTest::newRow("switch not a number") << command("switch uno on") << 2 << "\"uno\"";
        QTest::newRow("switch state") << command("switch 1 acceso") << 2 << "\"acceso\"";
        QTest::newRow("switch without state") << command("switch 1") << 2 << "sconosciuto";
        QTest::newRow("zone 31") << command("set 31 20") << 2 << "da 1 a 30";
        QTest::newRow("set, value in two words") << command("set 1 21 5") << 2 << "sconosciuto";
    }
    void commandLine()
    {
        QFETCH(QString, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, named);
        const Run run = runTelvane(QProcess::splitCommand(arguments));
        QCOMPARE(run.exitCode, exitCode);
        const QString &said = exitCode == 0 ? run.out : run.err;
        QVERIFY2(said.contains(named) && (exitCode == 0 || said.contains(QStringLiteral("--help"))), qPrintable(said));
        QCOMPARE(exitCode == 0 ? run.err : run.out, QString());
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
        QStringList lines;
        const QDir data(plant.path(QStringLiteral("Dati")));
        for (const QString &name : data.entryList({QStringLiteral("????_??_??.csv")}, QDir::Files, QDir::Name))
            lines += QString::fromUtf8(plant.read("Dati/" + name)).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 3);
        // A simulated register is 0..400, shown with the zones' one decimal.
        const QRegularExpression line(QStringLiteral("^\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d;(\\d{1,2}%1\\d;){6}$").arg(separator));
        for (const QString &text : lines)
            QVERIFY2(line.match(text).hasMatch(), qPrintable(text));
    }

    // The window opens, starts acquisition and makes the plant's folders whatever the
    // folder holds.
    void windowOpensOnAnyFolder_data()
    {
        QTest::addColumn<Folder>("folder");
        QTest::addColumn<QString>("mode");
        QTest::newRow("not there yet") << Folder::NotThereYet << "--simulate";
        QTest::newRow("garbage settings") << Folder::GarbageSettings << "--simulate";
        QTest::newRow("no port") << Folder::NoPort << "--communicate";
        QTest::newRow("demo plant") << Folder::DemoPlant << "--simulate";
    }
    void windowOpensOnAnyFolder()
    {
        QFETCH(Folder, folder);
        QFETCH(QString, mode);
        SettingsFolder dir;
        const QString plant = folder == Folder::NotThereYet ? dir.path(QStringLiteral("impianto")) : dir.folder().root();
        QByteArray garbage("[Generale\r\nZone=abc\r\nInterruttori=-7\r\n=\r\n[COM]\r\nFormato=x,y,z\r\n");
        for (int i = 0; i < 512; ++i)
            garbage.append(char((i * 37 + 11) % 256));
        garbage.append("\r\n[Zona 01]\r\nNome=\xff\xfe\r\nPV_r=3,\r\n[Sinottico]\r\nSuonoAllarme=manca.wav\r\n");
        if (folder == Folder::GarbageSettings) {
            for (const char *name : {"Telvane0.ini", "Telvane1.ini", "Telvane2.ini"})
                dir.write(QLatin1String(name), garbage);
        } else if (folder == Folder::DemoPlant) {
            copyDemoPlant(dir);
        } else if (folder == Folder::NoPort) {
            dir.write(QStringLiteral("Telvane2.ini"), "[COM]\r\nPorta=/dev/telvane-nessuna-porta\r\n[Generale]\r\nZone=1\r\n");
        }
        const QString picture = dir.path(QStringLiteral("finestra.png"));
        const Run run = runTelvane({"--dir", plant, "--screenshot", picture, mode}, QStringLiteral("C.UTF-8"),
                                   QStringLiteral("offscreen"));
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
        const QImage image(picture);
        QVERIFY2(image.width() >= 640 && image.height() >= 400, qPrintable(run.err));
        for (const char *name : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(plant).exists(QLatin1String(name)), name);
    }
    // The Debian package built from this build folder, unpacked into a folder of the
    // test's own as dpkg would install it: the programs run from there, and the desktop
    // entry, the icon, the documents and the unit of the headless mode are where Debian
    // looks for them.
    void debianPackage()
    {
        QTemporaryDir work;
        QVERIFY(work.isValid());
        succeeded(QStringLiteral("cpack"), {"-G", "DEB", "-B", work.path(), "--config", TELVANE_BINARY_DIR "/CPackConfig.cmake"},
                  work.path());
        if (QTest::currentTestFailed())
            return;
        const QStringList packages = QDir(work.path()).entryList({QStringLiteral("telvane_*.deb")}, QDir::Files);
        QCOMPARE(packages.size(), 1);
        const QString package = QDir(work.path()).filePath(packages.first());

        // What the package asks dpkg for: Qt itself, found from the programs' libraries.
        const QString depends = succeeded(QStringLiteral("dpkg-deb"), {"--field", package, "Depends"});
        for (const char *library : {"libqt6core6", "libqt6widgets6", "qt6-qpa-plugins"})
            QVERIFY2(depends.contains(QLatin1String(library)), qPrintable(depends));

        const QDir root(QDir(work.path()).filePath(QStringLiteral("root")));
        succeeded(QStringLiteral("dpkg-deb"), {"-x", package, root.path()});
        for (const char *file : {"usr/share/applications/telvane.desktop",
                                 "usr/share/icons/hicolor/scalable/apps/telvane.svg", "usr/share/doc/telvane/README.md",
                                 "usr/share/doc/telvane/demo-plant/Telvane1.ini", "usr/lib/systemd/system/telvane-headless@.service"})
            QVERIFY2(QFile::exists(root.filePath(QLatin1String(file))), file);
        QCOMPARE(succeeded(root.filePath(QStringLiteral("usr/bin/telvane")), {"--version"}),
                 QStringLiteral("Telvane " TELVANE_VERSION "\n"));

        // The probe runs from there too; a port that does not even name a device is a
        // wrong argument, refused before any line is touched.
        const QString probe = root.filePath(QStringLiteral("usr/bin/telvane-probe"));
        QVERIFY(succeeded(probe, {"--help"}).contains(QStringLiteral("--repeat")));
        const Run refused = runProgram(probe, {"--port", "??", "--slave", "1", "--fc", "3", "--address", "1"});
        QCOMPARE(refused.exitCode, 2);
        QVERIFY2(refused.err.contains(QStringLiteral("??")) && refused.err.contains(QStringLiteral("--help")),
                 qPrintable(refused.err));

        // The unit starts the program the package installed, on the instance's folder.
        QFile unit(root.filePath(QStringLiteral("usr/lib/systemd/system/telvane-headless@.service")));
        QVERIFY(unit.open(QIODevice::ReadOnly));
        QByteArray text = unit.readAll();
        QVERIFY(text.contains("\nExecStart=/usr/bin/telvane --headless --communicate --dir /var/lib/telvane/%i\n"));
        // And systemd finds nothing wrong with an instance of it, run from where it was unpacked.
        QFile instance(QDir(work.path()).filePath(QStringLiteral("telvane-headless@demo.service")));
        QVERIFY(instance.open(QIODevice::WriteOnly));
        instance.write(text.replace("/usr/bin/telvane", root.filePath(QStringLiteral("usr/bin/telvane")).toUtf8()));
        instance.close();
        // A doubtful setting is only a warning, but a warning all the same.
        const Run verify = runProgram(QStringLiteral("systemd-analyze"), {"verify", "--man=no", instance.fileName()});
        QVERIFY2(verify.exitCode == 0 && (verify.out + verify.err).trimmed().isEmpty(), qPrintable(verify.out + verify.err));
    }
};

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
