#include "config_editor/lineprobe.h"

#include <QRegularExpression>
#include <QTest>

using namespace telvane;

class TestLineProbe : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<bool>("activity");
        QTest::addColumn<QStringList>("readingList");
        QTest::addColumn<QList<int>>("probe"); // address, function, register
        QTest::addColumn<bool>("activityAfter");

        const QStringList zones{"100>5:3,40001 [1]", "100>5:3,40002 [1]"};
        QTest::newRow("zone line") << true << zones << QList<int>{5, 3, 40001} << true;
        QTest::newRow("LED line") << true << QStringList{"300>7:3,40010 @ >=25 [0]"} << QList<int>{7, 3, 40010}
                                  << true;
        QTest::newRow("LED line without blanks") << true << QStringList{"301>255:4,0@<>22,5[1]"}
                                                 << QList<int>{255, 4, 0} << true;
        QTest::newRow("bit read") << true << QStringList{"200>20:1,11 [0]"} << QList<int>{20, 1, 11} << true;
        QTest::newRow("blanks inside the key") << true << QStringList{"101>12:3 , 12 [0]"} << QList<int>{12, 3, 12}
                                               << true;
        QTest::newRow("check off") << false << zones << QList<int>{-1, -1, -1} << false;
        QTest::newRow("nothing to read") << true << QStringList{} << QList<int>{-1, -1, -1} << false;
        QTest::newRow("check off, nothing to read") << false << QStringList{} << QList<int>{-1, -1, -1} << false;
    }

    void parse()
    {
        QFETCH(bool, activity);
        QFETCH(QStringList, readingList);
        QFETCH(QList<int>, probe);
        QFETCH(bool, activityAfter);

        const LineProbe result = ParseLineProbe(activity, readingList);
        QCOMPARE((QList<int>{result.address, result.functionCode, result.registerNumber}), probe);
        QCOMPARE(activity, activityAfter);
    }

    void garbageLine_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("empty") << QString();
        QTest::newRow("words") << QStringLiteral("hello");
        QTest::newRow("no colon") << QStringLiteral("100>5 3,1 [0]");
        QTest::newRow("no comma") << QStringLiteral("100>5:3 [0]");
        QTest::newRow("address not a number") << QStringLiteral("100>x:3,1 [0]");
        QTest::newRow("register not a number") << QStringLiteral("100>5:3,abc [0]");
        QTest::newRow("huge address") << QStringLiteral("100>99999999999:3,1 [0]");
    }

    void garbageLine()
    {
        QFETCH(QString, line);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No line probe"));
        bool activity = true;
        const LineProbe result = ParseLineProbe(activity, {line});
        QCOMPARE((QList<int>{result.address, result.functionCode, result.registerNumber}), (QList<int>{-1, -1, -1}));
        QVERIFY(activity);
    }
};

QTEST_GUILESS_MAIN(TestLineProbe)
#include "tst_lineprobe.moc"
