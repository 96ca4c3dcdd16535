#include "storage/colortext.h"
#include "storage/numbertext.h"
#include "storage/registerkey.h"
#include "storage/textlinereader.h"
#include "storage/valueconversion.h"
#include "storage/valuetables.h"

#include <QBuffer>
#include <QTest>

using namespace telvane;

using OptionalDouble = std::optional<double>;
using OptionalRegister = std::optional<qint16>;
using OptionalColour = std::optional<quint32>;

// What a technician types into the settings files and the editor, read as numbers,
// colours and register keys; and the lines of the files they come from.
class TestSettingsValues : public QObject
{
    Q_OBJECT

private slots:
    void numbers()
    {
        QCOMPARE(parseNumber("21,5"), OptionalDouble(21.5));
        // Whatever the program would read otherwise than the user meant is no number.
        QCOMPARE(parseNumber("1.234,5"), OptionalDouble());
        QCOMPARE(parseNumber("12abc"), OptionalDouble());
        QCOMPARE(parseNumber(QString::fromUtf8("\u0661\u0662")), OptionalDouble());
        QCOMPARE(parseNumber(QString(400, '9')), OptionalDouble());
        QCOMPARE(parseNumber("0." + QString(400, '0') + "1"), OptionalDouble(0.0));
        // Set points and chart limits stay finite.
        QCOMPARE(parseSingle("20,5"), std::optional<float>(20.5f));
        QCOMPARE(parseSingle("-1" + QString(39, '0')), std::nullopt);
        QCOMPARE(parseSingle("nan"), std::nullopt);
        // The lenient reading of old files takes the number the text starts with.
        QCOMPARE(leadingNumber("12abc"), 12.0);
        QCOMPARE(leadingInteger("12abc", -7), 12);
        QCOMPARE(leadingInteger("1.5.3", -7), 2);
        QCOMPARE(leadingNumber("99999999999"), 99999999999.0);
        QCOMPARE(leadingInteger("99999999999", -7), 2147483647);
        QCOMPARE(leadingNumber("-" + QString(400, '9')), 0.0);
        QCOMPARE(leadingInteger("-" + QString(400, '9'), -7), -2147483647 - 1);
        QCOMPARE(formatFixed(0.25, 1), QStringLiteral("0.3"));
        QCOMPARE(formatFixed(-0.04, 1), QStringLiteral("0.0"));
    }

    void colours()
    {
        QCOMPARE(parseColorText("&h80ff"), OptionalColour(0x80FF));
        QCOMPARE(parseColorText("&H800000&"), OptionalColour(0x800000));
        QCOMPARE(parseColorText("16777215"), OptionalColour(0xFFFFFF));
        QCOMPARE(parseColorText("-32513"), OptionalColour(0xFFFF80FF));
        for (const char *text : {"&H1FFFFFFFF", "4294967296", "&HGG00", "&H-FF"})
            QVERIFY2(!parseColorText(text), text);
        QCOMPARE(formatColorText(0x00c0e0ff), QStringLiteral("&HC0E0FF"));
        for (const quint32 colour : {0x0u, 0xFFFF80FFu})
            QCOMPARE(parseColorText(formatColorText(colour)), OptionalColour(colour));
    }

    void registerKeys()
    {
        RegisterKeyProblem why = RegisterKeyProblem::Malformed;
        const std::optional<RegisterKey> key = parseRegisterKey("6,65535", &why);
        QVERIFY(key && why == RegisterKeyProblem::None);
        QCOMPARE(key->functionCode, 6);
        QCOMPARE(int(key->registerNumber), 65535);
        // Empty is a register not in use; anything else malformed is worth a warning.
        QVERIFY(!parseRegisterKey("   ", &why) && why == RegisterKeyProblem::Empty);
        for (const char *text : {"3", "0,12", "131,12", "6,65536", "6,12.5", "6,1,2"})
            QVERIFY2(!parseRegisterKey(text, &why) && why == RegisterKeyProblem::Malformed, text);
    }

    void operatorText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<OptionalRegister>("registerValue"); // none: the text does not convert
        QTest::addColumn<float>("value");
        const auto row = [](const QString &text, int decimals, OptionalRegister raw, float value) {
            QTest::addRow("'%s' with %d decimals", qPrintable(text.left(12)), decimals) << text << decimals << raw << value;
        };
        row("7,25", 1, 72, 7.2f);
        row("1.2,5", 1, 1, 0.125f);
        row(" -0,5 ", 1, -5, -0.5f);
        row("-3276,8", 1, -32768, -3276.8f);
        row("12abc", 0, std::nullopt, 12.0f);
        row("1,5", 5, 15000, 0.15f);
        row("21,5", -1, 21, 21.0f);
        row(QString(60, '9'), 0, std::nullopt, 0.0f);
    }
    void operatorText()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(OptionalRegister, registerValue);
        QFETCH(float, value);
        QCOMPARE(registerFromText(text, decimals), registerValue);
        // The unchecked conversion passes every failure over as 0.
        QCOMPARE(TextToRegister(text, decimals), registerValue.value_or(0));
        QCOMPARE(TextToValue(text, decimals), value);
    }

    void zoneValueShown()
    {
        QCOMPARE(FormatZoneValue(21.5f, 0, "°C"), QStringLiteral("22 °C"));
        QCOMPARE(FormatZoneValue(-3.25f, 1, "°C"), QStringLiteral("-3.3 °C"));
        QCOMPARE(FormatZoneValue(1.23456f, 7, "°C"), QStringLiteral("1.235 °C"));
        QCOMPARE(FormatZoneValue(InvalidValue, 3, "°C"), QStringLiteral("--.-"));
        QCOMPARE(FormatZoneValue(-99999.5f, 1, "°C"), QStringLiteral("-99999.5 °C"));
    }

    // Lines come out joined by "|", with "!" for a line longer than eight bytes.
    void fileLines_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        QTest::newRow("CR LF, last line without its end") << QByteArray("a\r\nbc") << "a|bc";
        QTest::newRow("LF, last line ends with CR only") << QByteArray("a\nbc\r") << "a|bc";
        QTest::newRow("CR inside a line is kept") << QByteArray("a\rb\n") << "a\rb";
        QTest::newRow("longest accepted line") << QByteArray("12345678\r\nx\n") << "12345678|x";
        QTest::newRow("one character too many") << QByteArray("123456789\r\nx\n") << "!|x";
        QTest::newRow("huge line is skipped whole") << QByteArray(300000, 'z') + "\nafter\n" << "!|after";
    }
    void fileLines()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QBuffer buffer(&content);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        TextLineReader reader(buffer, 8);
        QStringList lines;
        QByteArray line;
        for (TextLineReader::Result result; (result = reader.readLine(line)) != TextLineReader::Result::End;) {
            lines << (result == TextLineReader::Result::TooLong ? QStringLiteral("!") : QString::fromLatin1(line));
            QVERIFY(lines.size() <= 4);
        }
        QCOMPARE(lines.join('|'), expected);
    }
};

QTEST_GUILESS_MAIN(TestSettingsValues)
#include "tst_settingsvalues.moc"
