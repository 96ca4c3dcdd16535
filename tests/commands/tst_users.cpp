#include "base/prompts.h"
#include "base/clock.h"
#include "commands/users.h"
#include "journal/operatorjournal.h"
#include "supervisor/statusbar.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace telvane;

Q_DECLARE_METATYPE(telvane::UserLevel)

class TestUsers : public QObject
{
    Q_OBJECT

private slots:
    void login_data()
    {
        QTest::addColumn<UserLevel>("before");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<UserLevel>("level");
        QTest::addColumn<bool>("refused");
        const UserLevel anonymous{false, false}, technician{true, false}, administrator{false, true};
        QTest::newRow("technician") << administrator << "Tecnico" << "Qx7" << technician << false;
        QTest::newRow("service") << administrator << "Service" << "7ubl4ko" << administrator << false;
        QTest::newRow("wrong password") << administrator << "Tecnico" << "qx7" << anonymous << true;
        QTest::newRow("blank after the password") << administrator << "Admin" << "Wm4 " << anonymous << true;
        QTest::newRow("both empty logs out quietly") << administrator << "" << "" << anonymous << false;
        QTest::newRow("nobody to log out") << anonymous << "Tecnico" << "Qx7" << technician << false;
    }
    // A logged-in user is logged out first: the user panel shows "Anonimo" before the
    // new user, even for the same one again. The journal has the logout, then the login
    // or its refusal, never the password.
    void login()
    {
        QFETCH(UserLevel, before);
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(UserLevel, level);
        QFETCH(bool, refused);
        StatusBar statusBar;
        RecordingPrompts prompts;
        UserLevel user = before;
        statusBar.setPanel(StatusBar::PortPanel, QStringLiteral("Utente: Amministratore"));
        QSignalSpy panel(&statusBar, &StatusBar::panelChanged);
        QTemporaryDir dir;
        ManualClock clock;
        OperatorJournal journal{ProgramFolder(dir.path()), clock};
        QStringList journalled;
        connect(&journal, &OperatorJournal::recorded, [&journalled](const JournalEntry &entry) {
            journalled.append(journalLine(entry).section(u';', 1));
        });

        const UserLevel result = Login(name, password, user, statusBar, prompts, journal);
        QVERIFY(user.IsTechnician == level.IsTechnician && user.IsAdministrator == level.IsAdministrator);
        QVERIFY(result.IsTechnician == level.IsTechnician && result.IsAdministrator == level.IsAdministrator);
        QList<QVariantList> texts{{StatusBar::PortPanel, "Utente: Anonimo"}};
        if (level.hasCommandRights())
            texts.append({StatusBar::PortPanel, "Utente: " + level.levelName()});
        QCOMPARE(QList<QVariantList>(panel), texts);
        const RecordingPrompts::Prompt wrongPassword{RecordingPrompts::Kind::Warning, "Accesso", "Password errata."};
        QCOMPARE(prompts.asked(), refused ? QList{wrongPassword} : QList<RecordingPrompts::Prompt>{});
        QStringList expected;
        if (before.hasCommandRights())
            expected.append("Amministratore;Logout;;");
        if (refused)
            expected.append("Anonimo;Login;" + name + ";password errata");
        else if (level.hasCommandRights())
            expected.append(level.levelName() + ";Login;" + name + ";");
        QCOMPARE(journalled, expected);
    }
};

QTEST_GUILESS_MAIN(TestUsers)
#include "tst_users.moc"
