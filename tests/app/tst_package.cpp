// The Debian package built from this build folder, unpacked into a folder of the test's
// own as dpkg would install it: the programs run from there, and the desktop entry, the
// icon, the documents and the unit of the headless mode are where Debian looks for them.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class TestPackage : public QObject
{
    Q_OBJECT

private:
    // Runs `program` and returns its standard output; fails the test when it fails.
    static QByteArray run(const QString &program, const QStringList &arguments, const QString &workingDir = {})
    {
        QProcess process;
        process.setWorkingDirectory(workingDir);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        const bool finished = process.waitForFinished(240000);
        const QByteArray errors = process.readAllStandardError();
        [&] {
            QVERIFY2(finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
                     qPrintable(program + ' ' + arguments.join(' ') + ": " + QString::fromLocal8Bit(errors)));
        }();
        return process.readAllStandardOutput();
    }

private slots:
    void installsAndRuns()
    {
        QTemporaryDir work;
        QVERIFY(work.isValid());
        run(QStringLiteral("cpack"), {"-G", "DEB", "-B", work.path(), "--config", TELVANE_BINARY_DIR "/CPackConfig.cmake"},
            work.path());
        if (QTest::currentTestFailed())
            return;
        const QStringList packages = QDir(work.path()).entryList({QStringLiteral("telvane_*.deb")}, QDir::Files);
        QCOMPARE(packages.size(), 1);
        const QString package = QDir(work.path()).filePath(packages.first());

        // What the package asks dpkg for: Qt itself, found from the programs' libraries.
        const QByteArray depends = run(QStringLiteral("dpkg-deb"), {"--field", package, "Depends"});
        for (const char *library : {"libqt6core6", "libqt6widgets6", "qt6-qpa-plugins"})
            QVERIFY2(depends.contains(library), depends.constData());

        const QString root = QDir(work.path()).filePath(QStringLiteral("root"));
        run(QStringLiteral("dpkg-deb"), {"-x", package, root});
        for (const char *file : {"usr/share/applications/telvane.desktop",
                                 "usr/share/icons/hicolor/scalable/apps/telvane.svg", "usr/share/doc/telvane/README.md",
                                 "usr/share/doc/telvane/demo-plant/Telvane1.ini", "usr/lib/systemd/system/telvane-headless@.service"})
            QVERIFY2(QFile::exists(QDir(root).filePath(QLatin1String(file))), file);

        const QByteArray version = run(QDir(root).filePath(QStringLiteral("usr/bin/telvane")), {"--version"});
        QCOMPARE(version, QByteArray("Telvane " TELVANE_VERSION "\n"));
        // The probe runs from there too; a port that does not even name a device is a
        // wrong argument, refused before any line is touched.
        const QString probePath = QDir(root).filePath(QStringLiteral("usr/bin/telvane-probe"));
        QVERIFY(run(probePath, {"--help"}).contains("--repeat"));
        QProcess probe;
        probe.start(probePath, {"--port", "??", "--slave", "1", "--fc", "3", "--address", "1"});
        QVERIFY(probe.waitForFinished(10000));
        QCOMPARE(probe.exitCode(), 2);
        const QByteArray refusal = probe.readAllStandardError();
        QVERIFY2(refusal.contains("??") && refusal.contains("--help"), refusal.constData());

        // The unit starts the program the package installed, on the instance's folder.
        QFile unit(QDir(root).filePath(QStringLiteral("usr/lib/systemd/system/telvane-headless@.service")));
        QVERIFY(unit.open(QIODevice::ReadOnly));
        QByteArray text = unit.readAll();
        QVERIFY(text.contains("\nExecStart=/usr/bin/telvane --headless --communicate --dir /var/lib/telvane/%i\n"));
        // And systemd finds nothing wrong with an instance of it, run from where it was unpacked.
        QFile instance(QDir(work.path()).filePath(QStringLiteral("telvane-headless@demo.service")));
        QVERIFY(instance.open(QIODevice::WriteOnly));
        instance.write(text.replace("/usr/bin/telvane", QDir(root).filePath(QStringLiteral("usr/bin/telvane")).toUtf8()));
        instance.close();
        QProcess verify;
        verify.setProcessChannelMode(QProcess::MergedChannels); // a doubtful setting is only a warning
        verify.start(QStringLiteral("systemd-analyze"), {"verify", "--man=no", instance.fileName()});
        QVERIFY(verify.waitForFinished(60000));
        const QByteArray said = verify.readAll();
        QVERIFY2(verify.exitCode() == 0 && said.trimmed().isEmpty(), said.constData());
    }
};

QTEST_GUILESS_MAIN(TestPackage)
#include "tst_package.moc"
