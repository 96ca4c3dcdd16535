#include "windowrig.h"

#include "ui/allarmi.h"
#include "ui/frmlogin.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPushButton>
#include <QTest>

using namespace telvane;

class TestLogin : public QObject
{
    Q_OBJECT

private:
    static void typeAndConfirm(WindowRig &rig, const QString &name, const QString &password)
    {
        frmLogin *login = rig.window->loginWindow();
        auto *user = login->findChild<QLineEdit *>(QStringLiteral("txtUserName"));
        auto *secret = login->findChild<QLineEdit *>(QStringLiteral("txtPassword"));
        user->clear();
        QTest::keyClicks(user, name);
        QTest::keyClicks(secret, password);
        QTest::mouseClick(login->findChild<QPushButton *>(QStringLiteral("cmdOK")), Qt::LeftButton);
    }

    // The error view's details, and the note that replaces them for anonymous users.
    static void checkDiagnostics(WindowRig &rig, bool privileged)
    {
        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuErroriCOM"));
        Allarmi *alarms = rig.window->alarmsWindow();
        QVERIFY(alarms->isVisible());
        QCOMPARE(alarms->findChild<QGroupBox *>(QStringLiteral("Fra_ErroriCOM"))->isVisible(), privileged);
        QCOMPARE(alarms->findChild<QLabel *>(QStringLiteral("Lab_Riservato"))->isVisible(), !privileged);
    }

private slots:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("telvane.*.debug=false")); }

    void loginAsEachUser_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("panel");
        QTest::addColumn<bool>("technician");
        QTest::addColumn<bool>("administrator");
        QTest::addColumn<bool>("refused");

        QTest::newRow("Tecnico") << "Tecnico" << "Qx7" << "Utente: Tecnico" << true << false << false;
        QTest::newRow("Service") << "Service" << "7ubl4ko" << "Utente: Amministratore" << false << true << false;
        QTest::newRow("Admin") << "Admin" << "Wm4" << "Utente: Amministratore" << false << true << false;
        QTest::newRow("wrong password") << "Tecnico" << "qx7" << "Utente: Anonimo" << false << false << true;
        QTest::newRow("admin in lower case") << "admin" << "Wm4" << "Utente: Anonimo" << false << false << true;
        QTest::newRow("password only") << "" << "Wm4" << "Utente: Anonimo" << false << false << true;
        QTest::newRow("both empty: quiet logout") << "" << "" << "Utente: Anonimo" << false << false << false;
    }

    void loginAsEachUser()
    {
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(QString, panel);
        QFETCH(bool, technician);
        QFETCH(bool, administrator);
        QFETCH(bool, refused);

        WindowRig rig;
        rig.startUp();
        // Someone else was logged in: every attempt logs them out first.
        rig.clickButton(QStringLiteral("1"));
        typeAndConfirm(rig, QStringLiteral("Service"), QStringLiteral("7ubl4ko"));
        QCOMPARE(rig.panel(1), QStringLiteral("Utente: Amministratore"));
        QVERIFY(!rig.window->loginWindow()->isVisible());

        rig.clickButton(QStringLiteral("1"));
        frmLogin *login = rig.window->loginWindow();
        QVERIFY(login->isVisible());
        QCOMPARE(login->findChild<QLineEdit *>(QStringLiteral("txtPassword"))->echoMode(), QLineEdit::Password);
        typeAndConfirm(rig, name, password);

        QCOMPARE(rig.panel(1), panel);
        QCOMPARE(rig.plant.rt.user.IsTechnician, technician);
        QCOMPARE(rig.plant.rt.user.IsAdministrator, administrator);
        const QList<RecordingPrompts::Prompt> refusal{
            {RecordingPrompts::Kind::Warning, QStringLiteral("Accesso"), QStringLiteral("Password errata.")}};
        QCOMPARE(rig.prompts.asked(), refused ? refusal : QList<RecordingPrompts::Prompt>{});
        // A refused login stays open for another try, with the password cleared.
        QCOMPARE(login->isVisible(), refused);
        QCOMPARE(rig.entry(QStringLiteral("MenuLogin"))->isChecked(), refused);
        QCOMPARE(login->findChild<QLineEdit *>(QStringLiteral("txtPassword"))->text(), QString());

        checkDiagnostics(rig, technician || administrator);
    }

    void cancelKeepsTheUser()
    {
        WindowRig rig;
        rig.startUp();
        rig.clickButton(QStringLiteral("1"));
        typeAndConfirm(rig, QStringLiteral("Tecnico"), QStringLiteral("Qx7"));

        rig.clickButton(QStringLiteral("1"));
        frmLogin *login = rig.window->loginWindow();
        QTest::keyClicks(login->findChild<QLineEdit *>(QStringLiteral("txtPassword")), QStringLiteral("abc"));
        QTest::mouseClick(login->findChild<QPushButton *>(QStringLiteral("cmdCancel")), Qt::LeftButton);

        QVERIFY(!login->isVisible());
        QVERIFY(!rig.entry(QStringLiteral("MenuLogin"))->isChecked());
        QCOMPARE(rig.panel(1), QStringLiteral("Utente: Tecnico"));
        QVERIFY(rig.plant.rt.user.IsTechnician);
    }

    void enterConfirms()
    {
        WindowRig rig;
        rig.startUp();
        rig.clickButton(QStringLiteral("1"));
        frmLogin *login = rig.window->loginWindow();
        QTest::keyClicks(login->findChild<QLineEdit *>(QStringLiteral("txtUserName")), QStringLiteral("Admin"));
        auto *password = login->findChild<QLineEdit *>(QStringLiteral("txtPassword"));
        QTest::keyClicks(password, QStringLiteral("Wm4"));
        QTest::keyClick(password, Qt::Key_Return);
        QCOMPARE(rig.panel(1), QStringLiteral("Utente: Amministratore"));
    }

    // Logging in while the error view is open shows the details at once; logging out
    // hides them.
    void errorViewFollowsTheUser()
    {
        WindowRig rig;
        rig.startUp();
        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuErroriCOM"));
        auto *details = rig.window->alarmsWindow()->findChild<QGroupBox *>(QStringLiteral("Fra_ErroriCOM"));
        QVERIFY(!details->isVisible());

        rig.clickButton(QStringLiteral("1"));
        typeAndConfirm(rig, QStringLiteral("Tecnico"), QStringLiteral("Qx7"));
        QVERIFY(details->isVisible());

        rig.clickButton(QStringLiteral("1"));
        typeAndConfirm(rig, QString(), QString());
        QVERIFY(!details->isVisible());
    }
};

QTEST_MAIN(TestLogin)
#include "tst_login.moc"
