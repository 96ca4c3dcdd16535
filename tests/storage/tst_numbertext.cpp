#include "storage/numbertext.h"

#include <QTest>

#include <limits>

using namespace telvane;

class TestNumberText : public QObject
{
    Q_OBJECT

private slots:
    void parseNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<double>("value");
        QTest::newRow("point") << "21.5" << true << 21.5;
        QTest::newRow("comma from an Italian machine") << "21,5" << true << 21.5;
        QTest::newRow("blanks around") << "  -3 " << true << -3.0;
        QTest::newRow("trailing separator") << "7." << true << 7.0;
        QTest::newRow("leading separator") << ".5" << true << 0.5;
        QTest::newRow("both separators") << "1.234,5" << false << 0.0;
        QTest::newRow("trailing garbage") << "12abc" << false << 0.0;
        QTest::newRow("empty") << "" << false << 0.0;
        QTest::newRow("sign only") << "-" << false << 0.0;
        QTest::newRow("arabic-indic digits are not ours") << QString::fromUtf8("\u0661\u0662") << false << 0.0;
        QTest::newRow("too large for a double") << QString(400, QLatin1Char('9')) << false << 0.0;
        QTest::newRow("underflow is zero") << QStringLiteral("0.%1").arg(QString(400, QLatin1Char('0')) + QLatin1Char('1'))
                                           << true << 0.0;
    }
    void parseNumber()
    {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        QFETCH(double, value);
        const auto parsed = telvane::parseNumber(text);
        QCOMPARE(parsed.has_value(), valid);
        if (valid)
            QCOMPARE(*parsed, value);
    }

    void parseSingleKeepsTablesFinite_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<float>("value");
        QTest::newRow("set point") << "20,5" << true << 20.5f;
        QTest::newRow("largest float") << "340282346638528859811704183484516925440" << true
                                       << std::numeric_limits<float>::max();
        QTest::newRow("beyond a float") << "1" + QString(39, QLatin1Char('0')) << false << 0.0f;
        QTest::newRow("beyond a float, negative") << "-1" + QString(39, QLatin1Char('0')) << false << 0.0f;
        QTest::newRow("not a number") << "nan" << false << 0.0f;
    }
    void parseSingleKeepsTablesFinite()
    {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        QFETCH(float, value);
        const auto parsed = parseSingle(text);
        QCOMPARE(parsed.has_value(), valid);
        if (valid)
            QCOMPARE(*parsed, value);
    }

    void leadingNumberStopsAtTheFirstStrangeCharacter_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("integer");
        QTest::newRow("number then letters") << "12abc" << 12.0 << 12;
        QTest::newRow("letters") << "abc" << 0.0 << -7;
        QTest::newRow("second separator ends it") << "1.5.3" << 1.5 << 2;
        QTest::newRow("comma") << "-2,5" << -2.5 << -2;
        QTest::newRow("half to even") << "3.5" << 3.5 << 4;
        QTest::newRow("huge is clamped") << "99999999999" << 99999999999.0 << 2147483647;
        QTest::newRow("beyond a double") << QString(400, QLatin1Char('9')) << 0.0 << 2147483647;
        QTest::newRow("beyond a double, negative") << QLatin1Char('-') + QString(400, QLatin1Char('9')) << 0.0
                                                   << -2147483647 - 1;
    }
    void leadingNumberStopsAtTheFirstStrangeCharacter()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QFETCH(int, integer);
        QCOMPARE(leadingNumber(text), value);
        QCOMPARE(leadingInteger(text, -7), integer);
    }

    void formatFixed_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("minIntegerDigits");
        QTest::addColumn<QString>("text");
        QTest::newRow("padded set point") << 5.0 << 1 << 2 << "05.0";
        QTest::newRow("wide set point") << 123.4 << 1 << 2 << "123.4";
        QTest::newRow("rounded away from zero") << 0.25 << 1 << 1 << "0.3";
        QTest::newRow("negative padded") << -5.0 << 1 << 2 << "-05.0";
        QTest::newRow("no decimals") << 21.6 << 0 << 1 << "22";
        QTest::newRow("three decimals") << 1.0 << 3 << 1 << "1.000";
        QTest::newRow("negative that rounds to zero stays unsigned") << -0.04 << 1 << 1 << "0.0";
    }
    void formatFixed()
    {
        QFETCH(double, value);
        QFETCH(int, decimals);
        QFETCH(int, minIntegerDigits);
        QFETCH(QString, text);
        QCOMPARE(telvane::formatFixed(value, decimals, minIntegerDigits), text);
    }
};

QTEST_GUILESS_MAIN(TestNumberText)
#include "tst_numbertext.moc"
