#include "storage/valueconversion.h"
#include "storage/valuetables.h"
#include "support/datarows.h"

using namespace telvane;

class TestValueConversion : public QObject
{
    Q_OBJECT

private slots:
    // operator text | decimals | register, or "none" when it does not convert | value
    void operatorText_data()
    {
        addRows({"7|0|7|7", "7,25|1|72|7.2", "12.5|1|125|12.5", "12,5|1|125|12.5", "1.2,5|1|1|0.125", "21|2|2100|21",
                 "-0,5|1|-5|-0.5", ",5|1|5|0.5", " 21,5 |1|215|21.5", "-3276,8|1|-32768|-3276.8", "3276,8|1|none|3276.8",
                 "abc|1|none|0", "12abc|0|none|12", "|1|none|0", "-|1|none|0", "2|5|2000|0.02", "1,5|5|15000|0.15",
                 "21,5|-1|21|21", QString(60, '9') + "|0|none|0"});
    }
    void operatorText()
    {
        const QStringList cells = rowCells();
        const int decimals = cells[1].toInt();
        const std::optional<qint16> checked = registerFromText(cells[0], decimals);
        QCOMPARE(checked ? QString::number(*checked) : "none", cells[2]);
        // The unchecked conversion passes every failure over as 0.
        QCOMPARE(int(TextToRegister(cells[0], decimals)), cells[2].toInt());
        QCOMPARE(TextToValue(cells[0], decimals), cells[3].toFloat());
    }

    // value | decimals | unit | shown text
    void formatZoneValue_data()
    {
        addRows({"21.5|0|°C|22 °C", "19|1|°C|19.0 °C", "0.5|2|%|0.50 %", "-3.25|1|°C|-3.3 °C", "12345.6|1||12345.6 ",
                 "1.23456|7|°C|1.235 °C", "1.6|-2|°C|2 °C", "-99999|0|°C|--.-", "-99999|3|°C|--.-",
                 "-99999.5|1|°C|-99999.5 °C"});
    }
    void formatZoneValue()
    {
        const QStringList cells = rowCells();
        QCOMPARE(FormatZoneValue(cells[0].toFloat(), cells[1].toInt(), cells[2]), cells[3]);
    }

    void initValueTablesResetsEverything()
    {
        ValueTables tables;
        ChronoSchedule schedule;
        tables.ZoneValues[29][4] = 21.5f;
        tables.SwitchValues[9][1] = 1.0f;
        schedule(96, 29, 6) = 5.0f;
        InitValueTables(tables, schedule);
        for (const auto &row : tables.ZoneValues)
            QVERIFY(std::ranges::all_of(row, [](float value) { return value == -99999.0f; }));
        for (const auto &row : tables.SwitchValues)
            QVERIFY(std::ranges::all_of(row, [](float value) { return value == -99999.0f; }));
        QVERIFY(std::ranges::all_of(schedule.entries(), [](float setPoint) { return setPoint == 20.0f; }));
    }
};

QTEST_GUILESS_MAIN(TestValueConversion)
#include "tst_valueconversion.moc"
