// The built program opening its window on a plant folder, whatever the folder holds: no
// settings, settings full of garbage, a port that does not exist. It runs on the
// offscreen platform with no sound device, starts acquisition and saves a picture of
// its window, as the documentation's screenshots are taken.

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray garbage()
{
    QByteArray bytes("[Generale\r\nZone=abc\r\nInterruttori=-7\r\nLED=99999999999\r\n=\r\n[COM]\r\nFormato=x,y,z\r\n");
    for (int i = 0; i < 512; ++i)
        bytes.append(char((i * 37 + 11) % 256));
    bytes.append("\r\n[Zona 01]\r\nNome=\xff\xfe\r\nIndirizzo=\r\nPV_r=3,\r\n[Sinottico]\r\nSuonoAllarme=manca.wav\r\n");
    return bytes;
}

} // namespace

class TestWindowStart : public QObject
{
    Q_OBJECT

private slots:
    void opensOnAnyFolder_data()
    {
        QTest::addColumn<QString>("contents");
        QTest::addColumn<QString>("mode");
        QTest::newRow("empty folder") << "none" << "--simulate";
        QTest::newRow("folder not there yet") << "missing" << "--simulate";
        QTest::newRow("garbage settings") << "garbage" << "--simulate";
        QTest::newRow("demo plant") << "demo" << "--simulate";
        QTest::newRow("communicating on a port that does not exist") << "no port" << "--communicate";
    }

    void opensOnAnyFolder()
    {
        QFETCH(QString, contents);
        QFETCH(QString, mode);

        QTemporaryDir dir;
        QString plant = dir.path();
        if (contents == QLatin1String("missing")) {
            plant = dir.filePath(QStringLiteral("impianto"));
        } else if (contents == QLatin1String("garbage")) {
            for (const char *name : {"Telvane0.ini", "Telvane1.ini", "Telvane2.ini"})
                QVERIFY(writeFile(dir.filePath(QLatin1String(name)), garbage()));
        } else if (contents == QLatin1String("demo")) {
            const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
            for (const QString &name : demo.entryList(QDir::Files))
                QVERIFY(QFile::copy(demo.filePath(name), dir.filePath(name)));
        } else if (contents == QLatin1String("no port")) {
            QVERIFY(writeFile(dir.filePath(QStringLiteral("Telvane2.ini")),
                              "[COM]\r\nPorta=/dev/telvane-nessuna-porta\r\n[Generale]\r\nZone=1\r\n"));
        }
        const QString picture = dir.filePath(QStringLiteral("finestra.png"));

        QProcess telvane;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        telvane.setProcessEnvironment(environment);
        telvane.start(QStringLiteral(TELVANE_PROGRAM),
                      {QStringLiteral("--dir"), plant, mode, QStringLiteral("--screenshot"), picture});
        QVERIFY(telvane.waitForFinished(60000));
        const QByteArray errors = telvane.readAllStandardError();
        QCOMPARE(telvane.exitStatus(), QProcess::NormalExit);
        QVERIFY2(telvane.exitCode() == 0, errors.constData());

        const QImage image(picture);
        QVERIFY2(!image.isNull(), errors.constData());
        QVERIFY(image.width() >= 640 && image.height() >= 400);
        for (const char *folder : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(plant).exists(QLatin1String(folder)), folder);
    }

    void simulateAndCommunicateExcludeEachOther()
    {
        QProcess telvane;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        telvane.setProcessEnvironment(environment);
        telvane.start(QStringLiteral(TELVANE_PROGRAM), {QStringLiteral("--simulate"), QStringLiteral("--communicate")});
        QVERIFY(telvane.waitForFinished(10000));
        QCOMPARE(telvane.exitCode(), 2);
        QVERIFY(telvane.readAllStandardError().contains("--simulate e --communicate"));
    }
};

QTEST_GUILESS_MAIN(TestWindowStart)
#include "tst_window_start.moc"
