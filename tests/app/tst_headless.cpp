// The built telvane in headless mode, without a slave: its command line, the demo plant
// in simulation, a port that does not exist, and a stop by SIGTERM.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

// Without a display: the headless mode must not need one. `offscreen` gives the window's
// path a screen of its own.
Run telvane(const QStringList &arguments, bool offscreen = false)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    if (offscreen)
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(TELVANE_PROGRAM), arguments);
    Run run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

// The shipped demo plant, copied so that the run's files stay out of the sources.
bool copyDemoPlant(const QString &to)
{
    const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
    for (const QString &name : demo.entryList(QDir::Files)) {
        if (!QFile::copy(demo.filePath(name), QDir(to).filePath(name)))
            return false;
    }
    return true;
}

// Sets key `key` of section [COM] in a copied settings file.
bool setComKey(const QString &iniPath, const QString &key, const QString &value)
{
    QFile file(iniPath);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    const QRegularExpression line(QStringLiteral("(\\[COM\\][^\\[]*?\\n)%1=[^\\r\\n]*").arg(key));
    if (!text.contains(line))
        return false;
    text.replace(line, QStringLiteral("\\1%1=%2").arg(key, value));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    file.write(text.toUtf8());
    return true;
}

QStringList logLines(const QString &plant)
{
    QStringList lines;
    const QDir data(QDir(plant).filePath(QStringLiteral("Dati")));
    for (const QString &name : data.entryList({QStringLiteral("*.csv")}, QDir::Files, QDir::Name)) {
        QFile file(data.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            lines += QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    }
    return lines;
}

} // namespace

