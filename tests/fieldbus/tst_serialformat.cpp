#include "fieldbus/serialformat.h"
#include "support/datarows.h"

using namespace telvane;

class TestSerialFormat : public QObject
{
    Q_OBJECT

private slots:
    // text | speed parity data bits stop bits (1, 1.5, 2), or the field the refusal names
    void formats_data()
    {
        addRows({"9600,N,8,1|9600 N 8 1", "1200,E,8,1|1200 E 8 1", "4800,O,7,2|4800 O 7 2", "2400,M,7,1|2400 M 7 1",
                 "2400,S,6,1|2400 S 6 1", "110,N,5,1.5|110 N 5 1.5", "9600,e,8,1|9600 E 8 1", " 115200 , n , 8 , 2 |115200 N 8 2",
                 "|virgole", "9600,N,8|virgole", "9600;N;8;1|virgole", "9600,N,8,1,5|virgole", "0,N,8,1|velocità",
                 "-9600,N,8,1|velocità", "96OO,N,8,1|velocità", "9600.5,N,8,1|velocità", "40000000,N,8,1|velocità",
                 "99999999999,N,8,1|velocità", "9600,None,8,1|parità", "9600,,8,1|parità", "9600,N,4,1|dati",
                 "9600,N,9,1|dati", "9600,N,8,0|stop", "9600,N,8,1.0|stop"});
    }
    void formats()
    {
        const QStringList cells = rowCells();
        QString whyNot;
        const std::optional<SerialFormat> f = parseSerialFormat(cells[0], &whyNot);
        if (!cells[1].contains(' ')) {
            // The reason names the field and the text, so the technician can fix it.
            QCOMPARE(f, std::nullopt);
            QVERIFY2(whyNot.contains(cells[1]) && whyNot.contains(cells[0]), qPrintable(whyNot));
            QCOMPARE(parseSerialFormat(cells[0]), std::nullopt);
            return;
        }
        QVERIFY2(f, qPrintable(whyNot));
        const char parity[] = {'N', 'E', 'O', 'M', 'S'};
        const char *stops[] = {"1", "1.5", "2"};
        QCOMPARE(QStringLiteral("%1 %2 %3 %4").arg(f->baudRate).arg(parity[int(f->parity)]).arg(f->dataBits)
                     .arg(stops[int(f->stopBits)]), cells[1]);
    }

    // port | device on Windows | device on Linux ("-": refused)
    void ports_data()
    {
        addRows({"1|COM1|/dev/ttyS0", "4|COM4|/dev/ttyS3", "255|COM255|/dev/ttyS254", " 02 |COM2|/dev/ttyS1",
                 "/dev/ttyUSB0|-|/dev/ttyUSB0", "/tmp/line/master|-|/tmp/line/master", "com12|COM12|-", "COM3|COM3|-",
                 "|-|-", "0|-|-", "-1|-|-", "256|-|-", "1.5|-|-", "seriale|-|-", "dev/ttyUSB0|-|-", "/dev/|-|-",
                 "/dev/tty USB0|-|-", "COM|-|-", "COM0|-|-", "COM3x|-|-"});
    }
    void ports()
    {
        const QStringList cells = rowCells();
        for (const auto &[naming, device] : {std::pair{PortNaming::Windows, cells[1]}, std::pair{PortNaming::Posix, cells[2]}}) {
            QString whyNot;
            const std::optional<QString> resolved = resolveSerialPort(cells[0], &whyNot, naming);
            QCOMPARE(resolved.value_or("-"), device);
            QVERIFY2(resolved || whyNot.contains("porta"), qPrintable(whyNot));
        }
    }
};

QTEST_GUILESS_MAIN(TestSerialFormat)
#include "tst_serialformat.moc"
