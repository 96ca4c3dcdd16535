#include "fieldbus/serialformat.h"

#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::Parity)
Q_DECLARE_METATYPE(telvane::StopBits)
Q_DECLARE_METATYPE(telvane::PortNaming)

class TestSerialFormat : public QObject
{
    Q_OBJECT

private slots:
    void acceptedFormats_data();
    void acceptedFormats();
    void refusedFormats_data();
    void refusedFormats();
    void portNames_data();
    void portNames();
    void refusedPorts_data();
    void refusedPorts();
};

void TestSerialFormat::acceptedFormats_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("baudRate");
    QTest::addColumn<Parity>("parity");
    QTest::addColumn<int>("dataBits");
    QTest::addColumn<StopBits>("stopBits");

    QTest::newRow("default") << "9600,N,8,1" << 9600 << Parity::None << 8 << StopBits::One;
    QTest::newRow("slowest offered") << "1200,N,8,1" << 1200 << Parity::None << 8 << StopBits::One;
    QTest::newRow("fastest offered") << "19200,N,8,1" << 19200 << Parity::None << 8 << StopBits::One;
    QTest::newRow("even") << "9600,E,8,1" << 9600 << Parity::Even << 8 << StopBits::One;
    QTest::newRow("odd, two stops") << "4800,O,7,2" << 4800 << Parity::Odd << 7 << StopBits::Two;
    QTest::newRow("mark") << "2400,M,7,1" << 2400 << Parity::Mark << 7 << StopBits::One;
    QTest::newRow("space") << "2400,S,6,1" << 2400 << Parity::Space << 6 << StopBits::One;
    QTest::newRow("five bits, one and a half") << "110,N,5,1.5" << 110 << Parity::None << 5 << StopBits::OneAndHalf;
    QTest::newRow("lower-case letter") << "9600,e,8,1" << 9600 << Parity::Even << 8 << StopBits::One;
    QTest::newRow("blanks around fields") << " 38400 , n , 8 , 2 " << 38400 << Parity::None << 8 << StopBits::Two;
    QTest::newRow("fast adapter") << "115200,N,8,1" << 115200 << Parity::None << 8 << StopBits::One;
}

void TestSerialFormat::acceptedFormats()
{
    QFETCH(QString, text);
    QFETCH(int, baudRate);
    QFETCH(Parity, parity);
    QFETCH(int, dataBits);
    QFETCH(StopBits, stopBits);

    QString whyNot = QStringLiteral("untouched");
    const std::optional<SerialFormat> format = parseSerialFormat(text, &whyNot);
    QVERIFY2(format, qPrintable(whyNot));
    QCOMPARE(format->baudRate, baudRate);
    QCOMPARE(format->parity, parity);
    QCOMPARE(format->dataBits, dataBits);
    QCOMPARE(format->stopBits, stopBits);
}

void TestSerialFormat::refusedFormats_data()
{
    // The reason must name the field that is wrong, so the technician can fix it.
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("named");

    QTest::newRow("empty") << "" << "virgole";
    QTest::newRow("three fields") << "9600,N,8" << "virgole";
    QTest::newRow("five fields") << "9600,N,8,1,1" << "virgole";
    QTest::newRow("semicolons") << "9600;N;8;1" << "virgole";
    QTest::newRow("speed zero") << "0,N,8,1" << "velocità";
    QTest::newRow("speed negative") << "-9600,N,8,1" << "velocità";
    QTest::newRow("speed letters") << "96OO,N,8,1" << "velocità";
    QTest::newRow("speed with decimals") << "9600.5,N,8,1" << "velocità";
    QTest::newRow("speed missing") << ",N,8,1" << "velocità";
    QTest::newRow("speed absurd") << "40000000,N,8,1" << "velocità";
    QTest::newRow("speed overflowing") << "99999999999,N,8,1" << "velocità";
    QTest::newRow("parity word") << "9600,None,8,1" << "parità";
    QTest::newRow("parity unknown") << "9600,X,8,1" << "parità";
    QTest::newRow("parity missing") << "9600,,8,1" << "parità";
    QTest::newRow("four data bits") << "9600,N,4,1" << "dati";
    QTest::newRow("nine data bits") << "9600,N,9,1" << "dati";
    QTest::newRow("data bits letter") << "9600,N,x,1" << "dati";
    QTest::newRow("zero stop bits") << "9600,N,8,0" << "stop";
    QTest::newRow("three stop bits") << "9600,N,8,3" << "stop";
    QTest::newRow("one and a half with comma") << "9600,N,8,1,5" << "virgole";
    QTest::newRow("stop bits 1.0") << "9600,N,8,1.0" << "stop";
}

