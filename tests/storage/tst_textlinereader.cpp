#include "storage/textlinereader.h"

#include <QBuffer>
#include <QTest>

using namespace telvane;

class TestTextLineReader : public QObject
{
    Q_OBJECT

private slots:
    // Lines are written as "line" or "!" for a line that was too long.
    void readsEveryLineEnd_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("empty file") << QByteArray() << QStringList();
        QTest::newRow("CR LF") << QByteArray("a\r\nbc\r\n") << QStringList{"a", "bc"};
        QTest::newRow("LF") << QByteArray("a\nbc\n") << QStringList{"a", "bc"};
        QTest::newRow("last line without its end") << QByteArray("a\r\nbc") << QStringList{"a", "bc"};
        QTest::newRow("last line ends with CR only") << QByteArray("a\r\nbc\r") << QStringList{"a", "bc"};
        QTest::newRow("empty lines count") << QByteArray("\r\n\n\r\n") << QStringList{"", "", ""};
        QTest::newRow("CR inside a line is kept") << QByteArray("a\rb\n") << QStringList{"a\rb"};
        QTest::newRow("longest accepted line") << QByteArray("12345678\r\nx\n") << QStringList{"12345678", "x"};
        QTest::newRow("longest line with LF") << QByteArray("12345678\nx") << QStringList{"12345678", "x"};
        QTest::newRow("one character too many") << QByteArray("123456789\r\nx\n") << QStringList{"!", "x"};
        QTest::newRow("too many, LF") << QByteArray("123456789\nx\n") << QStringList{"!", "x"};
        QTest::newRow("too long and last") << QByteArray("x\n123456789") << QStringList{"x", "!"};
        QTest::newRow("huge line is skipped whole")
            << QByteArray(300000, 'z') + "\nafter\n" << QStringList{"!", "after"};
    }
    void readsEveryLineEnd()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, expected);
        QBuffer buffer(&content);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        TextLineReader reader(buffer, 8);
        QStringList lines;
        QByteArray line;
        for (;;) {
            const TextLineReader::Result result = reader.readLine(line);
            if (result == TextLineReader::Result::End)
                break;
            lines << (result == TextLineReader::Result::TooLong ? QStringLiteral("!") : QString::fromLatin1(line));
            QVERIFY(lines.size() <= expected.size() + 1);
        }
        QCOMPARE(lines, expected);
    }
};

QTEST_GUILESS_MAIN(TestTextLineReader)
#include "tst_textlinereader.moc"
