#include "storage/valueconversion.h"
#include "storage/valuetables.h"

#include <QTest>

using namespace telvane;

using OptionalRegister = std::optional<qint16>;

class TestValueConversion : public QObject
{
    Q_OBJECT

private slots:
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

    void formatZoneValue_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("shown");
        QTest::newRow("rounded to none") << 21.5f << 0 << "°C" << "22 °C";
        QTest::newRow("negative") << -3.25f << 1 << "°C" << "-3.3 °C";
        QTest::newRow("decimals above 3") << 1.23456f << 7 << "°C" << "1.235 °C";
        QTest::newRow("invalid marker") << -99999.0f << 3 << "°C" << "--.-";
        QTest::newRow("close to the marker") << -99999.5f << 1 << "°C" << "-99999.5 °C";
    }
    void formatZoneValue()
    {
        QFETCH(float, value);
        QFETCH(int, decimals);
        QFETCH(QString, unit);
        QFETCH(QString, shown);
        QCOMPARE(FormatZoneValue(value, decimals, unit), shown);
    }

};

QTEST_GUILESS_MAIN(TestValueConversion)
#include "tst_valueconversion.moc"
