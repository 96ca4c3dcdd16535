#include "base/prompts.h"
#include "commands/users.h"
#include "supervisor/statusbar.h"

#include <QSignalSpy>
#include <QTest>

using namespace telvane;

class TestUsers : public QObject
{
    Q_OBJECT

private slots:
    void login_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("technician");
        QTest::addColumn<bool>("administrator");
        QTest::addColumn<QString>("panel");
        QTest::addColumn<bool>("refused");

        const QString anonymous = QStringLiteral("Utente: Anonimo");
        const QString technician = QStringLiteral("Utente: Tecnico");
        const QString administrator = QStringLiteral("Utente: Amministratore");
        QTest::newRow("technician") << "Tecnico" << "Qx7" << true << false << technician << false;
        QTest::newRow("service") << "Service" << "7ubl4ko" << false << true << administrator << false;
        QTest::newRow("admin") << "Admin" << "Wm4" << false << true << administrator << false;
        QTest::newRow("wrong password") << "Tecnico" << "qx7" << false << false << anonymous << true;
        QTest::newRow("another user's password") << "Tecnico" << "Wm4" << false << false << anonymous << true;
        QTest::newRow("name in lower case") << "admin" << "Wm4" << false << false << anonymous << true;
        QTest::newRow("blank after the name") << "Admin " << "Wm4" << false << false << anonymous << true;
        QTest::newRow("blank after the password") << "Admin" << "Wm4 " << false << false << anonymous << true;
        QTest::newRow("unknown user") << "Mario" << "Wm4" << false << false << anonymous << true;
        QTest::newRow("password without a name") << "" << "Qx7" << false << false << anonymous << true;
        QTest::newRow("name without a password") << "Tecnico" << "" << false << false << anonymous << true;
        QTest::newRow("both empty logs out quietly") << "" << "" << false << false << anonymous << false;
    }
    // Each attempt starts from a logged-in administrator, so a failed one must log out.
    void login()
    {
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(bool, technician);
        QFETCH(bool, administrator);
        QFETCH(QString, panel);
        QFETCH(bool, refused);

        StatusBar statusBar;
        RecordingPrompts prompts;
        UserLevel user{false, true};
        statusBar.setPanel(StatusBar::PortPanel, QStringLiteral("Utente: Amministratore"));

        const UserLevel result = Login(name, password, user, statusBar, prompts);

        QCOMPARE(user.IsTechnician, technician);
        QCOMPARE(user.IsAdministrator, administrator);
        QCOMPARE(result.IsTechnician, technician);
        QCOMPARE(result.IsAdministrator, administrator);
        QCOMPARE(statusBar.panel(StatusBar::PortPanel), panel);
        const QList<RecordingPrompts::Prompt> expected =
            refused ? QList<RecordingPrompts::Prompt>{{RecordingPrompts::Kind::Warning, "Accesso", "Password errata."}}
                    : QList<RecordingPrompts::Prompt>{};
        QCOMPARE(prompts.asked(), expected);
    }

    // The window sees the previous user go before the new one comes, even when the same
    // user logs in again.
    void everyAttemptLogsOutFirst()
    {
        StatusBar statusBar;
        RecordingPrompts prompts;
        UserLevel user;
        QSignalSpy changes(&statusBar, &StatusBar::panelChanged);

        Login(QStringLiteral("Tecnico"), QStringLiteral("Qx7"), user, statusBar, prompts);
        Login(QStringLiteral("Tecnico"), QStringLiteral("Qx7"), user, statusBar, prompts);

        QStringList texts;
        for (const QList<QVariant> &change : changes) {
            QCOMPARE(change.at(0).toInt(), int(StatusBar::PortPanel));
            texts << change.at(1).toString();
        }
        QCOMPARE(texts, (QStringList{"Utente: Anonimo", "Utente: Tecnico", "Utente: Anonimo", "Utente: Tecnico"}));
        QVERIFY(user.IsTechnician);
        QVERIFY(prompts.asked().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestUsers)
#include "tst_users.moc"
