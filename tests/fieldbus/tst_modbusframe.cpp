#include "fieldbus/modbusframe.h"

#include <QTest>

using namespace telvane;

class TestModbusFrame : public QObject
{
    Q_OBJECT

private slots:
    // Reference values from the Modbus documents and a peer.
    void crc_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("crc");
        QTest::newRow("check string") << QByteArray("123456789") << 0x4B37;
        QTest::newRow("read request") << QByteArray::fromHex("1103006B0003") << 0x8776;
    }
    void crc()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, crc);
        QCOMPARE(modbusCrc(bytes), quint16(crc));
    }

    void buildFrame_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("frame");
        QTest::newRow("read") << 8 << QByteArray::fromHex("00000001") << QByteArray::fromHex("010300000001840A");
        QTest::newRow("short data padded with zeros") << 8 << QByteArray::fromHex("0000")
                                                      << QByteArray::fromHex("01030000000045CA");
    }
    void buildFrame()
    {
        QFETCH(int, length);
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, frame);
        QCOMPARE(BuildFrame(length, 1, 3, data).toHex(), frame.toHex());
    }

    void checkReplyCrc_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("good");
        QTest::newRow("register") << QByteArray::fromHex("01030200D7F81A") << 7 << true;
        QTest::newRow("one data bit wrong") << QByteArray::fromHex("01030200D8F81A") << 7 << false;
        QTest::newRow("shorter than the length") << QByteArray::fromHex("01030200D7F8") << 7 << false;
    }
    void checkReplyCrc()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, length);
        QFETCH(bool, good);
        QCOMPARE(CheckReplyCrc(reply, length), good);
    }

    // A value goes on the wire as two bytes and comes back the same, signed or
    // unsigned; nothing outside 16 bits is encoded.
    void valueBytes()
    {
        for (qint32 value = -32768; value <= 65535; value += 97) {
            const std::optional<WordBytes> word = EncodeValue(value);
            QVERIFY(word);
            QCOMPARE(value < 0 ? qint32(DecodeValue(word->high, word->low)) : qint32(decodeUnsignedValue(word->high, word->low)),
                     value);
        }
        QCOMPARE(EncodeValue(-5)->high, quint8(0xFF));
        QCOMPARE(EncodeValue(-5)->low, quint8(0xFB));
        QCOMPARE(EncodeValue(0xFF00)->high, quint8(0xFF));
        QCOMPARE(DecodeValue(0xFF, 0x00), qint16(-256));
        QVERIFY(!EncodeValue(65536));
        QVERIFY(!EncodeValue(-32769));
    }
};

QTEST_GUILESS_MAIN(TestModbusFrame)
#include "tst_modbusframe.moc"