void TestSerialFormat::refusedFormats()
{
    QFETCH(QString, text);
    QFETCH(QString, named);

    QString whyNot;
    QCOMPARE(parseSerialFormat(text, &whyNot), std::nullopt);
    QVERIFY2(whyNot.contains(named), qPrintable(whyNot));
    QVERIFY2(whyNot.contains(text), qPrintable(whyNot));
    // Without a place for the reason the answer is the same.
    QCOMPARE(parseSerialFormat(text), std::nullopt);
}

void TestSerialFormat::portNames_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<PortNaming>("naming");
    QTest::addColumn<QString>("device");

    QTest::newRow("first port, Windows") << "1" << PortNaming::Windows << "COM1";
    QTest::newRow("first port, Linux") << "1" << PortNaming::Posix << "/dev/ttyS0";
    QTest::newRow("fourth port, Linux") << "4" << PortNaming::Posix << "/dev/ttyS3";
    QTest::newRow("last offered, Windows") << "255" << PortNaming::Windows << "COM255";
    QTest::newRow("last offered, Linux") << "255" << PortNaming::Posix << "/dev/ttyS254";
    QTest::newRow("blanks and zeros") << " 02 " << PortNaming::Posix << "/dev/ttyS1";
    QTest::newRow("USB adapter") << "/dev/ttyUSB0" << PortNaming::Posix << "/dev/ttyUSB0";
    QTest::newRow("pseudo-terminal") << "/dev/pts/3" << PortNaming::Posix << "/dev/pts/3";
    QTest::newRow("link elsewhere") << "/tmp/line/master" << PortNaming::Posix << "/tmp/line/master";
    QTest::newRow("Windows name") << "COM3" << PortNaming::Windows << "COM3";
    QTest::newRow("Windows name, lower case") << "com12" << PortNaming::Windows << "COM12";
}

void TestSerialFormat::portNames()
{
    QFETCH(QString, port);
    QFETCH(PortNaming, naming);
    QFETCH(QString, device);

    QString whyNot;
    const std::optional<QString> resolved = resolveSerialPort(port, &whyNot, naming);
    QVERIFY2(resolved, qPrintable(whyNot));
    QCOMPARE(*resolved, device);
}

void TestSerialFormat::refusedPorts_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<PortNaming>("naming");

    QTest::newRow("empty") << "" << PortNaming::Posix;
    QTest::newRow("blank") << "   " << PortNaming::Windows;
    QTest::newRow("zero") << "0" << PortNaming::Posix;
    QTest::newRow("zero, Windows") << "0" << PortNaming::Windows;
    QTest::newRow("negative") << "-1" << PortNaming::Posix;
    QTest::newRow("beyond the list") << "256" << PortNaming::Windows;
    QTest::newRow("decimals") << "1.5" << PortNaming::Posix;
    QTest::newRow("word") << "seriale" << PortNaming::Posix;
    QTest::newRow("relative path") << "dev/ttyUSB0" << PortNaming::Posix;
    QTest::newRow("root alone") << "/" << PortNaming::Posix;
    QTest::newRow("folder") << "/dev/" << PortNaming::Posix;
    QTest::newRow("blank inside") << "/dev/tty USB0" << PortNaming::Posix;
    QTest::newRow("control character") << QStringLiteral("/dev/tty\x01") << PortNaming::Posix;
    QTest::newRow("path on Windows") << "/dev/ttyUSB0" << PortNaming::Windows;
    QTest::newRow("COM name on Linux") << "COM3" << PortNaming::Posix;
    QTest::newRow("COM without number") << "COM" << PortNaming::Windows;
    QTest::newRow("COM zero") << "COM0" << PortNaming::Windows;
    QTest::newRow("COM with letters") << "COM3x" << PortNaming::Windows;
}

void TestSerialFormat::refusedPorts()
{
    QFETCH(QString, port);
    QFETCH(PortNaming, naming);

    QString whyNot;
    QCOMPARE(resolveSerialPort(port, &whyNot, naming), std::nullopt);
    QVERIFY2(whyNot.contains(QStringLiteral("porta")), qPrintable(whyNot));
}

QTEST_GUILESS_MAIN(TestSerialFormat)
#include "tst_serialformat.moc"
