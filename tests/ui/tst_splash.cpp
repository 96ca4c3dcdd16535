#include "ui/splash.h"

#include <QPushButton>
#include <QTest>

using namespace telvane;

class TestSplash : public QObject
{
    Q_OBJECT

private slots:
    // Only "No" simulates.
    void onlyNoSimulates_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("communicate");
        QTest::newRow("cmdSi") << "cmdSi" << true;
        QTest::newRow("cmdNo") << "cmdNo" << false;
        QTest::newRow("Enter") << "Enter" << true;
        QTest::newRow("Esc") << "Esc" << true;
        QTest::newRow("close") << "close" << true;
    }
    void onlyNoSimulates()
    {
        QFETCH(QString, answer);
        QFETCH(bool, communicate);
        Splash splash;
        splash.show();
        if (answer == QLatin1String("Enter") || answer == QLatin1String("Esc"))
            QTest::keyClick(&splash, answer == QLatin1String("Enter") ? Qt::Key_Return : Qt::Key_Escape);
        else if (answer == QLatin1String("close"))
            splash.close();
        else
            QTest::mouseClick(splash.findChild<QPushButton *>(answer), Qt::LeftButton);
        QVERIFY(!splash.isVisible());
        QCOMPARE(splash.communicate(), communicate);
    }
};

QTEST_MAIN(TestSplash)
#include "tst_splash.moc"
