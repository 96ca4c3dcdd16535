#include "fieldbus/modbusframe.h"

#include <QTest>

#include <cmath>

using namespace telvane;

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

} // namespace

class TestModbusFrame : public QObject
{
    Q_OBJECT

private slots:
    // Reference frames from the Modbus documents and from a peer implementation.
    void crc_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("crc");
        QTest::newRow("check string") << QByteArray("123456789") << 0x4B37;
        QTest::newRow("nothing") << QByteArray() << 0xFFFF;
        QTest::newRow("read one register") << hex("010300000001") << 0x0A84;
        QTest::newRow("read ten registers") << hex("01030000000A") << 0xCDC5;
        QTest::newRow("protocol guide example") << hex("1103006B0003") << 0x8776;
        QTest::newRow("coil on") << hex("01050000FF00") << 0x3A8C;
    }
    void crc()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, crc);
        QCOMPARE(modbusCrc(bytes), quint16(crc));
    }

    void splitAddress_data()
    {
        QTest::addColumn<int>("address");
        QTest::addColumn<int>("high");
        QTest::addColumn<int>("low");
        QTest::newRow("zero") << 0 << 0x00 << 0x00;
        QTest::newRow("low byte only") << 255 << 0x00 << 0xFF;
        QTest::newRow("high byte only") << 256 << 0x01 << 0x00;
        QTest::newRow("both") << 0x1234 << 0x12 << 0x34;
        QTest::newRow("last") << 65535 << 0xFF << 0xFF;
    }
    void splitAddress()
    {
        QFETCH(int, address);
        QFETCH(int, high);
        QFETCH(int, low);
        const AddressBytes bytes = telvane::splitAddress(quint16(address));
        QCOMPARE(bytes.high, quint8(high));
        QCOMPARE(bytes.low, quint8(low));
    }

    void buildFrame_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("slave");
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("frame");
        QTest::newRow("read holding register 0 of slave 1")
            << 8 << 1 << 3 << hex("00000001") << hex("010300000001840A");
        QTest::newRow("read input register 0x1234 of slave 17")
            << 8 << 17 << 4 << hex("12340001") << hex("11041234000177EC");
        QTest::newRow("coil on") << 8 << 1 << 5 << hex("0010FF00") << hex("01050010FF008DFF");
        QTest::newRow("negative register value") << 8 << 7 << 6 << hex("0102FFFB") << hex("07060102FFFB29E3");
        QTest::newRow("broadcast write") << 8 << 0 << 6 << hex("0010002A") << hex("00060010002A0801");
        QTest::newRow("extra data is cut") << 8 << 1 << 3 << hex("00000001FFFF") << hex("010300000001840A");
        QTest::newRow("missing data is zero") << 8 << 1 << 3 << hex("0000") << hex("01030000000045CA");
        QTest::newRow("no data") << 4 << 1 << 7 << QByteArray() << hex("010741E2");
    }
    void buildFrame()
    {
        QFETCH(int, length);
        QFETCH(int, slave);
        QFETCH(int, functionCode);
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, frame);
        const QByteArray built = BuildFrame(length, quint8(slave), quint8(functionCode), data);
        QCOMPARE(built.toHex(' '), frame.toHex(' '));
        QCOMPARE(built.size(), length);
    }

    void checkReplyCrc_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("valid");
        // 01 03 02 00 D7 + CRC, taken from a request frame built the same way.
        const QByteArray good = BuildFrame(7, 1, 3, hex("0200D7"));
        QByteArray badData = good;
        badData[4] = char(0xD8);
        QByteArray swapped = good;
        std::swap(swapped[5], swapped[6]);
        QTest::newRow("good") << good << 7 << true;
        QTest::newRow("known echo of a coil write") << hex("01050000FF008C3A") << 8 << true;
        QTest::newRow("trailing bytes are not looked at") << good + hex("FFFF") << 7 << true;
        QTest::newRow("data byte changed") << badData << 7 << false;
        QTest::newRow("CRC high byte first") << swapped << 7 << false;
        QTest::newRow("shorter than expected") << good.left(6) << 7 << false;
        QTest::newRow("checked at the wrong length") << good << 6 << false;
        QTest::newRow("nothing") << QByteArray() << 7 << false;
        QTest::newRow("length too small for a CRC") << hex("FFFF") << 2 << false;
    }
    void checkReplyCrc()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, length);
        QFETCH(bool, valid);
        QCOMPARE(CheckReplyCrc(reply, length), valid);
    }

    void replyLength_data()
    {
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("read");
        QTest::addColumn<bool>("write");
        QTest::newRow("coils") << 1 << 6 << true << false;
        QTest::newRow("discrete inputs") << 2 << 6 << true << false;
        QTest::newRow("holding registers") << 3 << 7 << true << false;
        QTest::newRow("input registers") << 4 << 7 << true << false;
        QTest::newRow("write coil") << 5 << 8 << false << true;
        QTest::newRow("write register") << 6 << 8 << false << true;
        QTest::newRow("diagnostics") << 8 << 8 << false << true;
        QTest::newRow("exception status is not ours") << 7 << 0 << false << false;
        QTest::newRow("write multiple is not ours") << 16 << 0 << false << false;
        QTest::newRow("zero") << 0 << 0 << false << false;
        QTest::newRow("negative") << -3 << 0 << false << false;
    }
    void replyLength()
    {
        QFETCH(int, functionCode);
        QFETCH(int, length);
        QFETCH(bool, read);
        QFETCH(bool, write);
        QCOMPARE(expectedReplyLength(functionCode), length);
        QCOMPARE(isReadFunction(functionCode), read);
        QCOMPARE(isWriteFunction(functionCode), write);
    }

    void decodeValue_data()
    {
        QTest::addColumn<int>("high");
        QTest::addColumn<int>("low");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<float>("value");
        QTest::addColumn<float>("unsignedValue");
        QTest::newRow("one decimal") << 0x00 << 0xD7 << 1 << 21.5f << 21.5f;
        QTest::newRow("no decimals") << 0x00 << 0xD7 << 0 << 215.0f << 215.0f;
        QTest::newRow("three decimals") << 0x04 << 0xD2 << 3 << 1.234f << 1.234f;
        QTest::newRow("negative") << 0xFF << 0xFB << 0 << -5.0f << 65531.0f;
        QTest::newRow("negative with a decimal") << 0xFF << 0xFB << 1 << -0.5f << 6553.1f;
        QTest::newRow("over range stays unscaled") << 0x7F << 0xFF << 2 << 32767.0f << 327.67f;
        QTest::newRow("under range stays unscaled") << 0x80 << 0x00 << 1 << -32768.0f << 3276.8f;
        QTest::newRow("just inside the range is scaled") << 0x7F << 0xFE << 1 << 3276.6f << 3276.6f;
        QTest::newRow("lowest scaled") << 0x80 << 0x01 << 3 << -32.767f << 32.769f;
        QTest::newRow("coil on") << 0xFF << 0x00 << 0 << -256.0f << 65280.0f;
        QTest::newRow("zero") << 0x00 << 0x00 << 2 << 0.0f << 0.0f;
    }
    void decodeValue()
    {
        QFETCH(int, high);
        QFETCH(int, low);
        QFETCH(int, decimals);
        QFETCH(float, value);
        QFETCH(float, unsignedValue);
        QCOMPARE(DecodeValue(quint8(high), quint8(low), decimals), value);
        QCOMPARE(decodeUnsignedValue(quint8(high), quint8(low), decimals), unsignedValue);
    }

    void encodeValue_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("high");
        QTest::addColumn<int>("low");
        QTest::newRow("integer") << "215" << 0 << true << 0x00 << 0xD7;
        QTest::newRow("comma") << "21,5" << 1 << true << 0x00 << 0xD7;
        QTest::newRow("point") << "21.5" << 1 << true << 0x00 << 0xD7;
        QTest::newRow("extra digits dropped, not rounded") << "21,57" << 1 << true << 0x00 << 0xD7;
        QTest::newRow("fraction padded") << "21" << 2 << true << 0x08 << 0x34;
        QTest::newRow("short fraction padded") << "1.2" << 3 << true << 0x04 << 0xB0;
        QTest::newRow("blanks around") << "  7 " << 0 << true << 0x00 << 0x07;
        QTest::newRow("plus sign") << "+7" << 0 << true << 0x00 << 0x07;
        QTest::newRow("trailing separator") << "7." << 1 << true << 0x00 << 0x46;
        QTest::newRow("leading separator") << ",5" << 1 << true << 0x00 << 0x05;
        QTest::newRow("fraction ignored without decimals") << "7.9" << 0 << true << 0x00 << 0x07;
        QTest::newRow("negative as two's complement") << "-5" << 0 << true << 0xFF << 0xFB;
        QTest::newRow("negative below one") << "-0,5" << 1 << true << 0xFF << 0xFB;
        QTest::newRow("lowest") << "-32768" << 0 << true << 0x80 << 0x00;
        QTest::newRow("coil on") << "65280" << 0 << true << 0xFF << 0x00;
        QTest::newRow("highest unsigned") << "65535" << 0 << true << 0xFF << 0xFF;
        QTest::newRow("above signed range, unsigned") << "3276,8" << 1 << true << 0x80 << 0x00;
        QTest::newRow("both separators") << "1.234,5" << 1 << false << 0 << 0;
        QTest::newRow("both separators, other order") << "1,2.3" << 0 << false << 0 << 0;
        QTest::newRow("too large") << "65536" << 0 << false << 0 << 0;
        QTest::newRow("too large once scaled") << "6553,6" << 1 << false << 0 << 0;
        QTest::newRow("too small") << "-32769" << 0 << false << 0 << 0;
        QTest::newRow("letters") << "abc" << 0 << false << 0 << 0;
        QTest::newRow("letters in the fraction") << "1.x" << 1 << false << 0 << 0;
        QTest::newRow("blank inside") << "1 2" << 0 << false << 0 << 0;
        QTest::newRow("empty") << "" << 0 << false << 0 << 0;
        QTest::newRow("sign only") << "-" << 0 << false << 0 << 0;
        QTest::newRow("separator only") << "." << 0 << false << 0 << 0;
        QTest::newRow("huge") << "99999999999999999999999" << 0 << false << 0 << 0;
        QTest::newRow("negative decimals") << "5" << -1 << false << 0 << 0;
        QTest::newRow("other script digits") << QString::fromUtf8("\u0661\u0662") << 0 << false << 0 << 0;
    }
    void encodeValue()
    {
        QFETCH(QString, value);
        QFETCH(int, decimals);
        QFETCH(bool, accepted);
        QFETCH(int, high);
        QFETCH(int, low);
        quint8 gotHigh = 0xAA;
        quint8 gotLow = 0x55;
        QCOMPARE(EncodeValue(value, decimals, &gotHigh, &gotLow), accepted);
        if (accepted) {
            QCOMPARE(gotHigh, quint8(high));
            QCOMPARE(gotLow, quint8(low));
        } else {
            QCOMPARE(gotHigh, quint8(0xAA));
            QCOMPARE(gotLow, quint8(0x55));
        }
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
