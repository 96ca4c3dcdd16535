#include "storage/numbertext.h"
#include "support/datarows.h"

using namespace telvane;

class TestNumberText : public QObject
{
    Q_OBJECT

private slots:
    // text | value, or "none" when the text is refused
    void parseNumber_data()
    {
        addRows({"21.5|21.5", "21,5|21.5", "  -3 |-3", "7.|7", ".5|0.5", "1.234,5|none", "12abc|none", "|none", "-|none",
                 QString::fromUtf8("\u0661\u0662|none"), QString(400, '9') + "|none",
                 "0." + QString(400, '0') + "1|0"});
    }
    void parseNumber()
    {
        const QStringList cells = rowCells();
        const std::optional<double> parsed = telvane::parseNumber(cells[0]);
        QCOMPARE(parsed.has_value(), cells[1] != "none");
        if (parsed)
            QCOMPARE(*parsed, cells[1].toDouble());
    }

    // Set points and chart limits must stay finite.
    void parseSingle_data()
    {
        addRows({"20,5|20.5", "340282346638528859811704183484516925440|3.40282346638528859811704183484516925440e38",
                 "-1" + QString(39, '0') + "|none", "nan|none"});
    }
    void parseSingle()
    {
        const QStringList cells = rowCells();
        const std::optional<float> parsed = telvane::parseSingle(cells[0]);
        QCOMPARE(parsed.has_value(), cells[1] != "none");
        if (parsed)
            QCOMPARE(*parsed, cells[1].toFloat());
    }

    // text | leading number | leading integer, -7 when there is none
    void leadingNumber_data()
    {
        addRows({"12abc|12|12", "abc|0|-7", "1.5.3|1.5|2", "-2,5|-2.5|-2", "3.5|3.5|4", "99999999999|99999999999|2147483647",
                 "-" + QString(400, '9') + "|0|-2147483648"});
    }
    void leadingNumber()
    {
        const QStringList cells = rowCells();
        QCOMPARE(telvane::leadingNumber(cells[0]), cells[1].toDouble());
        QCOMPARE(leadingInteger(cells[0], -7), cells[2].toInt());
    }

    // value | decimals | integer digits | text
    void formatFixed_data()
    {
        addRows({"5|1|2|05.0", "123.4|1|2|123.4", "0.25|1|1|0.3", "-5|1|2|-05.0", "21.6|0|1|22", "1|3|1|1.000",
                 "-0.04|1|1|0.0"});
    }
    void formatFixed()
    {
        const QStringList cells = rowCells();
        QCOMPARE(telvane::formatFixed(cells[0].toDouble(), cells[1].toInt(), cells[2].toInt()), cells[3]);
    }
};

QTEST_GUILESS_MAIN(TestNumberText)
#include "tst_numbertext.moc"
