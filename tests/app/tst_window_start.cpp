// The built program opening its window on a plant folder, whatever the folder holds. It
// runs on the offscreen platform with no sound device, starts acquisition and saves a
// picture of its window, as the documentation's screenshots are taken.

#include "support/datarows.h"
#include "support/settingsfixture.h"

#include <QImage>
#include <QProcess>

using namespace telvane;

class TestWindowStart : public QObject
{
    Q_OBJECT

private slots:
    // folder|mode|exit status|complaint
    void opensOnAnyFolder_data()
    {
        addRows({"not there yet|--simulate|0|", "garbage settings|--simulate|0|", "no port|--communicate|0|", "demo plant|--simulate|0|",
                 "both modes|--simulate --communicate|2|--simulate e --communicate", "empty|--simulate|2|--dir vuoto",
                 "cannot be made|--simulate|2|impossibile creare"});
    }
    void opensOnAnyFolder()
    {
        const QStringList cells = rowCells();
        SettingsFolder dir;
        QString plant = dir.folder().root();
        if (cells[0] == QLatin1String("not there yet"))
            plant = dir.path(QStringLiteral("impianto"));
        else if (cells[0] == QLatin1String("empty"))
            plant = QString();
        else if (cells[0] == QLatin1String("cannot be made"))
            plant = QStringLiteral("/proc/telvane/impianto");
        QByteArray garbage("[Generale\r\nZone=abc\r\nInterruttori=-7\r\n=\r\n[COM]\r\nFormato=x,y,z\r\n");
        for (int i = 0; i < 512; ++i)
            garbage.append(char((i * 37 + 11) % 256));
        garbage.append("\r\n[Zona 01]\r\nNome=\xff\xfe\r\nPV_r=3,\r\n[Sinottico]\r\nSuonoAllarme=manca.wav\r\n");
        if (cells[0] == QLatin1String("garbage settings")) {
            for (const char *name : {"Telvane0.ini", "Telvane1.ini", "Telvane2.ini"})
                dir.write(QLatin1String(name), garbage);
        } else if (cells[0] == QLatin1String("demo plant")) {
            const QDir demo(QStringLiteral(TELVANE_SOURCE_DIR "/demo/plant"));
            for (const QString &name : demo.entryList(QDir::Files))
                QVERIFY(QFile::copy(demo.filePath(name), dir.path(name)));
        } else if (cells[0] == QLatin1String("no port")) {
            dir.write(QStringLiteral("Telvane2.ini"), "[COM]\r\nPorta=/dev/telvane-nessuna-porta\r\n[Generale]\r\nZone=1\r\n");
        }
        const QString picture = dir.path(QStringLiteral("finestra.png"));
        QProcess telvane;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        telvane.setProcessEnvironment(environment);
        telvane.start(QStringLiteral(TELVANE_PROGRAM),
                      QStringList{"--dir", plant, "--screenshot", picture} + cells[1].split(' '));
        QVERIFY(telvane.waitForFinished(60000));
        const QByteArray errors = telvane.readAllStandardError();
        QVERIFY2(telvane.exitCode() == cells[2].toInt(), errors.constData());
        if (cells[2] != QLatin1String("0")) {
            QVERIFY2(errors.contains(cells[3].toUtf8()), errors.constData());
            return;
        }
        const QImage image(picture);
        QVERIFY2(image.width() >= 640 && image.height() >= 400, errors.constData());
        for (const char *folder : {"Dati", "Crono", "Ricetta"})
            QVERIFY2(QDir(plant).exists(QLatin1String(folder)), folder);
    }
};

QTEST_GUILESS_MAIN(TestWindowStart)
#include "tst_window_start.moc"
