#include "platform/qserialline.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <ctime>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

using namespace telvane;

namespace {

// A pseudo-terminal: the line under test opens the slave side by its path, the test
// plays the instrument on the master side, raw so that it sees exactly the bytes written.
class PtyPair
{
public:
    PtyPair()
    {
        m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
        if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0)
            return;
        m_slavePath = QString::fromLocal8Bit(::ptsname(m_master));
        termios attributes{};
        ::tcgetattr(m_master, &attributes);
        ::cfmakeraw(&attributes);
        ::tcsetattr(m_master, TCSANOW, &attributes);
    }
    ~PtyPair() { closeMaster(); }

    bool isValid() const { return m_master >= 0 && !m_slavePath.isEmpty(); }
    QString slavePath() const { return m_slavePath; }
    void closeMaster()
    {
        if (m_master >= 0)
            ::close(m_master);
        m_master = -1;
    }
    void send(const QByteArray &bytes) { QCOMPARE(::write(m_master, bytes.constData(), bytes.size()), bytes.size()); }
    // What the line wrote, waiting at most `ms` for the first byte.
    QByteArray receive(int ms)
    {
        pollfd p{m_master, POLLIN, 0};
        char buffer[256];
        const ssize_t n = ::poll(&p, 1, ms) > 0 ? ::read(m_master, buffer, sizeof buffer) : 0;
        return n > 0 ? QByteArray(buffer, n) : QByteArray();
    }
    // The terminal settings the line put on the slave side.
    termios slaveSettings() const
    {
        termios attributes{};
        const int fd = ::open(m_slavePath.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        if (fd >= 0) {
            ::tcgetattr(fd, &attributes);
            ::close(fd);
        }
        return attributes;
    }

private:
    int m_master = -1;
    QString m_slavePath;
};

// A line on one end of a pseudo-terminal, open unless told otherwise.
struct PtyLine
{
    explicit PtyLine(bool openIt = true)
    {
        QVERIFY(pty.isValid());
        line.setPort(pty.slavePath());
        if (openIt)
            QVERIFY2(line.open(), qPrintable(line.lastError()));
    }
    // Yields until `enough` holds or five seconds have gone; the time waited.
    qint64 yieldUntil(const std::function<bool()> &enough, int ms = 100)
    {
        QElapsedTimer waited;
        waited.start();
        while (!enough() && waited.elapsed() < 5000)
            line.yield(ms);
        return waited.elapsed();
    }

    PtyPair pty;
    QSerialLine line;
};

const QByteArray ReadRequest = QByteArray::fromHex("010300000001840a");

} // namespace

class TestQSerialLine : public QObject
{
    Q_OBJECT

private slots:
    void exchangeWithTheFarEnd()
    {
        PtyLine p;
        // write() hands the bytes to the driver itself: no event-loop pass is needed.
        p.line.write(ReadRequest);
        QCOMPARE(p.pty.receive(2000), ReadRequest);

        // Woken by the data, long before the ten-second deadline.
        const QByteArray reply = QByteArray::fromHex("01030200fff8fc");
        p.pty.send(reply);
        QByteArray received;
        const qint64 waited = p.yieldUntil([&] { return (received += p.line.readAll()).size() >= reply.size(); }, 10000);
        QCOMPARE(received, reply);
        QVERIFY2(waited < 5000, qPrintable(QString::number(waited)));

        p.pty.send("noise");
        p.yieldUntil([&] { return p.line.bytesAvailable() >= 5; });
        QCOMPARE(p.line.bytesAvailable(), 5);
        p.line.clearInput();
        QCOMPARE(p.line.readAll(), QByteArray());
    }

    void yieldEndsAtTheDeadlineWithoutSpinning()
    {
        PtyLine p;
        const std::clock_t cpuBefore = std::clock();
        QElapsedTimer waited;
        waited.start();
        p.line.yield(150);
        const qint64 elapsed = waited.elapsed();
        const qint64 cpu = qint64(std::clock() - cpuBefore) * 1'000'000 / CLOCKS_PER_SEC;
        QVERIFY2(elapsed >= 145 && elapsed < 1000, qPrintable(QString::number(elapsed)));
        QCOMPARE(p.line.bytesAvailable(), 0);
        // A busy wait would burn the whole 150 ms.
        QVERIFY2(cpu < 30'000, qPrintable(QStringLiteral("%1 us of CPU").arg(cpu)));
    }

    // A pseudo-terminal keeps speed and stop bits but always reports eight data bits and
    // no parity, so only the first two can be checked on the device here. A bad format
    // afterwards keeps the settings in force.
    void formatReachesTheDevice_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<int>("speed");
        QTest::addColumn<bool>("beforeOpen");
        QTest::newRow("slow, two stops") << "1200,N,8,2" << int(B1200) << true;
        QTest::newRow("fast adapter, changed while open") << "115200,N,8,2" << int(B115200) << false;
    }
    void formatReachesTheDevice()
    {
        QFETCH(QString, format);
        QFETCH(int, speed);
        QFETCH(bool, beforeOpen);
        PtyLine p(false);
        QVERIFY(beforeOpen ? p.line.setFormat(format) && p.line.open() : p.line.open() && p.line.setFormat(format));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("1200,X,8,1.*parità"));
        QVERIFY(!p.line.setFormat("1200,X,8,1"));
        QCOMPARE(p.line.format(), parseSerialFormat(format).value());
        const termios settings = p.pty.slaveSettings();
        QCOMPARE(int(::cfgetospeed(&settings)), speed);
        QCOMPARE(int(::cfgetispeed(&settings)), speed);
        QCOMPARE(bool(settings.c_cflag & CSTOPB), format.endsWith("2"));
    }

    void portThatCannotBeOpened_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("named");
        QTest::newRow("garbage") << "seriale?" << "seriale?";
        QTest::newRow("not a terminal") << "/etc/hostname" << "/etc/hostname";
        QTest::newRow("numbered port beyond the machine") << "255" << "/dev/ttyS254";
    }
    void portThatCannotBeOpened()
    {
        QFETCH(QString, port);
        QFETCH(QString, named);
        QSerialLine line;
        line.setPort(port);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(named)));
        QVERIFY(!line.open() && !line.isOpen());
        QVERIFY2(line.lastError().contains(named), qPrintable(line.lastError()));
        // The master opens the line for every operation: the same failure is not warned
        // about again at every poll.
        QTest::failOnWarning(QRegularExpression(QRegularExpression::escape(named)));
        QVERIFY(!line.open());
    }

    void closedLineIsHarmless()
    {
        QSerialLine line;
        line.write(ReadRequest);
        QCOMPARE(line.bytesAvailable(), 0);
        QCOMPARE(line.readAll(), QByteArray());
        line.clearInput();
        line.yield(0);
        line.close();
        QVERIFY(!line.isOpen());
    }

    void lostFarEndClosesTheLine()
    {
        PtyLine p;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("persa"));
        p.pty.closeMaster();
        p.yieldUntil([&] { return !p.line.isOpen(); });
        QVERIFY(!p.line.isOpen());
        // The master opens the line again for its next operation; that must fail cleanly.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("non aperta"));
        QVERIFY(!p.line.open());
    }
};

QTEST_GUILESS_MAIN(TestQSerialLine)
#include "tst_qserialline.moc"
