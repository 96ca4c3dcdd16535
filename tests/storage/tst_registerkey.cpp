#include "storage/registerkey.h"

#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::RegisterKeyProblem)

class TestRegisterKey : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<RegisterKeyProblem>("problem");
        QTest::addColumn<int>("functionCode");
        QTest::addColumn<int>("registerNumber");

        QTest::newRow("plain") << "6,40010" << RegisterKeyProblem::None << 6 << 40010;
        QTest::newRow("blanks around both") << " 3 , 12 " << RegisterKeyProblem::None << 3 << 12;
        QTest::newRow("largest register") << "6,65535" << RegisterKeyProblem::None << 6 << 65535;
        QTest::newRow("register 0") << "1,0" << RegisterKeyProblem::None << 1 << 0;
        QTest::newRow("empty") << "" << RegisterKeyProblem::Empty << -1 << -1;
        QTest::newRow("blanks only") << "   " << RegisterKeyProblem::Empty << -1 << -1;
        QTest::newRow("no comma") << "3" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("no function code") << ",12" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("no register") << "3," << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("function code 0") << "0,12" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("exception function code") << "131,12" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("register too large") << "6,65536" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("negative register") << "6,-1" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("fractional register") << "6,12.5" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("letters") << "a,b" << RegisterKeyProblem::Malformed << -1 << -1;
        QTest::newRow("second comma") << "6,1,2" << RegisterKeyProblem::Malformed << -1 << -1;
    }
    void parse()
    {
        QFETCH(QString, text);
        QFETCH(RegisterKeyProblem, problem);
        QFETCH(int, functionCode);
        QFETCH(int, registerNumber);

        RegisterKeyProblem why = RegisterKeyProblem::None;
        const std::optional<RegisterKey> key = parseRegisterKey(text, &why);
        QCOMPARE(why, problem);
        QCOMPARE(key.has_value(), problem == RegisterKeyProblem::None);
        if (key)
            QCOMPARE(*key, (RegisterKey{functionCode, registerNumber}));
    }
};

QTEST_GUILESS_MAIN(TestRegisterKey)
#include "tst_registerkey.moc"
