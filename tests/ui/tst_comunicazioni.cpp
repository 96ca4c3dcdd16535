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

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Replaces the text of a line edit as the technician does, from the keyboard.
void retype(QLineEdit *edit, const QString &text)
{
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

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
        // The main window with the editor plugged in, over a plant of two zones.
        WindowRig rig;
        rig.plant.writeFile(QStringLiteral("Telvane2.ini"), PlantSettings);
        rig.startUp();
        PlantSession session{rig.plant.rt, rig.supervisor, rig.prompts};
        auto *editor = new Comunicazioni(rig.plant.rt, rig.supervisor, rig.prompts, [&session] { session.reload(); });
        const QString pdf = rig.plant.dir.filePath(QStringLiteral("stampa.pdf"));
        editor->setPrintTargetOpener([&pdf] { return PrintTarget{QtPrinterSink::pdfFile(pdf), pdf}; });
        rig.window->plugEditor(editor);
        rig.clickButton(QStringLiteral("7"));
        const auto list = [editor](const QString &name) {
            QStringList lines;
            QAbstractItemModel *model = editor->findChild<QListView *>(name)->model();
            for (int row = 0; row < model->rowCount(); ++row)
                lines.append(model->index(row, 0).data().toString());
            return lines;
        };
        const auto read = [&rig](const QString &name) { return readAll(rig.plant.dir.filePath(name)); };
        const auto trigger = [editor](const QString &entry) { editor->findChild<QAction *>(entry)->trigger(); };
        const auto click = [](QWidget *page, const QString &button) {
            auto *target = page->findChild<QPushButton *>(button);
            QVERIFY2(target && target->isEnabled(), qPrintable(button));
            QTest::mouseClick(target, Qt::LeftButton);
        };
        QVERIFY(editor->isVisible());
        QVERIFY(rig.plant.rt.display.EditorOpen);
        QVERIFY(rig.button(QStringLiteral("7"))->isChecked());
        QCOMPARE(list(QStringLiteral("Lst_Letture")), QStringList{"100>1:3,1 [0]"});
        QVERIFY(editor->findChild<QListView *>(QStringLiteral("Lst_Letture"))->isEnabled());
        QVERIFY(!editor->findChild<QListView *>(QStringLiteral("Lst_Scritture"))->isEnabled());
        // The preview draws the lists without asking or printing.
        const auto openPreview = [&](QWidget *from, const QString &button) {
            click(from, button);
            auto *dialog = editor->findChild<QPrintPreviewDialog *>(QStringLiteral("Anteprima"));
            return dialog ? dialog->findChild<QPrintPreviewWidget *>() : nullptr;
        };
        QPrintPreviewWidget *lists = openPreview(editor, QStringLiteral("Cmd_Anteprima"));
        QVERIFY(lists);
        QTRY_COMPARE(lists->pageCount(), 1);
        delete lists->window();
        QVERIFY(rig.prompts.asked().isEmpty());
        QVERIFY(!QFileInfo::exists(pdf));

        const QByteArray before = read(QStringLiteral("Telvane2.ini"));
        trigger(QStringLiteral("MenuZone"));
        FieldPage *zones = editor->fieldPage(QStringLiteral("Zone"));
        QWidget *zone1 = zones->findChild<QWidget *>(QStringLiteral("Item_1"));
        retype(zone1->findChild<QLineEdit *>(QStringLiteral("Indirizzo")), QStringLiteral("300"));
        QVERIFY(!zones->findChild<QPushButton *>(QStringLiteral("Cmd_Chiudi_Zone_0"))->isEnabled());
        QVERIFY(zone1->findChild<QLabel *>(QStringLiteral("Lab_Problema_Indirizzo"))->text().contains("1 a 255"));
        QVERIFY(zones->findChild<QLabel *>(QStringLiteral("Lab_Problemi"))->text().contains("Zona 01, Indirizzo"));
        click(zones, QStringLiteral("Cmd_Chiudi_Zone_1"));
        QCOMPARE(read(QStringLiteral("Telvane2.ini")), before);
        QCOMPARE(list(QStringLiteral("Lst_Letture")), QStringList{"100>1:3,1 [0]"});

        trigger(QStringLiteral("MenuPorta"));
        FieldPage *port = editor->fieldPage(QStringLiteral("RS232"));
        QCOMPARE(editor->currentPage(), static_cast<QWidget *>(port));
        auto *timeout = port->findChild<QComboBox *>(QStringLiteral("Cmb_TimeOut"));
        QCOMPARE(timeout->currentText(), QStringLiteral("500"));
        retype(timeout->lineEdit(), QStringLiteral("250"));
        click(port, QStringLiteral("Cmd_Chiudi_RS232_0"));
        QVERIFY(read(QStringLiteral("Telvane2.ini")).contains("TimeOut=250\r\n"));
        QCOMPARE(rig.plant.rt.model.editor.comm.timeoutSeconds, 0.25f);
        QVERIFY(!editor->currentPage());

        trigger(QStringLiteral("MenuZone"));
        zones->findChild<QComboBox *>(QStringLiteral("Cmb_Zona"))->setCurrentIndex(1);
        QWidget *zone2 = zones->findChild<QWidget *>(QStringLiteral("Item_2"));
        QVERIFY(zone2 && zone2->isVisible());
        retype(zone2->findChild<QLineEdit *>(QStringLiteral("SP_r")), QStringLiteral("3,40005"));
        click(zones, QStringLiteral("Cmd_Chiudi_Zone_0"));
        QCOMPARE(list(QStringLiteral("Lst_Letture")), QStringList({"100>1:3,1 [0]", "101>2:3,40005 [0]"}));
        QVERIFY(read(QStringLiteral("Telvane2.ini")).contains("[Zona 02]\r\nNome=Cucina\r\nIndirizzo=2\r\n"));

        rig.prompts.scriptQuestion(true);
        QTest::mouseClick(editor->findChild<QPushButton *>(QStringLiteral("Cmd_Stampa")), Qt::LeftButton);
        QVERIFY(QFileInfo(pdf).size() > 0);
        QCOMPARE(rig.prompts.asked().size(), 2);
        QCOMPARE(rig.prompts.asked()[1].kind, RecordingPrompts::Kind::Information);
        QVERIFY(rig.prompts.asked()[1].text.contains(pdf));

        QFrame *frame = editor->settingsFrame();
        QVERIFY(frame->isEnabled());
        rig.supervisor.MenuStart();
        QVERIFY(rig.supervisor.AcquisitionRunning());
        QVERIFY(!frame->isEnabled());
        QVERIFY(!editor->findChild<QMenu *>(QStringLiteral("MenuImpostazioni"))->isEnabled());
        rig.supervisor.MenuStop();
        QVERIFY(!frame->isEnabled());
        rig.plant.login(false, true);
        rig.supervisor.MenuStart();
        rig.supervisor.MenuStop();
        QVERIFY(frame->isEnabled());

        // The civil plant's schedule: previewed without printing, set points typed for a
        // range of slots, saved on confirm.
        trigger(QStringLiteral("MenuCambiaIni"));
        QCOMPARE(rig.plant.rt.model.ini.ReadModeKey("Generale", "Modo", ""), QStringLiteral("1"));
        QCOMPARE(rig.entry(QStringLiteral("MenuCrono"))->text(), QStringLiteral("Impostazioni cronotermostato"));
        QCOMPARE(rig.button(QStringLiteral("5"))->text(), QStringLiteral("Stagione"));
        QVERIFY(list(QStringLiteral("Lst_Letture")).isEmpty()); // Telvane1.ini holds no plant yet
        rig.plant.writeFile(QStringLiteral("Telvane1.ini"), PlantSettings);
        trigger(QStringLiteral("MenuRileggiIni"));
        rig.entry(QStringLiteral("MenuCrono"))->trigger();
        ChronoPage *page = editor->chronoPage();
        QCOMPARE(editor->currentPage(), static_cast<QWidget *>(page));
        QPrintPreviewWidget *schedule = openPreview(page, QStringLiteral("Cmd_AnteprimaCT"));
        QVERIFY(schedule);
        QTRY_COMPARE(schedule->pageCount(), 2); // one zone's week: its 96 slots a day run onto a second page
        delete schedule->window();
        QCOMPARE(rig.prompts.asked().size(), 2); // the print's two boxes, nothing more

        QCOMPARE(page->findChild<QComboBox *>(QStringLiteral("Cmb_ZonaCT"))->count(), 2);
        auto *tuesday = page->findChild<QListWidget *>(QStringLiteral("Lst_CT_1"));
        tuesday->setCurrentRow(28);
        QTest::keyClick(tuesday, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(tuesday->selectedItems().size(), 2);
        auto *setPoint = page->findChild<QLineEdit *>(QStringLiteral("Txt_CT"));
        retype(setPoint, QStringLiteral("21,5"));
        QTest::keyClick(setPoint, Qt::Key_Return);
        QCOMPARE(tuesday->item(28)->text(), QStringLiteral("07:00   21.5"));
        QCOMPARE(tuesday->item(29)->text(), QStringLiteral("07:15   21.5"));
        click(page, QStringLiteral("Cmd_OK_CT_0"));
        QCOMPARE(rig.plant.rt.model.chrono(28, 0, 1), 21.5f);
        QCOMPARE(rig.plant.rt.model.chrono(29, 0, 1), 21.5f);
        QCOMPARE(rig.plant.rt.model.chrono(30, 0, 1), 20.0f);
        const QList<QByteArray> lines = read(QStringLiteral("Crono/Cronotermostato.cts")).split('\n');
        QCOMPARE(lines.value((29 * 30 + 0) * 7 + 1).trimmed(), QByteArray("21.5"));
    }
};

QTEST_MAIN(TestComunicazioni)
#include "tst_comunicazioni.moc"
