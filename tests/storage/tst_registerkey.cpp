#include "storage/registerkey.h"

#include <QTest>

using namespace telvane;

class TestRegisterKey : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("function"); // -1: refused
        QTest::addColumn<int>("registerNumber");
        QTest::addColumn<RegisterKeyProblem>("problem");
        const auto row = [](const QString &text, int function, int number, RegisterKeyProblem problem) {
            QTest::addRow("'%s'", qPrintable(text)) << text << function << number << problem;
        };
        const auto refused = [&row](const QString &text, RegisterKeyProblem problem) { row(text, -1, -1, problem); };
        row("6,40010", 6, 40010, RegisterKeyProblem::None);
        row("6,65535", 6, 65535, RegisterKeyProblem::None);
        refused("   ", RegisterKeyProblem::Empty);
        for (const char *text : {"3", "0,12", "131,12", "6,65536", "6,12.5", "6,1,2"})
            refused(text, RegisterKeyProblem::Malformed);
    }
    void parse()
    {
        QFETCH(QString, text);
        QFETCH(int, function);
        QFETCH(int, registerNumber);
        QFETCH(RegisterKeyProblem, problem);
        RegisterKeyProblem why = RegisterKeyProblem::None;
        const std::optional<RegisterKey> key = parseRegisterKey(text, &why);
        QCOMPARE(why, problem);
        QCOMPARE(key ? key->functionCode : -1, function);
        QCOMPARE(key ? int(key->registerNumber) : -1, registerNumber);
    }
};

QTEST_GUILESS_MAIN(TestRegisterKey)
#include "tst_registerkey.moc"
