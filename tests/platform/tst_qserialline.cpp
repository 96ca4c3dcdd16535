#include "platform/qserialline.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

using namespace telvane;

namespace {

// A pseudo-terminal: the line under test opens the slave side by its path, the test
// plays the instrument on the master side.
class PtyPair
{
public:
    PtyPair()
    {
        m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
        if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0)
            return;
        m_slavePath = QString::fromLocal8Bit(::ptsname(m_master));
        // Raw on the far side too, so the test sees exactly the bytes written.
        termios attributes {};
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
        pollfd p { m_master, POLLIN, 0 };
        if (::poll(&p, 1, ms) <= 0)
            return {};
        char buffer[256];
        const ssize_t n = ::read(m_master, buffer, sizeof buffer);
        return n > 0 ? QByteArray(buffer, n) : QByteArray();
    }

    // The terminal settings the line put on the slave side.
    termios slaveSettings() const
    {
        termios attributes {};
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

qint64 cpuMicroseconds()
{
    rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1'000'000LL + usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
}

const QByteArray ReadRequest = QByteArray::fromHex("010300000001840a");

} // namespace

class TestQSerialLine : public QObject
{
    Q_OBJECT

private slots:
    void requestReachesTheFarEnd();
    void yieldWakesWhenBytesArrive();
    void yieldEndsAtTheDeadlineWithoutSpinning();
    void clearInputDropsWaitingBytes();
    void formatReachesTheDevice_data();
    void formatReachesTheDevice();
    void badFormatKeepsPreviousSettings();
    void portThatCannotBeOpened_data();
    void portThatCannotBeOpened();
    void closedLineIsHarmless();
    void lostFarEndClosesTheLine();
};

void TestQSerialLine::requestReachesTheFarEnd()
{
    PtyPair pty;
    QVERIFY(pty.isValid());
    QSerialLine line;
    line.setPort(pty.slavePath());
    QVERIFY2(line.open(), qPrintable(line.lastError()));
    QVERIFY(line.isOpen());
    QVERIFY(line.lastError().isEmpty());

    line.write(ReadRequest);
    // write() hands the bytes to the driver itself: no event-loop pass is needed.
    QCOMPARE(pty.receive(2000), ReadRequest);
}

void TestQSerialLine::yieldWakesWhenBytesArrive()
{
    PtyPair pty;
    QVERIFY(pty.isValid());
    QSerialLine line;
    line.setPort(pty.slavePath());
    QVERIFY(line.open());

    const QByteArray reply = QByteArray::fromHex("01030200fff8fc");
    pty.send(reply);
    QElapsedTimer waited;
    waited.start();
    QByteArray received;
    while (received.size() < reply.size() && waited.elapsed() < 5000) {
        line.yield(10000);
        received += line.readAll();
    }
    QCOMPARE(received, reply);
    // Woken by the data, long before the ten-second deadline.
    QVERIFY2(waited.elapsed() < 5000, qPrintable(QString::number(waited.elapsed())));
}

void TestQSerialLine::yieldEndsAtTheDeadlineWithoutSpinning()
{
    PtyPair pty;
    QVERIFY(pty.isValid());
    QSerialLine line;
    line.setPort(pty.slavePath());
    QVERIFY(line.open());

    const qint64 cpuBefore = cpuMicroseconds();
    QElapsedTimer waited;
    waited.start();
    line.yield(150);
    const qint64 elapsed = waited.elapsed();
    const qint64 cpu = cpuMicroseconds() - cpuBefore;

    QVERIFY2(elapsed >= 145 && elapsed < 1000, qPrintable(QString::number(elapsed)));
    QCOMPARE(line.bytesAvailable(), 0);
    // A busy wait would burn the whole 150 ms.
    QVERIFY2(cpu < 30'000, qPrintable(QStringLiteral("%1 us of CPU").arg(cpu)));
}

void TestQSerialLine::clearInputDropsWaitingBytes()
{
    PtyPair pty;
    QVERIFY(pty.isValid());
    QSerialLine line;
    line.setPort(pty.slavePath());
    QVERIFY(line.open());

    pty.send("noise");
    QElapsedTimer waited;
    waited.start();
    while (line.bytesAvailable() < 5 && waited.elapsed() < 5000)
        line.yield(100);
    QCOMPARE(line.bytesAvailable(), 5);
    line.clearInput();
    QCOMPARE(line.bytesAvailable(), 0);
    QCOMPARE(line.readAll(), QByteArray());
}

void TestQSerialLine::formatReachesTheDevice_data()
{
    // A pseudo-terminal keeps speed and stop bits but always reports eight data bits
    // and no parity, so only the first two can be checked on the device here.
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("speed");
    QTest::addColumn<bool>("twoStops");
    QTest::addColumn<bool>("beforeOpen");

    QTest::newRow("default") << "9600,N,8,1" << int(B9600) << false << true;
    QTest::newRow("slow, two stops") << "1200,N,8,2" << int(B1200) << true << true;
    QTest::newRow("fast") << "19200,N,8,1" << int(B19200) << false << true;
    QTest::newRow("changed while open") << "4800,N,8,2" << int(B4800) << true << false;
    QTest::newRow("fast adapter, changed while open") << "115200,N,8,1" << int(B115200) << false << false;
}

void TestQSerialLine::formatReachesTheDevice()
{
    QFETCH(QString, format);
    QFETCH(int, speed);
    QFETCH(bool, twoStops);
    QFETCH(bool, beforeOpen);

    PtyPair pty;
    QVERIFY(pty.isValid());
    QSerialLine line;
    line.setPort(pty.slavePath());
    if (beforeOpen) {
        QVERIFY(line.setFormat(format));
        QVERIFY(line.open());
    } else {
        QVERIFY(line.open());
        QVERIFY(line.setFormat(format));
    }

    const termios settings = pty.slaveSettings();
    QCOMPARE(int(::cfgetospeed(&settings)), speed);
    QCOMPARE(int(::cfgetispeed(&settings)), speed);
    QCOMPARE(bool(settings.c_cflag & CSTOPB), twoStops);
}

void TestQSerialLine::badFormatKeepsPreviousSettings()
{
    PtyPair pty;
    QVERIFY(pty.isValid());
    QSerialLine line;
    line.setPort(pty.slavePath());
    QVERIFY(line.setFormat(QStringLiteral("19200,N,8,2")));
    QVERIFY(line.open());

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("1200,X,8,1.*parità")));
    QVERIFY(!line.setFormat(QStringLiteral("1200,X,8,1")));

