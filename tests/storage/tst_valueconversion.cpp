#include "storage/valueconversion.h"
#include "storage/valuetables.h"

#include <QTest>

using namespace telvane;

class TestValueConversion : public QObject
{
    Q_OBJECT

private slots:
    void textToRegister_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("expected");
        QTest::newRow("whole number") << "7" << 0 << 7;
        QTest::newRow("extra decimals are cut, not rounded") << "7,25" << 1 << 72;
        QTest::newRow("point") << "12.5" << 1 << 125;
        QTest::newRow("comma") << "12,5" << 1 << 125;
        QTest::newRow("comma wins over an earlier point") << "1.2,5" << 1 << 1;
        QTest::newRow("padded with zeros") << "21" << 2 << 2100;
        QTest::newRow("short fraction padded") << "21,5" << 3 << 21500;
        QTest::newRow("negative below one") << "-0,5" << 1 << -5;
        QTest::newRow("fraction only") << ",5" << 1 << 5;
        QTest::newRow("separator without fraction") << "5," << 1 << 50;
        QTest::newRow("fraction dropped without decimals") << "21,9" << 0 << 21;
        QTest::newRow("blanks around") << " 21,5 " << 1 << 215;
        QTest::newRow("largest register") << "3276,7" << 1 << 32767;
        QTest::newRow("smallest register") << "-3276,8" << 1 << -32768;
        QTest::newRow("overflow gives zero") << "3276,8" << 1 << 0;
        QTest::newRow("negative overflow gives zero") << "-3276,9" << 1 << 0;
        QTest::newRow("not a number") << "abc" << 1 << 0;
        QTest::newRow("number then letters") << "12abc" << 0 << 0;
        QTest::newRow("empty") << "" << 1 << 0;
        QTest::newRow("no separator adds three zeros at most") << "2" << 5 << 2000;
        QTest::newRow("fraction padded to four digits at most") << "1,5" << 5 << 15000;
        QTest::newRow("negative decimals count as none") << "21,5" << -1 << 21;
    }
    void textToRegister()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(int, expected);
        QCOMPARE(int(TextToRegister(text, decimals)), expected);
    }

    // The checked conversion tells a real 0 from text that could not be converted.
    void registerFromText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<bool>("converted");
        QTest::addColumn<int>("expected");
        QTest::newRow("zero is a value") << "0" << 1 << true << 0;
        QTest::newRow("negative zero") << "-0,0" << 1 << true << 0;
        QTest::newRow("comma") << "21,5" << 1 << true << 215;
        QTest::newRow("point") << "21.5" << 1 << true << 215;
        QTest::newRow("largest register") << "3276,7" << 1 << true << 32767;
        QTest::newRow("overflow") << "3276,8" << 1 << false << 0;
        QTest::newRow("negative overflow") << "-3276,9" << 1 << false << 0;
        QTest::newRow("not a number") << "abc" << 1 << false << 0;
        QTest::newRow("empty") << "" << 0 << false << 0;
        QTest::newRow("empty with decimals") << "" << 1 << false << 0;
        QTest::newRow("separator alone") << "," << 1 << false << 0;
        QTest::newRow("sign alone") << "-" << 1 << false << 0;
    }
    void registerFromText()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(bool, converted);
        QFETCH(int, expected);
        const std::optional<qint16> value = telvane::registerFromText(text, decimals);
        QCOMPARE(value.has_value(), converted);
        if (converted)
            QCOMPARE(int(*value), expected);
    }

    void textToValue_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<float>("expected");
        QTest::newRow("cut to one decimal") << "21.57" << 1 << 21.5f;
        QTest::newRow("comma cut") << "7,25" << 1 << 7.2f;
        QTest::newRow("point and comma agree") << "12.5" << 1 << 12.5f;
        QTest::newRow("comma") << "12,5" << 1 << 12.5f;
        QTest::newRow("negative") << "-0,5" << 1 << -0.5f;
        QTest::newRow("whole number with decimals") << "21" << 2 << 21.0f;
        QTest::newRow("leading number only") << "12abc" << 0 << 12.0f;
        QTest::newRow("not a number") << "abc" << 1 << 0.0f;
        QTest::newRow("beyond a register is still a value") << "3276,8" << 1 << 3276.8f;
        QTest::newRow("more than three decimals scale by three zeros only") << "21" << 5 << 0.21f;
        QTest::newRow("beyond a float gives zero") << QString(60, QLatin1Char('9')) << 0 << 0.0f;
    }
    void textToValue()
    {
        QFETCH(QString, text);
        QFETCH(int, decimals);
        QFETCH(float, expected);
        QCOMPARE(TextToValue(text, decimals), expected);
    }

    void formatDecimal_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no decimals rounds half away") << 21.5f << 0 << "22";
        QTest::newRow("one decimal") << 21.5f << 1 << "21.5";
        QTest::newRow("whole value keeps its decimal") << 19.0f << 1 << "19.0";
        QTest::newRow("below one keeps its zero") << 0.5f << 2 << "0.50";
        QTest::newRow("three decimals") << 1.0f << 3 << "1.000";
        QTest::newRow("negative") << -3.25f << 1 << "-3.3";
        QTest::newRow("no integer padding") << 5.0f << 1 << "5.0";
        QTest::newRow("large value") << 12345.6f << 1 << "12345.6";
        QTest::newRow("too many decimals show three") << 1.23456f << 7 << "1.235";
        QTest::newRow("negative decimals show none") << 1.6f << -2 << "2";
    }
    void formatDecimal()
    {
        QFETCH(float, value);
        QFETCH(int, decimals);
        QFETCH(QString, expected);
        QCOMPARE(FormatDecimal(value, decimals), expected);
    }

    void formatZoneValue_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("expected");
        for (int decimals = 0; decimals <= 3; ++decimals) {
            QTest::addRow("invalid marker, %d decimals", decimals)
                << InvalidValue << decimals << QStringLiteral("°C") << QStringLiteral("--.-");
        }
        QTest::newRow("default unit") << 21.5f << 1 << QStringLiteral("°C") << QStringLiteral("21.5 °C");
        QTest::newRow("other unit") << 0.0f << 0 << QStringLiteral("%") << QStringLiteral("0 %");
        QTest::newRow("near the marker is a value") << -99999.5f << 1 << QStringLiteral("°C")
                                                    << QStringLiteral("-99999.5 °C");
        QTest::newRow("empty unit keeps the blank") << 7.0f << 0 << QString() << QStringLiteral("7 ");
    }
    void formatZoneValue()
    {
        QFETCH(float, value);
        QFETCH(int, decimals);
        QFETCH(QString, unit);
        QFETCH(QString, expected);
        QCOMPARE(FormatZoneValue(value, decimals, unit), expected);
    }

    void initValueTablesResetsEverything()
    {
        ValueTables tables;
        ChronoSchedule schedule;
        tables.zoneValue(29, ZoneQuantity::AL3) = 21.5f;
        tables.ZoneValues[0][0] = 3.0f;
        tables.SwitchValues[9][1] = 1.0f;
        schedule(96, 29, 6) = 5.0f;
        schedule(0, 0, 0) = 30.0f;

        InitValueTables(tables, schedule);

        for (const auto &zone : tables.ZoneValues) {
            for (const float value : zone)
                QCOMPARE(value, InvalidValue);
        }
        for (const auto &switchValues : tables.SwitchValues) {
            for (const float value : switchValues)
                QCOMPARE(value, InvalidValue);
        }
        QCOMPARE(schedule.entries().size(), std::size_t(20370));
        for (const float setPoint : schedule.entries())
            QCOMPARE(setPoint, 20.0f);
    }
};

QTEST_GUILESS_MAIN(TestValueConversion)
#include "tst_valueconversion.moc"
