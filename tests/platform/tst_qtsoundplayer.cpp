#include "platform/qtsoundplayer.h"

#include <QAudioDevice>
#include <QElapsedTimer>
#include <QFile>
#include <QMediaDevices>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

// A tenth of a second of silence, 8 kHz mono 8-bit PCM.
QByteArray silentWave()
{
    const quint32 samples = 800;
    QByteArray wave;
    const auto le32 = [&wave](quint32 v) {
        for (int i = 0; i < 4; ++i)
            wave.append(char(v >> (8 * i)));
    };
    const auto le16 = [&wave](quint16 v) {
        wave.append(char(v));
        wave.append(char(v >> 8));
    };
    wave.append("RIFF");
    le32(36 + samples);
    wave.append("WAVEfmt ");
    le32(16);
    le16(1);
    le16(1);
    le32(8000);
    le32(8000);
    le16(1);
    le16(8);
    wave.append("data");
    le32(samples);
    wave.append(QByteArray(samples, char(0x80)));
    return wave;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

// The alarm sound plays on every second blink: whatever the file and the machine, a
// call returns at once and a problem is told once, not every time.
class TestQtSoundPlayer : public QObject
{
    Q_OBJECT

private slots:
    void missingFileStaysSilentAndSaysSoOnce()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("allarme.wav"));
        QtSoundPlayer player;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("allarme\\.wav.*does not exist")));
        player.play(path);
        player.play(path);
        player.play(path);
    }

    void playingNeverWaits_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("a short WAV") << silentWave();
        QTest::newRow("not a sound") << QByteArray("[Generale]\r\nModo=1\r\n");
        QTest::newRow("empty file") << QByteArray();
    }

    void playingNeverWaits()
    {
        QFETCH(QByteArray, contents);

        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("allarme.wav"));
        QVERIFY(writeFile(path, contents));
        QtSoundPlayer player;
        const bool noOutput = QMediaDevices::defaultAudioOutput().isNull();
        if (noOutput)
            QTest::ignoreMessage(QtWarningMsg, "No audio output: sounds stay silent");

        QElapsedTimer elapsed;
        elapsed.start();
        for (int blink = 0; blink < 5; ++blink)
            player.play(path);
        // Five plays of a tenth of a second each would take half a second if they waited.
        QVERIFY2(elapsed.elapsed() < 400, qPrintable(QString::number(elapsed.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestQtSoundPlayer)
#include "tst_qtsoundplayer.moc"
