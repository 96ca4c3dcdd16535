#include "windowrig.h"

#include "season/seasonchange.h"
#include "ui/stagione.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

using namespace telvane;

namespace {

using Kind = RecordingPrompts::Kind;
using Prompt = RecordingPrompts::Prompt;

const QString Title = QStringLiteral("Configurazione strumenti");
const QStringList ListNames{"Lst_nDev", "Lst_Dev", "Lst_Sadd", "Lst_FC", "Lst_MB", "Lst_MBVal", "Lst_NomePar"};

} // namespace

class TestStagione : public QObject
{
    Q_OBJECT

private:
    template <typename T>
    static T *child(WindowRig &rig, const QString &name)
    {
        T *widget = rig.window->seasonWindow()->findChild<T *>(name);
        if (!widget)
            qFatal("no %s", qPrintable(name));
        return widget;
    }

private slots:
    // Button "5" opens the window on the next change's recipe; the operator confirms
    // and the rows go out with the progress shown, the season becomes winter.
    void sendFromTheWindow()
    {
        WindowRig rig;
        // The industrial plant: two zones on slaves 1 and 2, in summer. The winter recipe
        // writes 30 set points to zone 1 and one to zone 2, more rows than the lists show.
        rig.plant.writeFile(QStringLiteral("Telvane2.ini"),
                            "[Generale]\r\nZone=2\r\n[Zona 01]\r\nNome=Ufficio\r\nIndirizzo=1\r\n"
                            "[Zona 02]\r\nNome=Magazzino\r\nIndirizzo=2\r\n"
                            "[Stagione]\r\nAttuale=0\r\nInverno=Inverno.prg\r\nEstate=Estate.prg\r\n");
        QByteArray zone1 = "[Zona 01]\r\nIntervallo=10\r\nLinee=30\r\n";
        for (int line = 1; line <= 30; ++line)
            zone1 += QStringLiteral("%1=6,%2,%3;Parametro %2\r\n").arg(line, 2, 10, QLatin1Char('0')).arg(line).arg(line * 10)
                         .toLatin1();
        rig.plant.writeFile(QStringLiteral("Ricetta/Inverno.prg"),
                            "[File]\r\nID=Telvane\r\n" + zone1 + "[Zona 02]\r\nLinee=1\r\n01=5,1,1;Remoto\r\n");
        rig.plant.writeFile(QStringLiteral("Ricetta/Estate.prg"), "[File]\r\nID=Telvane\r\n");
        rig.plant.slaves = {1, 2};
        rig.supervisor.setCommunicateWithInstruments(true);
        rig.startUp();
        rig.clickButton(QStringLiteral("5"));
        Stagione *window = rig.window->seasonWindow();
        QVERIFY(window->isVisible());
        QCOMPARE(window->windowTitle(), QStringLiteral("Ricette"));
        QCOMPARE(rig.button(QStringLiteral("5"))->text(), QStringLiteral("Ricette"));
        QCOMPARE(child<QLabel>(rig, "Lab_Attuale")->text(), QStringLiteral("Stagione attuale: Estate"));
        // Opening tells in the window, not in a box, that the recipe loaded.
        QVERIFY(rig.prompts.asked().isEmpty());
        QCOMPARE(child<QLabel>(rig, "Lab_Esito")->text(), QStringLiteral("Il file Inverno.prg è stato caricato correttamente."));

        // A recipe chosen outside "Ricetta" is refused; one inside it is named for its
        // change and, being the next, loaded; then the first one again.
        rig.plant.writeFile(QStringLiteral("Ricetta/Inverno2.prg"),
                            "[File]\r\nID=Telvane\r\n[Zona 02]\r\nLinee=1\r\n01=6,4,7;Uno\r\n");
        QString offered;
        QString answer = rig.plant.dir.filePath(QStringLiteral("Inverno2.prg"));
        window->setFileChooser([&](const QString &folder) {
            offered = folder;
            return answer;
        });
        QTest::mouseClick(child<QPushButton>(rig, "Cmd_Inverno"), Qt::LeftButton);
        QCOMPARE(offered, rig.plant.dir.filePath(QStringLiteral("Ricetta")));
        QCOMPARE(rig.prompts.asked().last().kind, Kind::Warning);
        QCOMPARE(child<QLineEdit>(rig, "Txt_Inverno")->text(), QStringLiteral("Inverno.prg"));
        answer = rig.plant.dir.filePath(QStringLiteral("Ricetta/Inverno2.prg"));
        QTest::mouseClick(child<QPushButton>(rig, "Cmd_Inverno"), Qt::LeftButton);
        QCOMPARE(child<QLineEdit>(rig, "Txt_Inverno")->text(), QStringLiteral("Inverno2.prg"));
        QCOMPARE(rig.prompts.asked().last(), (Prompt{Kind::Information, Title, "Il file Inverno2.prg è stato caricato correttamente."}));
        QCOMPARE(rig.plant.rt.model.ini.ReadIniKey("Stagione", "Inverno", "?"), QStringLiteral("Inverno2.prg"));
        QCOMPARE(child<QListWidget>(rig, "Lst_NomePar")->count(), 1);
        QCOMPARE(child<QListWidget>(rig, "Lst_Sadd")->item(0)->text(), QStringLiteral("2"));
        answer = rig.plant.dir.filePath(QStringLiteral("Ricetta/Inverno.prg"));
        QTest::mouseClick(child<QPushButton>(rig, "Cmd_Inverno"), Qt::LeftButton);

        // Seven lists of 31 rows, side by side, scrolled as one.
        QStringList lastRow;
        for (const QString &name : ListNames) {
            auto *list = child<QListWidget>(rig, name);
            QCOMPARE(list->count(), 31);
            lastRow.append(list->item(30)->text());
        }
        QCOMPARE(lastRow, (QStringList{"2", "Magazzino", "2", "5", "1", "1", "Remoto"}));
        auto *names = child<QListWidget>(rig, "Lst_NomePar");
        window->parentWidget()->resize(900, 500);
        QTRY_VERIFY(names->verticalScrollBar()->maximum() > 0);
        names->verticalScrollBar()->setValue(names->verticalScrollBar()->maximum());
        for (const QString &name : ListNames)
            QCOMPARE(child<QListWidget>(rig, name)->verticalScrollBar()->value(), names->verticalScrollBar()->value());

        // During the send the window is live but the button refuses a second start, and
        // the main window refuses to start acquiring.
        auto *send = child<QPushButton>(rig, "Cmd_Invio_Stagione");
        QList<bool> enabledDuring;
        QStringList progressDuring;
        bool startEnabledDuring = true;
        rig.plant.line.setDuringYield([&] {
            if (enabledDuring.isEmpty()) {
                startEnabledDuring = rig.entry(QStringLiteral("MenuStart"))->isEnabled();
                rig.clickButton(QStringLiteral("8"));
                QVERIFY2(!rig.supervisor.AcquisitionRunning(), "acquisition started during a send");
            }
            enabledDuring.append(send->isEnabled());
            progressDuring.append(child<QLabel>(rig, "Lab_Avanzamento")->text());
            QTest::mouseClick(send, Qt::LeftButton);
        });
        rig.prompts.clear();
        rig.prompts.scriptQuestion(true);
        QTest::mouseClick(send, Qt::LeftButton);
        rig.plant.line.setDuringYield({});

        QCOMPARE(rig.plant.takeRequests().size(), 31);
        QCOMPARE(enabledDuring, QList<bool>(31, false));
        QVERIFY(!startEnabledDuring);
        QVERIFY(rig.plant.panelTexts[StatusBar::MessagePanel].contains(
            QStringLiteral("Invio ricetta in corso: acquisizione non avviata")));
        QVERIFY(rig.entry(QStringLiteral("MenuStart"))->isEnabled());
        QCOMPARE(rig.panel(4), QString());
        QCOMPARE(progressDuring.first(), QStringLiteral("0%"));
        QCOMPARE(progressDuring.last(), QStringLiteral("96%"));
        QVERIFY(child<QFrame>(rig, "Pic_Avanzamento")->isVisible());
        QCOMPARE(child<QProgressBar>(rig, "ProgBar")->value(), 100);
        QCOMPARE(child<QLabel>(rig, "Lab_Avanzamento")->text(), QStringLiteral("100%"));
        QCOMPARE(rig.prompts.asked(),
                 (QList<Prompt>{{Kind::Question, Title, "Modificare le impostazioni sugli strumenti ?"},
                                {Kind::Information, Title,
                                 "Il cambio delle impostazioni è stato completato correttamente."}}));
        QCOMPARE(rig.plant.rt.model.ini.ReadIniKey("Stagione", "Attuale", "?"), QStringLiteral("1"));
        QCOMPARE(child<QLabel>(rig, "Lab_Attuale")->text(), QStringLiteral("Stagione attuale: Inverno"));

        // The report is kept beside the recipe and prints from the window.
        const QString report = rig.plant.dir.filePath(QStringLiteral("Ricetta/Resoconto Inverno 2026-11-14 22-20-09.txt"));
        QVERIFY(QFileInfo::exists(report));
        QVERIFY(child<QLabel>(rig, "Lab_Esito")->text().endsWith(QStringLiteral("Resoconto salvato in ") + report));
        const QString pdf = rig.plant.dir.filePath(QStringLiteral("resoconto.pdf"));
        window->setPrintTargetOpener([&pdf] { return PrintTarget{QtPrinterSink::pdfFile(pdf), pdf}; });
        QTest::mouseClick(child<QPushButton>(rig, "Cmd_Stampa"), Qt::LeftButton);
        QVERIFY(QFileInfo(pdf).size() > 0);
        QCOMPARE(rig.prompts.asked().last().kind, Kind::Information);
        QVERIFY(rig.prompts.asked().last().text.endsWith(pdf));

        // Closed and opened again: the summer recipe is next, still without a box.
        rig.prompts.clear();
        rig.clickButton(QStringLiteral("5"));
        rig.clickButton(QStringLiteral("5"));
        QVERIFY(window->isVisible());
        QVERIFY(rig.prompts.asked().isEmpty());
        QCOMPARE(child<QLabel>(rig, "Lab_Esito")->text(), QStringLiteral("Il file Estate.prg è stato caricato correttamente."));
    }
};

QTEST_MAIN(TestStagione)
#include "tst_stagione.moc"
