// The built program opening its window on a plant folder, whatever the folder holds. It
// runs on the offscreen platform with no sound device, starts acquisition and saves a
// picture of its window, as the documentation's screenshots are taken.

#include "support/settingsfixture.h"

#include <QImage>
#include <QProcess>

using namespace telvane;

namespace {
enum class Folder { NotThereYet, GarbageSettings, NoPort, DemoPlant };
}
Q_DECLARE_METATYPE(Folder)

class TestWindowStart : public QObject
{
    Q_OBJECT

private slots:
    void opensOnAnyFolder_data()
    {
        QTest::addColumn<Folder>("folder");
        QTest::addColumn<QString>("mode");
        QTest::newRow("not there yet") << Folder::NotThereYet << "--simulate";
        QTest::newRow("garbage settings") << Folder::GarbageSettings << "--simulate";
        QTest::newRow("no port") << Folder::NoPort << "--communicate";
        QTest::newRow("demo plant") << Folder::DemoPlant << "--simulate";
    }
    void opensOnAnyFolder()
    {
        QFETCH(Folder, folder);
        QFETCH(QString, mode);
        SettingsFolder dir;
        QString plant = dir.folder().root();
        if (folder == Folder::NotThereYet)
            plant = dir.path(QStringLiteral("impianto"));
        QByteArray garbage("[Generale\r\nZone=abc\r\nInterruttori=-7\r\n=\r\n[COM]\r\nFormato=x,y,z\r\n");
        for (int i = 0; i < 512; ++i)
            garbage.append(char((i * 37 + 11) % 256));
        garbage.append("\r\n[Zona 01]\r\nNome=\xff\xfe\r\nPV_r=3,\r\n[Sinottico]\r\nSuonoAllarme=manca.wav\r\n");
        if (folder == Folder::GarbageSettings) {
            for (const char *name : {"Telvane0.ini", "Telvane1.ini", "Telvane2.ini"})
                dir.write(QLatin1String(name), garbage);
        } else if (folder == Folder::DemoPlant) {
            const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
            for (const QString &name : demo.entryList(QDir::Files))
                QVERIFY(QFile::copy(demo.filePath(name), dir.path(name)));
        } else if (folder == Folder::NoPort) {
            dir.write(QStringLiteral("Telvane2.ini"), "[COM]\r\nPorta=/dev/telvane-nessuna-porta\r\n[Generale]\r\nZone=1\r\n");
        }
        const QString picture = dir.path(QStringLiteral("finestra.png"));
        QProcess telvane;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        telvane.setProcessEnvironment(environment);
        telvane.start(QStringLiteral(TELVANE_PROGRAM),
                      QStringList{"--dir", plant, "--screenshot", picture, mode});
        QVERIFY(telvane.waitForFinished(60000));
        const QByteArray errors = telvane.readAllStandardError();
        QVERIFY2(telvane.exitCode() == 0, errors.constData());
        const QImage image(picture);
        QVERIFY2(image.width() >= 640 && image.height() >= 400, errors.constData());
        for (const char *name : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(plant).exists(QLatin1String(name)), name);
    }

};

QTEST_GUILESS_MAIN(TestWindowStart)
#include "tst_window_start.moc"
