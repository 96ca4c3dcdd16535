#include "windowrig.h"

#include "session/plantsession.h"
#include "ui/editor/chronopage.h"
#include "ui/editor/comunicazioni.h"
#include "ui/editor/fieldpage.h"

#include <QAction>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

using namespace telvane;

namespace {

const QByteArray PlantSettings = "[Generale]\r\nZone=2\r\n[COM]\r\nTimeOut=500\r\n"
                                 "[Zona 01]\r\nNome=Sala\r\nIndirizzo=1\r\nPV_r=3,1\r\n"
                                 "[Zona 02]\r\nNome=Cucina\r\nIndirizzo=2\r\n";

// The main window with the editor plugged in, over a plant of two zones.
struct EditorRig
{
    EditorRig(const QByteArray &settings = PlantSettings)
    {
        rig.plant.writeFile(QStringLiteral("Telvane2.ini"), settings);
        rig.startUp();
        editor = new Comunicazioni(rig.plant.rt, rig.supervisor, rig.prompts, [this] { session.reload(); });
        editor->setPrintTargetOpener([this] {
            PrintTarget target;
            target.pdfPath = rig.plant.dir.filePath(QStringLiteral("stampa.pdf"));
            target.sink = QtPrinterSink::pdfFile(target.pdfPath);
            return target;
        });
        rig.window->plugEditor(editor);
        rig.clickButton(QStringLiteral("7"));
    }

