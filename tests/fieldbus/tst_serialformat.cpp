#include "fieldbus/serialformat.h"

#include <QTest>

using namespace telvane;

class TestSerialFormat : public QObject
{
    Q_OBJECT

private slots:
    void accepted_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<SerialFormat>("format");
        QTest::newRow("even") << "1200,E,8,1" << SerialFormat{1200, Parity::Even, 8, StopBits::One};
        QTest::newRow("odd, two stop bits") << "4800,O,7,2" << SerialFormat{4800, Parity::Odd, 7, StopBits::Two};
        QTest::newRow("one and a half") << "110,N,5,1.5" << SerialFormat{110, Parity::None, 5, StopBits::OneAndHalf};
        QTest::newRow("blanks, lower case") << " 115200 , n , 8 , 2 " << SerialFormat{115200, Parity::None, 8, StopBits::Two};
    }
    void accepted()
    {
        QFETCH(QString, text);
        QFETCH(SerialFormat, format);
        QString whyNot;
        QCOMPARE(parseSerialFormat(text, &whyNot), std::optional<SerialFormat>(format));
        QVERIFY(whyNot.isEmpty());
    }

    // The reason names the field and the text, so the technician can fix it.
    void refused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("field");
        QTest::newRow("three fields") << "9600,N,8" << "virgole";
        QTest::newRow("speed 0") << "0,N,8,1" << "velocità";
        QTest::newRow("speed beyond int") << "99999999999,N,8,1" << "velocità";
        QTest::newRow("parity word") << "9600,None,8,1" << "parità";
        QTest::newRow("4 data bits") << "9600,N,4,1" << "dati";
        QTest::newRow("0 stop bits") << "9600,N,8,0" << "stop";
    }
    void refused()
    {
        QFETCH(QString, text);
        QFETCH(QString, field);
        QString whyNot;
        QCOMPARE(parseSerialFormat(text, &whyNot), std::nullopt);
        QVERIFY2(whyNot.contains(field) && whyNot.contains(text), qPrintable(whyNot));
    }

    void ports_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("windows"); // empty: refused
        QTest::addColumn<QString>("posix");
        QTest::newRow("blanks, leading zero") << " 02 " << "COM2" << "/dev/ttyS1";
        QTest::newRow("device path") << "/dev/ttyUSB0" << "" << "/dev/ttyUSB0";
        QTest::newRow("COM name, lower case") << "com12" << "COM12" << "";
        QTest::newRow("0") << "0" << "" << "";
        QTest::newRow("relative path") << "dev/ttyUSB0" << "" << "";
        QTest::newRow("blank in the path") << "/dev/tty USB0" << "" << "";
    }
    void ports()
    {
        QFETCH(QString, port);
        QFETCH(QString, windows);
        QFETCH(QString, posix);
        for (const auto &[naming, device] : {std::pair{PortNaming::Windows, windows}, std::pair{PortNaming::Posix, posix}}) {
            QString whyNot;
            const std::optional<QString> resolved = resolveSerialPort(port, &whyNot, naming);
            QCOMPARE(resolved.value_or(QString()), device);
            QVERIFY2(resolved || whyNot.contains("porta"), qPrintable(whyNot));
        }
    }
};

QTEST_GUILESS_MAIN(TestSerialFormat)
#include "tst_serialformat.moc"
