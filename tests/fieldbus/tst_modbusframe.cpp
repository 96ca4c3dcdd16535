#include "fieldbus/modbusframe.h"

#include <QTest>

using namespace telvane;

// The frames on the wire are checked through the master's exchanges; these are the
// edges those exchanges do not reach.
class TestModbusFrame : public QObject
{
    Q_OBJECT

private slots:
    void frames()
    {
        QCOMPARE(BuildFrame(8, 1, 3, QByteArray::fromHex("0000")).toHex(), QByteArray("01030000000045ca"));
        QVERIFY(CheckReplyCrc(QByteArray::fromHex("01030200D7F81A"), 7));
        QVERIFY(!CheckReplyCrc(QByteArray::fromHex("01030200D7F8"), 7));
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
        QVERIFY(!EncodeValue(65536));
        QVERIFY(!EncodeValue(-32769));
    }
};

QTEST_GUILESS_MAIN(TestModbusFrame)
#include "tst_modbusframe.moc"