    QStringList list(const QString &name) const
    {
        QStringList lines;
        QAbstractItemModel *model = editor->findChild<QListView *>(name)->model();
        for (int row = 0; row < model->rowCount(); ++row)
            lines.append(model->index(row, 0).data().toString());
        return lines;
    }
    QByteArray read(const QString &name) const
    {
        QFile file(rig.plant.dir.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void trigger(const QString &entry) { editor->findChild<QAction *>(entry)->trigger(); }
    void click(QWidget *page, const QString &button)
    {
        auto *target = page->findChild<QPushButton *>(button);
        QVERIFY2(target && target->isEnabled(), qPrintable(button));
        QTest::mouseClick(target, Qt::LeftButton);
    }
    // Replaces the text of a line edit as the technician does, from the keyboard.
    static void retype(QLineEdit *edit, const QString &text)
    {
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    }

    WindowRig rig;
    PlantSession session{rig.plant.rt, rig.supervisor, rig.prompts};
    Comunicazioni *editor = nullptr;
};

} // namespace

class TestComunicazioni : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    // Opened on the lists as built; a bad value blocks its page and closing without
    // confirming writes nothing; the port and zone pages save and are in force at once;
    // the lists print to a PDF; the settings are locked while acquiring unless an
    // administrator stopped it; then the civil plant's schedule.
    void editTheIndustrialPlant()
    {
        EditorRig rig;
        QVERIFY(rig.editor->isVisible());
        QVERIFY(rig.rig.plant.rt.display.EditorOpen);
        QVERIFY(rig.rig.button(QStringLiteral("7"))->isChecked());
        QCOMPARE(rig.list(QStringLiteral("Lst_Letture")), QStringList{"100>1:3,1 [0]"});
        QVERIFY(rig.editor->findChild<QListView *>(QStringLiteral("Lst_Letture"))->isEnabled());
        QVERIFY(!rig.editor->findChild<QListView *>(QStringLiteral("Lst_Scritture"))->isEnabled());
        // The preview draws the lists without asking or printing.
        const auto openPreview = [&](QWidget *from, const QString &button) {
            rig.click(from, button);
            auto *dialog = rig.editor->findChild<QPrintPreviewDialog *>(QStringLiteral("Anteprima"));
            return dialog ? dialog->findChild<QPrintPreviewWidget *>() : nullptr;
        };
        QPrintPreviewWidget *lists = openPreview(rig.editor, QStringLiteral("Cmd_Anteprima"));
        QVERIFY(lists);
        QTRY_COMPARE(lists->pageCount(), 1);
        delete lists->window();
        QVERIFY(rig.rig.prompts.asked().isEmpty());
        QVERIFY(!QFileInfo::exists(rig.rig.plant.dir.filePath(QStringLiteral("stampa.pdf"))));

        const QByteArray before = rig.read(QStringLiteral("Telvane2.ini"));
        rig.trigger(QStringLiteral("MenuZone"));
        FieldPage *zones = rig.editor->fieldPage(QStringLiteral("Zone"));
        QWidget *zone1 = zones->findChild<QWidget *>(QStringLiteral("Item_1"));
        EditorRig::retype(zone1->findChild<QLineEdit *>(QStringLiteral("Indirizzo")), QStringLiteral("300"));
        QVERIFY(!zones->findChild<QPushButton *>(QStringLiteral("Cmd_Chiudi_Zone_0"))->isEnabled());
        QVERIFY(zone1->findChild<QLabel *>(QStringLiteral("Lab_Problema_Indirizzo"))->text().contains("1 a 255"));
        QVERIFY(zones->findChild<QLabel *>(QStringLiteral("Lab_Problemi"))->text().contains("Zona 01, Indirizzo"));
        rig.click(zones, QStringLiteral("Cmd_Chiudi_Zone_1"));
        QCOMPARE(rig.read(QStringLiteral("Telvane2.ini")), before);
        QCOMPARE(rig.list(QStringLiteral("Lst_Letture")), QStringList{"100>1:3,1 [0]"});

        rig.trigger(QStringLiteral("MenuPorta"));
        FieldPage *port = rig.editor->fieldPage(QStringLiteral("RS232"));
        QCOMPARE(rig.editor->currentPage(), static_cast<QWidget *>(port));
        auto *timeout = port->findChild<QComboBox *>(QStringLiteral("Cmb_TimeOut"));
        QCOMPARE(timeout->currentText(), QStringLiteral("500"));
        EditorRig::retype(timeout->lineEdit(), QStringLiteral("250"));
        rig.click(port, QStringLiteral("Cmd_Chiudi_RS232_0"));
        QVERIFY(rig.read(QStringLiteral("Telvane2.ini")).contains("TimeOut=250\r\n"));
        QCOMPARE(rig.rig.plant.rt.model.editor.comm.timeoutSeconds, 0.25f);
        QVERIFY(!rig.editor->currentPage());

        rig.trigger(QStringLiteral("MenuZone"));
        zones->findChild<QComboBox *>(QStringLiteral("Cmb_Zona"))->setCurrentIndex(1);
        QWidget *zone2 = zones->findChild<QWidget *>(QStringLiteral("Item_2"));
        QVERIFY(zone2 && zone2->isVisible());
        EditorRig::retype(zone2->findChild<QLineEdit *>(QStringLiteral("SP_r")), QStringLiteral("3,40005"));
        rig.click(zones, QStringLiteral("Cmd_Chiudi_Zone_0"));
        QCOMPARE(rig.list(QStringLiteral("Lst_Letture")), QStringList({"100>1:3,1 [0]", "101>2:3,40005 [0]"}));
        QVERIFY(rig.read(QStringLiteral("Telvane2.ini")).contains("[Zona 02]\r\nNome=Cucina\r\nIndirizzo=2\r\n"));

        rig.rig.prompts.scriptQuestion(true);
        QTest::mouseClick(rig.editor->findChild<QPushButton *>(QStringLiteral("Cmd_Stampa")), Qt::LeftButton);
        const QString pdf = rig.rig.plant.dir.filePath(QStringLiteral("stampa.pdf"));
        QVERIFY(QFileInfo(pdf).size() > 0);
        QCOMPARE(rig.rig.prompts.asked().size(), 2);
        QCOMPARE(rig.rig.prompts.asked()[1].kind, RecordingPrompts::Kind::Information);
        QVERIFY(rig.rig.prompts.asked()[1].text.contains(pdf));

        QFrame *frame = rig.editor->settingsFrame();
        QVERIFY(frame->isEnabled());
        rig.rig.supervisor.MenuStart();
        QVERIFY(rig.rig.supervisor.AcquisitionRunning());
        QVERIFY(!frame->isEnabled());
        QVERIFY(!rig.editor->findChild<QMenu *>(QStringLiteral("MenuImpostazioni"))->isEnabled());
        rig.rig.supervisor.MenuStop();
        QVERIFY(!frame->isEnabled());
        rig.rig.plant.login(false, true);
        rig.rig.supervisor.MenuStart();
        rig.rig.supervisor.MenuStop();
        QVERIFY(frame->isEnabled());

        // The civil plant's schedule: previewed without printing, set points typed for a
        // range of slots, saved on confirm.
        rig.trigger(QStringLiteral("MenuCambiaIni"));
        QCOMPARE(rig.rig.plant.rt.model.ini.ReadModeKey("Generale", "Modo", ""), QStringLiteral("1"));
        QCOMPARE(rig.rig.entry(QStringLiteral("MenuCrono"))->text(), QStringLiteral("Impostazioni cronotermostato"));
        QCOMPARE(rig.rig.button(QStringLiteral("5"))->text(), QStringLiteral("Stagione"));
        QVERIFY(rig.list(QStringLiteral("Lst_Letture")).isEmpty()); // Telvane1.ini holds no plant yet
        rig.rig.plant.writeFile(QStringLiteral("Telvane1.ini"), PlantSettings);
        rig.trigger(QStringLiteral("MenuRileggiIni"));
        rig.rig.entry(QStringLiteral("MenuCrono"))->trigger();
        ChronoPage *page = rig.editor->chronoPage();
        QCOMPARE(rig.editor->currentPage(), static_cast<QWidget *>(page));
        QPrintPreviewWidget *schedule = openPreview(page, QStringLiteral("Cmd_AnteprimaCT"));
        QVERIFY(schedule);
        QTRY_COMPARE(schedule->pageCount(), 2); // one zone's week: its 96 slots a day run onto a second page
        delete schedule->window();
        QCOMPARE(rig.rig.prompts.asked().size(), 2); // the print's two boxes, nothing more

        QCOMPARE(page->findChild<QComboBox *>(QStringLiteral("Cmb_ZonaCT"))->count(), 2);
        auto *tuesday = page->findChild<QListWidget *>(QStringLiteral("Lst_CT_1"));
        tuesday->setCurrentRow(28);
        QTest::keyClick(tuesday, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(tuesday->selectedItems().size(), 2);
        auto *setPoint = page->findChild<QLineEdit *>(QStringLiteral("Txt_CT"));
        EditorRig::retype(setPoint, QStringLiteral("21,5"));
        QTest::keyClick(setPoint, Qt::Key_Return);
        QCOMPARE(tuesday->item(28)->text(), QStringLiteral("07:00   21.5"));
        QCOMPARE(tuesday->item(29)->text(), QStringLiteral("07:15   21.5"));
        rig.click(page, QStringLiteral("Cmd_OK_CT_0"));
        QCOMPARE(rig.rig.plant.rt.model.chrono(28, 0, 1), 21.5f);
        QCOMPARE(rig.rig.plant.rt.model.chrono(29, 0, 1), 21.5f);
        QCOMPARE(rig.rig.plant.rt.model.chrono(30, 0, 1), 20.0f);
        const QList<QByteArray> lines = rig.read(QStringLiteral("Crono/Cronotermostato.cts")).split('\n');
        QCOMPARE(lines.value((29 * 30 + 0) * 7 + 1).trimmed(), QByteArray("21.5"));
    }
};

QTEST_MAIN(TestComunicazioni)
#include "tst_comunicazioni.moc"
