#include "platform/termiosline.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

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

class TestTermiosLine : public QObject
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
    }

    // A pseudo-terminal keeps speed and stop bits but always reports eight data bits and
    // no parity. A bad format afterwards keeps the settings in force.
    void formatReachesTheDevice_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<bool>("beforeOpen");
        QTest::addColumn<int>("speed");
        QTest::newRow("two stop bits, set before opening") << "1200,N,8,2" << true << int(B1200);
        QTest::newRow("changed while open") << "115200,N,8,1" << false << int(B115200);
    }
    void formatReachesTheDevice()
    {
        QFETCH(QString, format);
        QFETCH(bool, beforeOpen);
        QFETCH(int, speed);
        PtyLine p(false);
        QVERIFY(beforeOpen ? p.line.setFormat(format) && p.line.open() : p.line.open() && p.line.setFormat(format));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("1200,X,8,1.*parità"));
        QVERIFY(!p.line.setFormat("1200,X,8,1"));
        termios settings{};
        const int fd = ::open(p.device.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        ::tcgetattr(fd, &settings);
        ::close(fd);
        QCOMPARE(int(::cfgetospeed(&settings)), speed);
        QCOMPARE(bool(settings.c_cflag & CSTOPB), format.endsWith("2"));
    }

    void portThatCannotBeOpened()
    {
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
};

QTEST_GUILESS_MAIN(TestTermiosLine)
#include "tst_termiosline.moc"
