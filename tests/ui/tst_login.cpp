#include "windowrig.h"

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

    // Service was logged in before: every attempt logs out first, Annulla (or Escape)
    // keeps him.
    void loginAsEachUser_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("confirm");
        QTest::addColumn<QString>("panel1");
        QTest::addColumn<bool>("technician");
        QTest::addColumn<bool>("administrator");
        QTest::addColumn<bool>("refused");
        const QString admin = QStringLiteral("Utente: Amministratore");
        const QString anonymous = QStringLiteral("Utente: Anonimo");
        QTest::newRow("technician") << "Tecnico" << "Qx7" << "cmdOK" << "Utente: Tecnico" << true << false << false;
        QTest::newRow("admin by Enter") << "Admin" << "Wm4" << "Enter" << admin << false << true << false;
        QTest::newRow("password case") << "Tecnico" << "qx7" << "cmdOK" << anonymous << false << false << true;
        QTest::newRow("Annulla") << "Tecnico" << "Qx7" << "cmdCancel" << admin << false << true << false;
        QTest::newRow("Escape") << "Tecnico" << "Qx7" << "Escape" << admin << false << true << false;
    }
    void loginAsEachUser()
    {
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(QString, confirm);
        QFETCH(QString, panel1);
        QFETCH(bool, technician);
        QFETCH(bool, administrator);
        QFETCH(bool, refused);
        WindowRig rig;
        rig.startUp();
        rig.chooseMenuEntry(QStringLiteral("MenuAcquisizione"), QStringLiteral("MenuErroriCOM"));
        auto *details = rig.window->alarmsWindow()->findChild<QGroupBox *>(QStringLiteral("Fra_ErroriCOM"));
        QVERIFY(!details->isVisible());
        logIn(rig, QStringLiteral("Service"), QStringLiteral("7ubl4ko"));
        QVERIFY(details->isVisible());
        QCOMPARE(field(rig, "txtPassword")->echoMode(), QLineEdit::Password);

        logIn(rig, name, password, confirm);
        QCOMPARE(rig.panel(1), panel1);
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
