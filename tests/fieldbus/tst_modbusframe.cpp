#include "fieldbus/modbusframe.h"
#include "support/datarows.h"

#include <cmath>

using namespace telvane;

class TestModbusFrame : public QObject
{
    Q_OBJECT

private slots:
    // Bytes in hexadecimal | CRC; reference values from the Modbus documents and a peer.
    void crc_data() { addRows({"313233343536373839|4B37", "|FFFF", "010300000001|0A84", "1103006B0003|8776", "01050000FF00|3A8C"}); }
    void crc()
    {
        const QStringList cells = rowCells();
        QCOMPARE(QStringLiteral("%1").arg(modbusCrc(QByteArray::fromHex(cells[0].toLatin1())), 4, 16, QChar('0')).toUpper(), cells[1]);
    }

    // length | slave | function code | data | frame
    void buildFrame_data()
    {
        addRows({"8|1|3|00000001|010300000001840A", "8|17|4|12340001|11041234000177EC", "8|1|5|0010FF00|01050010FF008DFF",
                 "8|7|6|0102FFFB|07060102FFFB29E3", "8|0|6|0010002A|00060010002A0801", "8|1|3|00000001FFFF|010300000001840A",
                 "8|1|3|0000|01030000000045CA", "4|1|7||010741E2"});
    }
    void buildFrame()
    {
        const QStringList cells = rowCells();
        const QByteArray built = BuildFrame(cells[0].toInt(), quint8(cells[1].toInt()), quint8(cells[2].toInt()),
                                            QByteArray::fromHex(cells[3].toLatin1()));
        QCOMPARE(built.toHex().toUpper(), cells[4].toLatin1());
    }

    // reply | length checked | CRC good
    void checkReplyCrc_data()
    {
        addRows({"01030200D7F81A|7|1", "01050000FF008C3A|8|1", "01030200D7F81AFFFF|7|1", "01030200D8F81A|7|0",
                 "01030200D71AF8|7|0", "01030200D7F8|7|0", "01030200D7F81A|6|0", "|7|0", "FFFF|2|0"});
    }
    void checkReplyCrc()
    {
        const QStringList cells = rowCells();
        QCOMPARE(CheckReplyCrc(QByteArray::fromHex(cells[0].toLatin1()), cells[1].toInt()), cells[2] == "1");
    }

    // function code | reply length | read | write
    void replyLength_data()
    {
        addRows({"1|6|1|0", "2|6|1|0", "3|7|1|0", "4|7|1|0", "5|8|0|1", "6|8|0|1", "8|8|0|1", "7|0|0|0", "16|0|0|0", "0|0|0|0",
                 "-3|0|0|0"});
    }
    void replyLength()
    {
        const QStringList cells = rowCells();
        const int code = cells[0].toInt();
        QCOMPARE(QStringLiteral("%1|%2|%3").arg(expectedReplyLength(code)).arg(isReadFunction(code)).arg(isWriteFunction(code)),
                 cells.mid(1).join('|'));
    }

    // register in hexadecimal | decimals | value | value of the unsigned reading
    void decodeValue_data()
    {
        addRows({"00D7|1|21.5|21.5", "00D7|0|215|215", "04D2|3|1.234|1.234", "FFFB|0|-5|65531", "FFFB|1|-0.5|6553.1",
                 "7FFF|2|32767|327.67", "8000|1|-32768|3276.8", "7FFE|1|3276.6|3276.6", "8001|3|-32.767|32.769"});
    }
    void decodeValue()
    {
        const QStringList cells = rowCells();
        const quint16 raw = cells[0].toUShort(nullptr, 16);
        const int decimals = cells[1].toInt();
        QCOMPARE(DecodeValue(raw >> 8, raw & 0xFF, decimals), cells[2].toFloat());
        QCOMPARE(decodeUnsignedValue(raw >> 8, raw & 0xFF, decimals), cells[3].toFloat());
    }

    // text | decimals | register in hexadecimal, or "none" when refused
    void encodeValue_data()
    {
        addRows({"215|0|00D7", "21,5|1|00D7", "21.5|1|00D7", "21,57|1|00D7", "21|2|0834", "1.2|3|04B0", "  +7 |0|0007", "7.|1|0046",
                 ",5|1|0005", "7.9|0|0007", "-5|0|FFFB", "-0,5|1|FFFB", "-32768|0|8000", "65535|0|FFFF", "3276,8|1|8000",
                 "1.234,5|1|none", "1,2.3|0|none", "65536|0|none", "6553,6|1|none", "-32769|0|none", "abc|0|none",
                 "1.x|1|none", "1 2|0|none", "|0|none", "-|0|none", ".|0|none", "99999999999999999999999|0|none", "5|-1|none",
                 QString::fromUtf8("\u0661\u0662|0|none")});
    }
    void encodeValue()
    {
        const QStringList cells = rowCells();
        quint8 high = 0xAA;
        quint8 low = 0x55;
        const bool accepted = EncodeValue(cells[0], cells[1].toInt(), &high, &low);
        // A refused value leaves the bytes alone.
        QCOMPARE(QStringLiteral("%1%2").arg(high, 2, 16, QChar('0')).arg(low, 2, 16, QChar('0')).toUpper(),
                 accepted ? cells[2] : QStringLiteral("AA55"));
        QCOMPARE(accepted, cells[2] != "none");
    }

    // Whatever is written with some decimals reads back as the same number.
    void encodeThenDecode()
    {
        for (int raw = -32767; raw <= 32766; raw += 97) {
            for (int decimals = 0; decimals <= 3; ++decimals) {
                const QString text = QString::number(raw / std::pow(10.0, decimals), 'f', decimals);
                quint8 high = 0;
                quint8 low = 0;
                QVERIFY2(EncodeValue(text, decimals, &high, &low), qPrintable(text));
                QCOMPARE(DecodeValue(high, low, decimals), float(raw / std::pow(10.0, decimals)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestModbusFrame)
#include "tst_modbusframe.moc"
