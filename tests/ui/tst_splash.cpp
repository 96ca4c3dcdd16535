#include "support/datarows.h"
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
    // answer|communicate: only "No" simulates.
    void onlyNoSimulates_data() { addRows({"cmdSi|1", "cmdNo|0", "Enter|1", "Esc|1", "close|1"}); }
    void onlyNoSimulates()
    {
        const QStringList cells = rowCells();
        Splash splash;
        splash.show();
        if (cells[0] == QLatin1String("Enter") || cells[0] == QLatin1String("Esc"))
            QTest::keyClick(&splash, cells[0] == QLatin1String("Enter") ? Qt::Key_Return : Qt::Key_Escape);
        else if (cells[0] == QLatin1String("close"))
            splash.close();
        else
            QTest::mouseClick(splash.findChild<QPushButton *>(cells[0]), Qt::LeftButton);
        QVERIFY(!splash.isVisible());
        QCOMPARE(splash.communicate(), cells[1] == QLatin1String("1"));
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
