#include "config_editor/lineprobe.h"
#include "support/datarows.h"

#include <QRegularExpression>

using namespace telvane;

class TestLineProbe : public QObject
{
    Q_OBJECT

private slots:
    // check on | reading lines, ";" between | address function register | check on after
    void parse_data()
    {
        addRows({"1|100>5:3,40001 [1];100>5:3,40002 [1]|5 3 40001|1", "1|300>7:3,40010 @ >=25 [0]|7 3 40010|1",
                 "1|301>255:4,0@<>22,5[1]|255 4 0|1", "1|101>12:3 , 12 [0]|12 3 12|1", "0|100>5:3,1 [1]|-1 -1 -1|0",
                 "1||-1 -1 -1|0", "1|hello|-1 -1 -1|1", "1|100>5 3,1 [0]|-1 -1 -1|1", "1|100>5:3 [0]|-1 -1 -1|1",
                 "1|100>x:3,1 [0]|-1 -1 -1|1", "1|100>5:3,abc [0]|-1 -1 -1|1", "1|100>99999999999:3,1 [0]|-1 -1 -1|1"});
    }
    void parse()
    {
        const QStringList cells = rowCells();
        bool activity = cells[0] == "1";
        // A first line that cannot be read leaves the check on, without a probe.
        if (activity && cells[3] == "1" && cells[2] == "-1 -1 -1")
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No line probe"));
        const LineProbe probe = ParseLineProbe(activity, cells[1].split(';', Qt::SkipEmptyParts));
        QCOMPARE(QStringLiteral("%1 %2 %3").arg(probe.address).arg(probe.functionCode).arg(probe.registerNumber), cells[2]);
        QCOMPARE(activity, cells[3] == "1");
    }
};

QTEST_GUILESS_MAIN(TestLineProbe)
#include "tst_lineprobe.moc"
