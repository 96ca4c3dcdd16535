#include "config_editor/recipetemplate.h"
#include "support/settingsfixture.h"

using namespace telvane;

class TestRecipeTemplate : public QObject
{
    Q_OBJECT

private slots:
    void templateReplacesAnOlderOne()
    {
        SettingsFolder dir;
        dir.write("Ricetta/InvioDati.prg", "[File]\r\nID = vecchio\r\n");
        const QString path = WriteRecipeTemplate(dir.folder());
        QCOMPARE(path, dir.path("Ricetta/InvioDati.prg"));
        const QByteArray text = dir.read("Ricetta/InvioDati.prg");
        QVERIFY(text.startsWith("[File]\r\nID = Telvane\r\n\r\n\r\n[Note]\r\n< Spazio dedicato alle note del cliente >"
                                "\r\n\r\n\r\n[Zona 01]\r\nIntervallo = 150\r\nLinee =0\r\n\r\n\r\n[Zona 02]\r\n"));
        QVERIFY(text.endsWith("\r\n\r\n\r\n[Zona 30]\r\nIntervallo = 150\r\nLinee =0\r\n"));
        QCOMPARE(text.count("[Zona "), 30);
    }

    void missingFolderIsMade()
    {
        SettingsFolder dir;
        QVERIFY(!WriteRecipeTemplate(dir.folder()).isEmpty());
        QVERIFY(QFileInfo(dir.path("Ricetta")).isDir());
    }
};

QTEST_GUILESS_MAIN(TestRecipeTemplate)
#include "tst_recipetemplate.moc"
