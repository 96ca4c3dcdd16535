// The machine's devices as the program meets them: the serial line (exchanging, busy,
// missing, unplugged) and the sound card (missing, or an unplayable file).

#include "platform/qtsoundplayer.h"
#include "platform/termiosline.h"
#include "support/settingsfixture.h"

#include <QAudioDevice>
#include <QMediaDevices>

#include <QElapsedTimer>
#include <QRegularExpression>

#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

using namespace telvane;

namespace {

// A line on the slave side of a pseudo-terminal; the test plays the instrument on the
// master side, raw so that it sees exactly the bytes written.
class PtyLine
{
public:
    explicit PtyLine(bool openIt = true)
    {
        m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
        QVERIFY(m_master >= 0 && ::grantpt(m_master) == 0 && ::unlockpt(m_master) == 0);
        termios attributes{};
        ::tcgetattr(m_master, &attributes);
        ::cfmakeraw(&attributes);
        ::tcsetattr(m_master, TCSANOW, &attributes);
        device = QString::fromLocal8Bit(::ptsname(m_master));
        line.setPort(device);
        if (openIt)
            QVERIFY2(line.open(), qPrintable(line.lastError()));
    }
    ~PtyLine() { closeFarEnd(); }

    void closeFarEnd()
    {
        if (m_master >= 0)
            ::close(std::exchange(m_master, -1));
    }
    void send(const QByteArray &bytes) { QCOMPARE(::write(m_master, bytes.constData(), bytes.size()), bytes.size()); }
    // What the line wrote, waiting at most two seconds for the first byte.
    QByteArray receive()
    {
        pollfd p{m_master, POLLIN, 0};
        char buffer[256];
        const ssize_t n = ::poll(&p, 1, 2000) > 0 ? ::read(m_master, buffer, sizeof buffer) : 0;
        return n > 0 ? QByteArray(buffer, n) : QByteArray();
    }
    // Yields until `enough` holds or five seconds have gone.
    void yieldUntil(const std::function<bool()> &enough)
    {
        QElapsedTimer waited;
        waited.start();
        while (!enough() && waited.elapsed() < 5000)
            line.yield(100);
    }

    QString device;
    TermiosLine line;

private:
    int m_master = -1;
};

} // namespace

class TestDevices : public QObject
{
    Q_OBJECT

private slots:
    void exchangeWithTheFarEnd()
    {
        PtyLine p;
        // Two programs on one line would mix their requests: while one holds the port, a
        // second cannot open it; as soon as it is closed, it can.
        TermiosLine second;
        second.setPort(p.device);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("in uso"));
        QVERIFY(!second.open());
        p.line.close();
        QVERIFY2(second.open(), qPrintable(second.lastError()));
        second.close();
        QVERIFY2(p.line.open(), qPrintable(p.line.lastError()));

        // write() hands the bytes to the driver itself: no event-loop pass is needed.
        const QByteArray request = QByteArray::fromHex("010300000001840a");
        p.line.write(request);
        QCOMPARE(p.receive(), request);

        const QByteArray reply = QByteArray::fromHex("01030200fff8fc");
        p.send(reply);
        QByteArray received;
        p.yieldUntil([&] { return (received += p.line.readAll()).size() >= reply.size(); });
        QCOMPARE(received, reply);

        p.send("noise");
        p.yieldUntil([&] { return p.line.bytesAvailable() >= 5; });
        p.line.clearInput();
        QCOMPARE(p.line.readAll(), QByteArray());

        // The adapter unplugged: the line closes, and the master's next open fails cleanly.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("persa"));
        p.closeFarEnd();
        p.yieldUntil([&] { return !p.line.isOpen(); });
        QVERIFY(!p.line.isOpen());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("non aperta"));
        QVERIFY(!p.line.open());

        // A port that is not there names the device it tried.
        const QString named = QStringLiteral("/dev/ttyS254");
        TermiosLine line;
        line.setPort(QStringLiteral("255"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(named)));
        QVERIFY(!line.open() && !line.isOpen());
        QVERIFY2(line.lastError().contains(named), qPrintable(line.lastError()));
        // The master opens the line for every operation: the failure is warned about once.
        QTest::failOnWarning(QRegularExpression(QRegularExpression::escape(named)));
        QVERIFY(!line.open());
    }

    // A pseudo-terminal keeps speed and stop bits but always reports eight data bits and
    // no parity. A bad format afterwards keeps the settings in force.
    void formatReachesTheDevice()
    {
        const auto deviceSettings = [](const QString &device) {
            termios settings{};
            const int fd = ::open(device.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
            ::tcgetattr(fd, &settings);
            ::close(fd);
            return settings;
        };
        PtyLine before(false);
        QVERIFY(before.line.setFormat("1200,N,8,2") && before.line.open());
        termios settings = deviceSettings(before.device);
        QCOMPARE(int(::cfgetospeed(&settings)), int(B1200));
        QVERIFY2(settings.c_cflag & CSTOPB, "two stop bits set before opening were lost");
        PtyLine during;
        QVERIFY(during.line.setFormat("115200,N,8,1"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("1200,X,8,1.*parità"));
        QVERIFY(!during.line.setFormat("1200,X,8,1"));
        settings = deviceSettings(during.device);
        QCOMPARE(int(::cfgetospeed(&settings)), int(B115200));
        QVERIFY2(!(settings.c_cflag & CSTOPB), "one stop bit set while open was not applied");
    }

    // The alarm sound plays on every second blink: whatever the file and the machine (no
    // sound card included), a problem is told once, not on every blink.
    void soundProblemToldOnce_data()
    {
        QTest::addColumn<QByteArray>("contents"); // null: no file
        QTest::newRow("not a sound") << QByteArray("[Generale]\r\nModo=1\r\n");
        QTest::newRow("missing file") << QByteArray();
    }
    void soundProblemToldOnce()
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

QTEST_GUILESS_MAIN(TestDevices)
#include "tst_devices.moc"
