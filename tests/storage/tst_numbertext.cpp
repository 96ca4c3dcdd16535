#include "storage/numbertext.h"

#include <QTest>

using namespace telvane;

using OptionalDouble = std::optional<double>;

class TestNumberText : public QObject
{
    Q_OBJECT

private slots:
    void parseNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<OptionalDouble>("expected");
        const auto row = [](const char *name, const QString &text, OptionalDouble expected) {
            QTest::newRow(name) << text << expected;
        };
        row("comma", "21,5", 21.5);
        row("thousands separator", "1.234,5", std::nullopt);
        row("trailing letters", "12abc", std::nullopt);
        row("Arabic-Indic digits", QString::fromUtf8("\u0661\u0662"), std::nullopt);
        row("beyond a double", QString(400, '9'), std::nullopt);
        row("below a double is 0", "0." + QString(400, '0') + "1", 0.0);
    }
    void parseNumber()
    {
        QFETCH(QString, text);
        QFETCH(OptionalDouble, expected);
        QCOMPARE(telvane::parseNumber(text), expected);
    }

    // Set points and chart limits must stay finite.
    void parseSingle()
    {
        QCOMPARE(telvane::parseSingle("20,5"), std::optional<float>(20.5f));
        QCOMPARE(telvane::parseSingle("-1" + QString(39, '0')), std::nullopt);
        QCOMPARE(telvane::parseSingle("nan"), std::nullopt);
    }

    void leadingNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("number");
        QTest::addColumn<int>("integer"); // -7 is the fallback
        QTest::newRow("letters after") << "12abc" << 12.0 << 12;
        QTest::newRow("second point ends it, rounded") << "1.5.3" << 1.5 << 2;
        QTest::newRow("beyond int") << "99999999999" << 99999999999.0 << 2147483647;
        QTest::newRow("beyond a double") << "-" + QString(400, '9') << 0.0 << -2147483647 - 1;
    }
    void leadingNumber()
    {
        QFETCH(QString, text);
        QFETCH(double, number);
        QFETCH(int, integer);
        QCOMPARE(telvane::leadingNumber(text), number);
        QCOMPARE(leadingInteger(text, -7), integer);
    }

    void formatFixed_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("integerDigits");
        QTest::addColumn<QString>("text");
        QTest::newRow("half rounds up") << 0.25 << 1 << 1 << "0.3";
        QTest::newRow("no negative zero") << -0.04 << 1 << 1 << "0.0";
    }
    void formatFixed()
    {
        QFETCH(double, value);
        QFETCH(int, decimals);
        QFETCH(int, integerDigits);
        QFETCH(QString, text);
        QCOMPARE(telvane::formatFixed(value, decimals, integerDigits), text);
    }
};

QTEST_GUILESS_MAIN(TestNumberText)
#include "tst_numbertext.moc"
