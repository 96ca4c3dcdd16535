#include "ui/about.h"
#include "ui/splash.h"

#include <QLabel>
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

    void bothWindowsNameTheProduct()
    {
        Splash splash;
        About about;
        for (QWidget *window : {static_cast<QWidget *>(&splash), static_cast<QWidget *>(&about)}) {
            QCOMPARE(window->findChild<QLabel *>(QStringLiteral("lblProductName"))->text(), QStringLiteral("Telvane"));
            QCOMPARE(window->findChild<QLabel *>(QStringLiteral("lblVersion"))->text(),
                     QStringLiteral("Versione " TELVANE_VERSION));
        }
    }
};

QTEST_MAIN(TestSplash)
#include "tst_splash.moc"
