#include "storage/colortext.h"

#include <QTest>

using namespace telvane;

using OptionalColour = std::optional<quint32>;

class TestColorText : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<OptionalColour>("colour");
        const auto row = [](const QString &text, OptionalColour colour) { QTest::addRow("%s", qPrintable(text)) << text << colour; };
        row("&h80ff", 0x80FF);
        row("&H800000&", 0x800000);
        row("16777215", 0xFFFFFF);
        row("-32513", 0xFFFF80FF);
        row("&H1FFFFFFFF", std::nullopt);
        row("4294967296", std::nullopt);
        row("&HGG00", std::nullopt);
        row("&H-FF", std::nullopt);
    }
    void parse()
    {
        QFETCH(QString, text);
        QFETCH(OptionalColour, colour);
        QCOMPARE(parseColorText(text), colour);
    }

    void formatReadsBack()
    {
        for (const quint32 colour : {0x0u, 0x00c0e0ffu, 0xFFFF80FFu})
            QCOMPARE(parseColorText(formatColorText(colour)), std::optional<quint32>(colour));
        QCOMPARE(formatColorText(0x00c0e0ff), QStringLiteral("&HC0E0FF"));
    }
};

QTEST_GUILESS_MAIN(TestColorText)
#include "tst_colortext.moc"
