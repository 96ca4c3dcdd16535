#include "windowrig.h"

#include "support/datarows.h"
#include "ui/allarmi.h"
#include "ui/frmlogin.h"

#include <QGroupBox>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPushButton>
#include <QTest>

using namespace telvane;

class TestLogin : public QObject
{
    Q_OBJECT

private:
    static QLineEdit *field(WindowRig &rig, const char *name)
    {
        return rig.window->loginWindow()->findChild<QLineEdit *>(QLatin1String(name));
    }
    // Opens the login by button "1" and types; `confirm` is "cmdOK", "cmdCancel", "Enter"
    // or "Escape".
    static void logIn(WindowRig &rig, const QString &name, const QString &password, const QString &confirm = "cmdOK")
    {
        rig.clickButton(QStringLiteral("1"));
        field(rig, "txtUserName")->clear();
        QTest::keyClicks(field(rig, "txtUserName"), name);
        QTest::keyClicks(field(rig, "txtPassword"), password);
        if (confirm == QLatin1String("Enter"))
            QTest::keyClick(field(rig, "txtPassword"), Qt::Key_Return);
        else if (confirm == QLatin1String("Escape"))
            QTest::keyClick(field(rig, "txtPassword"), Qt::Key_Escape);
        else
            QTest::mouseClick(rig.window->loginWindow()->findChild<QPushButton *>(confirm), Qt::LeftButton);
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    // name|password|confirm|panel 1|technician|administrator|refused. Service was
    // logged in before: every attempt logs out first, Annulla (or Escape) keeps him.
    void loginAsEachUser_data()
    {
        addRows({"Tecnico|Qx7|cmdOK|Utente: Tecnico|1|0|0", "Service|7ubl4ko|cmdOK|Utente: Amministratore|0|1|0",
                 "Admin|Wm4|Enter|Utente: Amministratore|0|1|0", "Tecnico|qx7|cmdOK|Utente: Anonimo|0|0|1",
                 "admin|Wm4|cmdOK|Utente: Anonimo|0|0|1", "||cmdOK|Utente: Anonimo|0|0|0",
                 "Tecnico|Qx7|cmdCancel|Utente: Amministratore|0|1|0", "Tecnico|Qx7|Escape|Utente: Amministratore|0|1|0"});
    }
    void loginAsEachUser()
    {
        const QStringList cells = rowCells();
        const bool technician = cells[4] == "1", administrator = cells[5] == "1", refused = cells[6] == "1";
        WindowRig rig;
        rig.startUp();
        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuErroriCOM"));
        auto *details = rig.window->alarmsWindow()->findChild<QGroupBox *>(QStringLiteral("Fra_ErroriCOM"));
        QVERIFY(!details->isVisible());
        logIn(rig, QStringLiteral("Service"), QStringLiteral("7ubl4ko"));
        QVERIFY(details->isVisible());
        QCOMPARE(field(rig, "txtPassword")->echoMode(), QLineEdit::Password);

        logIn(rig, cells[0], cells[1], cells[2]);
        QCOMPARE(rig.panel(1), cells[3]);
        QCOMPARE(rig.plant.rt.services.user.IsTechnician, technician);
        QCOMPARE(rig.plant.rt.services.user.IsAdministrator, administrator);
        const QList<RecordingPrompts::Prompt> refusal{
            {RecordingPrompts::Kind::Warning, QStringLiteral("Accesso"), QStringLiteral("Password errata.")}};
        QCOMPARE(rig.prompts.asked(), refused ? refusal : QList<RecordingPrompts::Prompt>{});
        // A refused login stays open for another try, with the password cleared.
        QCOMPARE(rig.window->loginWindow()->isVisible(), refused);
        QCOMPARE(rig.entry(QStringLiteral("MenuLogin"))->isChecked(), refused);
        QCOMPARE(field(rig, "txtPassword")->text(), QString());
        QCOMPARE(details->isVisible(), technician || administrator);
    }
};

QTEST_MAIN(TestLogin)
#include "tst_login.moc"
