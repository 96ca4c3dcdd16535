#include "storage/colortext.h"

#include <QTest>

using namespace telvane;

class TestColorText : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<quint32>("color");
        QTest::newRow("as the chart writes it") << "&HFF0000" << true << 0x00FF0000u;
        QTest::newRow("lower case prefix and digits") << "&h80ff" << true << 0x000080FFu;
        QTest::newRow("short hex is not widened") << "&H8000" << true << 0x00008000u;
        QTest::newRow("long suffix") << "&H800000&" << true << 0x00800000u;
        QTest::newRow("all 32 bits") << "&HFFFF80FF" << true << 0xFFFF80FFu;
        QTest::newRow("leading zeros beyond eight digits") << "&H0000000000FF" << true << 0x000000FFu;
        QTest::newRow("blanks around") << "  &HC0C0C0 " << true << 0x00C0C0C0u;
        QTest::newRow("decimal default") << "16777215" << true << 0x00FFFFFFu;
        QTest::newRow("negative decimal is the same bits") << "-32513" << true << 0xFFFF80FFu;
        QTest::newRow("system colour as a negative long") << "-2147483640" << true << 0x80000008u;
        QTest::newRow("largest unsigned decimal") << "4294967295" << true << 0xFFFFFFFFu;
        QTest::newRow("hex wider than 32 bits") << "&H1FFFFFFFF" << false << 0u;
        QTest::newRow("decimal wider than 32 bits") << "4294967296" << false << 0u;
        QTest::newRow("below the smallest long") << "-2147483649" << false << 0u;
        QTest::newRow("prefix only") << "&H" << false << 0u;
        QTest::newRow("not hex digits") << "&HGG00" << false << 0u;
        QTest::newRow("sign inside hex") << "&H-FF" << false << 0u;
        QTest::newRow("C prefix inside hex") << "&H0x12" << false << 0u;
        QTest::newRow("a colour name") << "rosso" << false << 0u;
        QTest::newRow("decimal with a fraction") << "12.5" << false << 0u;
        QTest::newRow("empty") << "" << false << 0u;
    }
    void parse()
    {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        QFETCH(quint32, color);
        const auto parsed = parseColorText(text);
        QCOMPARE(parsed.has_value(), valid);
        if (valid)
            QCOMPARE(*parsed, color);
    }

    void formatReadsBack_data()
    {
        QTest::addColumn<quint32>("color");
        QTest::addColumn<QString>("text");
        QTest::newRow("black has one digit") << 0u << "&H0";
        QTest::newRow("no leading zeros") << 0x00800000u << "&H800000";
        QTest::newRow("upper case") << 0x00c0e0ffu << "&HC0E0FF";
        QTest::newRow("all 32 bits") << 0xFFFF80FFu << "&HFFFF80FF";
    }
    void formatReadsBack()
    {
        QFETCH(quint32, color);
        QFETCH(QString, text);
        QCOMPARE(formatColorText(color), text);
        QCOMPARE(parseColorText(text), std::optional<quint32>(color));
    }
};

QTEST_GUILESS_MAIN(TestColorText)
#include "tst_colortext.moc"