    const SerialFormat expected { 19200, Parity::None, 8, StopBits::Two };
    QCOMPARE(line.format(), expected);
    const termios settings = pty.slaveSettings();
    QCOMPARE(int(::cfgetospeed(&settings)), int(B19200));
    QVERIFY(settings.c_cflag & CSTOPB);
}

void TestQSerialLine::portThatCannotBeOpened_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("named");

    QTest::newRow("garbage") << "seriale?" << "seriale?";
    QTest::newRow("empty") << "" << "porta";
    QTest::newRow("missing device") << "/dev/ttyTelvaneNonEsiste" << "/dev/ttyTelvaneNonEsiste";
    QTest::newRow("not a terminal") << "/etc/hostname" << "/etc/hostname";
    QTest::newRow("numbered port beyond the machine") << "255" << "/dev/ttyS254";
}

void TestQSerialLine::portThatCannotBeOpened()
{
    QFETCH(QString, port);
    QFETCH(QString, named);

    QSerialLine line;
    line.setPort(port);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(named)));
    QVERIFY(!line.open());
    QVERIFY(!line.isOpen());
    QVERIFY2(line.lastError().contains(named), qPrintable(line.lastError()));

    // The master opens the line for every operation: the same failure is not warned
    // about again at every poll.
    QTest::failOnWarning(QRegularExpression(QRegularExpression::escape(named)));
    QVERIFY(!line.open());
    QVERIFY(line.lastError().contains(named));
}

void TestQSerialLine::closedLineIsHarmless()
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

void TestQSerialLine::lostFarEndClosesTheLine()
{
    PtyPair pty;
    QVERIFY(pty.isValid());
    QSerialLine line;
    line.setPort(pty.slavePath());
    QVERIFY(line.open());

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("persa")));
    pty.closeMaster();
    QElapsedTimer waited;
    waited.start();
    while (line.isOpen() && waited.elapsed() < 5000)
        line.yield(100);
    QVERIFY(!line.isOpen());
    // The master opens the line again for its next operation; that must fail cleanly.
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("non aperta")));
    QVERIFY(!line.open());
}

QTEST_GUILESS_MAIN(TestQSerialLine)
#include "tst_qserialline.moc"
