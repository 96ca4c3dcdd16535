#include "storage/registerkey.h"
#include "support/datarows.h"

using namespace telvane;

class TestRegisterKey : public QObject
{
    Q_OBJECT

private slots:
    // text | function,register, or why it is refused
    void parse_data()
    {
        addRows({"6,40010|6,40010", " 3 , 12 |3,12", "6,65535|6,65535", "1,0|1,0", "|empty", "   |empty", "3|malformed",
                 ",12|malformed", "3,|malformed", "0,12|malformed", "131,12|malformed", "6,65536|malformed",
                 "6,-1|malformed", "6,12.5|malformed", "a,b|malformed", "6,1,2|malformed"});
    }
    void parse()
    {
        const QStringList cells = rowCells();
        RegisterKeyProblem why = RegisterKeyProblem::None;
        const std::optional<RegisterKey> key = parseRegisterKey(cells[0], &why);
        const QString problems[] = {"", "empty", "malformed"};
        QCOMPARE(key ? QStringLiteral("%1,%2").arg(key->functionCode).arg(key->registerNumber) : problems[int(why)],
                 cells[1]);
        QCOMPARE(key.has_value(), why == RegisterKeyProblem::None);
    }
};

QTEST_GUILESS_MAIN(TestRegisterKey)
#include "tst_registerkey.moc"
