#include "trends/csvexport.h"

#include "storage/valuetables.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

namespace {

const QDateTime T0(QDate(2026, 11, 14), QTime(10, 0, 0));

qint64 at(int seconds)
{
    return T0.addSecs(seconds).toMSecsSinceEpoch();
}

// Zone 1 every minute with a failed reading; zone 2 joins a minute late; zone 3 is
// configured and never logged.
TrendSet sample()
{
    TrendSet set;
    set.addPoint(1, at(0), 21.3f);
    set.addPoint(1, at(60), InvalidValue);
    set.addPoint(1, at(120), 1234.5f);
    set.addPoint(2, at(60), -0.125f);
    set.addPoint(2, at(120), 19.0f);
    return set;
}

} // namespace

class TestCsvExport : public QObject
{
    Q_OBJECT

private slots:
    void linesFollowTheLocale_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("Italian") << QLocale(QLocale::Italian, QLocale::Italy)
                                 << QStringList{"Data e ora;Soggiorno;\"Cucina; nord\";Zona 3",
                                                "14/11/2026 10:00:00;21,3;;", "14/11/2026 10:01:00;;-0,125;",
                                                "14/11/2026 10:02:00;1234,5;19;"};
        QTest::newRow("English") << QLocale(QLocale::English, QLocale::UnitedStates)
                                 << QStringList{"Data e ora,Soggiorno,Cucina; nord,Zona 3",
                                                "14/11/2026 10:00:00,21.3,,", "14/11/2026 10:01:00,,-0.125,",
                                                "14/11/2026 10:02:00,1234.5,19,"};
    }
    void linesFollowTheLocale()
    {
        QFETCH(QLocale, locale);
        QFETCH(QStringList, expected);
        const QStringList lines = csvExportLines(sample(), {"Soggiorno", "Cucina; nord"}, 3, at(0), at(120), locale);
        QCOMPARE(lines, expected);
    }

    void onlyTheShownRange()
    {
        const QLocale italian(QLocale::Italian, QLocale::Italy);
        const QStringList lines = csvExportLines(sample(), {"A", "B"}, 2, at(30), at(90), italian);
        QCOMPARE(lines, (QStringList{"Data e ora;A;B", "14/11/2026 10:01:00;;-0,125"}));
    }

    void fileHasByteOrderMarkAndLineEnds()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("esportazione.csv");
        QVERIFY(writeCsvFile(path, {"Data e ora;Zona è", "14/11/2026 10:00:00;1"}));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("\xEF\xBB\xBF" "Data e ora;Zona \xC3\xA8\r\n14/11/2026 10:00:00;1\r\n"));
        QVERIFY(!writeCsvFile(dir.filePath("absent/esportazione.csv"), {"x"}));
    }
};

QTEST_GUILESS_MAIN(TestCsvExport)
#include "tst_csvexport.moc"
