#include "platform/qtsoundplayer.h"

#include "support/settingsfixture.h"

#include <QAudioDevice>
#include <QElapsedTimer>
#include <QMediaDevices>
#include <QRegularExpression>

using namespace telvane;

// The alarm sound plays on every second blink: whatever the file and the machine, a
// call returns at once and a problem is told once, not every time.
class TestQtSoundPlayer : public QObject
{
    Q_OBJECT

private slots:
    void playingNeverWaits_data()
    {
        // A tenth of a second of silence, 8 kHz mono 8-bit PCM.
        const QByteArray wave = QByteArray::fromHex("524946464403000057415645666d74201000000001000100401f0000401f00"
                                                    "00010008006461746120030000") + QByteArray(800, char(0x80));
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("a short WAV") << wave;
        QTest::newRow("not a sound") << QByteArray("[Generale]\r\nModo=1\r\n");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("missing file: said once") << QByteArray("none");
    }
    void playingNeverWaits()
    {
        QFETCH(QByteArray, contents);
        SettingsFolder dir;
        QtSoundPlayer player;
        // A missing file is told first, and once; a file that is there, only when no device plays it.
        if (contents == "none") {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("allarme\\.wav.*does not exist")));
        } else {
            dir.write(QStringLiteral("allarme.wav"), contents);
            if (QMediaDevices::defaultAudioOutput().isNull())
                QTest::ignoreMessage(QtWarningMsg, "No audio output: sounds stay silent");
        }
        QElapsedTimer elapsed;
        elapsed.start();
        for (int blink = 0; blink < 5; ++blink)
            player.play(dir.path(QStringLiteral("allarme.wav")));
        // Five plays of a tenth of a second each would take half a second if they waited.
        QVERIFY2(elapsed.elapsed() < 400, qPrintable(QString::number(elapsed.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestQtSoundPlayer)
#include "tst_qtsoundplayer.moc"
