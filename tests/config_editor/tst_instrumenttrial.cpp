#include "config_editor/editorpages.h"
#include "config_editor/instrumenttrial.h"
#include "support/runtimefixture.h"

using namespace telvane;

class TestInstrumentTrial : public QObject
{
    Q_OBJECT

private slots:
    // The page's typed texts are tried, saved or not; each register says what it got.
    void readsEveryRegisterOfTheShownItem()
    {
        RuntimeFixture fx;
        fx.setValue(5, 3, 100, 215);
        fx.setValue(5, 1, 7, 1);
        SettingsFolder dir;
        IniStore ini = dir.store("[Generale]\r\nZone=2\r\n");
        PageModel page = zonesPage();
        page.load(ini);
        const auto set = [&page](const QString &key, const QString &text) { page.setText(page.indexOf("Zona 02", key), text); };
        set("Indirizzo", "5");
        set("Decimali", "1");
        set("PV_r", "3,100");
        set("SP_r", "3,101");
        set("REM_r", "1,7");
        set("AL1_r", "3");
        set("PV_w", "6,100");
        QCOMPARE(TryInstrument(fx.rt.services.master, page, "Zona 02"),
                 QStringList({"PV lettura (3,100): 21.5", "SP lettura (3,101): nessuna risposta valida (Time out)",
                              "AL1 lettura (3): registro non valido, non letto", "REM lettura (1,7): 1"}));
        QCOMPARE(fx.takeRequests(), QStringList({RuntimeFixture::request(5, 3, 100, 1), RuntimeFixture::request(5, 3, 101, 1),
                                                 RuntimeFixture::request(5, 1, 7, 1)}));

        set("Indirizzo", "0");
        QCOMPARE(TryInstrument(fx.rt.services.master, page, "Zona 02").size(), 1);
        QVERIFY(fx.takeRequests().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestInstrumentTrial)
#include "tst_instrumenttrial.moc"
