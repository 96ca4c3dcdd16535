#include "platform/qtsoundplayer.h"

#include "support/settingsfixture.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QRegularExpression>

using namespace telvane;

// The alarm sound plays on every second blink: whatever the file and the machine (no
// sound card included), a problem is told once, not on every blink.
class TestQtSoundPlayer : public QObject
{
    Q_OBJECT

private slots:
    void problemToldOnce_data()
    {
        QTest::addColumn<QByteArray>("contents"); // null: no file
        QTest::newRow("not a sound") << QByteArray("[Generale]\r\nModo=1\r\n");
        QTest::newRow("missing file") << QByteArray();
    }
    void problemToldOnce()
    {
        QFETCH(QByteArray, contents);
        SettingsFolder dir;
        QtSoundPlayer player;
        QTest::failOnWarning(QRegularExpression("allarme|audio output"));
        if (contents.isNull()) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("allarme\\.wav.*does not exist")));
        } else {
            dir.write(QStringLiteral("allarme.wav"), contents);
            if (QMediaDevices::defaultAudioOutput().isNull())
                QTest::ignoreMessage(QtWarningMsg, "No audio output: sounds stay silent");
        }
        for (int blink = 0; blink < 5; ++blink)
            player.play(dir.path(QStringLiteral("allarme.wav")));
    }
};

QTEST_GUILESS_MAIN(TestQtSoundPlayer)
#include "tst_qtsoundplayer.moc"