class TestHeadless : public QObject
{
    Q_OBJECT

private slots:
    void help_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("offscreen");
        QTest::newRow("window") << QStringList{QStringLiteral("--help")} << true;
        QTest::newRow("headless") << QStringList{QStringLiteral("--headless"), QStringLiteral("--help")} << false;
    }

    void help()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, offscreen);
        const Run run = telvane(arguments, offscreen);
        QCOMPARE(run.exitCode, 0);
        for (const char *option : {"--headless", "--simulate", "--communicate", "--dir", "--ticks", "--tick-ms",
                                   "--command", "--login", "Nessuna COM", "SIGTERM", "switch N on", "set N VALORE"})
            QVERIFY2(run.out.contains(QLatin1String(option)), option);
    }

    void wrongArguments_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("named");

        QTest::newRow("no mode") << "--headless --ticks 3" << "--simulate";
        QTest::newRow("both modes") << "--headless --simulate --communicate" << "--communicate";
        QTest::newRow("ticks 0") << "--headless --simulate --ticks 0" << "--ticks";
        QTest::newRow("ticks not a number") << "--headless --simulate --ticks tre" << "tre";
        QTest::newRow("tick-ms too long") << "--headless --simulate --tick-ms 60001" << "--tick-ms";
        QTest::newRow("unknown command") << "--headless --simulate --command apri" << "apri";
        QTest::newRow("switch 11") << "--headless --simulate --command \"switch 11 on\"" << "da 1 a 10";
        QTest::newRow("login without password") << "--headless --simulate --login Tecnico" << "NOME:PASSWORD";
        QTest::newRow("unknown option") << "--headless --simulate --tick 5" << "tick";
        QTest::newRow("stray argument") << "--headless --simulate impianto" << "impianto";
    }

    // Refused before anything is started or written: exit 2 and the reason.
    void wrongArguments()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, named);

        const Run run = telvane(QProcess::splitCommand(arguments));
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.out, QString());
        QVERIFY2(run.err.contains(named), qPrintable(run.err));
        QVERIFY2(run.err.contains(QStringLiteral("--help")), qPrintable(run.err));
    }

    // The demo plant as shipped, simulated for 130 ticks: the start's round and the rounds
    // of ticks 60 and 120 reach the day's file, one field a zone, and the chrono-thermostat
    // sends its slot to the four zones that follow it.
    void demoPlantInSimulation()
    {
        QTemporaryDir plant;
        QVERIFY(copyDemoPlant(plant.path()));
        const Run run = telvane({QStringLiteral("--headless"), QStringLiteral("--simulate"), QStringLiteral("--dir"),
                                 plant.path(), QStringLiteral("--ticks"), QStringLiteral("130"),
                                 QStringLiteral("--tick-ms"), QStringLiteral("10")});
        QCOMPARE(run.exitCode, 0);
        const QStringList out = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QVERIFY(out.contains(QStringLiteral("Pannello 2: Acquisizione")));
        QCOMPARE(out.last(), QStringLiteral("Pannello 2: Standby"));
        QCOMPARE(out.count(QStringLiteral("Pannello 3: Lettura...")), 3);
        QVERIFY2(run.err.contains(QStringLiteral("sent to 4 zone(s)")), qPrintable(run.err));

        const QStringList lines = logLines(plant.path());
        QCOMPARE(lines.size(), 3);
        // A simulated register is 0..400, shown with the zones' one decimal.
        const QRegularExpression line(
            QStringLiteral("^\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d:\\d\\d;(\\d{1,2}\\.\\d;){6}$"));
        for (const QString &text : lines)
            QVERIFY2(line.match(text).hasMatch(), qPrintable(text));
    }

    // A plant folder that is not there yet is made, as the window makes it.
    void newFolder()
    {
        QTemporaryDir parent;
        const QString plant = parent.filePath(QStringLiteral("nuovo/impianto"));
        const Run run = telvane({QStringLiteral("--headless"), QStringLiteral("--simulate"), QStringLiteral("--dir"),
                                 plant, QStringLiteral("--ticks"), QStringLiteral("2"), QStringLiteral("--tick-ms"),
                                 QStringLiteral("10")});
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.endsWith(QStringLiteral("Pannello 2: Standby\n")));
        for (const char *folder : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(plant).exists(QLatin1String(folder)), folder);
    }

    // Talking to the instruments on a port that is not there: nothing to acquire with.
    void communicateWithoutPort()
    {
        QTemporaryDir plant;
        QVERIFY(copyDemoPlant(plant.path()));
        QVERIFY(setComKey(plant.filePath(QStringLiteral("Telvane1.ini")), QStringLiteral("Porta"),
                          plant.filePath(QStringLiteral("nessuna-porta"))));
        const Run run = telvane({QStringLiteral("--headless"), QStringLiteral("--communicate"), QStringLiteral("--dir"),
                                 plant.path(), QStringLiteral("--ticks"), QStringLiteral("5")});
        QCOMPARE(run.exitCode, 1);
        const QStringList out = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QVERIFY(out.contains(QStringLiteral("Pannello 1: Nessuna COM")));
        QCOMPARE(out.last(), QStringLiteral("Nessuna COM"));
        QVERIFY(!out.contains(QStringLiteral("Pannello 2: Acquisizione")));
        QVERIFY(logLines(plant.path()).isEmpty());
    }

    // SIGTERM in the middle of a run: the tick under way ends, every line written is
    // whole, and the exit is clean.
    void sigtermStopsCleanly()
    {
        QTemporaryDir plant;
        QVERIFY(copyDemoPlant(plant.path()));
        // A measurement every other tick, so that the signal is likely to land in a round.
        QVERIFY(setComKey(plant.filePath(QStringLiteral("Telvane1.ini")), QStringLiteral("Base Misura"),
                          QStringLiteral("2")));
        QProcess process;
        process.start(QStringLiteral(TELVANE_PROGRAM),
                      {QStringLiteral("--headless"), QStringLiteral("--simulate"), QStringLiteral("--dir"),
                       plant.path(), QStringLiteral("--tick-ms"), QStringLiteral("10")});
        QVERIFY(process.waitForStarted());
        QByteArray out;
        while (out.count("Pannello 3: Lettura...") < 4 && process.state() == QProcess::Running) {
            process.waitForReadyRead(10000);
            out += process.readAllStandardOutput();
        }
        QCOMPARE(process.state(), QProcess::Running);
        ::kill(pid_t(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        out += process.readAllStandardOutput();
        QVERIFY2(out.endsWith("Pannello 2: Standby\n"), out.right(200).constData());

        const QStringList lines = logLines(plant.path());
        QCOMPARE(lines.size(), out.count("Pannello 3: Lettura..."));
        for (const QString &text : lines)
            QCOMPARE(text.count(QLatin1Char(';')), 7);
    }
};

QTEST_GUILESS_MAIN(TestHeadless)
#include "tst_headless.moc"
