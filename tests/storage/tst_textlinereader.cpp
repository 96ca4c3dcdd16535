#include "storage/textlinereader.h"

#include <QBuffer>
#include <QTest>

using namespace telvane;

class TestTextLineReader : public QObject
{
    Q_OBJECT

private slots:
    // Lines come out joined by "|", with "!" for a line longer than eight bytes.
    void readsEveryLineEnd_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        QTest::newRow("CR LF, last line without its end") << QByteArray("a\r\nbc") << "a|bc";
        QTest::newRow("LF, last line ends with CR only") << QByteArray("a\nbc\r") << "a|bc";
        QTest::newRow("CR inside a line is kept") << QByteArray("a\rb\n") << "a\rb";
        QTest::newRow("longest accepted line") << QByteArray("12345678\r\nx\n") << "12345678|x";
        QTest::newRow("one character too many") << QByteArray("123456789\r\nx\n") << "!|x";
        QTest::newRow("huge line is skipped whole") << QByteArray(300000, 'z') + "\nafter\n" << "!|after";
    }
    void readsEveryLineEnd()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QBuffer buffer(&content);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        TextLineReader reader(buffer, 8);
        QStringList lines;
        QByteArray line;
        for (TextLineReader::Result result; (result = reader.readLine(line)) != TextLineReader::Result::End;) {
            lines << (result == TextLineReader::Result::TooLong ? QStringLiteral("!") : QString::fromLatin1(line));
            QVERIFY(lines.size() <= 4);
        }
        QCOMPARE(lines.join('|'), expected);
    }
};

QTEST_GUILESS_MAIN(TestTextLineReader)
#include "tst_textlinereader.moc"
