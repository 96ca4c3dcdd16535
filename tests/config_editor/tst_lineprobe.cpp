#include "config_editor/lineprobe.h"

#include <QRegularExpression>
#include <QTest>

using namespace telvane;

class TestLineProbe : public QObject
{
    Q_OBJECT

private slots:
    // The check reads the register of the first reading line; without one it is off.
    void parse_data()
    {
        QTest::addColumn<bool>("activity");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QList<int>>("probe"); // address, function, register
        QTest::addColumn<bool>("activityAfter");
        const QList<int> none{-1, -1, -1};
        QTest::newRow("first of two zone lines")
            << true << QStringList{"100>5:3,40001 [1]", "100>5:3,40002 [1]"} << QList<int>{5, 3, 40001} << true;
        QTest::newRow("LED line without blanks") << true << QStringList{"301>255:4,0@<>22,5[1]"} << QList<int>{255, 4, 0} << true;
        QTest::newRow("blanks around the comma") << true << QStringList{"101>12:3 , 12 [0]"} << QList<int>{12, 3, 12} << true;
        QTest::newRow("check off") << false << QStringList{"100>5:3,1 [1]"} << none << false;
        QTest::newRow("no lines") << true << QStringList() << none << false;
        // A first line that cannot be read leaves the check on, without a probe.
        QTest::newRow("not a line") << true << QStringList{"hello"} << none << true;
        QTest::newRow("no register") << true << QStringList{"100>5:3 [0]"} << none << true;
        QTest::newRow("address not a number") << true << QStringList{"100>x:3,1 [0]"} << none << true;
        QTest::newRow("address too long") << true << QStringList{"100>99999999999:3,1 [0]"} << none << true;
    }
    void parse()
    {
        QFETCH(bool, activity);
        QFETCH(QStringList, lines);
        QFETCH(QList<int>, probe);
        QFETCH(bool, activityAfter);
        if (activityAfter && probe.first() == -1)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No line probe"));
        const LineProbe parsed = ParseLineProbe(activity, lines);
        QCOMPARE((QList<int>{parsed.address, parsed.functionCode, parsed.registerNumber}), probe);
        QCOMPARE(activity, activityAfter);
    }
};

QTEST_GUILESS_MAIN(TestLineProbe)
#include "tst_lineprobe.moc"
