#include "storage/colortext.h"
#include "support/datarows.h"

using namespace telvane;

class TestColorText : public QObject
{
    Q_OBJECT

private slots:
    // text | colour in hexadecimal, or "none" when it is no colour
    void parse_data()
    {
        addRows({"&HFF0000|FF0000", "&h80ff|80FF", "&H800000&|800000", "&HFFFF80FF|FFFF80FF", "&H0000000000FF|FF",
                 "  &HC0C0C0 |C0C0C0", "16777215|FFFFFF", "-32513|FFFF80FF", "-2147483640|80000008", "4294967295|FFFFFFFF",
                 "&H1FFFFFFFF|none", "4294967296|none", "-2147483649|none", "&H|none", "&HGG00|none", "&H-FF|none",
                 "&H0x12|none", "rosso|none", "12.5|none", "|none"});
    }
    void parse()
    {
        const QStringList cells = rowCells();
        const std::optional<quint32> parsed = parseColorText(cells[0]);
        QCOMPARE(parsed ? QString::number(*parsed, 16).toUpper() : "none", cells[1]);
    }

    void formatReadsBack()
    {
        for (const quint32 colour : {0x0u, 0x00800000u, 0x00c0e0ffu, 0xFFFF80FFu})
            QCOMPARE(parseColorText(formatColorText(colour)), std::optional<quint32>(colour));
        QCOMPARE(formatColorText(0), QStringLiteral("&H0"));
        QCOMPARE(formatColorText(0x00c0e0ff), QStringLiteral("&HC0E0FF"));
    }
};

QTEST_GUILESS_MAIN(TestColorText)
#include "tst_colortext.moc"
